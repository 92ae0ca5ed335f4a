#include "diary/note_cell_paint.h"

#include <algorithm>
#include <string>

namespace tilika::diary {

namespace {

using platform::Color;
using platform::Font;
using platform::FontWeight;
using platform::Point;
using platform::Rect;

constexpr double kPad = 6;
constexpr double kBlockWidth = 56;
constexpr double kBlockHeight = 56;
constexpr double kArrowSpace = 22;
constexpr double kIcon = 18;
constexpr double kIconGap = 6;
constexpr double kLineGap = 4;
constexpr double kThumbnail = 72;
const Font kDayFont{20, FontWeight::Bold};
const Font kWeekdayFont{11};
const Font kTextFont{13};
const Color kTodayWarm{1.0, 0.804, 0.255, 0.2};
const Color kTodayWhite{1, 1, 1, 0.2};
const Color kDietArc{0.39, 0.78, 0.39, 1};
const Color kSeparator{0.5, 0.5, 0.5, 0.35};

bool multiLines(int kind) {
    return kind == tp::timedRows || kind == tp::reminders || kind == tp::pressure ||
           kind == tp::fluids;
}

bool multiTexts(int kind) {
    return kind == tp::medication || kind == tp::periods;
}

// The lines a section shows, one text each.
std::vector<std::string> linesOf(const CatalogueRow& row) {
    std::vector<std::string> lines;
    if (multiLines(row.tp)) {
        for (const MultiRow& element : row.multiarray) {
            lines.push_back(element.time.empty() ? element.cap : element.time + "  " + element.cap);
        }
    } else if (multiTexts(row.tp)) {
        for (const MultiRow& element : row.multiarray) {
            if (!element.text.empty()) {
                lines.push_back(element.text);
            }
        }
    } else if (!row.text.empty()) {
        lines.push_back(row.text);
    }
    return lines;
}

}  // namespace

bool NoteCellPaint::shown(const DayNote& day, const CatalogueRow& row) {
    if (row.tp == tp::photo) {
        return day.flags.isphoto && !day.photopath.empty();
    }
    return !linesOf(row).empty();
}

double NoteCellPaint::height(const DayNote& day, const std::vector<CatalogueRow>& rows,
                             double width, const platform::Canvas& measure) const {
    return walk(day, rows, Rect{0, 0, width, 0}, measure, nullptr, nullptr);
}

NoteCellButtons NoteCellPaint::draw(const DayNote& day, const std::vector<CatalogueRow>& rows,
                                    const Rect& rect, bool today, platform::Canvas& canvas,
                                    const platform::Canvas* measure) const {
    NoteCellButtons buttons;
    buttons.row = rect;
    if (today) {
        canvas.fillRect(rect, look_.darkBars ? kTodayWarm : kTodayWhite);
    }
    walk(day, rows, rect, measure != nullptr ? *measure : canvas, &canvas, &buttons);
    return buttons;
}

double NoteCellPaint::walk(const DayNote& day, const std::vector<CatalogueRow>& rows,
                           const Rect& rect, const platform::Canvas& measure,
                           platform::Canvas* paint, NoteCellButtons* buttons) const {
    const Color text = look_.textColor;
    const Rect block{rect.x + kPad, rect.y + kPad, kBlockWidth, kBlockHeight};
    if (paint != nullptr) {
        paint->fillRoundedRect(block, 6, Color{day.color.r, day.color.g, day.color.b, day.color.a});
        const double dayHeight = measure.measureText(day.day, kDayFont, block.width).height;
        paint->drawText(day.day, Rect{block.x, block.y + 8, block.width, dayHeight}, kDayFont, text,
                        platform::TextAlign::Center);
        paint->drawText(day.weekday,
                        Rect{block.x, block.y + 8 + dayHeight, block.width,
                             measure.measureText(day.weekday, kWeekdayFont, block.width).height},
                        kWeekdayFont, text, platform::TextAlign::Center);
        if (day.flags.isdieta) {
            paint->drawArc(Rect{block.x + 3, block.y + 3, block.width - 6, block.height - 6}, 0,
                           360, kDietArc, 2);
        }
    }

    const double left = block.right() + kPad;
    const double right = rect.right() - kArrowSpace;
    const double textLeft = left + kIcon + kIconGap;
    const double textWidth = std::max(1.0, right - textLeft);
    double y = rect.y + kPad;
    for (const CatalogueRow& row : rows) {
        if (!shown(day, row)) {
            continue;
        }
        const double top = y;
        if (row.tp == tp::photo) {
            const Rect thumbnail{textLeft, y, kThumbnail, kThumbnail};
            if (paint != nullptr) {
                paint->drawImageFile(day.photopath, thumbnail);
            }
            if (buttons != nullptr) {
                buttons->picture = thumbnail;
            }
            y += kThumbnail + kLineGap;
            continue;
        }
        if (paint != nullptr && !row.pic.empty()) {
            paint->drawImage(look_.colorIcons ? "c-" + row.pic : row.pic,
                             Rect{left, y, kIcon, kIcon});
        }
        for (const std::string& line : linesOf(row)) {
            const double lineHeight =
                std::max(kIcon, measure.measureText(line, kTextFont, textWidth).height);
            if (paint != nullptr) {
                paint->drawText(line, Rect{textLeft, y, textWidth, lineHeight}, kTextFont, text);
            }
            y += lineHeight;
        }
        if (buttons != nullptr && row.field == "analizy" && !day.value("analizy").empty()) {
            buttons->analysis = Rect{left, top, right - left, y - top};
        }
        y += kLineGap;
    }

    const double bottom = std::max(block.bottom(), y) + kPad;
    if (paint != nullptr) {
        // A small chevron at the right, halfway down.
        const double middle = (rect.y + bottom) / 2;
        const double ax = rect.right() - kArrowSpace / 2 - 2;
        platform::Path arrow;
        arrow.moveTo(Point{ax - 3, middle - 6})
            .lineTo(Point{ax + 3, middle})
            .lineTo(Point{ax - 3, middle + 6});
        paint->strokePath(arrow, text, 1.5);
        paint->fillRect(Rect{rect.x, bottom - 1, rect.width, 1}, kSeparator);
    }
    return bottom - rect.y;
}

}  // namespace tilika::diary

#include "development/timeline_paint.h"

#include <algorithm>
#include <string>

#include "core/app_state.h"
#include "core/text.h"
#include "development/timeline.h"
#include "frame/translation.h"

namespace tilika::development {

namespace {

using platform::Color;
using platform::Font;
using platform::FontWeight;
using platform::Rect;
using platform::TextAlign;

constexpr Color kBandLight{1, 1, 1, 0.45};
constexpr Color kBandDark{1, 1, 1, 0.2};
constexpr Color kGrid{0, 0, 0, 0.08};
constexpr Color kCurrent{1, 0.87, 0.4, 0.35};
constexpr Color kCard{1, 1, 1, 0.85};
constexpr Color kCardLine{0, 0, 0, 0.18};

// Text on the light cards, whatever the backdrop.
constexpr Color kCardText{0.16, 0.16, 0.16};

constexpr double kBarIcon = 28;
constexpr double kMarkIcon = 30;
constexpr double kNarrowIcon = 24;
// A bar narrower than this puts its picture over its caption.
constexpr double kNarrowBar = 110;
// A year's caption is repeated along its band this many months apart, so
// that one is in view wherever the strip is scrolled.
constexpr int kYearCaptionEvery = 4;

// The caption centred under a picture at the top of the box, clipped to it.
void captionUnder(platform::Canvas& canvas, const std::string& text, const Rect& box,
                  double iconSize, const Color& color) {
    const Rect caption{box.x, box.y + iconSize + 1, box.width, box.height - iconSize - 1};
    canvas.save();
    canvas.clip(caption);
    canvas.drawText(text, caption, Font{9}, color, TextAlign::Center);
    canvas.restore();
}

void paintEvent(platform::Canvas& canvas, const PlaneEvent& event, const Rect& box,
                const Color& text) {
    if (event.tp == planetp::mark) {
        canvas.drawImage(event.icon,
                         {box.x + (box.width - kMarkIcon) / 2, box.y, kMarkIcon, kMarkIcon});
        captionUnder(canvas, event.comment, {box.x - 4, box.y, box.width + 8, box.height},
                     kMarkIcon, text);
        return;
    }
    canvas.fillRoundedRect(box, 8, kCard);
    canvas.strokeRoundedRect(box, 8, kCardLine, 1);
    if (box.width < kNarrowBar) {
        canvas.drawImage(event.icon, {box.x + (box.width - kNarrowIcon) / 2, box.y + 3, kNarrowIcon,
                                      kNarrowIcon});
        captionUnder(canvas, event.comment, {box.x + 2, box.y + 3, box.width - 4, box.height - 3},
                     kNarrowIcon, kCardText);
        return;
    }
    const Font font{10};
    const double iconTop = box.y + (box.height - kBarIcon) / 2;
    canvas.drawImage(event.icon, {box.x + 4, iconTop, kBarIcon, kBarIcon});
    const Rect caption{box.x + kBarIcon + 8, box.y + 4, box.width - kBarIcon - 12, box.height - 8};
    const double height = canvas.measureText(event.comment, font, caption.width).height;
    canvas.save();
    canvas.clip(caption);
    canvas.drawText(event.comment,
                    {caption.x, caption.y + std::max(0.0, (caption.height - height) / 2),
                     caption.width, caption.height},
                    font, kCardText);
    canvas.restore();
}

}  // namespace

void paintPlane(platform::Canvas& canvas, const Timeline& timeline, const core::AppState& state,
                const Rect& visible) {
    const PlaneGeometry& g = timeline.geometry();
    const platform::Size size = timeline.stripSize();
    const int first = timeline.columnAt(visible.x);
    const int last = timeline.columnAt(visible.right());
    const Color text = state.textColor;

    // A band under each year, in alternate shades.
    const std::string yearPattern = frame::translate(state, "%d-й год");
    for (int year = (first - 1) / 12 + 1; year <= (last - 1) / 12 + 1; ++year) {
        const int january = (year - 1) * 12 + 1;
        const Rect band{timeline.columnX(january), 0, 12 * g.wsize, g.bandHeight};
        canvas.fillRect(band, year % 2 == 1 ? kBandLight : kBandDark);
        const std::string caption = core::replaceAll(yearPattern, "%d", std::to_string(year));
        for (int m = january; m < january + 12; m += kYearCaptionEvery) {
            canvas.drawText(caption,
                            {timeline.columnX(m) + 6, band.y + 4, kYearCaptionEvery * g.wsize - 12,
                             band.height},
                            Font{12, FontWeight::Bold}, text);
        }
    }

    for (int m = first; m <= last; ++m) {
        const double x = timeline.columnX(m);
        const bool current = m == timeline.currentMonth();
        if (current) {
            canvas.fillRect({x, g.bandHeight, g.wsize, size.height - g.bandHeight}, kCurrent);
            canvas.drawImage("warning.png", {x + 3, g.bandHeight + 3, 18, 18});
        }
        canvas.drawLine({x, g.bandHeight}, {x, size.height}, kGrid, 1);
        canvas.drawText(planeColumnLabel(m), {x, g.bandHeight + 4, g.wsize, g.labelHeight},
                        Font{12, current ? FontWeight::Bold : FontWeight::Regular},
                        current ? state.accentColor : text, TextAlign::Center);
    }

    const auto& events = timeline.mainData();
    for (std::size_t i = 0; i < events.size(); ++i) {
        const Rect box = timeline.eventRect(i);
        if (box.width > 0 && box.intersects(visible)) {
            paintEvent(canvas, events[i], box, text);
        }
    }
}

}  // namespace tilika::development

#include "development/passport_card.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "core/app_state.h"
#include "core/context.h"
#include "core/dates.h"
#include "core/text.h"
#include "diary/display_texts.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "frame/translation.h"

namespace tilika::development {

namespace {

using platform::Color;
using platform::Font;
using platform::FontWeight;
using platform::Rect;
using platform::Size;

constexpr double kPad = 10;
constexpr double kIcon = 20;
constexpr double kIconGap = 6;
constexpr double kLineGap = 4;
// Where the value of a picture line starts, from the card's left.
constexpr double kValueColumn = 120;
constexpr double kButtonHeight = 28;
// Girth names are long; the values make room for them.
constexpr double kGirthShift = 55;
constexpr double kCardWidth = 320;
constexpr double kCardMargin = 10;

const Font kHeadingFont{15, FontWeight::Bold};
const Font kTextFont{13};
const Font kSmallFont{10};
const Color kText{0, 0, 0, 1};
const Color kGrey{0.5, 0.5, 0.5, 1};
const Color kSeparator{0.5, 0.5, 0.5, 0.35};
const Color kButton{0.27, 0.55, 0.85, 1};
const Color kButtonText{1, 1, 1, 1};

// Ages from a week to a year are also told in weeks.
constexpr int kFirstWeeksDay = 8;
constexpr int kLastWeeksDay = 364;

std::string oneDecimal(const std::string& text) {
    std::array<char, 32> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%.1f",
                  static_cast<double>(core::floatValue(text)));
    return buffer.data();
}

bool positive(const std::string& text) {
    return core::floatValue(text) > 0;
}

const char* const kGirthNames[] = {"Окружность головы", "Обхват груди", "Обхват талии",
                                   "Обхват бедер", "Длина стопы"};

std::array<const std::string*, 5> girths(const PassportData& data) {
    return {&data.bio1, &data.bio2, &data.bio3, &data.bio4, &data.bio5};
}

std::array<const std::string*, 5> girthPeriods(const PassportData& data) {
    return {&data.bio1per, &data.bio2per, &data.bio3per, &data.bio4per, &data.bio5per};
}

}  // namespace

PassportCardData passportCardData(core::Context& context, const diary::SetupRecord& setup,
                                  std::string_view gid) {
    const core::Dates& dates = context.dates;
    const core::Date today = dates.noTime(dates.now());
    const Passport passport(context);

    PassportCardData data;
    data.birthRost = setup.rost;
    data.birthVes = setup.ves;
    if (setup.birthtime) {
        data.birthTime = dates.dateToString(*setup.birthtime, core::formats::timeOfDay);
    }
    data.age = dates.monthAge(setup.birthdate, today, true, false);
    data.ageDays = dates.getDays(setup.birthdate, today);
    if (data.ageDays >= kFirstWeeksDay && data.ageDays <= kLastWeeksDay) {
        data.ageWeeks = passport.ageString(agemode::weeks, setup);
    }
    data.measures = passport.loadPassportData(gid);

    diary::ReferenceLists lists(context);
    std::vector<diary::ListRow> rows;
    lists.loadConstList(rows, diary::cotype::bloodGroups, "");
    data.blood = diary::checkStringToRead(setup.blood, rows);
    if (setup.documents) {
        lists.loadConstList(rows, diary::cotype::documentTypes, "");
        data.documents = diary::analizyStringToRead(*setup.documents, rows);
    }
    data.illnesses = passport.loadBolezn(gid);
    data.allergens = passport.prepareAllergHilite(gid);

    const PassportData& m = data.measures;
    const auto cm = [](const std::string& text) {
        return static_cast<float>(core::floatValue(text));
    };
    const SizeInputs inputs{cm(m.rost),
                            cm(m.bio1),
                            cm(m.bio2),
                            cm(m.bio3),
                            cm(m.bio4),
                            cm(m.bio5),
                            dates.getMonths(setup.birthdate, today)};
    data.sizes = clothingSizes(context.state, inputs).lines;
    return data;
}

std::string PassportCard::tr(std::string_view text) const {
    return frame::translate(state_, text);
}

std::string PassportCard::picture(std::string_view name) const {
    return state_.colorIcons ? "c-" + std::string(name) : std::string(name);
}

double PassportCard::calcHeight(platform::Canvas& canvas, int tp) {
    return drawContent(canvas, tp, false, Rect{0, 0, kCardWidth, 900}) + kCardMargin;
}

double PassportCard::addLine(platform::Canvas& canvas, double top, int tp, std::string_view pic,
                             std::string_view name, std::string_view value, std::string_view dat,
                             bool justsize, const Rect& rc, double correctleft, bool csr) {
    const double left = rc.x + kPad;
    const double width = std::max(1.0, rc.width - 2 * kPad);
    switch (tp) {
        case linestyle::separator:
            if (!justsize) {
                canvas.fillRect(Rect{left, top + kLineGap, width, 1}, kSeparator);
            }
            return top + 2 * kLineGap + 1;
        case linestyle::heading: {
            const double height = canvas.measureText(name, kHeadingFont, width).height;
            if (!justsize) {
                canvas.drawText(name, Rect{left, top, width, height}, kHeadingFont, kText);
            }
            return top + height + kLineGap;
        }
        case linestyle::body:
        case linestyle::hint: {
            const Color& color = tp == linestyle::hint ? kGrey : kText;
            const double datWidth =
                dat.empty() ? 0 : canvas.measureText(dat, kTextFont, 0).width + kIconGap;
            const double textWidth = std::max(1.0, width - datWidth);
            const double height = std::max(canvas.measureText(value, kTextFont, textWidth).height,
                                           dat.empty() ? 0.0 : kTextFont.size);
            if (!justsize) {
                canvas.drawText(value, Rect{left, top, textWidth, height}, kTextFont, color);
                if (!dat.empty()) {
                    canvas.drawText(dat, Rect{left + textWidth, top, datWidth, height}, kTextFont,
                                    color, platform::TextAlign::Right);
                }
            }
            return top + height + kLineGap;
        }
        case linestyle::measure:
        case linestyle::labelled: {
            const double nameLeft = left + kIcon + kIconGap;
            double valueLeft = left + kValueColumn + correctleft;
            if (csr) {
                valueLeft += canvas.measureText("00", kTextFont, 0).width;
            }
            const double nameWidth = std::max(1.0, valueLeft - nameLeft - kIconGap);
            const double valueWidth = std::max(1.0, left + width - valueLeft);
            double height = std::max(kIcon, canvas.measureText(name, kTextFont, nameWidth).height);
            const Size valueSize = canvas.measureText(value, kTextFont, valueWidth);
            height = std::max(height, valueSize.height);
            if (!justsize) {
                if (!pic.empty()) {
                    canvas.drawImage(pic, Rect{left, top, kIcon, kIcon});
                }
                canvas.drawText(name, Rect{nameLeft, top, nameWidth, height}, kTextFont, kText);
                canvas.drawText(value, Rect{valueLeft, top, valueWidth, height}, kTextFont, kText);
            }
            if (tp == linestyle::measure && !dat.empty()) {
                const double datLeft = valueLeft + valueSize.width + kIconGap;
                const double datWidth = std::max(1.0, left + width - datLeft);
                const double datHeight = canvas.measureText(dat, kSmallFont, datWidth).height;
                if (!justsize) {
                    canvas.drawText(dat, Rect{datLeft, top + 2, datWidth, datHeight}, kSmallFont,
                                    kGrey);
                }
                height = std::max(height, datHeight + 2);
            }
            return top + height + kLineGap;
        }
        default:
            return top;
    }
}

double PassportCard::addButton(platform::Canvas& canvas, double top, std::string_view caption,
                               bool justsize, const Rect& rc, std::optional<Rect>& where) {
    const double width = canvas.measureText(caption, kTextFont, 0).width + 2 * kPad;
    const Rect button{rc.x + kPad, top, width, kButtonHeight};
    if (!justsize) {
        canvas.fillRoundedRect(button, 6, kButton);
        const double textHeight = canvas.measureText(caption, kTextFont, 0).height;
        canvas.drawText(
            caption,
            Rect{button.x, button.y + (kButtonHeight - textHeight) / 2, button.width, textHeight},
            kTextFont, kButtonText, platform::TextAlign::Center);
        where = button;
    }
    return top + kButtonHeight + kLineGap;
}

double PassportCard::mainCard(platform::Canvas& canvas, double top, bool justsize, const Rect& rc) {
    const auto line = [&](int tp, std::string_view pic, std::string_view name,
                          std::string_view value, std::string_view dat = {}, double correctleft = 0,
                          bool csr = false) {
        top = addLine(canvas, top, tp, pic, name, value, dat, justsize, rc, correctleft, csr);
    };

    if (positive(data_.birthVes) || positive(data_.birthRost) || data_.birthTime) {
        line(linestyle::heading, {}, tr("Данные при рождении"), {});
        if (positive(data_.birthRost)) {
            line(linestyle::labelled, picture("ne-ruler.png"), tr("Рост"), data_.birthRost);
        }
        if (positive(data_.birthVes)) {
            line(linestyle::labelled, picture("ne-weight.png"), tr("Вес"), data_.birthVes);
        }
        if (data_.birthTime) {
            line(linestyle::labelled, {}, tr("Время"), *data_.birthTime);
        }
        line(linestyle::separator, {}, {}, {});
    }

    std::string age = data_.age;
    if (data_.ageDays >= kFirstWeeksDay && data_.ageDays <= kLastWeeksDay) {
        age += tr(" или \n") + data_.ageWeeks;
    }
    line(linestyle::heading, {}, tr("Возраст"), {});
    line(linestyle::body, {}, {}, age);

    const PassportData& m = data_.measures;
    const auto values = girths(m);
    const auto periods = girthPeriods(m);
    const bool anyGirth = std::any_of(values.begin(), values.end(),
                                      [](const std::string* value) { return !value->empty(); });
    if (anyGirth || !m.rost.empty() || !m.ves.empty()) {
        const double shift = anyGirth ? kGirthShift : 0;
        line(linestyle::heading, {}, tr("Биометрические данные"), {});
        if (!m.rost.empty()) {
            line(linestyle::measure, picture("ne-ruler.png"), tr("Рост"), oneDecimal(m.rost),
                 m.rostper, shift, true);
        }
        if (!m.ves.empty()) {
            line(linestyle::measure, picture("ne-weight.png"), tr("Вес"), m.ves, m.vesper, shift);
        }
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (!values[i]->empty()) {
                line(linestyle::measure, {}, tr(kGirthNames[i]), *values[i], *periods[i], shift);
            }
        }
        line(linestyle::separator, {}, {}, {});
    }

    line(linestyle::heading, {}, tr("Группа крови"), {});
    line(linestyle::body, {}, {}, data_.blood);
    line(linestyle::separator, {}, {}, {});

    line(linestyle::heading, {}, tr("Документы"), {});
    if (!data_.documents.empty()) {
        line(linestyle::body, {}, {}, data_.documents);
        top = addButton(canvas, top, tr("Посмотреть документы"), justsize, rc, doc1Rect_);
    } else {
        line(linestyle::hint, {}, {},
             tr("Перейдите в настройки и создайте список часто используемых документов"));
    }
    line(linestyle::separator, {}, {}, {});

    line(linestyle::heading, {}, tr("Карта прививок"), {});
    return addButton(canvas, top, tr("Посмотреть карту"), justsize, rc, doc2Rect_);
}

double PassportCard::sizesCard(platform::Canvas& canvas, double top, bool justsize,
                               const Rect& rc) {
    // The region values stand left of the usual column, as far as the
    // widest region name leaves room for in the card's font: a name broken
    // inside a word reads worse than a column a little to the right.
    double widestRegion = 0;
    for (const SizeLine& size : data_.sizes) {
        if (size.style == sizestyle::labelled && !size.picture.empty()) {
            widestRegion =
                std::max(widestRegion, canvas.measureText(size.text, kTextFont, 0).width);
        }
    }
    const double fitted = kIcon + kIconGap + widestRegion + kIconGap - kValueColumn;
    for (const SizeLine& size : data_.sizes) {
        switch (size.style) {
            case sizestyle::labelled:
                top = addLine(canvas, top, linestyle::labelled,
                              size.picture.empty() ? std::string() : size.picture + ".png",
                              size.text, size.value, {}, justsize, rc,
                              size.picture.empty() ? size.correctLeft
                                                   : std::max<double>(size.correctLeft, fitted),
                              false);
                break;
            case sizestyle::body:
            case sizestyle::hint:
                top =
                    addLine(canvas, top, size.style, {}, {}, size.text, {}, justsize, rc, 0, false);
                break;
            default:
                top = addLine(canvas, top, linestyle::separator, {}, {}, {}, {}, justsize, rc, 0,
                              false);
        }
    }
    return top;
}

double PassportCard::listCard(platform::Canvas& canvas, double top,
                              const std::vector<std::pair<std::string, std::string>>& items,
                              std::string_view hint, bool justsize, const Rect& rc) {
    if (items.empty()) {
        return addLine(canvas, top, linestyle::hint, {}, {}, tr(hint), {}, justsize, rc, 0, false);
    }
    for (const auto& [text, dat] : items) {
        top = addLine(canvas, top, linestyle::body, {}, {}, text, dat, justsize, rc, 0, false);
    }
    return top;
}

double PassportCard::drawContent(platform::Canvas& canvas, int tp, bool draw, const Rect& rect) {
    const bool justsize = !draw;
    if (draw) {
        doc1Rect_.reset();
        doc2Rect_.reset();
    }
    double top = rect.y + kPad;
    switch (tp) {
        case card::main:
            top = mainCard(canvas, top, justsize, rect);
            break;
        case card::illnesses: {
            std::vector<std::pair<std::string, std::string>> items;
            for (const IllnessOnCard& illness : data_.illnesses) {
                items.emplace_back(illness.name, illness.date);
            }
            top =
                listCard(canvas, top, items,
                         "В этот раздел попадают серьезные болезни, которые Вы заносите в дневник",
                         justsize, rect);
            break;
        }
        case card::allergens: {
            std::vector<std::pair<std::string, std::string>> items;
            for (const std::string& allergen : data_.allergens) {
                items.emplace_back(allergen, std::string());
            }
            top = listCard(canvas, top, items,
                           "Занесите в этот раздел аллергены, которые вызывают у ребенка "
                           "аллергические реакции нажав на кнопку редактирования",
                           justsize, rect);
            break;
        }
        case card::sizes:
            top = sizesCard(canvas, top, justsize, rect);
            break;
        default:
            break;
    }
    return top;
}

}  // namespace tilika::development

#include "medication/day_schedule.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/text.h"
#include "core/words.h"
#include "diary/display_texts.h"
#include "diary/value_codecs.h"
#include "frame/course_amounts.h"
#include "frame/form_kinds.h"
#include "frame/form_values.h"
#include "frame/translation.h"
#include "medication/dose_times.h"

namespace tilika::medication {

namespace {

constexpr std::string_view kAnyMeal = "Независимо от еды";
constexpr std::string_view kWithMeal = "Во время еды";
constexpr std::string_view kNoReminders = "0<tr>В этом дне напоминаний нет";
constexpr std::string_view kNoMedicines = "0<tr>Приема лекарств и процедур в этом дне нет";
constexpr int kMinutesOfDay = 24 * 60;

// Relations to a meal, each in the order the doses come: the longest before
// first, the soonest after first.
constexpr std::array<std::string_view, 4> kBefore{"За 1 час до еды", "За 30 минут до еды",
                                                  "За 15 минут до еды", "Перед едой"};
constexpr std::array<std::string_view, 4> kAfter{
    "После еды", "Через 15 минут после еды", "Через 30 минут после еды", "Через 1 час после еды"};

// A meal of the day: its number among the five meal times, from 1, and the
// word the schedule calls it by.
struct Meal {
    int priem;
    std::string_view word;
};
constexpr Meal kBreakfast{1, "завтрак"};
constexpr Meal kSecondBreakfast{2, "2ой завтрак"};
constexpr Meal kLunch{3, "обед"};
constexpr Meal kSnack{4, "полдник"};
constexpr Meal kSupper{5, "ужин"};

// The meals a course goes with, by its doses a day.
std::vector<Meal> mealsFor(int count) {
    switch (count) {
        case 2:
            return {kBreakfast, kSupper};
        case 3:
            return {kBreakfast, kLunch, kSupper};
        case 4:
            return {kBreakfast, kLunch, kSnack, kSupper};
        case 5:
            return {kBreakfast, kSecondBreakfast, kLunch, kSnack, kSupper};
        default:
            return {kBreakfast};
    }
}

template <std::size_t N>
int rankIn(const std::array<std::string_view, N>& captions, std::string_view caption) {
    const auto it = std::find(captions.begin(), captions.end(), caption);
    return it == captions.end() ? 0 : static_cast<int>(it - captions.begin()) + 1;
}

template <std::size_t N>
bool isIn(const std::array<std::string_view, N>& captions, std::string_view caption) {
    return rankIn(captions, caption) != 0;
}

// A time of day as "HH:mm", two digits each; anything else ("8:00",
// "25:00", a missing time) would sort among the wrong hours.
bool isClockTime(std::string_view time) {
    auto digit = [&time](std::size_t i) { return time[i] >= '0' && time[i] <= '9'; };
    if (time.size() != 5 || time[2] != ':' || !digit(0) || !digit(1) || !digit(3) || !digit(4)) {
        return false;
    }
    return (time[0] - '0') * 10 + (time[1] - '0') < 24 && time[3] < '6';
}

std::string clockText(int minutes) {
    char text[8];
    std::snprintf(text, sizeof text, "%02d:%02d", minutes / 60, minutes % 60);
    return text;
}

// The meal form's rows in the order of the stored meal times.
struct MealField {
    const char* caption;
    const char* prompt;
    const char* field;
};
constexpr std::array<MealField, 5> kMealFields{{
    {"Завтрак", "Укажите время завтрака", "time1"},
    {"Второй завтрак", "Укажите время второго завтрака", "time4"},
    {"Обед", "Укажите время обеда", "time2"},
    {"Полдник", "Укажите время полдника", "time5"},
    {"Ужин", "Укажите время ужина", "time3"},
}};

}  // namespace

DaySchedule::DaySchedule(core::Context& context)
    : context_(context), courses_(context.dates), store_(context, courses_) {}

void DaySchedule::activateView(std::string gid) {
    gid_ = std::move(gid);
    listData_.clear();
    store_.lists().loadConstList(listData_, diary::cotype::all, "");
}

const std::vector<InDayRow>& DaySchedule::prepare(core::Date date) {
    inData_.clear();
    const core::Date day = context_.dates.noTime(date);
    const diary::DayNote note = store_.todayNoteForDay(day, gid_);

    bool reminders = false;
    const std::string alarm = note.value("alarm");
    if (diary::jsonIs(alarm)) {
        for (const nlohmann::json& element : diary::jsonToArray(alarm)) {
            const std::string time = element.is_object() ? diary::jsonText(element, "time") : "";
            if (!isClockTime(time)) {
                continue;
            }
            insInData(inData_, indaykind::plain, time, "5<tr>" + diary::jsonText(element, "temp"),
                      time);
            reminders = true;
        }
    }
    if (!reminders) {
        insInData(inData_, indaykind::plain, "", frame::translate(context_.state, kNoReminders),
                  "00:00");
    }

    bool medicines = false;
    const std::string pills = note.value(kPillsType);
    if (diary::jsonIs(pills)) {
        SQLite::Database* db = context_.database.connectToBase();
        const std::string obed = getObed(db);
        for (const nlohmann::json& course : diary::jsonToArray(pills)) {
            if (course.is_object()) {
                addCourse(course, day, obed);
                medicines = true;
            }
        }
    }
    if (!medicines) {
        insInData(inData_, indaykind::plain, "", frame::translate(context_.state, kNoMedicines),
                  "00:01");
    }

    std::stable_sort(inData_.begin(), inData_.end(), [](const InDayRow& a, const InDayRow& b) {
        const int byTime = core::timeCompare(a.pos, b.pos);
        return byTime != 0 ? byTime < 0 : compareRight(a.right, b.right) < 0;
    });
    return inData_;
}

void DaySchedule::addCourse(const nlohmann::json& course, core::Date date, std::string_view obed) {
    const core::Dates& dates = context_.dates;
    auto field = [&course](std::string_view key) { return diary::jsonText(course, key); };
    std::string text = diary::checkStringToRead(field("pillname"), listData_) + ": " +
                       frame::dozaToRead3(field("pilldoza"));
    std::string days;
    if (const auto start =
            dates.dateFromStringFormat(field("pillsdate"), core::formats::screenDay)) {
        days = " (" + std::to_string(dates.getDays(*start, date) + 1) + " день из " +
               std::to_string(frame::pillLengthToDays(field("pilllength"), *start, dates)) + ")";
    }
    const std::string meal = diary::checkStringToRead(field("pilleat"), listData_);
    const int count = core::intValue(core::split(field("pillinter"), "<td>").front());

    if (count > 5 || meal == kAnyMeal) {
        if (meal != kAnyMeal) {
            text += ", " + meal;
        }
        // The times are those the reminders use, hand-set ones included.
        const std::string value = "23<tr>" + text + " " + days;
        const DoseTimes doseTimes(dates, listData_, std::string(obed));
        for (const DoseTime& dose :
             doseTimes.pillsToTimeArray(date, nlohmann::json::array({course}).dump())) {
            const std::string time = dates.dateToString(dose.dat, "HH:mm");
            insInData(inData_, indaykind::plain, time, value, time);
        }
        return;
    }

    // Doses that go with meals stand at the meals, whatever times the course
    // keeps for its reminders.
    const std::string value = "23<tr>" + text + " " + days;
    const std::vector<Meal> meals = mealsFor(count);
    for (std::size_t i = 0; i < meals.size(); ++i) {
        const Meal& at = meals[i];
        insInData(inData_, indaykind::plain, "", "", gt(obed, at.priem, 1));
        if (isIn(kBefore, meal)) {
            insInData(inData_, indaykind::relation, meal, value, gt(obed, at.priem, 2));
        }
        insInData(inData_, indaykind::meal, at.word, "", gt(obed, at.priem, 3));
        if (meal == kWithMeal) {
            insInData(inData_, indaykind::meal, at.word, value, gt(obed, at.priem, 3));
        }
        if (isIn(kAfter, meal)) {
            insInData(inData_, indaykind::relation, meal, value, gt(obed, at.priem, 4));
        }
        if (i + 1 < meals.size()) {
            insInData(inData_, indaykind::plain, "", "", gt(obed, at.priem, 5));
        }
    }
}

void DaySchedule::insInData(std::vector<InDayRow>& rows, int tp, std::string_view right,
                            std::string_view value, std::string_view pos) {
    const auto same = std::find_if(rows.begin(), rows.end(), [&](const InDayRow& row) {
        return row.tp == tp && row.right == right && row.pos == pos;
    });
    if (same == rows.end()) {
        rows.push_back({tp, std::string(right), std::string(pos), std::string(value)});
        return;
    }
    if (value.empty()) {
        return;
    }
    // A meal row is made empty before its dose comes; the dose is then its
    // only item rather than one after an empty one.
    if (!same->value.empty()) {
        same->value += "<end>";
    }
    same->value += value;
}

std::string DaySchedule::gt(std::string_view obed, int priem, int min) {
    const std::vector<std::string> meals = core::split(obed, "<table>");
    const std::size_t at = static_cast<std::size_t>(std::max(priem, 1) - 1);
    const std::string meal = at < meals.size() ? meals[at] : std::string();
    const auto clock = core::split(meal, ":");
    const int hour = core::intValue(clock.front());
    const int minute = clock.size() > 1 ? core::intValue(clock[1]) : 0;
    const int minutes =
        ((hour * 60 + minute + min) % kMinutesOfDay + kMinutesOfDay) % kMinutesOfDay;
    return clockText(minutes);
}

int DaySchedule::compareRight(std::string_view right1, std::string_view right2) {
    auto rank = [](std::string_view caption) {
        const int before = rankIn(kBefore, caption);
        return before != 0 ? before : rankIn(kAfter, caption);
    };
    return rank(right1) - rank(right2);
}

MealForm DaySchedule::mealForm() const {
    const std::vector<std::string> times =
        core::split(getObed(context_.database.connectToBase()), "<table>");
    MealForm form{"Время приема пищи", {}};
    for (std::size_t i = 0; i < kMealFields.size(); ++i) {
        frame::FormRow row;
        row.tp = frame::formkind::diaryTime;
        row.caption = kMealFields[i].caption;
        row.editdescr = kMealFields[i].prompt;
        row.field = kMealFields[i].field;
        row.edit = true;
        row.source = i < times.size() ? times[i] : std::string();
        form.rows.push_back(std::move(row));
    }
    return form;
}

core::WriteResult DaySchedule::editObed(const frame::FormRows& rows) {
    std::vector<std::string> times;
    for (const MealField& meal : kMealFields) {
        times.push_back(frame::fieldValue(rows, meal.field).value_or(""));
    }
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteFailure::noDatabase;
    }
    return setObed(*db, core::join(times, "<table>"));
}

// ---- drawing ----

namespace {

using platform::Color;
using platform::Font;
using platform::FontWeight;
using platform::Rect;

constexpr double kPad = 8;
constexpr double kIcon = 24;
constexpr double kGap = 8;
constexpr double kLineGap = 4;
constexpr double kSpacer = 25;
const Font kTextFont{14};
const Font kRightFont{14, FontWeight::Bold};
const Color kMealGround{0, 0, 0, 0.05};
const Color kRelationGround{0, 0, 0, 0.02};

struct Item {
    int code = -1;  // -1: a text with no code, drawn plain
    std::string text;
};

std::vector<Item> itemsOf(std::string_view value) {
    std::vector<Item> items;
    if (value.empty()) {
        return items;
    }
    for (const std::string& piece : core::split(value, "<end>")) {
        if (piece.empty()) {
            continue;
        }
        const std::size_t mark = piece.find("<tr>");
        if (mark == std::string::npos) {
            items.push_back({-1, piece});
        } else {
            items.push_back({core::intValue(piece.substr(0, mark)), piece.substr(mark + 4)});
        }
    }
    return items;
}

std::string pictureOf(int code) {
    switch (code) {
        case indaycode::doctor:
            return "icon-doctor.png";
        case indaycode::reminder:
            return "ne-alarm128.png";
        case indaycode::medicine:
            return "ne-pills128.png";
        case indaycode::diet:
            return "ne-dieta.png";
        default:
            return {};
    }
}

}  // namespace

double InDayCellPaint::height(const InDayRow& row, double width,
                              const platform::Canvas& measure) const {
    return walk(row, Rect{0, 0, width, 0}, measure, nullptr);
}

void InDayCellPaint::prepareInDayCell(const InDayRow& row, const Rect& rect,
                                      platform::Canvas& canvas) const {
    walk(row, rect, canvas, &canvas);
}

double InDayCellPaint::walk(const InDayRow& row, const Rect& rect, const platform::Canvas& measure,
                            platform::Canvas* paint) const {
    const std::vector<Item> items = itemsOf(row.value);
    const bool hasText = std::any_of(items.begin(), items.end(),
                                     [](const Item& item) { return !item.text.empty(); });
    if (!hasText && row.right.empty()) {
        return kSpacer;
    }
    double rightWidth = 0;
    double rightHeight = 0;
    if (!row.right.empty()) {
        const platform::Size size = measure.measureText(row.right, kRightFont, 0);
        rightWidth = size.width;
        rightHeight = size.height;
    }
    const double left = rect.x + kPad;
    const double textRight = rect.right() - kPad - (rightWidth > 0 ? rightWidth + kGap : 0);

    // First the lines are measured, so that the ground is drawn under them.
    struct Line {
        int code;
        std::string text;
        double height;
    };
    std::vector<Line> lines;
    double content = 0;
    for (const Item& item : items) {
        for (const std::string& text : core::split(item.text, "\n")) {
            const bool centred = item.code == indaycode::note;
            const bool pictured = !pictureOf(item.code).empty();
            const double width = centred    ? rect.width - 2 * kPad
                                 : pictured ? textRight - left - kIcon - kGap
                                            : textRight - left;
            double height = measure.measureText(text, kTextFont, std::max(width, 1.0)).height;
            if (pictured) {
                height = std::max(height, kIcon);
            }
            content += (lines.empty() ? 0 : kLineGap) + height;
            lines.push_back({item.code, text, height});
        }
    }
    const double height = std::max({content, rightHeight, kIcon}) + 2 * kPad;
    if (paint == nullptr) {
        return height;
    }

    const Rect ground{rect.x, rect.y, rect.width, height};
    if (row.tp == indaykind::meal) {
        paint->fillRect(ground, kMealGround);
    } else if (row.tp == indaykind::relation) {
        paint->fillRect(ground, kRelationGround);
    }
    if (!row.right.empty()) {
        paint->drawText(row.right,
                        Rect{rect.right() - kPad - rightWidth, rect.y + (height - rightHeight) / 2,
                             rightWidth, rightHeight},
                        kRightFont, look_.textColor, platform::TextAlign::Right);
    }
    double y = rect.y + (height - content) / 2;
    for (const Line& line : lines) {
        const std::string picture = pictureOf(line.code);
        if (line.code == indaycode::note) {
            paint->drawText(line.text, Rect{left, y, rect.width - 2 * kPad, line.height}, kTextFont,
                            look_.secondColor, platform::TextAlign::Center);
        } else if (!picture.empty()) {
            paint->drawImage((look_.colorIcons ? "c-" : "") + picture,
                             Rect{left, y + (line.height - kIcon) / 2, kIcon, kIcon});
            const double textLeft = left + kIcon + kGap;
            const double textHeight =
                measure.measureText(line.text, kTextFont, std::max(textRight - textLeft, 1.0))
                    .height;
            paint->drawText(line.text,
                            Rect{textLeft, y + (line.height - textHeight) / 2, textRight - textLeft,
                                 textHeight},
                            kTextFont, look_.textColor);
        } else {
            paint->drawText(line.text, Rect{left, y, textRight - left, line.height}, kTextFont,
                            look_.textColor);
        }
        y += line.height + kLineGap;
    }
    return height;
}

}  // namespace tilika::medication

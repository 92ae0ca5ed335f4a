#include "medication/dose_times.h"

#include <SQLiteCpp/Statement.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "core/database.h"
#include "core/dates.h"
#include "core/text.h"
#include "diary/display_texts.h"
#include "diary/value_codecs.h"
#include "frame/course_amounts.h"
#include "medication/course_form.h"

namespace tilika::medication {
namespace {

constexpr std::string_view kAnyMeal = "Независимо от еды";

struct MealOffset {
    std::string_view caption;
    int minutes;
};

// Minutes from the start of a meal; a relation the parent added to the list
// is taken at the meal itself.
constexpr std::array<MealOffset, 9> kMealOffsets{{
    {"За 1 час до еды", -60},
    {"За 30 минут до еды", -30},
    {"За 15 минут до еды", -15},
    {"Перед едой", -5},
    {"Во время еды", 5},
    {"После еды", 10},
    {"Через 15 минут после еды", 25},
    {"Через 30 минут после еды", 40},
    {"Через 1 час после еды", 70},
}};

// Which of the five meals the doses go with, by doses a day.
constexpr std::array<std::array<int, 5>, 5> kMealsByCount{{
    {0, -1, -1, -1, -1},
    {0, 4, -1, -1, -1},
    {0, 2, 4, -1, -1},
    {0, 2, 3, 4, -1},
    {0, 1, 2, 3, 4},
}};

// More doses than minutes in a day only come from a damaged record; they
// would only repeat the same times.
constexpr int kMaxDoses = 24 * 60;

// The day at hour:minute on the wall clock, or nothing when that is no time
// of day.
std::optional<core::Date> atClock(const core::Dates& dates, core::Date day, int hour, int minute) {
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59) {
        return std::nullopt;
    }
    char clock[8];
    std::snprintf(clock, sizeof clock, "%02d:%02d", hour, minute);
    return dates.dateFromStringFormat(dates.dateToString(day, "yyyy-MM-dd") + " " + clock,
                                      "yyyy-MM-dd HH:mm");
}

std::string firstField(std::string_view value) {
    return core::split(value, "<td>").front();
}

std::string secondField(std::string_view value) {
    const auto fields = core::split(value, "<td>");
    return fields.size() > 1 ? fields[1] : std::string();
}

std::map<std::string, std::string> courseOfRecord(const nlohmann::json& record) {
    std::map<std::string, std::string> course;
    for (const char* field : {"pillname", "pilldoza", "pillinter", "pilleat", "pilltime"}) {
        course[field] = diary::jsonText(record, field);
    }
    return course;
}

const std::string& fieldOf(const std::map<std::string, std::string>& course,
                           const std::string& field) {
    static const std::string none;
    const auto it = course.find(field);
    return it == course.end() ? none : it->second;
}

}  // namespace

std::string getObed(SQLite::Database* db) {
    if (db == nullptr) {
        return std::string(kDefaultMeals);
    }
    try {
        SQLite::Statement query(*db, "select obed from child where obed is not null limit 1");
        if (query.executeStep()) {
            return query.getColumn(0).getString();
        }
    } catch (const SQLite::Exception&) {
        // An old database without the column: the meals are the usual ones.
    }
    return std::string(kDefaultMeals);
}

core::WriteResult setObed(SQLite::Database& db, std::string_view meals) {
    return core::tryWrite("setObed", [&] {
        core::WriteTransaction part(db);
        SQLite::Statement update(db, "update child set obed=?");
        update.bind(1, std::string(meals));
        update.exec();
        part.commit();
    });
}

std::optional<core::Date> generateTime(const core::Dates& dates, core::Date day, int type,
                                       int count, int pos) {
    // Single precision and truncation, so that the times are those the
    // reminders have always used.
    const int p = pos - 1;
    int minutes = 0;
    if (type == 2) {
        minutes =
            count < 2
                ? 0
                : static_cast<int>(1440.0F / static_cast<float>(count) * static_cast<float>(p));
    } else if (type == 1) {
        if (count < 2) {
            minutes = 480;
        } else {
            const int spread =
                static_cast<int>(840.0F / static_cast<float>(count - 1) * static_cast<float>(p));
            minutes = spread / 15 * 15 + 480;
        }
    }
    return atClock(dates, day, minutes / 60, minutes % 60);
}

std::optional<core::Date> generateTimeEat(const core::Dates& dates, core::Date day, int base,
                                          std::string_view eda) {
    int offset = 0;
    for (const MealOffset& meal : kMealOffsets) {
        if (meal.caption == eda) {
            offset = meal.minutes;
        }
    }
    int hour = offset < 0 ? base - 1 : base;
    int minute = offset < 0 ? offset + 60 : offset;
    if (minute > 60) {
        ++hour;
        minute -= 60;
    }
    return atClock(dates, day, hour, minute);
}

DoseTimes::DoseTimes(const core::Dates& dates, const std::vector<diary::ListRow>& listData,
                     std::string meals)
    : dates_(dates), listData_(listData) {
    for (const std::string& meal : core::split(meals, "<table>")) {
        mealHours_.push_back(core::intValue(meal));
    }
    mealHours_.resize(5, 0);
}

void DoseTimes::addDoses(core::Date day, const std::map<std::string, std::string>& course,
                         std::vector<DoseTime>& out) const {
    std::string text = diary::checkStringToRead(fieldOf(course, "pillname"), listData_) + ": " +
                       frame::dozaToRead3(fieldOf(course, "pilldoza"));
    const std::string& times = fieldOf(course, "pilltime");
    if (!times.empty()) {
        for (const std::string& time : core::split(times, "<td>")) {
            const auto clock = core::split(time, ":");
            if (clock.size() != 2) {
                continue;
            }
            if (const auto at =
                    atClock(dates_, day, core::intValue(clock[0]), core::intValue(clock[1]))) {
                out.push_back({*at, text});
            }
        }
        return;
    }
    const std::string meal = diary::checkStringToRead(fieldOf(course, "pilleat"), listData_);
    const std::string& inter = fieldOf(course, "pillinter");
    const int count = std::min(core::intValue(firstField(inter)), kMaxDoses);
    const int type = secondField(inter) == "раз в сутки" ? 2 : 1;
    if (count > 5 || meal == kAnyMeal) {
        if (meal != kAnyMeal) {
            text += ", " + meal;
        }
        for (int pos = 1; pos <= count; ++pos) {
            if (const auto at = generateTime(dates_, day, type, count, pos)) {
                out.push_back({*at, text});
            }
        }
        return;
    }
    text += " (" + meal + ")";
    for (const int position : kMealsByCount[static_cast<std::size_t>(std::max(count, 1) - 1)]) {
        if (position < 0) {
            break;
        }
        if (const auto at = generateTimeEat(dates_, day,
                                            mealHours_[static_cast<std::size_t>(position)], meal)) {
            out.push_back({*at, text});
        }
    }
}

std::vector<DoseTime> DoseTimes::pillsToTimeArray(core::Date day, std::string_view value) const {
    std::vector<DoseTime> doses;
    if (!diary::jsonIs(value)) {
        return doses;
    }
    for (const nlohmann::json& record : diary::jsonToArray(value)) {
        if (record.is_object()) {
            addDoses(day, courseOfRecord(record), doses);
        }
    }
    return doses;
}

std::string DoseTimes::courseTimes(const std::map<std::string, std::string>& course) const {
    std::map<std::string, std::string> worked = course;
    worked.erase("pilltime");
    std::vector<DoseTime> doses;
    addDoses(dates_.now(), worked, doses);
    std::vector<std::string> times;
    times.reserve(doses.size());
    for (const DoseTime& dose : doses) {
        times.push_back(dates_.dateToString(dose.dat, "HH:mm"));
    }
    return core::join(times, "<td>");
}

std::string DoseTimes::getCurrentPillTime(const std::vector<diary::CatalogueRow>& rows) const {
    const auto course = courseOfForm(rows);
    return course ? courseTimes(*course) : std::string();
}

}  // namespace tilika::medication

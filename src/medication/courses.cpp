#include "medication/courses.h"

#include <SQLiteCpp/Statement.h>

#include <algorithm>
#include <array>
#include <optional>
#include <set>

#include "core/database.h"
#include "core/dates.h"
#include "core/ids.h"
#include "core/text.h"
#include "diary/display_texts.h"
#include "diary/value_codecs.h"

namespace tilika::medication {
namespace {

using nlohmann::json;

// Ten times the longest course the form can make (100 days, 12 weeks, 3
// months), yet a bound on the rows that a damaged or hostile course from
// another device can make us write.
constexpr long long kMaxLastOffset = 1000;

// Steps from a dose to the next by the weekday of the dose, Sunday first.
// They lead to fixed days whatever day the course starts on: Monday and
// Thursday for twice a week; Tuesday, Thursday and Sunday for three times.
constexpr std::array<int, 7> kTwiceAWeek{1, 3, 2, 1, 4, 3, 2};
constexpr std::array<int, 7> kThriceAWeek{2, 1, 2, 1, 3, 2, 1};

int periodStep(std::string_view period, int weekday) {
    const bool known = weekday >= 1 && weekday <= 7;
    if (period == "Через день") {
        return 2;
    }
    if (period == "Через неделю") {
        return 7;
    }
    if (period == "2 раза в неделю" && known) {
        return kTwiceAWeek[static_cast<std::size_t>(weekday - 1)];
    }
    if (period == "3 раза в неделю" && known) {
        return kThriceAWeek[static_cast<std::size_t>(weekday - 1)];
    }
    // Every other period, the user's own ones included, is daily.
    return 1;
}

// Only a text is a key: a number or anything else another device wrote
// ties the course to nothing.
bool hasKey(const json& record) {
    if (!record.is_object()) {
        return false;
    }
    const auto key = record.find("key");
    return key != record.end() && key->is_string();
}

std::string keyOf(const json& record) {
    return hasKey(record) ? record.at("key").get<std::string>() : std::string();
}

// Any offset below zero means the same: no day at all.
int clampedOffset(long long offset) {
    return static_cast<int>(std::clamp(offset, -1LL, kMaxLastOffset));
}

}  // namespace

Courses::Courses(SQLite::Database& db, const core::Dates& dates)
    : db_(db), dates_(dates), rows_(db, dates) {}

int Courses::lastOffset(std::string_view pilllength, core::Date start) const {
    const std::vector<std::string> fields = core::split(pilllength, "<td>");
    const long long count = core::intValue(fields[0]);
    const std::string_view unit = fields.size() > 1 ? std::string_view(fields[1]) : "";
    if (unit == "дни") {
        return clampedOffset(count - 1);
    }
    if (unit == "недели") {
        return clampedOffset(count * 7 - 1);
    }
    if (unit == "месяцы") {
        // The day before the same date N months on, where the calendar puts
        // it: from 31 January one month ends on 27 February.
        const int months = static_cast<int>(std::clamp(count, -kMaxLastOffset, kMaxLastOffset));
        return clampedOffset(
            dates_.getDays(start, dates_.addDays(dates_.addMonths(start, months), -1)));
    }
    return 0;
}

std::optional<core::Date> Courses::firstDay(const json& course) const {
    return dates_.dateFromStringFormat(diary::jsonText(course, "pillsdate"),
                                       core::formats::screenDay);
}

void Courses::addNoteComplex(std::string_view type, std::string_view value,
                             const std::vector<diary::ListRow>& listData, std::string_view gid,
                             core::Date curdate) {
    if (type != kPillsType) {
        return;
    }
    if (!diary::jsonIs(value)) {
        rows_.insertValue(type, value, curdate, gid, true, false);
        return;
    }
    json course = diary::jsonToDictionary(value);
    if (!course.is_object()) {
        return;
    }
    // An empty key would tie the course to nothing; it counts as none.
    if (keyOf(course).empty()) {
        course["key"] = core::newID();
    }
    const std::string key = keyOf(course);

    const std::string period =
        diary::checkStringToRead(diary::jsonText(course, "pillperiod"), listData);
    // The form always fills the first day; a course whose first day can't be
    // read starts on the day it was saved on rather than being lost.
    const core::Date start = firstDay(course).value_or(dates_.noTime(curdate));
    const int last = lastOffset(diary::jsonText(course, "pilllength"), start);

    for (int offset = 0; offset <= last;) {
        const core::Date day = dates_.addDays(start, offset);
        const std::string stored = rows_.getDateValue(day, type, gid);
        json courses = diary::jsonIs(stored) ? diary::jsonToArray(stored) : json();
        if (!courses.is_array()) {
            courses = json::array();
        }
        // A day holds a course once: spreading it again (a day that came
        // back from another device) refreshes the copy instead of doubling it.
        auto& elements = courses.get_ref<json::array_t&>();
        const auto same = std::find_if(elements.begin(), elements.end(), [&key](const json& e) {
            return hasKey(e) && keyOf(e) == key;
        });
        if (same != elements.end()) {
            *same = course;
        } else {
            elements.push_back(course);
        }
        rows_.insertValue(type, diary::jsonFromObject(courses), day, gid, true, false);
        offset += periodStep(period, dates_.decodeDate(day).weekday);
    }
}

void Courses::removeNoteComplex(std::string_view type, std::string_view key,
                                std::string_view course) {
    // An empty key would match every row.
    if (key.empty()) {
        return;
    }
    struct Found {
        std::string gid;
        std::optional<core::Date> day;
        std::string value;
    };
    std::vector<Found> found;
    // Collected first: the rows are rewritten below, which must not happen
    // under a statement still reading the table.
    const core::WriteResult read = core::tryWrite("removeNoteComplex", [&] {
        // A course was spread from its first day over its length and lies
        // nowhere else, so its days are all that need reading; years of
        // diary are read only for a course whose first day is unknown.
        SQLite::Statement query(db_,
                                "select childguid, sdat, value from childdata where type=? and "
                                "date(sdat) between date(?) and date(?) and instr(value, ?) > 0");
        query.bind(1, std::string(type));
        const json record = diary::jsonToDictionary(course);
        const std::optional<core::Date> start = firstDay(record);
        if (start) {
            core::dateToBase(dates_, query, 2, *start, false);
            core::dateToBase(
                dates_, query, 3,
                dates_.addDays(*start, lastOffset(diary::jsonText(record, "pilllength"), *start)),
                false);
        } else {
            query.bind(2, "0000-01-01");
            query.bind(3, "9999-12-31");
        }
        query.bind(4, std::string(key));
        while (query.executeStep()) {
            std::optional<std::string> gid = core::stringFromBase(query, 0);
            if (!gid) {
                continue;
            }
            // Old rows may carry a time after the day.
            found.push_back({std::move(*gid),
                             dates_.dateFromString(query.getColumn(1).getString().substr(0, 10)),
                             core::stringFromBase(query, 2).value_or("")});
        }
    });
    if (read_ && !read) {
        read_ = read;
    }

    for (const Found& row : found) {
        if (!row.day || !diary::jsonIs(row.value)) {
            continue;
        }
        json courses = diary::jsonToArray(row.value);
        if (!courses.is_array()) {
            continue;
        }
        auto& elements = courses.get_ref<json::array_t&>();
        const auto removed =
            std::erase_if(elements, [&key](const json& e) { return hasKey(e) && keyOf(e) == key; });
        // The key text may stand elsewhere in a value; such a row is not ours.
        if (removed == 0) {
            continue;
        }
        if (elements.empty()) {
            rows_.deleteValue(type, *row.day, row.gid);
        } else {
            rows_.insertValue(type, diary::jsonFromObject(courses), *row.day, row.gid, true, false);
        }
    }
}

void Courses::settleEditedDay(std::string_view type, std::string_view value, core::Date curdate,
                              std::string_view gid) {
    const std::string stored = rows_.getDateValue(curdate, type, gid);
    if (stored.empty()) {
        return;
    }
    if (!diary::jsonIs(stored)) {
        if (stored != value) {
            rows_.deleteValue(type, curdate, gid);
        }
        return;
    }
    json courses = diary::jsonToArray(stored);
    if (!courses.is_array()) {
        return;
    }
    // A course without a key (one converted from an old version) lives on
    // this day alone. If the edited value still has it, it is spread below
    // and comes back with a key; left here it would show twice.
    auto& elements = courses.get_ref<json::array_t&>();
    const auto removed =
        std::erase_if(elements, [](const json& e) { return e.is_object() && !hasKey(e); });
    if (removed == 0) {
        return;
    }
    if (elements.empty()) {
        rows_.deleteValue(type, curdate, gid);
    } else {
        rows_.insertValue(type, diary::jsonFromObject(courses), curdate, gid, true, false);
    }
}

void Courses::saveNoteComplex(std::string_view type, std::string_view value, core::Date curdate,
                              std::string_view gid, const std::vector<diary::ListRow>& listData,
                              std::string_view old) {
    if (type != kPillsType) {
        return;
    }
    const diary::CourseKeys now = diary::extractKeys(type, value);
    const diary::CourseKeys before = diary::extractKeys(type, old);
    const std::set<std::string> nowKeys(now.key.begin(), now.key.end());
    const std::set<std::string> beforeKeys(before.key.begin(), before.key.end());

    settleEditedDay(type, value, curdate, gid);

    std::set<std::string> removed;
    for (std::size_t i = 0; i < before.key.size(); ++i) {
        if (!nowKeys.contains(before.key[i]) && removed.insert(before.key[i]).second) {
            removeNoteComplex(type, before.key[i], before.keyvalue[i]);
        }
    }
    std::set<std::string> spread;
    for (std::size_t i = 0; i < now.key.size(); ++i) {
        if (!beforeKeys.contains(now.key[i]) && spread.insert(now.key[i]).second) {
            addNoteComplex(type, now.keyvalue[i], listData, gid, curdate);
        }
    }
    for (const std::string& course : now.nokey) {
        addNoteComplex(type, course, listData, gid, curdate);
    }
    // An old plain text that was replaced by another is stored as it stands.
    if (!value.empty() && !diary::jsonIs(value) && value != old) {
        addNoteComplex(type, value, listData, gid, curdate);
    }
}

core::WriteResult CourseReconciler::reconcile(SQLite::Database& db, std::string_view type,
                                              std::string_view value, core::Date day,
                                              std::string_view gid,
                                              const std::vector<diary::ListRow>& lists,
                                              std::string_view old) const {
    Courses courses(db, dates_);
    courses.saveNoteComplex(type, value, day, gid, lists, old);
    return courses.result();
}

}  // namespace tilika::medication

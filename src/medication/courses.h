#pragma once

#include <SQLiteCpp/Database.h>
#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "diary/courses_of_day.h"
#include "diary/day_rows.h"
#include "diary/reference_lists.h"

namespace tilika::core {
class Dates;
}

namespace tilika::medication {

// The diary entry type that holds medication courses.
inline constexpr std::string_view kPillsType = "pills";

// Medication courses over the diary's days. There is no table of courses: a
// course is copied, unchanged, onto every day a dose falls on, as one element
// of that day's `pills` array, and its `key` is all that ties the copies
// together. Editing or removing a course on any one day therefore rewrites
// every day it touches, for any child.
//
// Works on a database that is already open and never opens a transaction of
// its own: saving a day writes the day and all the course's days together, so
// the caller wraps the whole save in one. A statement that fails is skipped
// quietly, as everywhere in the diary; a write that fails fails that
// transaction, and result() tells of any.
class Courses {
public:
    Courses(SQLite::Database& db, const core::Dates& dates);

    // Spreads one course (a JSON object) over its days, from its `pillsdate`
    // for its `pilllength`, on the days its `pillperiod` picks; the course
    // gets a fresh `key` if it has none. A value that is not JSON is an old
    // plain text and is stored on `curdate` as it stands.
    void addNoteComplex(std::string_view type, std::string_view value,
                        const std::vector<diary::ListRow>& listData, std::string_view gid,
                        core::Date curdate);

    // Takes the course with this key out of every day of every child; a day
    // left with no course loses its row. Given the course itself (JSON text),
    // only the days it was spread over are looked at.
    void removeNoteComplex(std::string_view type, std::string_view key,
                           std::string_view course = {});

    // Brings the courses in line with the edited value of one day, whose
    // stored value `old` the caller has just written back: courses gone from
    // the day are removed everywhere, new and edited ones (an edit drops the
    // key) are spread afresh, and courses present in both are left alone.
    void saveNoteComplex(std::string_view type, std::string_view value, core::Date curdate,
                         std::string_view gid, const std::vector<diary::ListRow>& listData,
                         std::string_view old);

    // Whether a statement has failed since the courses were made, and why.
    core::WriteResult result() const { return read_ ? rows_.result() : read_; }

private:
    // The first day of a course, when it can be read.
    std::optional<core::Date> firstDay(const nlohmann::json& course) const;
    // The last day of a course as an offset from its first day.
    int lastOffset(std::string_view pilllength, core::Date start) const;
    // Clears what the caller wrote back on the edited day and the new value
    // replaces: courses never spread, and an old plain text.
    void settleEditedDay(std::string_view type, std::string_view value, core::Date curdate,
                         std::string_view gid);

    SQLite::Database& db_;
    const core::Dates& dates_;
    diary::DayRows rows_;
    core::WriteResult read_;  // the courses' own reads
};

// What the diary's day save asks of the courses, answered by Courses.
class CourseReconciler final : public diary::CoursesOfDay {
public:
    explicit CourseReconciler(const core::Dates& dates) : dates_(dates) {}

    core::WriteResult reconcile(SQLite::Database& db, std::string_view type, std::string_view value,
                                core::Date day, std::string_view gid,
                                const std::vector<diary::ListRow>& lists,
                                std::string_view old) const override;

private:
    const core::Dates& dates_;
};

}  // namespace tilika::medication

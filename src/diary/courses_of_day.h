#pragma once

#include <string_view>
#include <vector>

#include "core/date.h"
#include "core/write_result.h"
#include "diary/reference_lists.h"

namespace SQLite {
class Database;
}

namespace tilika::diary {

// A medication course is copied onto every day a dose falls on, so saving one
// day can rewrite many. The diary keeps the days but not the rules of the
// courses; whoever builds the store hands those in through this.
class CoursesOfDay {
public:
    virtual ~CoursesOfDay() = default;

    // Brings the courses in line with the edited value `value` of entry
    // `type` on `day`, whose stored value `old` the caller has just written
    // back. Runs inside the transaction the caller holds on `db`; on a
    // failure the caller must not commit.
    virtual core::WriteResult reconcile(SQLite::Database& db, std::string_view type,
                                        std::string_view value, core::Date day,
                                        std::string_view gid, const std::vector<ListRow>& lists,
                                        std::string_view old) const = 0;
};

}  // namespace tilika::diary

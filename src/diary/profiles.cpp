#include "diary/profiles.h"

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"

namespace tilika::diary {

std::vector<ProfileListRow> Profiles::profileList() const {
    std::vector<ProfileListRow> rows;
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return rows;
    }
    core::runGuarded("profileList", [&] {
        SQLite::Statement query(*db,
                                "select chid, chname, sbirthdate from child "
                                "where ifnull(deleted,0)<>1 order by date(sbirthdate)");
        while (query.executeStep()) {
            ProfileListRow row;
            row.chid = query.getColumn(0).getInt64();
            row.chname = core::stringFromBase(query, 1).value_or("");
            row.sbirthdate = core::dateFromBase(context_.dates, query, 2, false);
            rows.push_back(std::move(row));
        }
    });
    return rows;
}

}  // namespace tilika::diary

#pragma once

#include <SQLiteCpp/Database.h>

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/date.h"
#include "core/write_result.h"

namespace tilika::core {
class Dates;
}

namespace tilika::diary {

// The diary's rows: one value per child, day and entry type. Works on a
// database that is already open, so that a whole day, or a course spread
// over many days, can be written inside one transaction by its caller. A
// statement that fails is skipped quietly, as every reader expects; a write
// that fails also fails the caller's transaction when it commits.
class DayRows {
public:
    DayRows(SQLite::Database& db, const core::Dates& dates);
    ~DayRows();

    // Writes the value of a type on a day. An empty value writes nothing and
    // deletes nothing. With `justnew` an existing row is left as it is; with
    // `withDelete` the existing row is replaced.
    void insertValue(std::string_view type, std::string_view value, core::Date curdate,
                     std::string_view gid, bool withDelete, bool justnew);
    void deleteValue(std::string_view type, core::Date curdate, std::string_view gid);
    // Every row of the day, or the rows of one type.
    void deleteDay(core::Date curdate, std::string_view gid);

    // The value of that day and type, "" when there is none.
    std::string getDateValue(core::Date date, std::string_view type, std::string_view gid);
    // The latest value strictly before that day, "" when there is none; the
    // day it was found on is kept for getLastValueDate().
    std::string getLastDateValue(core::Date date, std::string_view type, std::string_view gid);
    std::optional<core::Date> getLastValueDate() const { return lastValueDate_; }

    // The milk teeth the child has just before the day, the day itself left
    // out: numbers 1 to 20 in ascending order, joined by "<tr>".
    std::string toothForDay(core::Date date, std::string_view gid);

    // Whether a statement has failed since these rows were made, with the
    // first one's reason: a caller writing in a transaction then rolls back
    // instead of keeping half.
    core::WriteResult result() const { return result_; }

private:
    // The statements every day's write uses, prepared once for these rows:
    // a course spread over a hundred days would otherwise spend much of its
    // time preparing the same few statements again.
    enum Statement : std::size_t { kInsert, kDelete, kRead, kStatements };
    class Prepared;
    Prepared prepared(Statement which, const char* sql);

    void note(core::WriteResult statement);

    SQLite::Database& db_;
    std::array<std::unique_ptr<SQLite::Statement>, kStatements> statements_;
    const core::Dates& dates_;
    std::optional<core::Date> lastValueDate_;
    core::WriteResult result_;
};

}  // namespace tilika::diary

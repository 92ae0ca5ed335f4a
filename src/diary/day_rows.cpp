#include "diary/day_rows.h"

#include <array>

#include "core/database.h"
#include "core/dates.h"
#include "core/text.h"
#include "diary/teeth_replay.h"

namespace tilika::diary {

namespace {

std::string dayText(const core::Dates& dates, core::Date date) {
    return dates.dateToString(dates.noTime(date), core::formats::day);
}

}  // namespace

// A prepared statement lent for one use, and made ready for the next when
// the use ends: a statement left part-way through its rows would hold the
// database's read lock.
class DayRows::Prepared {
public:
    explicit Prepared(SQLite::Statement& statement) : statement_(statement) {}
    // A failed step is told by the statement itself; here it must not throw.
    ~Prepared() {
        statement_.tryReset();
        statement_.clearBindings();
    }
    Prepared(const Prepared&) = delete;
    Prepared& operator=(const Prepared&) = delete;
    SQLite::Statement* operator->() { return &statement_; }
    SQLite::Statement& operator*() { return statement_; }

private:
    SQLite::Statement& statement_;
};

DayRows::DayRows(SQLite::Database& db, const core::Dates& dates) : db_(db), dates_(dates) {}

DayRows::~DayRows() = default;

DayRows::Prepared DayRows::prepared(Statement which, const char* sql) {
    std::unique_ptr<SQLite::Statement>& statement = statements_[which];
    if (statement == nullptr) {
        statement = std::make_unique<SQLite::Statement>(db_, sql);
    }
    return Prepared(*statement);
}

void DayRows::note(core::WriteResult statement) {
    if (result_ && !statement) {
        result_ = statement;
    }
}

void DayRows::insertValue(std::string_view type, std::string_view value, core::Date curdate,
                          std::string_view gid, bool withDelete, bool justnew) {
    if (value.empty()) {
        return;
    }
    if (justnew && !getDateValue(curdate, type, gid).empty()) {
        return;
    }
    if (withDelete) {
        deleteValue(type, curdate, gid);
    }
    note(core::tryWrite("insertValue", [&] {
        core::WriteTransaction part(db_);
        Prepared insert = prepared(
            kInsert, "insert into childdata (type, value, sdat, childguid) values (?,?,?,?)");
        insert->bind(1, std::string(type));
        insert->bind(2, std::string(value));
        core::dateToBase(dates_, *insert, 3, dates_.noTime(curdate), false);
        insert->bind(4, std::string(gid));
        insert->exec();
        part.commit();
    }));
}

void DayRows::deleteValue(std::string_view type, core::Date curdate, std::string_view gid) {
    note(core::tryWrite("deleteValue", [&] {
        core::WriteTransaction part(db_);
        Prepared remove = prepared(kDelete,
                                   "delete from childdata where childguid=? and "
                                   "date(sdat)=date(?) and type=?");
        remove->bind(1, std::string(gid));
        remove->bind(2, dayText(dates_, curdate));
        remove->bind(3, std::string(type));
        remove->exec();
        part.commit();
    }));
}

void DayRows::deleteDay(core::Date curdate, std::string_view gid) {
    note(core::tryWrite("deleteDay", [&] {
        core::WriteTransaction part(db_);
        SQLite::Statement remove(db_,
                                 "delete from childdata where childguid=? and date(sdat)=date(?)");
        remove.bind(1, std::string(gid));
        remove.bind(2, dayText(dates_, curdate));
        remove.exec();
        part.commit();
    }));
}

std::string DayRows::getDateValue(core::Date date, std::string_view type, std::string_view gid) {
    std::string value;
    note(core::tryWrite("getDateValue", [&] {
        Prepared query = prepared(kRead,
                                  "select value from childdata where childguid=? and "
                                  "date(sdat)=date(?) and type=?");
        query->bind(1, std::string(gid));
        query->bind(2, dayText(dates_, date));
        query->bind(3, std::string(type));
        if (query->executeStep()) {
            value = core::stringFromBase(*query, 0).value_or("");
        }
    }));
    return value;
}

std::string DayRows::getLastDateValue(core::Date date, std::string_view type,
                                      std::string_view gid) {
    std::string value;
    lastValueDate_.reset();
    note(core::tryWrite("getLastDateValue", [&] {
        SQLite::Statement query(db_,
                                "select value, sdat from childdata where childguid=? and "
                                "date(sdat)<date(?) and type=? order by date(sdat) desc limit 1");
        query.bind(1, std::string(gid));
        query.bind(2, dayText(dates_, date));
        query.bind(3, std::string(type));
        if (query.executeStep()) {
            value = core::stringFromBase(query, 0).value_or("");
            // Days are stored as "yyyy-MM-dd"; rows of old versions may
            // carry a time as well.
            lastValueDate_ = dates_.dateFromString(core::stringFromBase(query, 1).value_or(""));
        }
    }));
    return value;
}

std::string DayRows::toothForDay(core::Date date, std::string_view gid) {
    ToothReplay teeth;
    note(core::tryWrite("toothForDay", [&] {
        SQLite::Statement query(db_,
                                "select value from childdata where type='tooth' and childguid=? "
                                "and date(sdat)<date(?) order by date(sdat)");
        query.bind(1, std::string(gid));
        query.bind(2, dayText(dates_, date));
        while (query.executeStep()) {
            teeth.apply(core::stringFromBase(query, 0).value_or(""));
        }
    }));
    return teeth.text();
}

}  // namespace tilika::diary

#include "diary/day_rows.h"

#include "core/database.h"
#include "core/dates.h"

namespace tilika::diary {

namespace {

std::string dayText(const core::Dates& dates, core::Date date) {
    return dates.dateToString(dates.noTime(date), core::formats::day);
}

}  // namespace

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
        SQLite::Statement insert(
            db_, "insert into childdata (type, value, sdat, childguid) values (?,?,?,?)");
        insert.bind(1, std::string(type));
        insert.bind(2, std::string(value));
        core::dateToBase(dates_, insert, 3, dates_.noTime(curdate), false);
        insert.bind(4, std::string(gid));
        insert.exec();
        part.commit();
    }));
}

void DayRows::deleteValue(std::string_view type, core::Date curdate, std::string_view gid) {
    note(core::tryWrite("deleteValue", [&] {
        core::WriteTransaction part(db_);
        SQLite::Statement remove(db_,
                                 "delete from childdata where childguid=? and "
                                 "date(sdat)=date(?) and type=?");
        remove.bind(1, std::string(gid));
        remove.bind(2, dayText(dates_, curdate));
        remove.bind(3, std::string(type));
        remove.exec();
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
        SQLite::Statement query(db_,
                                "select value from childdata where childguid=? and "
                                "date(sdat)=date(?) and type=?");
        query.bind(1, std::string(gid));
        query.bind(2, dayText(dates_, date));
        query.bind(3, std::string(type));
        if (query.executeStep()) {
            value = core::stringFromBase(query, 0).value_or("");
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

}  // namespace tilika::diary

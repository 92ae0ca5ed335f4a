#include "diary/day_rows.h"

#include <gtest/gtest.h>

#include "core/ids.h"
#include "support/core_fixture.h"

namespace tilika::diary {
namespace {

class DayRowsTest : public test::CoreFixture {
protected:
    const std::string gid = core::newID2(core::idkind::profile, 1);
    DayRows rows{db(), dates};

    core::Date day(const char* text) { return *dates.dateFromString(text); }
};

TEST_F(DayRowsTest, WritesOneValuePerDayAndType) {
    rows.insertValue("note", "Первая", day("2026-11-20 18:30"), gid, true, false);
    EXPECT_EQ(queryText("select sdat from childdata"), "2026-11-20");
    EXPECT_EQ(rows.getDateValue(day("2026-11-20 07:00"), "note", gid), "Первая");

    rows.insertValue("note", "Вторая", day("2026-11-20"), gid, true, false);
    EXPECT_EQ(rows.getDateValue(day("2026-11-20"), "note", gid), "Вторая");
    EXPECT_EQ(queryText("select count(*) from childdata"), "1");

    // Only a new value where there is none.
    rows.insertValue("note", "Третья", day("2026-11-20"), gid, true, true);
    EXPECT_EQ(rows.getDateValue(day("2026-11-20"), "note", gid), "Вторая");

    // An empty value neither writes nor deletes.
    rows.insertValue("note", "", day("2026-11-20"), gid, true, false);
    EXPECT_EQ(rows.getDateValue(day("2026-11-20"), "note", gid), "Вторая");

    EXPECT_EQ(rows.getDateValue(day("2026-11-20"), "note", "OTHER"), "");
    EXPECT_EQ(rows.getDateValue(day("2026-11-21"), "note", gid), "");
    rows.deleteValue("note", day("2026-11-20 23:00"), gid);
    EXPECT_EQ(rows.getDateValue(day("2026-11-20"), "note", gid), "");
}

TEST_F(DayRowsTest, FindsTheLatestValueBeforeADay) {
    rows.insertValue("bolezn", "A", day("2026-10-01"), gid, true, false);
    rows.insertValue("bolezn", "B", day("2026-10-05"), gid, true, false);
    rows.insertValue("note", "C", day("2026-10-07"), gid, true, false);
    db().exec(
        "insert into childdata (type, value, sdat, childguid) values ('bolezn', 'old', "
        "'2026-09-01 00:00:00', '" +
        gid + "')");

    EXPECT_EQ(rows.getLastDateValue(day("2026-10-05"), "bolezn", gid), "A");
    EXPECT_EQ(dates.dateToString(rows.getLastValueDate(), core::formats::day), "2026-10-01");
    EXPECT_EQ(rows.getLastDateValue(day("2026-12-31"), "bolezn", gid), "B");
    EXPECT_EQ(rows.getLastDateValue(day("2026-10-01"), "bolezn", gid), "old");
    EXPECT_EQ(dates.dateToString(rows.getLastValueDate(), core::formats::day), "2026-09-01");
    EXPECT_EQ(rows.getLastDateValue(day("2026-09-01"), "bolezn", gid), "");
    EXPECT_FALSE(rows.getLastValueDate());

    rows.deleteDay(day("2026-10-05"), gid);
    EXPECT_EQ(rows.getLastDateValue(day("2026-12-31"), "bolezn", gid), "A");
}

}  // namespace
}  // namespace tilika::diary

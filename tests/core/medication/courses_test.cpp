#include "medication/courses.h"

#include <gtest/gtest.h>

#include <map>

#include "core/database.h"
#include "core/ids.h"
#include "diary/value_codecs.h"
#include "support/core_fixture.h"

namespace tilika::medication {
namespace {

using nlohmann::json;

std::string seeded(int n) {
    return core::newID2(core::idkind::seededRow, n);
}

const std::string kDaily = seeded(10);
const std::string kEveryOtherDay = seeded(11);
const std::string kWeekly = seeded(12);
const std::string kTwiceAWeek = seeded(13);
const std::string kThriceAWeek = seeded(14);

class CoursesTest : public test::CoreFixture {
protected:
    const std::string gid = core::newID2(core::idkind::profile, 1);
    std::vector<diary::ListRow> lists;
    Courses courses{db(), dates};
    diary::DayRows rows{db(), dates};

    CoursesTest() { diary::ReferenceLists(context).loadConstList(lists, 0, ""); }

    core::Date day(const std::string& text) { return *dates.dateFromString(text); }

    static json course(const std::string& period, const std::string& length,
                       const std::string& start, const std::string& doza = "1<td>шт.") {
        return {{"pillname", seeded(8)}, {"pilldoza", doza},
                {"pillperiod", period},  {"pillinter", "3<td>раз в день"},
                {"pilleat", seeded(15)}, {"pilllength", length},
                {"pillsdate", start}};
    }

    void add(const json& record, const std::string& child, const std::string& on = "2026-11-22") {
        courses.addNoteComplex("pills", diary::jsonFromObject(record), lists, child, day(on));
    }

    // What saving a day does with its courses: the stored value is written
    // back after the day is cleared, then the edited value is reconciled.
    void saveDay(const std::string& on, const std::string& value) {
        core::WriteTransaction transaction(db());
        const std::string old = rows.getDateValue(day(on), "pills", gid);
        rows.deleteDay(day(on), gid);
        rows.insertValue("pills", old, day(on), gid, false, false);
        courses.saveNoteComplex("pills", value, day(on), gid, lists, old);
        transaction.commit();
    }

    // A new course entered on a day that may already have some.
    void enter(const std::string& on, const json& record) {
        json value = diary::jsonToArray(rows.getDateValue(day(on), "pills", gid));
        value = value.is_array() ? value : json::array();
        value.push_back(record);
        saveDay(on, diary::jsonFromObject(value));
    }

    // The courses of each day of a child, by key.
    std::map<std::string, std::vector<std::string>> keysByDay(const std::string& child) {
        std::map<std::string, std::vector<std::string>> days;
        SQLite::Statement query(db(),
                                "select sdat, value from childdata where type='pills' and "
                                "childguid=? order by sdat");
        query.bind(1, child);
        while (query.executeStep()) {
            auto& keys = days[query.getColumn(0).getString()];
            for (const json& record : diary::jsonToArray(query.getColumn(1).getString())) {
                keys.push_back(diary::jsonText(record, "key"));
            }
        }
        return days;
    }

    std::vector<int> offsets(const std::string& child, const std::string& start) {
        std::vector<int> found;
        for (const auto& [sdat, keys] : keysByDay(child)) {
            found.push_back(dates.getDays(day(start), day(sdat)));
        }
        return found;
    }
};

TEST_F(CoursesTest, PeriodsPickTheDaysOfACourse) {
    add(course(kTwiceAWeek, "1<td>недели", "25.11.2026"), "wed");  // a Wednesday
    EXPECT_EQ(offsets("wed", "2026-11-25"), (std::vector<int>{0, 1, 5}));
    add(course(kThriceAWeek, "1<td>недели", "23.11.2026"), "mon");  // a Monday
    EXPECT_EQ(offsets("mon", "2026-11-23"), (std::vector<int>{0, 1, 3, 6}));
    add(course(kWeekly, "1<td>недели", "23.11.2026"), "weekly");
    EXPECT_EQ(offsets("weekly", "2026-11-23"), (std::vector<int>{0}));
    add(course(kEveryOtherDay, "6<td>дни", "23.11.2026"), "other");
    EXPECT_EQ(offsets("other", "2026-11-23"), (std::vector<int>{0, 2, 4}));
    // A period of the user's own, or one gone from the list, is daily.
    add(course(core::newID(), "3<td>дни", "23.11.2026"), "own");
    EXPECT_EQ(offsets("own", "2026-11-23"), (std::vector<int>{0, 1, 2}));
    add(course(kDaily, "0<td>дни", "23.11.2026"), "none");
    EXPECT_TRUE(keysByDay("none").empty());

    // A month from 31 January ends the day before 28 February.
    add(course(kDaily, "1<td>месяцы", "31.01.2027"), "month");
    const auto month = offsets("month", "2027-01-31");
    ASSERT_EQ(month.size(), 28u);
    EXPECT_EQ(month.back(), 27);
}

TEST_F(CoursesTest, ACourseJoinsTheDaysItFalls) {
    rows.insertValue("pills", "Нурофен по 1/2", day("2026-11-23"), gid, true, false);
    add(course(kDaily, "3<td>дни", "20.11.2026"), gid);
    add(course(kDaily, "3<td>дни", "21.11.2026"), gid);
    const auto days = keysByDay(gid);
    ASSERT_EQ(days.size(), 4u);
    const std::string first = days.at("2026-11-20").at(0);
    const std::string second = days.at("2026-11-23").at(0);
    EXPECT_NE(first, second);
    EXPECT_EQ(days.at("2026-11-21"), (std::vector<std::string>{first, second}));
    EXPECT_EQ(days.at("2026-11-22"), (std::vector<std::string>{first, second}));

    // An old plain text is stored as it stands, on its day alone.
    courses.addNoteComplex("pills", "Нурофен по 1/2", lists, gid, day("2026-11-30"));
    EXPECT_EQ(rows.getDateValue(day("2026-11-30"), "pills", gid), "Нурофен по 1/2");
}

TEST_F(CoursesTest, EditingACourseOnOneDayRewritesAllItsDays) {
    saveDay("2026-11-22", diary::jsonFromObject({course(kDaily, "5<td>дни", "20.11.2026"),
                                                 course(kDaily, "1<td>дни", "22.11.2026")}));
    auto days = keysByDay(gid);
    ASSERT_EQ(days.size(), 5u);
    const std::string old = days.at("2026-11-20").at(0);
    const std::string other = days.at("2026-11-22").at(1);

    // The form gives back the edited course without its key, in its place.
    json day23 = diary::jsonToArray(rows.getDateValue(day("2026-11-23"), "pills", gid));
    day23[0] = course(kDaily, "2<td>дни", "20.11.2026", "2<td>шт.");
    saveDay("2026-11-23", diary::jsonFromObject(day23));

    days = keysByDay(gid);
    ASSERT_EQ(days.size(), 3u);
    const std::string edited = days.at("2026-11-20").at(0);
    EXPECT_NE(edited, old);
    EXPECT_EQ(days.at("2026-11-21"), std::vector<std::string>{edited});
    EXPECT_EQ(days.at("2026-11-22"), std::vector<std::string>{other});
    EXPECT_EQ(
        diary::jsonText(diary::jsonToArray(rows.getDateValue(day("2026-11-21"), "pills", gid))[0],
                        "pilldoza"),
        "2<td>шт.");
}

TEST_F(CoursesTest, DeletingACourseOnOneDayDeletesItEverywhere) {
    enter("2026-11-18", course(kDaily, "1<td>недели", "18.11.2026"));
    enter("2026-11-20", course(kDaily, "1<td>дни", "20.11.2026"));
    const std::string key = keysByDay(gid).at("2026-11-18").at(0);
    // The same course copied to another child goes too; that child's other
    // rows, even one that mentions the key, stay as they are.
    rows.insertValue("pills", rows.getDateValue(day("2026-11-19"), "pills", gid), day("2026-11-19"),
                     "sister", true, false);
    json mentions = course(kDaily, "1<td>дни", "19.11.2026");
    mentions["key"] = "K2";
    mentions["pilltime"] = key;
    rows.insertValue("pills", diary::jsonFromObject(json::array({mentions})), day("2026-11-21"),
                     "sister", true, false);
    rows.insertValue("note", key, day("2026-11-21"), "sister", true, false);
    const std::string untouched = queryText(
        "select group_concat(datid || value) from childdata where sdat='2026-11-21' and "
        "childguid='sister'");

    json day22 = diary::jsonToArray(rows.getDateValue(day("2026-11-22"), "pills", gid));
    day22.erase(0);
    saveDay("2026-11-22", diary::jsonFromObject(day22));

    const auto days = keysByDay(gid);
    ASSERT_EQ(days.size(), 1u);
    EXPECT_EQ(days.at("2026-11-20").size(), 1u);
    EXPECT_NE(days.at("2026-11-20").at(0), key);
    EXPECT_EQ(queryText("select count(*) from childdata where childguid='sister'"), "2");
    EXPECT_EQ(queryText("select group_concat(datid || value) from childdata where "
                        "sdat='2026-11-21' and childguid='sister'"),
              untouched);
}

TEST_F(CoursesTest, SavingADayUnchangedLeavesItsCoursesAlone) {
    enter("2026-11-22", course(kDaily, "1<td>недели", "20.11.2026"));
    const std::string value = rows.getDateValue(day("2026-11-22"), "pills", gid);
    const std::string others =
        "select group_concat(datid || sdat || value) from childdata where sdat<>'2026-11-22'";
    const std::string before = queryText(others);
    saveDay("2026-11-22", value);
    EXPECT_EQ(rows.getDateValue(day("2026-11-22"), "pills", gid), value);
    EXPECT_EQ(queryText(others), before);

    // A course from an old version was never spread: its first save spreads
    // it, and the day shows it once.
    const std::string converted =
        diary::jsonFromObject(json::array({course(kDaily, "2<td>дни", "30.11.2026")}));
    rows.insertValue("pills", converted, day("2026-11-30"), gid, true, false);
    saveDay("2026-11-30", converted);
    const auto days = keysByDay(gid);
    EXPECT_EQ(days.at("2026-11-30").size(), 1u);
    EXPECT_EQ(days.at("2026-12-01"), days.at("2026-11-30"));

    // An old plain text stays while the day keeps it, and goes when it is
    // deleted.
    rows.insertValue("pills", "Нурофен по 1/2", day("2026-12-05"), gid, true, false);
    saveDay("2026-12-05", "Нурофен по 1/2");
    EXPECT_EQ(rows.getDateValue(day("2026-12-05"), "pills", gid), "Нурофен по 1/2");
    saveDay("2026-12-05", "");
    EXPECT_EQ(rows.getDateValue(day("2026-12-05"), "pills", gid), "");
}

TEST_F(CoursesTest, AnEndlessCourseIsCutShort) {
    core::WriteTransaction transaction(db());
    add(course(kDaily, "2147483647<td>недели", "22.11.2026"), gid);
    EXPECT_EQ(queryText("select count(*) from childdata where type='pills'"), "1001");
    add(course(kDaily, "-2147483648<td>недели", "22.11.2026"), "negative");
    add(course(kDaily, "-2147483648<td>месяцы", "22.11.2026"), "negative");
    EXPECT_TRUE(keysByDay("negative").empty());
}

}  // namespace
}  // namespace tilika::medication

#include "development/passport.h"

#include <gtest/gtest.h>

#include "frame/list_choices.h"
#include "support/core_fixture.h"

namespace tilika::development {
namespace {

class PassportTest : public test::CoreFixture {
protected:
    Passport passport{context};

    core::Date day(const std::string& text) { return *dates.dateFromString(text); }

    void today(const std::string& moment) { clock.set(day(moment)); }

    // The age texts as the passport gives them for a child born on `birth`.
    std::string age(int mode, const std::string& birth) {
        diary::SetupRecord setup;
        setup.birthdate = day(birth);
        return passport.ageString(mode, setup);
    }

    void addRow(const std::string& gid, const std::string& type, const std::string& sdat,
                const std::string& value) {
        SQLite::Statement insert(
            db(), "insert into childdata (type, value, sdat, childguid) values (?, ?, ?, ?)");
        insert.bind(1, type);
        insert.bind(2, value);
        insert.bind(3, sdat);
        insert.bind(4, gid);
        insert.exec();
    }

    std::string listGuid(const std::string& where) {
        return queryText("select coguid from childconst where " + where + " order by coid limit 1");
    }
};

TEST_F(PassportTest, PeriodCountsWholeMonthsBackWithTheYearLeftBlank) {
    EXPECT_EQ(passport.getCurMonth(day("2026-11-22")), 1);
    EXPECT_EQ(passport.getCurMonth(day("2026-10-22")), 2);
    diary::SetupRecord setup;
    setup.birthdate = day("2026-09-21");
    EXPECT_EQ(passport.getCurPeriod(setup), 3);
    EXPECT_EQ(passport.getCurWeek(day("2026-11-09")), 1);
    EXPECT_EQ(passport.getCurWeek(day("2026-11-08")), 2);
    EXPECT_EQ(passport.getCurWeek(day("2026-12-05")), -1);

    EXPECT_EQ(passport.dateToPeriod(day("2026-11-01")), "меньше месяца");
    EXPECT_EQ(passport.dateToPeriod(day("2026-10-23")), "меньше месяца");
    EXPECT_EQ(passport.dateToPeriod(day("2026-10-22")), "1 месяц назад");
    EXPECT_EQ(passport.dateToPeriod(day("2026-06-22")), "5 месяца назад");
    EXPECT_EQ(passport.dateToPeriod(day("2025-12-22")), "11 месяца назад");
    EXPECT_EQ(passport.dateToPeriod(day("2025-11-22")), "");
    EXPECT_EQ(passport.dateToPeriod(day("2025-10-22")), "болше года");
    // A measure dated ahead of today was taken "just now".
    EXPECT_EQ(passport.dateToPeriod(day("2027-03-01")), "меньше месяца");
}

TEST_F(PassportTest, AgeInWeeksAndAsMonthOfLife) {
    EXPECT_EQ(age(agemode::weeks, "2026-11-23"), "Еще не родился");
    EXPECT_EQ(age(agemode::weeks, "2026-11-22"), "Только что родился");
    EXPECT_EQ(age(agemode::weeks, "2026-11-19"), "3 дня");
    EXPECT_EQ(age(agemode::weeks, "2026-11-15"), "1 неделя");
    EXPECT_EQ(age(agemode::weeks, "2026-11-12"), "1 неделя и 3 дня");
    EXPECT_EQ(age(agemode::weeks, "2026-11-08"), "2 недели");
    EXPECT_EQ(age(agemode::weeks, "2026-10-11"), "6 недель");

    EXPECT_EQ(age(agemode::monthOfLife, "2026-11-01"), "1");
    EXPECT_EQ(age(agemode::monthOfLife, "2026-12-30"), "1");
    EXPECT_EQ(age(agemode::monthOfLife, "2026-09-22"), "3");
}

TEST_F(PassportTest, AgeInMonthsBorrowsDaysByTheFixedTable) {
    EXPECT_EQ(age(agemode::monthsAndDays, "2026-11-10"), "");
    EXPECT_EQ(age(agemode::monthsAndDays, "2026-09-22"), "2 месяца");
    EXPECT_EQ(age(agemode::monthsAndDays, "2026-09-01"), "2 месяца и 21 день");
    // October lends its 31 days.
    EXPECT_EQ(age(agemode::monthsAndDays, "2026-08-25"), "2 месяца и 28 дней");
    EXPECT_EQ(age(agemode::monthsAndDays, "2025-06-20"), "17 месяцев и 2 дня");

    // February lends 28 days, in a leap year too, where the calendar has 29.
    today("2027-03-05 10:00");
    EXPECT_EQ(age(agemode::monthsAndDays, "2026-12-20"), "2 месяца и 13 дней");
    today("2028-03-05 10:00");
    EXPECT_EQ(age(agemode::monthsAndDays, "2027-12-20"), "2 месяца и 13 дней");
}

TEST_F(PassportTest, AgesAndPeriodsHoldAcrossAChangeOfClocks) {
    clock.setTimeZoneId("Europe/Berlin");
    // Clocks went forward in the night to 29 March 2026.
    today("2026-03-29 00:30");
    EXPECT_EQ(age(agemode::weeks, "2026-03-22"), "1 неделя");
    EXPECT_EQ(age(agemode::weeks, "2026-03-28"), "1 день");
    EXPECT_EQ(passport.dateToPeriod(day("2026-02-28")), "1 месяц назад");
    EXPECT_EQ(passport.dateToPeriod(day("2026-03-01")), "меньше месяца");
    today("2026-03-29 23:30");
    EXPECT_EQ(age(agemode::monthsAndDays, "2026-01-29"), "2 месяца");
    EXPECT_EQ(age(agemode::monthOfLife, "2026-01-29"), "3");
}

TEST_F(PassportTest, LatestMeasuresComeFromTheNewestRowsOfTheChild) {
    const std::string gid = newChild("2026-01-10");
    const std::string other = newChild("2026-01-10");

    EXPECT_EQ(passport.loadPassportData(gid).ves, "");

    addRow(gid, "ves", "2026-10-22", "3.4");
    addRow(gid, "ves", "2026-11-20", "4.25");
    addRow(gid, "rost", "2025-10-01", "abc");
    addRow(other, "ves", "2026-11-21", "9");

    addRow(gid, "biosize", "2026-11-20", R"({"bio1":"40.5","bio2":""})");
    addRow(gid, "biosize", "2026-10-22", "not json");
    addRow(gid, "biosize", "2026-09-22", R"({"bio2":"45","bio3":"abc"})");
    addRow(gid, "biosize", "2026-08-22", R"({"bio3":"44"})");
    addRow(gid, "biosize", "2026-07-22", R"({"bio1":"30"})");
    // The sixth newest row is too old to count.
    addRow(gid, "biosize", "2026-06-22", R"({"bio4":"50","bio5":"9.4"})");
    addRow(other, "biosize", "2026-11-21", R"({"bio4":"99"})");

    const PassportData data = passport.loadPassportData(gid);
    EXPECT_EQ(data.ves, "4.250");
    EXPECT_EQ(data.vesper, "меньше месяца");
    EXPECT_EQ(data.rost, "0.000");
    EXPECT_EQ(data.rostper, "болше года");
    EXPECT_EQ(data.bio1, "40.5");
    EXPECT_EQ(data.bio1per, "меньше месяца");
    EXPECT_EQ(data.bio2, "45");
    EXPECT_EQ(data.bio2per, "2 месяца назад");
    EXPECT_EQ(data.bio3, "44");
    EXPECT_EQ(data.bio3per, "3 месяца назад");
    EXPECT_EQ(data.bio4, "");
    EXPECT_EQ(data.bio4per, "");
    EXPECT_EQ(data.bio5, "");
}

TEST_F(PassportTest, IllnessesOfTheCardInListOrderThenByDay) {
    const std::string gid = newChild("2026-01-10");
    const std::string other = newChild("2026-01-10");
    const std::string chickenpox = listGuid("coname like 'Ветряная оспа%<tr>1'");
    const std::string measles = listGuid("coname like 'Корь<tr>1'");
    const std::string rubella = listGuid("coname like 'Краснуха<tr>1'");
    const std::string ordinary = listGuid("cotype=3 and coname not like '%<tr>1'");
    ASSERT_FALSE(chickenpox.empty());
    ASSERT_FALSE(ordinary.empty());

    EXPECT_TRUE(passport.loadBolezn(gid).empty());

    addRow(gid, "bolezn", "2026-05-10", measles);
    addRow(gid, "bolezn", "2026-03-12", chickenpox);
    addRow(gid, "bolezn", "2026-01-10", chickenpox);
    addRow(gid, "bolezn", "2026-01-30", rubella);
    addRow(gid, "bolezn", "2026-06-01", ordinary);
    addRow(gid, "bolezn", "2026-06-02", "no-such-guid");
    addRow(other, "bolezn", "2026-04-01", measles);

    const std::vector<IllnessOnCard> illnesses = passport.loadBolezn(gid);
    ASSERT_EQ(illnesses.size(), 4U);
    EXPECT_EQ(illnesses[0].name, "Ветряная оспа (ветрянка)");
    EXPECT_EQ(illnesses[0].date, "Только что родился");
    EXPECT_EQ(illnesses[1].name, "Ветряная оспа (ветрянка)");
    EXPECT_EQ(illnesses[1].date, "2 месяца");
    EXPECT_EQ(illnesses[2].name, "Корь");
    EXPECT_EQ(illnesses[2].date, "4 месяца");
    EXPECT_EQ(illnesses[3].name, "Краснуха");
    EXPECT_EQ(illnesses[3].date, "меньше месяца");
}

TEST_F(PassportTest, AllergensAreSavedForOneChildOnly) {
    const std::string gid = newChild("2026-01-10");
    const std::string other = newChild("2026-01-10");
    const std::string first = listGuid("cotype=5");
    const std::string second = listGuid("cotype=5 and coguid<>'" + first + "'");
    const std::string firstName =
        queryText("select coname from childconst where coguid='" + first + "'");
    ASSERT_FALSE(second.empty());
    ASSERT_TRUE(passport.saveAllergen(other, second));
    state.pageDirty.fill(false);

    EXPECT_TRUE(passport.prepareAllergHilite(gid).empty());
    ASSERT_TRUE(passport.saveAllergen(gid, first + "<tr>gone-from-the-list"));

    EXPECT_TRUE(state.pageDirty[1]);
    EXPECT_TRUE(state.pageDirty[7]);
    EXPECT_FALSE(state.pageDirty[3]);
    const std::vector<std::string> captions = passport.prepareAllergHilite(gid);
    ASSERT_EQ(captions.size(), 1U);
    EXPECT_EQ(captions[0], frame::captionText(firstName));
    EXPECT_EQ(queryText("select allergen from child where childguid='" + other + "'"), second);
}

}  // namespace
}  // namespace tilika::development

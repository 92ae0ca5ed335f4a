#include "development/teeth.h"

#include <gtest/gtest.h>

#include "diary/day_rows.h"
#include "support/core_fixture.h"

namespace tilika::development {
namespace {

// Opacities listed by tooth number, 1 to 20, for the teeth that are neither
// fully shown nor hidden; every other tooth is `rest`.
ToothOpacity teethAt(double rest, std::initializer_list<std::pair<int, double>> some) {
    ToothOpacity opacity;
    opacity.fill(rest);
    for (const auto& [tooth, value] : some) {
        opacity[static_cast<std::size_t>(tooth - 1)] = value;
    }
    return opacity;
}

TEST(ToothAlpha, FadesInOrOutOverItsRange) {
    EXPECT_EQ(calcToothAlpha(7, 8, 12, true), 0);
    EXPECT_EQ(calcToothAlpha(8, 8, 12, true), 0);
    EXPECT_EQ(calcToothAlpha(9, 8, 12, true), 0.25);
    EXPECT_EQ(calcToothAlpha(12, 8, 12, true), 1);
    EXPECT_EQ(calcToothAlpha(71, 72, 84, false), 1);
    EXPECT_EQ(calcToothAlpha(75, 72, 84, false), 0.75);
    EXPECT_EQ(calcToothAlpha(84, 72, 84, false), 0);
    // An empty range divides by nothing.
    EXPECT_EQ(calcToothAlpha(5, 5, 5, true), 1);
    EXPECT_EQ(calcToothAlpha(5, 5, 5, false), 0);
}

TEST(ToothStatistics, TeethComeAndGoByTheirDentalNumbers) {
    // Nothing at birth, and the ruler's room below birth reads as birth.
    EXPECT_EQ(statOpacity(0), teethAt(0, {}));
    EXPECT_EQ(toothMonth(-2.5), 0);
    EXPECT_EQ(toothMonth(10.9), 10);
    // Ten months: the upper central incisors 51 and 61 half way, the lower
    // ones 81 and 71 through, the lower lateral ones 82 and 72 just starting.
    EXPECT_EQ(
        statOpacity(10),
        teethAt(0, {{5, 0.5}, {6, 0.5}, {15, 1}, {16, 1}, {4, 0.25}, {7, 0.25}, {14, 0}, {17, 0}}));
    EXPECT_EQ(statOpacity(12)[4], 1);
    EXPECT_EQ(statOpacity(12)[5], 1);
    // The last month of coming teeth and the first of falling ones both show
    // every tooth.
    EXPECT_EQ(statOpacity(71), teethAt(1, {}));
    EXPECT_EQ(statOpacity(72), teethAt(1, {}));
    EXPECT_EQ(statOpacity(78), teethAt(1, {{5, 0.5}, {6, 0.5}, {15, 0.5}, {16, 0.5}}));
    EXPECT_EQ(statOpacity(144), teethAt(0, {}));
}

TEST(ToothStatistics, ChildTeethComeFromTheFirstPartOfTheAnswer) {
    EXPECT_EQ(boyOpacity("1<tr>20<tr>7"), teethAt(0, {{1, 1}, {7, 1}, {20, 1}}));
    EXPECT_EQ(boyOpacity("3<tr>4<tm>5<tr>6"), teethAt(0, {{3, 1}, {4, 1}}));
    // Junk never reaches past the chart.
    EXPECT_EQ(boyOpacity("<tr>abc<tr>0<tr>21<tr>121<tr>999<tr>-1"), teethAt(0, {}));
    EXPECT_EQ(boyOpacity(""), teethAt(0, {}));
}

TEST(ToothStatistics, AgeCaptionAgreesWithTheCount) {
    EXPECT_EQ(toothAgeCaption(0), "Только что родился");
    EXPECT_EQ(toothAgeCaption(1), "1 месяц");
    EXPECT_EQ(toothAgeCaption(3), "3 месяца");
    EXPECT_EQ(toothAgeCaption(11), "11 месяцев");
    EXPECT_EQ(toothAgeCaption(12), "1 год");
    EXPECT_EQ(toothAgeCaption(26), "2 года и 2 месяца");
    EXPECT_EQ(toothAgeCaption(61), "5 лет и 1 месяц");
    EXPECT_EQ(toothAgeCaption(180), "15 лет");
}

class TeethTest : public test::CoreFixture {
protected:
    Teeth teeth{context};

    core::Date day(const std::string& text) { return *dates.dateFromString(text); }

    void put(const std::string& gid, const std::string& sdat, const std::string& value) {
        SQLite::Statement insert(
            db(), "insert into childdata (type, value, sdat, childguid) values ('tooth', ?, ?, ?)");
        insert.bind(1, value);
        insert.bind(2, sdat);
        insert.bind(3, gid);
        insert.exec();
    }
};

TEST_F(TeethTest, ReplayLeavesTheDayOutAndLaterChangesDecide) {
    const std::string gid = newChild("2025-01-10");
    const std::string other = newChild("2025-01-10");
    put(gid, "2025-09-01", "5<tr>6");
    put(gid, "2025-10-01", "15<tr>abc<tr><tr>0<tr>121<tr>999");
    put(gid, "2025-11-01", "7<tr>107");
    put(gid, "2025-12-01 10:00:00", "8");
    put(gid, "2026-01-01", "105<tr>5<tr>106");
    put(gid, "2026-02-01", "115");
    put(other, "2025-08-01", "1");

    const std::vector<std::pair<const char*, const char*>> expected{
        {"2025-09-01", ""},
        {"2025-09-02", "5<tr>6"},
        {"2025-10-02", "5<tr>6<tr>15"},
        // Within one day the value's order decides: in and out is out.
        {"2025-11-02", "5<tr>6<tr>15"},
        {"2025-12-01", "5<tr>6<tr>15"},
        {"2025-12-02", "5<tr>6<tr>8<tr>15"},
        {"2026-01-02", "5<tr>8<tr>15"},
        {"2026-02-02", "5<tr>8"},
    };
    diary::DayRows rows(db(), dates);
    for (const auto& [when, teethThen] : expected) {
        SCOPED_TRACE(when);
        EXPECT_EQ(teeth.toothForDay(day(when), gid), teethThen);
        EXPECT_EQ(rows.toothForDay(day(when), gid), teethThen);
    }

    // The replay kept for the ruler answers every day as the diary does.
    teeth.activateView(gid);
    const core::Date birth = day("2025-01-10");
    for (int month = 0; month <= 20; ++month) {
        const core::Date then = dates.addMonths(birth, month);
        SCOPED_TRACE(month);
        EXPECT_EQ(teeth.showBoy(month), boyOpacity(teeth.toothForDay(then, gid)));
    }
}

TEST_F(TeethTest, ModeSwitchesCaptionsAndWhatTheRulerShows) {
    const std::string gid = newChild("2025-01-10");
    put(gid, "2025-09-01", "15<tr>16");
    teeth.activateView(gid);
    // Born 22 months ago: the ruler opens on the running month of life.
    EXPECT_EQ(teeth.startMonth(), 23);

    EXPECT_EQ(teeth.gState(), toothstate::statistics);
    EXPECT_EQ(teeth.caption(), "Молочные зубы (статистика)");
    EXPECT_EQ(teeth.statePicture(), "tooth-boy.png");
    EXPECT_EQ(teeth.update(10), statOpacity(10));

    teeth.stateChange();
    EXPECT_EQ(teeth.gState(), toothstate::child);
    EXPECT_EQ(teeth.caption(), "Молочные зубы ребенка");
    EXPECT_EQ(teeth.statePicture(), "tooth-stat.png");
    EXPECT_EQ(teeth.update(7), teethAt(0, {}));
    EXPECT_EQ(teeth.update(8), teethAt(0, {{15, 1}, {16, 1}}));

    // A tooth written by the day editor shows once the page reloads.
    put(gid, "2025-10-01", "5");
    teeth.reload();
    EXPECT_EQ(teeth.update(9), teethAt(0, {{5, 1}, {15, 1}, {16, 1}}));

    teeth.stateChange();
    EXPECT_EQ(teeth.gState(), toothstate::statistics);

    // A child without a birth date has no teeth to show and no age to open at.
    teeth.activateView("no-such-child");
    teeth.stateChange();
    EXPECT_EQ(teeth.startMonth(), 0);
    EXPECT_EQ(teeth.update(12), teethAt(0, {}));
}

}  // namespace
}  // namespace tilika::development

#include "development/growth.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/dates.h"
#include "development/growth_centiles.h"
#include "development/growth_norms.h"
#include "diary/day_rows.h"
#include "support/core_fixture.h"

namespace tilika::development {
namespace {

// Height: length to 24 months, then height 0.7 cm lower; weight to 120
// months. Flat, so that a value's centile is plain to work out.
constexpr const char* kHeightTable =
    "# a test table\n0 1 70 0.04\n24 1 70 0.04\n24 1 69.3 0.04\n228 1 69.3 0.04\n";
constexpr const char* kWeightTable = "# a test table\n0 0 10 0.1\n120 0 10 0.1\n";

class GrowthTest : public test::CoreFixture {
protected:
    std::filesystem::path tables = dir.path() / "growth";

    GrowthTest() {
        std::filesystem::create_directories(tables);
        writeTable("lhfa_boys_0_60.txt", kHeightTable);
        writeTable("wfa_boys_0_60.txt", kWeightTable);
    }

    void writeTable(const std::string& name, const std::string& text) {
        std::ofstream(tables / name) << text;
    }

    core::Date day(const std::string& text) { return *dates.dateFromString(text); }

    void addRow(const std::string& gid, const std::string& type, const std::string& sdat,
                const std::string& value) {
        diary::DayRows(db(), dates).insertValue(type, value, day(sdat), gid, true, false);
    }

    // A boy born on `birth`, charted at `year` (by default his running year).
    std::unique_ptr<Growth> growthOf(const std::string& gid, std::optional<int> year = {}) {
        auto growth = std::make_unique<Growth>(context, tables);
        growth->activateView(gid);
        if (year) {
            growth->setYear(*year);
        }
        return growth;
    }

    static std::vector<double> xs(const std::vector<GraphPoint>& points) {
        std::vector<double> result;
        for (const auto& point : points) {
            result.push_back(point.x);
        }
        return result;
    }
};

TEST_F(GrowthTest, YearsFormARingOnceTheChildIsAYearOld) {
    // Under a year the buttons do nothing.
    EXPECT_EQ(runningYear(5), 1);
    EXPECT_EQ(nextYear(1, 5), 1);
    EXPECT_EQ(prevYear(1, 5), 1);

    // Two and a half years: 3 → 0 → 1 → 2 → 3, and back the other way.
    std::vector<int> forward{runningYear(30)};
    std::vector<int> backward{runningYear(30)};
    for (int i = 0; i < 4; ++i) {
        forward.push_back(nextYear(forward.back(), 30));
        backward.push_back(prevYear(backward.back(), 30));
    }
    EXPECT_EQ(forward, (std::vector<int>{3, 0, 1, 2, 3}));
    EXPECT_EQ(backward, (std::vector<int>{3, 2, 1, 0, 3}));

    // A month short of twelve: the twelfth year is the last.
    EXPECT_EQ(runningYear(143), 12);
    EXPECT_EQ(nextYear(12, 143), 0);
    EXPECT_EQ(prevYear(0, 143), 12);

    EXPECT_EQ(yearCaption(0), "Все данные");
    EXPECT_EQ(yearCaption(3), "3-й год");

    const auto growth = growthOf(newChild("2024-05-22"));
    EXPECT_EQ(growth->months(), 30);
    EXPECT_EQ(growth->gyear(), 3);
    EXPECT_EQ(growth->changeText(false).caption, "3-й год");
}

TEST_F(GrowthTest, AChildNotYetBornHasAtMostTheBirthPoint) {
    // Due in a year: the whole-life view has one norm point at birth and no
    // year to tick.
    auto growth = growthOf(newChild("2027-11-22"));
    EXPECT_EQ(growth->months(), -12);
    EXPECT_EQ(growth->gyear(), 0);
    const GrowthView soon = growth->changeText(false);
    for (const auto* points : {&growth->data().upData1, &growth->data().downData1,
                               &growth->data().upData2, &growth->data().downData2}) {
        EXPECT_EQ(xs(*points), std::vector<double>{0});
    }
    EXPECT_TRUE(soon.rost.color.xAxisValue.empty());
    EXPECT_EQ(soon.today, 0);

    // Due in two years: nothing at all, and no year of life to show.
    growth = growthOf(newChild("2028-11-22"));
    EXPECT_EQ(growth->gyear(), 0);
    EXPECT_EQ(growth->changeText(false).caption, "Все данные");
    EXPECT_TRUE(growth->data().upData1.empty());
    EXPECT_TRUE(growth->data().downData2.empty());
}

TEST_F(GrowthTest, TheNormStopsAtTenYearsAndLaterYearsRangeOverOwnValues) {
    const std::string gid = newChild("2015-10-01");
    addRow(gid, "rost", "2026-11-01", "146.5");
    addRow(gid, "rost", "2026-06-01", "144.0");
    addRow(gid, "ves", "2026-06-01", "38.2");
    auto growth = growthOf(gid, 0);
    ASSERT_EQ(growth->months(), 133);

    const GrowthView all = growth->changeText(false);
    const auto& up = growth->data().upData1;
    ASSERT_EQ(up.size(), 11u);
    EXPECT_EQ(up.back().x, dates.getDays(day("2015-10-01"), day("2025-10-01")));
    EXPECT_EQ(up.back().label, "156.9");
    ASSERT_EQ(all.rost.color.xAxisValue.size(), 12u);
    EXPECT_EQ(all.rost.color.xAxisValue.back().label, "12");
    EXPECT_EQ(all.rost.color.xAxisMax, dates.getDays(day("2015-10-01"), day("2027-10-01")));
    EXPECT_DOUBLE_EQ(all.rost.color.yAxisMax, 156.9 * 1.1);
    EXPECT_DOUBLE_EQ(all.rost.color.yAxisMin, 44.2);

    // The eleventh year has no band: the range is the own values'.
    growth->setYear(11);
    const GrowthView eleventh = growth->changeText(false);
    EXPECT_TRUE(growth->data().upData1.empty());
    EXPECT_TRUE(growth->data().downData2.empty());
    EXPECT_EQ(eleventh.rost.color.yAxisMin, 0);
    EXPECT_EQ(eleventh.rost.color.yAxisMax, 144.0);
    EXPECT_EQ(eleventh.ves.color.yAxisMax, 38.2);

    // Year 10 joins the table's ninth and tenth years.
    growth->setYear(10);
    growth->changeText(false);
    ASSERT_EQ(growth->data().downData2.size(), 2u);
    EXPECT_EQ(growth->data().downData2[0].y, yearNorms(0).vesDown[9]);
    EXPECT_EQ(growth->data().downData2[1].y, yearNorms(0).vesDown[10]);
    EXPECT_EQ(growth->data().downData2[1].x, 365);
}

TEST_F(GrowthTest, OwnMeasuresCountFromTheStartOfTheShownYear) {
    const std::string gid = newChild("2023-09-10", "3.4", "51");
    addRow(gid, "rost", "2023-12-10", "60");
    addRow(gid, "rost", "2025-09-20", "95.5");
    addRow(gid, "rost", "2025-10-10", "not a number");
    addRow(gid, "ves", "2025-10-10", "");
    auto growth = growthOf(gid);
    ASSERT_EQ(growth->gyear(), 4);

    // The birth measures stand at x 0 in the first year and the whole life.
    for (int year : {0, 1}) {
        growth->setYear(year);
        growth->changeText(false);
        ASSERT_FALSE(growth->data().ownData1.empty());
        EXPECT_EQ(growth->data().ownData1.front().x, 0);
        EXPECT_EQ(growth->data().ownData1.front().label, "51.0");
        EXPECT_EQ(growth->data().ownData2.front().y, 3.4);
    }
    EXPECT_EQ(xs(growth->data().ownData1), (std::vector<double>{0, 91}));

    // The third year starts on the second birthday; junk is left out.
    growth->setYear(3);
    growth->changeText(false);
    EXPECT_EQ(xs(growth->data().ownData1), std::vector<double>{10});
    EXPECT_TRUE(growth->data().ownData2.empty());
    ASSERT_EQ(growth->data().upData1.size(), 2u);
    EXPECT_EQ(growth->data().upData1[1].x, 365);
}

TEST_F(GrowthTest, TodayStandsAtTheShareOfTheShownSpan) {
    EXPECT_NEAR(todayFraction(1, 5, 182), 0.4986, 1e-4);
    EXPECT_EQ(todayFraction(1, 40, 1200), 1);
    EXPECT_EQ(todayFraction(2, 40, -5), 0);
    // The whole life of a child of two and a half spans three years.
    EXPECT_NEAR(todayFraction(0, 30, 913), 913 / 1095.0, 1e-9);
    // Before birth there is no span to divide.
    EXPECT_EQ(todayFraction(0, -12, -365), 0);

    auto growth = growthOf(newChild("2026-05-24"));
    EXPECT_NEAR(growth->changeText(false).today, 182 / 365.0, 1e-9);
}

TEST_F(GrowthTest, AProfileWithoutBirthDateChartsNothing) {
    const std::string gid = newChild("2025-01-01", "3.3", "50");
    addRow(gid, "rost", "2026-11-01", "70");
    for (const char* stored : {"null", "''", "'someday'"}) {
        db().exec(std::string("update child set sbirthdate=") + stored + " where childguid='" +
                  gid + "'");
        auto growth = growthOf(gid);
        const GrowthView view = growth->changeText(true);
        EXPECT_FALSE(view.hasData) << stored;
        EXPECT_EQ(view.today, 0);
        EXPECT_TRUE(view.rost.color.graph[2].empty());
        EXPECT_TRUE(view.rost.color.extraCurves.empty());
        EXPECT_TRUE(view.rost.color.xAxisValue.empty());
        EXPECT_EQ(view.rost.color.caption, "Рост (см.)");
        growth->nextYear();
        EXPECT_EQ(growth->gyear(), 1);
    }
}

TEST_F(GrowthTest, CentileValuesAndTexts) {
    const Lms box{0.5, 10, 0.1};
    EXPECT_DOUBLE_EQ(centileValue(box, 0), 10);
    EXPECT_NEAR(centileValue(box, 1.881), 10 * std::pow(1 + 0.05 * 1.881, 2), 1e-12);
    EXPECT_NEAR(centileValue({0, 10, 0.1}, -1), 10 * std::exp(-0.1), 1e-12);
    for (double z : {-2.5, -1.036, 0.0, 1.881}) {
        EXPECT_NEAR(*zScore(box, centileValue(box, z)), z, 1e-9);
        EXPECT_NEAR(*zScore({0, 10, 0.1}, centileValue({0, 10, 0.1}, z)), z, 1e-9);
    }
    EXPECT_FALSE(zScore(box, 0));

    EXPECT_EQ(centileText(0), "50-й центиль");
    EXPECT_EQ(centileText(0.1257), "55-й центиль");
    EXPECT_EQ(centileText(-2.33), "1-й центиль");
    EXPECT_EQ(centileText(-2.6), "ниже 1-го центиля");
    EXPECT_EQ(centileText(2.6), "выше 99-го центиля");
    EXPECT_EQ(lastMeasureText(76, 1, "см", 0.1257), "Последний замер: 76.0 см — 55-й центиль");
}

TEST_F(GrowthTest, TablesInterpolateAndStepWhereLengthBecomesHeight) {
    std::string error;
    std::istringstream text(kHeightTable);
    const auto table = LmsTable::parse(text, error);
    ASSERT_TRUE(table) << error;
    EXPECT_NEAR(table->at(12)->m, 70, 1e-12);
    EXPECT_NEAR(table->at(23.5)->m, 70, 1e-12);
    EXPECT_NEAR(table->at(24)->m, 69.3, 1e-12);
    EXPECT_FALSE(table->at(228.5));

    std::istringstream rising("0 1 10 0.1\n10 -1 20 0.2\n");
    const auto between = LmsTable::parse(rising, error);
    ASSERT_TRUE(between);
    EXPECT_NEAR(between->at(2.5)->m, 12.5, 1e-12);
    EXPECT_NEAR(between->at(2.5)->l, 0.5, 1e-12);
    EXPECT_NEAR(between->at(2.5)->s, 0.125, 1e-12);
}

TEST_F(GrowthTest, MalformedTablesAreRefusedWithAReason) {
    for (const char* bad : {
             "0 1 70 0.04\n1 1 abc 0.04\n",              // not a number
             "0 1 70 0.04\n1 1 70\n",                    // a value short
             "0 1 70 0.04\n5 1 70 0.04\n4 1 70 0.04\n",  // months going back
             "0 1 70 0.04\n5 1 70 0.04\n5 1 70 0.04\n",  // a month twice, not 24
             "24 1 70 0.04\n24 1 70 0.04\n24 1 70 0.04\n",
             "0 1 0 0.04\n",    // M not above zero
             "0 1 70 -0.01\n",  // S not above zero
             "0 1 70 0.04x\n",
             "# only a comment\n",
         }) {
        std::string error;
        std::istringstream text(bad);
        EXPECT_FALSE(LmsTable::parse(text, error)) << bad;
        EXPECT_FALSE(error.empty()) << bad;
    }
    std::string error;
    EXPECT_FALSE(LmsTable::load(tables / "none.txt", error));
    EXPECT_EQ(error, "файл не найден");
}

TEST_F(GrowthTest, CentileLinesOverTheChartsWithTheLastMeasure) {
    const std::string gid = newChild("2015-10-01");
    addRow(gid, "rost", "2026-11-01", "69.66");
    addRow(gid, "ves", "2026-11-01", "30");
    auto growth = growthOf(gid, 0);

    GrowthView view = growth->changeText(true);
    const auto& rost = view.rost.color.extraCurves;
    ASSERT_EQ(rost.size(), 5u);
    EXPECT_EQ(rost.front().label, "3");
    EXPECT_EQ(rost.back().label, "97");
    ASSERT_EQ(view.rost.color.legenda.size(), 1u);
    EXPECT_EQ(view.rost.color.legenda[0].caption, "Центили ВОЗ");
    EXPECT_EQ(view.rost.gray.extraCurves.size(), 5u);
    // The median steps down by the table's 0.7 cm at two years.
    const auto& median = rost[2].points;
    EXPECT_EQ(median.front().y, 70);
    EXPECT_NEAR(median.back().y, 69.3, 1e-9);
    EXPECT_EQ(view.rost.lastMeasure, "Последний замер: 69.7 см — 55-й центиль");

    // The weight table ends at ten years, and so do its lines.
    for (const auto& curve : view.ves.color.extraCurves) {
        ASSERT_FALSE(curve.points.empty());
        EXPECT_NEAR(curve.points.back().x, 120 * kDaysPerMonth, 1e-6);
    }
    EXPECT_EQ(view.ves.lastMeasure, "");

    // Off, nothing is laid over the band.
    view = growth->changeText(false);
    EXPECT_TRUE(view.rost.color.extraCurves.empty());
    EXPECT_TRUE(view.rost.color.legenda.empty());
    EXPECT_EQ(view.rost.lastMeasure, "");
}

TEST_F(GrowthTest, ABrokenTableLeavesOnlyItsOwnChartWithoutLines) {
    writeTable("wfa_boys_0_60.txt", "0 0 10 0.1\n5 0 0 0.1\n");
    const std::string gid = newChild("2025-11-22");
    auto growth = growthOf(gid, 1);
    const GrowthView view = growth->changeText(true);
    EXPECT_EQ(view.rost.color.extraCurves.size(), 5u);
    EXPECT_TRUE(view.ves.color.extraCurves.empty());
    EXPECT_EQ(view.ves.color.graph[1].size(), 13u);
    // A girl's tables are not there at all.
    diary::Profiles profiles(context);
    diary::SetupRecord record = profiles.loadSetupData(gid);
    record.sex = 1;
    ASSERT_TRUE(profiles.saveSetupData(diary::saveflag::cloud, record, gid));
    EXPECT_TRUE(growth->changeText(true).rost.color.extraCurves.empty());
    EXPECT_EQ(growth->data().upData1.front().y, monthNorms(1).rostUp[0]);
}

TEST_F(GrowthTest, TheSwitchIsKept) {
    Growth growth(context, tables);
    EXPECT_FALSE(growth.centilesOn());
    EXPECT_TRUE(growth.setCentilesOn(true));
    EXPECT_TRUE(Growth(context, tables).centilesOn());
}

// With the shipped tables, ±3 z over the first year gives the norm band
// the charts draw, for both sexes and both measures; the school-age part
// carries each table on.
TEST_F(GrowthTest, ShippedTablesAgreeWithTheNormBand) {
    const std::filesystem::path shipped =
        std::filesystem::path(TILIKA_TEST_RESOURCE_DIR) / "growth";
    GrowthCentiles centiles(shipped);
    for (int sex : {0, 1}) {
        const MonthNorms& norms = monthNorms(sex);
        const LmsTable* height = centiles.table(GrowthMeasure::height, sex);
        const LmsTable* weight = centiles.table(GrowthMeasure::weight, sex);
        ASSERT_TRUE(height != nullptr && weight != nullptr);
        for (std::size_t month = 0; month <= 12; ++month) {
            const Lms h = *height->at(static_cast<double>(month));
            const Lms w = *weight->at(static_cast<double>(month));
            EXPECT_NEAR(centileValue(h, -3), norms.rostDown[month], 0.1) << sex << " " << month;
            EXPECT_NEAR(centileValue(h, 3), norms.rostUp[month], 0.1) << sex << " " << month;
            EXPECT_NEAR(centileValue(w, -3), norms.vesDown[month], 0.1) << sex << " " << month;
            EXPECT_NEAR(centileValue(w, 3), norms.vesUp[month], 0.1) << sex << " " << month;
        }
        EXPECT_EQ(weight->lastMonth(), 120);
        EXPECT_EQ(height->lastMonth(), 228);
    }
    EXPECT_NEAR(centiles.table(GrowthMeasure::height, 0)->at(0)->m, 49.8842, 0.01);
    EXPECT_NEAR(centiles.table(GrowthMeasure::weight, 1)->at(0)->m, 3.2322, 0.01);
}

}  // namespace
}  // namespace tilika::development

#include "development/doctor_plan.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "core/ids.h"
#include "development/vaccination_card.h"
#include "diary/day_cloud.h"
#include "frame/rich_text_source.h"
#include "platform/recording_canvas.h"
#include "support/core_fixture.h"

namespace tilika::development {
namespace {

std::string mark(int number) {
    return core::newID2(core::idkind::listRow, number);
}

// The diseases whose row shows the shot of this number ticked.
std::set<std::string> litRows(const VaccinationCard& card) {
    std::set<std::string> rows;
    for (const CardCell& cell : card.mainData()) {
        if (cell.check) {
            for (const CardCell& disease : card.mainData()) {
                if (disease.rect.x == 0 && disease.rect.y == cell.rect.y) {
                    rows.insert(disease.caption);
                }
            }
        }
    }
    return rows;
}

TEST(VaccinationCardTest, OneTickLightsEveryDiseaseOfTheCombinedVaccine) {
    VaccinationCard card;
    card.prepare({mark(10)});
    EXPECT_EQ(litRows(card), (std::set<std::string>{"Дифтерия", "Коклюш", "Столбняк"}));
    for (const CardCell* cell : card.cellsOf(10)) {
        EXPECT_EQ(cell->caption, " ✅ В1 ");
    }
    for (const CardCell* cell : card.cellsOf(12)) {
        EXPECT_FALSE(cell->check);
        EXPECT_EQ(cell->caption, " В2 ");
    }

    card.prepare({mark(19), "not-a-mark"});
    EXPECT_EQ(litRows(card), (std::set<std::string>{"Корь", "Краснуха", "Эпидемический паротит"}));

    // Building again forgets the ticks that are gone.
    card.prepare({});
    EXPECT_TRUE(litRows(card).empty());
}

TEST(VaccinationCardTest, ShotsFollowTheCurrentCalendar) {
    VaccinationCard card;
    card.prepare({});
    // Hib for every child, and the third polio booster at six years, which
    // is the column of measles' booster.
    for (const CardCell* cell : card.cellsOf(102)) {
        EXPECT_EQ(cell->caption, " В1 ");
    }
    ASSERT_EQ(card.cellsOf(115).size(), 1U);
    ASSERT_EQ(card.cellsOf(28).size(), 3U);
    EXPECT_EQ(card.cellsOf(115)[0]->rect.x, card.cellsOf(28)[0]->rect.x);

    // Each kind of shot has the colour of its sample in the legend, and no
    // two kinds share one.
    std::map<std::string, platform::Color> legend;
    for (const CardCell& cell : card.mainData()) {
        if (cell.caption == "Вx" || cell.caption == "Рx" || cell.caption == "Вx(гр)" ||
            cell.caption == "Рx(гр)") {
            legend[cell.caption] = cell.color;
        }
    }
    ASSERT_EQ(legend.size(), 4U);
    std::set<std::tuple<double, double, double>> distinct;
    for (const auto& [sample, colour] : legend) {
        distinct.insert({colour.r, colour.g, colour.b});
    }
    EXPECT_EQ(distinct.size(), 4U);
    const std::map<ShotKind, std::string> samples{{ShotKind::Vaccination, "Вx"},
                                                  {ShotKind::Revaccination, "Рx"},
                                                  {ShotKind::RiskVaccination, "Вx(гр)"},
                                                  {ShotKind::RiskRevaccination, "Рx(гр)"}};
    for (const CardShot& shot : cardShots()) {
        for (const CardCell* cell : card.cellsOf(shot.number)) {
            EXPECT_EQ(cell->color, legend[samples.at(shotKind(shot.caption))]) << shot.caption;
        }
    }

    // Every box is drawn inside the card, the legend included.
    platform::RecordingCanvas canvas;
    card.draw(canvas);
    for (const CardCell& cell : card.mainData()) {
        EXPECT_LE(cell.rect.right(), card.size().width + 0.001) << cell.caption;
        EXPECT_LE(cell.rect.bottom(), card.size().height + 0.001) << cell.caption;
    }
}

class NoteCloud final : public diary::DayCloud {
public:
    void dataToCloud(int kind, core::Date, std::string_view) override { kinds.push_back(kind); }
    std::vector<int> kinds;
};

class DoctorPlanTest : public test::CoreFixture {
protected:
    NoCheckCloud checkCloud;
    NoteCloud noteCloud;
    DoctorPlan plan{context, checkCloud, noteCloud};
    const std::string gid = newChild("2026-03-01");

    std::string priv(const std::string& day) {
        return queryText("select value from childdata where type='priv' and childguid='" + gid +
                         "' and date(sdat)='" + day + "'");
    }
};

TEST_F(DoctorPlanTest, TickOffersTheDiaryOnlyWithAText) {
    const CheckOutcome ticked = plan.checkClick(mark(10), true, "АКДС, первая", 1, gid);
    ASSERT_TRUE(ticked.result);
    ASSERT_TRUE(ticked.offer);
    EXPECT_EQ(ticked.offer->caption, "Прививки и исследования");
    EXPECT_EQ(ticked.offer->text, "АКДС, первая");
    EXPECT_EQ(plan.loadMarks(gid), std::vector<std::string>{mark(10)});

    EXPECT_FALSE(plan.checkClick(mark(12), true, "", 1, gid).offer);
    // A reading page of another base type keeps its ticks to itself.
    EXPECT_FALSE(plan.checkClick(mark(15), true, "АКДС", 0, gid).offer);
    EXPECT_FALSE(plan.checkClick(mark(10), false, "АКДС, первая", 1, gid).offer);
    EXPECT_EQ(plan.loadMarks(gid).size(), 2U);
    // Another child's plan is its own.
    EXPECT_TRUE(plan.loadMarks(newChild("2025-01-01")).empty());
}

TEST_F(DoctorPlanTest, DiaryEntriesOfOneDayJoinAndSurviveAnUntick) {
    state.pageDirty.fill(false);
    EXPECT_EQ(plan.insertIntoNote("a", "05.06.2026", gid), "");
    EXPECT_EQ(plan.insertIntoNote("b", "05.06.2026", gid), "");
    EXPECT_EQ(priv("2026-06-05"), "a\nb");
    EXPECT_EQ(queryText("select count(*) from childdata where type='priv'"), "1");
    EXPECT_TRUE(state.pageDirty[9]);
    EXPECT_TRUE(noteCloud.kinds.empty());  // the cloud is off

    ASSERT_TRUE(plan.checkClick(mark(10), true, "a", 1, gid).result);
    ASSERT_TRUE(plan.checkClick(mark(10), false, "a", 1, gid).result);
    EXPECT_EQ(priv("2026-06-05"), "a\nb");

    // A date the form can't read writes nothing and says why.
    state.pageDirty.fill(false);
    EXPECT_EQ(plan.insertIntoNote("c", "31.02.2026", gid), "Неверная дата");
    EXPECT_EQ(plan.insertIntoNote("c", "", gid), "Неверная дата");
    EXPECT_EQ(queryText("select count(*) from childdata where type='priv'"), "1");
    EXPECT_FALSE(state.pageDirty[9]);

    state.cloudMode = core::cloudmode::icloud;
    EXPECT_EQ(plan.insertIntoNote("d", "06.06.2026", gid), "");
    EXPECT_EQ(noteCloud.kinds, std::vector<int>{diary::DayCloud::kDayRecord});
}

// The shipped plan: each shot of the card is ticked on exactly one line,
// and each vaccination line (numbers below 200; the check-ups take 200 and
// on) is a shot of the card. Its timeline items fit the timeline and lead
// to groups of the help text.
TEST(DoctorPlanContentTest, PlanMatchesTheCardAndTheHelp) {
    std::ifstream in(test::resourceDir() / "content" / "doctor-u.jsn");
    ASSERT_TRUE(in) << "doctor-u.jsn is missing";
    std::stringstream text;
    text << in.rdbuf();
    const auto root = nlohmann::json::parse(text.str(), nullptr, false);
    ASSERT_TRUE(root.is_array());

    const std::string help =
        frame::loadContentFile(test::resourceDir() / "content", kDoctorHelpFile).text;
    std::set<long long> helpGroups;
    for (const frame::RichItem& item : frame::parseMarkup(help)) {
        helpGroups.insert(item.groupid);
    }

    std::map<int, int> ticks;
    std::set<std::string> ids;
    for (const auto& group : root) {
        for (const auto& item : group.at("Content")) {
            if (item.contains("checkid")) {
                const std::string id = item.at("checkid").get<std::string>();
                EXPECT_TRUE(ids.insert(id).second) << "checkid " << id << " twice";
                EXPECT_FALSE(item.value("hiddentext", "").empty()) << "checkid " << id;
                if (std::stoi(id) < 200) {
                    ++ticks[std::stoi(id)];
                }
            }
            if (item.contains("planestart")) {
                const int start = std::stoi(item.at("planestart").get<std::string>());
                const int length = std::stoi(item.at("planelength").get<std::string>());
                EXPECT_TRUE(start >= 1 && start <= 168 && length >= 1) << item.dump();
                EXPECT_TRUE(item.contains("planeicon") && item.contains("planecomment"));
                if (item.contains("sublink")) {
                    EXPECT_TRUE(
                        helpGroups.contains(std::stoll(item.at("sublink").get<std::string>())))
                        << item.dump();
                }
            }
        }
    }
    std::map<int, int> expected;
    for (const CardShot& shot : cardShots()) {
        expected[shot.number] = 1;
    }
    EXPECT_EQ(ticks, expected);
}

}  // namespace
}  // namespace tilika::development

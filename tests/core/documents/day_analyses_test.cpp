#include "documents/day_analyses.h"

#include <gtest/gtest.h>

#include <fstream>

#include "diary/day_rows.h"
#include "documents/analyses.h"
#include "support/core_fixture.h"

namespace tilika::documents {
namespace {

namespace fs = std::filesystem;

class AddToAnalizTest : public test::CoreFixture {
protected:
    const core::Date day = *dates.dateFromString("2026-11-20 00:00");
    const std::string firstProfile = core::newID2(1, 1);
    fs::path page = dir.path() / "tmp" / "page.PDF";

    AddToAnalizTest() { std::ofstream(page, std::ios::binary) << "%PDF-1.4 page"; }

    std::string dayValue(const std::string& gid) {
        return diary::DayRows(db(), dates).getDateValue(day, "analizy", gid);
    }
    void setDayValue(const std::string& value) {
        diary::DayRows(db(), dates).insertValue("analizy", value, day, firstProfile, true, false);
    }
    fs::path analizy() const { return folders.path(platform::SystemFolder::Document) / "analizy"; }
};

TEST_F(AddToAnalizTest, NewDayOfTheFirstProfileWhoeverIsActive) {
    state.activeGid = newChild("2025-01-01");
    ASSERT_TRUE(addToAnaliz(context, "kind", page, day));

    EXPECT_EQ(dayValue(firstProfile), "2<br>kind<br>a-20-11-2026-1.pdf<br>1");
    EXPECT_EQ(dayValue(*state.activeGid), "");
    std::ifstream copy(analizy() / "a-20-11-2026-1.pdf");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(copy), {}), "%PDF-1.4 page");
    EXPECT_TRUE(fs::exists(page));
    EXPECT_TRUE(state.pageDirty[0]);
}

TEST_F(AddToAnalizTest, OldDayKeepsItsFormAndJsonDayStaysJson) {
    setDayValue("1<br>a<br>a-x-1.jpg<br>1<tr>2<br>b<br>a-x-2.pdf<br>2");
    ASSERT_TRUE(addToAnaliz(context, "kind", page, day));
    EXPECT_EQ(dayValue(firstProfile),
              "1<br>a<br>a-x-1.jpg<br>1<tr>2<br>b<br>a-x-2.pdf<br>2<tr>2<br>kind<br>"
              "a-20-11-2026-3.pdf<br>3");

    setDayValue(close({{itemtp::image, "a", "А", "a-x-1.jpg", 1}}));
    ASSERT_TRUE(addToAnaliz(context, "kind", page, day));
    const auto items = prepare(dayValue(firstProfile));
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[1], (AnalysisItem{itemtp::pdf, "kind", "kind", "a-20-11-2026-2.pdf", 2}));

    // A file that isn't there adds nothing.
    EXPECT_FALSE(addToAnaliz(context, "kind", dir.path() / "none.pdf", day));
    EXPECT_EQ(prepare(dayValue(firstProfile)).size(), 2u);
}

}  // namespace
}  // namespace tilika::documents

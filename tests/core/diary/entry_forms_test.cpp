#include "diary/entry_forms.h"

#include <gtest/gtest.h>

namespace tilika::diary {
namespace {

TEST(EntryFormsTest, SleepAndWalkForms) {
    EntryForm sleep = periodForm("sleep", "21:30", std::nullopt);
    EXPECT_EQ(sleep.caption, "Сон");
    ASSERT_EQ(sleep.rows.size(), 3u);
    EXPECT_TRUE(sleep.rows[0].startbutton);
    EXPECT_EQ(sleep.rows[0].startprogress, "Ребенок спит ...");
    EXPECT_EQ(sleep.defaults.at("start"), "21:30");
    EXPECT_EQ(sleep.defaults.at("interval"), "00:00");

    EntryForm walk =
        periodForm("walk", "10:00", R"({"start":"11:00","end":"12:15","interval":"01:15"})");
    EXPECT_EQ(walk.rows[2].caption, "Продолжительность прогулки");
    EXPECT_EQ(walk.defaults.at("end"), "12:15");
    EXPECT_TRUE(periodForm("pressure", "10:00", std::nullopt).rows.empty());
}

}  // namespace
}  // namespace tilika::diary

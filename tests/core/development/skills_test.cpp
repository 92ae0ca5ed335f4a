#include "development/skills.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tilika::development {
namespace {

const Skill& skill(const std::string& file) {
    const auto& skills = candoi();
    const auto it =
        std::find_if(skills.begin(), skills.end(), [&](const Skill& s) { return s.file == file; });
    EXPECT_NE(it, skills.end()) << file;
    return *it;
}

TEST(SkillsTest, ListsElevenSkillsWithRingsOnlyForTheMotorOnes) {
    const auto& skills = candoi();
    ASSERT_EQ(skills.size(), 11U);
    EXPECT_EQ(skills.front().caption, "Учимся сидеть");
    EXPECT_EQ(skills.back().file, "i-problem-u");
    for (const Skill& s : skills) {
        // A skill is told either by week up to its ring's limit, or by month
        // without a ring; the page relies on that to pick the group.
        EXPECT_NE(s.maxweek > 0, s.inmonth) << s.caption;
        EXPECT_FALSE(s.desc.empty());
    }
}

TEST(SkillsTest, RingsFillByAgeOverTheLimit) {
    const Skill& head = skill("ch-head-u");
    const Skill& sit = skill("ch-sit-u");
    EXPECT_EQ(ringLabel(ringPercent(head, 13, kRingSteps)), "46%");
    // 32.5 exactly: printf would round it to even.
    EXPECT_EQ(ringLabel(ringPercent(sit, 13, kRingSteps)), "33%");

    EXPECT_EQ(ringPercent(head, 30, kRingSteps), 100);
    EXPECT_EQ(ringLabel(ringPercent(head, 30, 3)), "32%");
    EXPECT_DOUBLE_EQ(ringPercent(sit, 20, 5), ringPercent(sit, 20, kRingSteps) / 2);
    // The timer may tick once more than it should; the ring stays full size.
    EXPECT_EQ(ringPercent(sit, 20, kRingSteps + 1), ringPercent(sit, 20, kRingSteps));

    EXPECT_EQ(ringPercent(skill("pl-igra-u"), 13, kRingSteps), 0);
    EXPECT_EQ(ringPercent(head, -2, kRingSteps), 0);
    EXPECT_EQ(ringLabel(0), "0%");
}

TEST(SkillsTest, OpensTheTextAtTheWeekOrTheMonth) {
    EXPECT_EQ(skillGroup(skill("ch-hodit-u"), 45, 10), 45);
    EXPECT_EQ(skillGroup(skill("pl-obsh-u"), 45, 10), 10);
}

}  // namespace
}  // namespace tilika::development

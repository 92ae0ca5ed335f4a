#include "development/ruler.h"

#include <gtest/gtest.h>

namespace tilika::development {
namespace {

constexpr double kVisible = 320;

TEST(RulerTest, ReadsTenthsAndTheOffPositionBelowZero) {
    const Ruler height(20, 180, rulertype::tenths, 1);
    EXPECT_EQ(height.contentWidth(), 160 * 50);
    // The middle of the visible part: 20 + (offset + 160) / 50.
    EXPECT_EQ(height.read(3000 - 160, kVisible).text, "80.0");
    EXPECT_EQ(height.read(3000 - 160 + 27, kVisible).text, "80.5");
    EXPECT_DOUBLE_EQ(height.read(3000 - 160 + 27, kVisible).position, 80.5);

    const Ruler weight(-3, 12, rulertype::tenths, 1);
    // At the far left the middle is at -3 + 160/50 = 0.2; scrolled below
    // zero there is no value at all.
    EXPECT_EQ(weight.read(0, kVisible).text, "0.2");
    EXPECT_EQ(weight.read(0, 100).text, "");
    EXPECT_EQ(weight.read(0, 100).position, 0);
}

TEST(RulerTest, ThousandthsComeFromTheSecondRuler) {
    const Ruler weight(-1, 80, rulertype::thousandths, 2);
    for (const double value : {3.456, 0.005, 12.09, 79.999}) {
        const auto placed = weight.place(value, true, 640, 640);
        EXPECT_TRUE(placed.marks);
        EXPECT_DOUBLE_EQ(placed.reading.position, value) << value;
        const auto read = weight.read(placed.offset, 640, placed.secondOffset, 640);
        EXPECT_DOUBLE_EQ(read.position, value);
    }
    EXPECT_EQ(weight.place(3.456, true, 640, 640).reading.text, "3.456");
    EXPECT_EQ(weight.place(3.4, true, 640, 640).reading.text, "3.400");
}

TEST(RulerTest, MonthsFromYearsAndTicks) {
    const Ruler teeth(-3, 15, rulertype::months, 1);
    EXPECT_EQ(teeth.unitWidth(), 60);
    // At the far left it reads the month of birth, although the ruler starts
    // at -3: there are no months below zero.
    EXPECT_EQ(teeth.read(0, kVisible).position, 0);
    EXPECT_EQ(teeth.read(0, kVisible).text, "0 мес.");

    // Every month is placed on its own tick and read back whole.
    for (int months : {1, 7, 13, 18, 180}) {
        const auto placed = teeth.place(months, true, kVisible);
        EXPECT_EQ(placed.reading.position, months);
        EXPECT_EQ(placed.reading.text, std::to_string(months) + " мес.");
    }
    const auto placed = teeth.place(18, true, kVisible);
    EXPECT_EQ(teeth.read(placed.offset + 2, kVisible).position, 18);
    EXPECT_EQ(teeth.read(placed.offset + 3, kVisible).position, 19);

    // The scale is labelled by months from zero on.
    const auto ticks = teeth.ticks();
    ASSERT_EQ(ticks.size(), 18u * 12 + 1);
    EXPECT_EQ(ticks[0].label, "");
    EXPECT_EQ(ticks[36].label, "0");
    EXPECT_EQ(ticks[48].label, "12");
    EXPECT_EQ(ticks[36].x, 180);
    EXPECT_TRUE(ticks[37].label.empty());
    // Padded by half the view, the far left reads the minimum.
    EXPECT_EQ(teeth.leftPadding(600), 300);
    EXPECT_EQ(teeth.read(-300, 600).text, "0 мес.");
}

TEST(RulerTest, PlacingNothingOrInactiveHidesTheMarks) {
    const Ruler temperature(30, 45, rulertype::temperature, 1.5);
    const auto placed = temperature.place(36.6, true, kVisible);
    EXPECT_EQ(placed.reading.text, "36.6");
    EXPECT_NEAR(placed.offset, 6.6 * 75 - 160, 1e-9);

    const auto inactive = temperature.place(36.6, false, kVisible);
    EXPECT_FALSE(inactive.marks);
    EXPECT_EQ(inactive.reading.text, "");
    EXPECT_EQ(inactive.offset, placed.offset);
    const auto zero = temperature.place(0, true, kVisible);
    EXPECT_FALSE(zero.marks);
    EXPECT_EQ(zero.reading.position, 0);
}

}  // namespace
}  // namespace tilika::development

#include "core/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tilika::core {
namespace {

TEST(Text, ReadsNumbersForgivingly) {
    EXPECT_EQ(intValue("42"), 42);
    EXPECT_EQ(intValue("  -7 дней"), -7);
    EXPECT_EQ(intValue("+3"), 3);
    EXPECT_EQ(intValue("3.9"), 3);
    EXPECT_EQ(intValue("abc"), 0);
    EXPECT_EQ(intValue(""), 0);
    EXPECT_EQ(intValue("99999999999999999999"), std::numeric_limits<int>::max());
    EXPECT_EQ(intValue("-99999999999999999999"), std::numeric_limits<int>::min());

    EXPECT_DOUBLE_EQ(floatValue("36.6"), 36.6);
    EXPECT_DOUBLE_EQ(floatValue(" 08:30"), 8.0);
    EXPECT_DOUBLE_EQ(floatValue("-.5kg"), -0.5);
    EXPECT_DOUBLE_EQ(floatValue("1e3"), 1000.0);
    EXPECT_DOUBLE_EQ(floatValue("nan"), 0.0);
    EXPECT_DOUBLE_EQ(floatValue("inf"), 0.0);
    EXPECT_DOUBLE_EQ(floatValue("."), 0.0);
    EXPECT_DOUBLE_EQ(floatValue("1e999"), std::numeric_limits<double>::max());
}

TEST(Text, WritesFixedDecimals) {
    EXPECT_EQ(formatFixed(3.5, 3), "3.500");
    EXPECT_EQ(formatFixed(0.3000000001, 3), "0.300");
    EXPECT_EQ(formatFixed(-0.25, 1), "-0.2");  // halves go to the even digit
    EXPECT_EQ(formatFixed(74.56, 1), "74.6");
    EXPECT_EQ(formatFixed(1e300, 1).size(), 303u);
    EXPECT_EQ(formatFixed(std::nan(""), 2), "0");
}

TEST(Text, SplitsJoinsAndReplaces) {
    using Pieces = std::vector<std::string>;
    EXPECT_EQ(split("a<tr>b<tr><tr>c", "<tr>"), (Pieces{"a", "b", "", "c"}));
    EXPECT_EQ(split("", "<tr>"), (Pieces{""}));
    EXPECT_EQ(split("<tr>", "<tr>"), (Pieces{"", ""}));
    EXPECT_EQ(split("NEWNOTE", "|"), (Pieces{"NEWNOTE"}));
    EXPECT_EQ(join(Pieces{"08:00", "11:00"}, "<table>"), "08:00<table>11:00");
    EXPECT_EQ(join(split("a|b|c", "|"), "|"), "a|b|c");
    EXPECT_EQ(replaceAll("1.2.3", ".", "-"), "1-2-3");
    EXPECT_EQ(replaceAll("aaa", "aa", "b"), "ba");
    EXPECT_EQ(replaceAll("abc", "", "x"), "abc");
}

}  // namespace
}  // namespace tilika::core

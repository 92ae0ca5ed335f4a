#include "frame/course_amounts.h"

#include <gtest/gtest.h>

namespace tilika::frame {
namespace {

TEST(CourseAmounts, AmountsAgreeWithTheirCounts) {
    EXPECT_EQ(dozaToRead3("1/2<td>шт."), "1/2 штуки");
    EXPECT_EQ(dozaToRead3("1<td>шт."), "1 штука");
    EXPECT_EQ(dozaToRead3("21<td>капля"), "21 капля");
    EXPECT_EQ(dozaToRead3("12<td>мг."), "12 миллиграммов");
    EXPECT_EQ(dozaToRead3("1/16<td>ст.лож."), "1/16 столовой ложки");
    EXPECT_EQ(dozaToRead3("5<td>таблетки"), "5 ");  // a unit we don't know has no word

    EXPECT_EQ(periodToRead3("3<td>раз в сутки"), "3 раза в сутки");
    EXPECT_EQ(periodToRead3("1<td>раз в день"), "1 раз в день");
    EXPECT_EQ(periodToRead3("12<td>раз в день"), "12 раз в день");

    EXPECT_EQ(intervalToRead3("1<td>недели", false), "1 неделю");
    EXPECT_EQ(intervalToRead3("1<td>недели", true), "1 неделя");
    EXPECT_EQ(intervalToRead3("2<td>недели", false), "2 недели");
    EXPECT_EQ(intervalToRead3("21<td>дни", true), "21 день");
    EXPECT_EQ(intervalToRead3("11<td>дни", true), "11 дней");
    EXPECT_EQ(intervalToRead3("3<td>месяцы", false), "3 месяца");
    EXPECT_EQ(intervalToRead3("", true), "");
    EXPECT_EQ(periodToRead(""), "");
}

TEST(CourseAmounts, OldValuesReadByWheelPosition) {
    // The fractions of old values take the plural of a few, not the genitive.
    EXPECT_EQ(dozaToRead("2<td>4"), "1/2 чайные ложки");
    EXPECT_EQ(dozaToRead3("1/2<td>ч.лож."), "1/2 чайной ложки");
    EXPECT_EQ(dozaToRead("0<td>0"), "1/8 миллилитра");
    EXPECT_EQ(dozaToRead("3<td>8"), "1 капля");
    EXPECT_EQ(dozaToRead("25<td>1"), "23 миллиграмма");
    EXPECT_EQ(dozaToRead("2<td>9"), "1/2 ");

    EXPECT_EQ(periodToRead("2<td>1"), "3 раза в сутки");
    EXPECT_EQ(periodToRead("4<td>2"), "5 ");
    EXPECT_EQ(intervalToRead("0<td>1", true), "1 неделя");
    EXPECT_EQ(intervalToRead("0<td>1", false), "1 неделю");
    EXPECT_EQ(intervalToRead("13<td>0", true), "14 дней");
    EXPECT_EQ(intervalToRead("1<td>-1", true), "2 ");

    // The positions are those of today's wheels, where a course is at most
    // 12 weeks or 3 months long.
    const std::vector<std::string> amounts = pickerRows(Picker::doza, 0);
    ASSERT_EQ(amounts.size(), 203u);
    EXPECT_EQ(amounts[25], "23");
    EXPECT_EQ(pickerRows(Picker::doza, 1).at(8), "капля");
    EXPECT_EQ(pickerRows(Picker::length, 1).at(2), "месяцы");
    EXPECT_EQ(correctLengthRow(99, 0), 99);
    EXPECT_EQ(correctLengthRow(20, 1), 11);
    EXPECT_EQ(correctLengthRow(20, 2), 2);
}

}  // namespace
}  // namespace tilika::frame

#include "medication/regimen_texts.h"

#include <gtest/gtest.h>

#include "core/ids.h"
#include "diary/value_codecs.h"
#include "support/core_fixture.h"

namespace tilika::medication {
namespace {

TEST(RegimenTexts, AmountsAgreeWithTheirCounts) {
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

TEST(RegimenTexts, OldValuesReadByWheelPosition) {
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

class CourseReadingTest : public test::CoreFixture {
protected:
    std::vector<diary::ListRow> lists;

    CourseReadingTest() { diary::ReferenceLists(context).loadConstList(lists, 0, ""); }

    static std::string course(const std::string& length, const std::string& start) {
        return diary::jsonFromObject({{"pillname", core::newID2(core::idkind::seededRow, 8)},
                                      {"pilldoza", "1/2<td>шт."},
                                      {"pillperiod", core::newID2(core::idkind::seededRow, 10)},
                                      {"pillinter", "3<td>раз в день"},
                                      {"pilleat", core::newID2(core::idkind::seededRow, 18)},
                                      {"pilllength", length},
                                      {"pillsdate", start},
                                      {"key", "K"}});
    }
    core::Date day(const char* text) { return *dates.dateFromString(text); }
};

TEST_F(CourseReadingTest, ACourseReadsAsOneSentence) {
    const std::string week = course("1<td>недели", "20.11.2026");
    EXPECT_EQ(pillsToRead(week, lists, std::nullopt, dates),
              "Нурофен: 1/2 штуки, Ежедневно, 3 раза в день, После еды, 1 неделю");
    EXPECT_EQ(pillsToRead(week, lists, day("2026-11-22"), dates),
              "Нурофен: 1/2 штуки, Ежедневно, 3 раза в день, После еды, 1 неделю (3 день из 7)");

    // The diary's rows read the same way.
    const auto rows = diary::multi2FromString("[" + week + "]", lists, diary::tp::medication,
                                              day("2026-11-26 21:00"), dates);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].text,
              "Нурофен: 1/2 штуки, Ежедневно, 3 раза в день, После еды, 1 неделю (7 день из 7)");

    // A medicine gone from its list leaves its place empty; a first day that
    // can't be read gives no day of the course.
    EXPECT_EQ(pillsToRead(course("2<td>дни", "31.02.2026"), {}, day("2026-11-22"), dates),
              ": 1/2 штуки, , 3 раза в день, , 2 дня");
    EXPECT_EQ(pillsToRead("[]", lists, std::nullopt, dates), "");
    EXPECT_EQ(pillsToRead("Нурофен", lists, std::nullopt, dates), "");
}

TEST_F(CourseReadingTest, AMonthFromTheLastOfJanuaryEndsWithFebruary) {
    const core::Date start = day("2027-01-31");
    EXPECT_EQ(pillLengthToDays("1<td>месяцы", start, dates), 28);
    EXPECT_EQ(pillLengthToDays("2<td>недели", start, dates), 14);
    EXPECT_EQ(pillLengthToDays("5<td>дни", start, dates), 5);
    EXPECT_EQ(pillLengthToDays("5<td>годы", start, dates), 0);

    const std::string month = course("1<td>месяцы", "31.01.2027");
    EXPECT_TRUE(pillsToRead(month, lists, start, dates).ends_with(" (1 день из 28)"));
    EXPECT_TRUE(pillsToRead(month, lists, day("2027-02-27"), dates).ends_with(" (28 день из 28)"));
}

}  // namespace
}  // namespace tilika::medication

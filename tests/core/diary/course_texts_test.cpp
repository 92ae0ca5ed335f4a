#include "diary/course_texts.h"

#include <gtest/gtest.h>

#include "core/ids.h"
#include "diary/value_codecs.h"
#include "frame/course_amounts.h"
#include "support/core_fixture.h"

namespace tilika::diary {
namespace {

class CourseReadingTest : public test::CoreFixture {
protected:
    std::vector<ListRow> lists;

    CourseReadingTest() { ReferenceLists(context).loadConstList(lists, 0, ""); }

    static std::string course(const std::string& length, const std::string& start) {
        return jsonFromObject({{"pillname", core::newID2(core::idkind::seededRow, 8)},
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
    const auto rows =
        multi2FromString("[" + week + "]", lists, tp::medication, day("2026-11-26 21:00"), dates);
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
    EXPECT_EQ(frame::pillLengthToDays("1<td>месяцы", start, dates), 28);
    EXPECT_EQ(frame::pillLengthToDays("2<td>недели", start, dates), 14);
    EXPECT_EQ(frame::pillLengthToDays("5<td>дни", start, dates), 5);
    EXPECT_EQ(frame::pillLengthToDays("5<td>годы", start, dates), 0);

    const std::string month = course("1<td>месяцы", "31.01.2027");
    EXPECT_TRUE(pillsToRead(month, lists, start, dates).ends_with(" (1 день из 28)"));
    EXPECT_TRUE(pillsToRead(month, lists, day("2027-02-27"), dates).ends_with(" (28 день из 28)"));
}

}  // namespace
}  // namespace tilika::diary

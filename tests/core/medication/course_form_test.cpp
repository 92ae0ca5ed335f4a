#include "medication/course_form.h"

#include <gtest/gtest.h>

#include "diary/value_codecs.h"
#include "frame/form_kinds.h"
#include "frame/form_values.h"

namespace tilika::medication {
namespace {

const std::vector<diary::ListRow> kLists{
    {"Через день", "p2", diary::cotype::howOften, 2, 1, false},
    {"Ежедневно", "p1", diary::cotype::howOften, 2, 1, false},
    {"Независимо от еды", "m1", diary::cotype::meals, 2, 1, false},
};

TEST(CourseFormTest, ANewCourseStartsWithTheUsualAmounts) {
    diary::EntryForm form = courseForm(std::nullopt, "22.11.2026", kLists);
    ASSERT_EQ(form.rows.size(), 8u);
    frame::fillSources(form.rows, form.defaults);

    EXPECT_EQ(frame::fieldValue(form.rows, "pillperiod"), "p1");
    EXPECT_EQ(frame::fieldValue(form.rows, "pilleat"), "m1");
    EXPECT_EQ(frame::fieldValue(form.rows, "pilldoza"), "3<td>шт.");
    EXPECT_EQ(frame::fieldValue(form.rows, "pillsdate"), "22.11.2026");
    EXPECT_EQ(frame::fieldValue(form.rows, "pilltime"), "08:00<td>15:00<td>22:00");
    EXPECT_EQ(form.rows[0].tp, frame::formkind::listPick);
    EXPECT_EQ(form.rows[0].listid, diary::cotype::medicines);
    EXPECT_TRUE(form.rows[0].edit);  // a medicine not in the list can be added

    // The times follow from the other fields; without the doses a day or
    // the meals there is nothing to follow from.
    const auto course = courseOfForm(form.rows);
    ASSERT_TRUE(course);
    EXPECT_FALSE(course->contains("pilltime"));
    EXPECT_EQ(course->at("pillinter"), "3<td>раз в сутки");
    frame::FormRows unset = form.rows;
    unset[4].source.clear();
    EXPECT_FALSE(courseOfForm(unset));
}

TEST(CourseFormTest, AnExistingCourseComesBackThroughTheForm) {
    const std::string stored =
        R"({"key":"k1","pillname":"n","pilldoza":"1/2<td>шт.",)"
        R"("pillinter":"2<td>раз в день","pillperiod":"p2","pilleat":"m1",)"
        R"("pilllength":"5<td>дни","pillsdate":"01.11.2026","pilltime":"09:00<td>21:00"})";
    diary::EntryForm form = courseForm(stored, "22.11.2026", kLists);
    frame::fillSources(form.rows, form.defaults);
    EXPECT_EQ(frame::fieldValue(form.rows, "pillsdate"), "01.11.2026");

    // An edited course is stored without its key, so that it is laid out
    // afresh over its days.
    const auto value =
        diary::jsonToArray(diary::jsonFromDic(diary::tp::medication, "pills", "", form.rows, -1));
    ASSERT_EQ(value.size(), 1u);
    EXPECT_FALSE(value[0].contains("key"));
    EXPECT_EQ(value[0]["pilltime"], "09:00<td>21:00");
    EXPECT_EQ(value[0]["pillperiod"], "p2");
}

}  // namespace
}  // namespace tilika::medication

#include "frame/form_values.h"

#include <gtest/gtest.h>

#include "frame/form_kinds.h"

namespace tilika::frame {
namespace {

FormRow row(int tp, std::string field, std::string editcap = {}, bool required = false) {
    FormRow result;
    result.tp = tp;
    result.field = std::move(field);
    result.editcap = std::move(editcap);
    result.required = required;
    return result;
}

TEST(FormValuesTest, TimesAndSpans) {
    EXPECT_EQ(mtt(std::nullopt), "00:00");
    EXPECT_EQ(mtt(90), "01:30");
    EXPECT_EQ(mtt(6001), "00:01");  // hours past 99 lose their top digits
    EXPECT_EQ(ttm("01:30"), 90);
    EXPECT_EQ(ttm("45"), 45);
    EXPECT_EQ(inMask("7", "00"), "07");
    EXPECT_EQ(inMask("123", "00"), "23");

    EXPECT_EQ(countInterval("23:30", "00:10", std::nullopt), "00:40");
    EXPECT_EQ(countInterval("08:15", "10:05", std::nullopt), "01:50");
    EXPECT_EQ(countInterval("08:30", std::nullopt, "00:30"), "08:60");
    EXPECT_EQ(countInterval("08:50", std::nullopt, "00:30"), "09:20");
    EXPECT_EQ(countInterval("23:50", std::nullopt, "00:20"), "00:10");
    EXPECT_FALSE(countInterval("08:00", "09:00", "01:00"));
    EXPECT_FALSE(countInterval("08:00", std::nullopt, std::nullopt));
}

TEST(FormValuesTest, StartEndAndLengthFollowEachOther) {
    FormRows rows{row(formkind::time, "start"), row(formkind::time, "end"),
                  row(formkind::duration, "length")};
    rows[0].autocalc = "start";
    rows[1].autocalc = "end";
    rows[2].autocalc = "length";
    rows[0].source = "21:40";
    rows[1].source = "06:10";
    EXPECT_EQ(autocalc(rows, 1), 2u);
    EXPECT_EQ(rows[2].source, "08:30");
    rows[2].source = "01:00";
    EXPECT_EQ(autocalc(rows, 2), 1u);
    EXPECT_EQ(rows[1].source, "22:40");

    rows.pop_back();
    EXPECT_FALSE(autocalc(rows, 0));
    EXPECT_EQ(rows[1].source, "22:40");
}

TEST(FormValuesTest, OnlyTheFirstEmptyRequiredRowIsTold) {
    FormRows rows{row(formkind::heading, ""), row(formkind::textLine, "name", "Имя", true),
                  row(formkind::list, "kind", "Вид", true)};
    auto error = checkField(rows);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->row, 1u);
    EXPECT_EQ(error->message, "Поле 'Имя' не заполнено!");
    EXPECT_EQ(error->caption, "Ошибка");
    rows[1].source = "Маша";
    error = checkField(rows);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->message, "В списке не отмечен ни один пункт!");
    rows[2].source = "3";
    EXPECT_FALSE(checkField(rows));

    // A slider at its lowest keeps nothing, so a required one can't pass.
    EXPECT_EQ(sliderSource(0, "1"), "");
    EXPECT_EQ(sliderSource(-0.4, "3"), "");
    EXPECT_EQ(sliderSource(3.4567, "3"), "3.457");
    EXPECT_EQ(sliderSource(36.64, "2"), "36.6");
}

TEST(FormValuesTest, ListsWithOneOrManyChoices) {
    auto list = row(formkind::list, "kind", "Вид", true);
    list.list = {{"Первый", "A", 0, 0, 1, false}, {"Второй", "B", 0, 0, 1, false}};
    list.listtype = 1;
    checkTableItem(list, 1);
    EXPECT_EQ(list.source, "B");
    checkTableItem(list, 0);
    EXPECT_EQ(list.source, "A");
    checkTableItem(list, 0);  // the same item again: no choice left
    EXPECT_EQ(list.source, "");
    EXPECT_TRUE(checkField({list}).has_value());

    list.listtype = 2;
    checkTableItem(list, 1);
    checkTableItem(list, 0);
    EXPECT_EQ(list.source, "A<tr>B");
    checkTableItem(list, 5);  // no such item
    EXPECT_EQ(list.source, "A<tr>B");
}

TEST(FormValuesTest, RowsByFieldDefaultsTeethAndTheOkButton) {
    FormRows rows{row(formkind::textLine, "name"), row(formkind::teeth, "tooth"),
                  row(formkind::action, "")};
    fillSources(rows, {{"name", "Маша"}, {"oldtooth", "1<tr>2"}, {"other", "x"}});
    EXPECT_EQ(posByField(rows, "tooth"), 2u);
    EXPECT_EQ(posByField(rows, "none"), 0u);
    EXPECT_EQ(fieldValue(rows, "name"), "Маша");
    EXPECT_FALSE(fieldValue(rows, "none"));
    EXPECT_EQ(rows[1].tooth, "1<tr>2");

    auto marks = teethMarks(rows[1].tooth);
    EXPECT_TRUE(marks[0] && marks[1] && !marks[2]);
    marks[1] = false;
    marks[4] = true;
    EXPECT_EQ(teethSource(rows[1].tooth, marks), "102<tr>5");
    EXPECT_EQ(teethSource(rows[1].tooth, teethMarks(rows[1].tooth)), "");
    // A form built again from its value shows the teeth as the user left
    // them; numbers off the chart change nothing.
    EXPECT_EQ(teethMarks(rows[1].tooth, "102<tr>5<tr>21<tr>121"), marks);

    EXPECT_FALSE(hidesOk(rows));
    EXPECT_TRUE(hidesOk({row(formkind::action, ""), row(formkind::action, "")}));
}

TEST(FormValuesTest, WhatRowsShowAndTheTimesRow) {
    auto dose = row(formkind::dosePicker, "pilldoza");
    dose.source = "1/2<td>шт.";
    EXPECT_EQ(shownValue(dose, {}), "1/2 штуки");
    auto often = row(formkind::oftenPicker, "pillinter");
    often.source = "3<td>раз в сутки";
    EXPECT_EQ(shownValue(often, {}), "3 раза в сутки");
    auto length = row(formkind::lengthPicker, "pilllength");
    length.source = "1<td>недели";
    EXPECT_EQ(shownValue(length, {}), "1 неделю");
    auto pick = row(formkind::listPick, "pillname");
    pick.source = "guid-second<tr>guid-gone";
    const std::vector<ListRow> medicines{{"Нурофен", "guid-first", 101, 0, 1, false},
                                         {"Парацетамол", "guid-second", 101, 0, 1, false}};
    EXPECT_EQ(shownValue(pick, medicines), "Парацетамол");
    EXPECT_EQ(shownValue(row(formkind::dateTime, "when"), {}), "00:00");

    EXPECT_EQ(timesOf(""), (std::vector<std::string>{"08:00", "13:00", "18:00"}));
    EXPECT_EQ(replaceTime("08:00<td>15:00<td>22:00", 1, "16:30"), "08:00<td>16:30<td>22:00");
    EXPECT_EQ(replaceTime("", 0, "07:00"), "07:00<td>13:00<td>18:00");
    EXPECT_EQ(replaceTime("08:00", 3, "07:00"), "08:00");

    EXPECT_EQ(elapsedText(0), "0:00:00");
    EXPECT_EQ(elapsedText(((26 * 60 + 5) * 60 + 7) * 1000LL + 999), "26:05:07");
}

TEST(FormValuesTest, BodyIndexAtItsBounds) {
    // 19.8 and 26 belong to the lower type.
    EXPECT_EQ(bodyIndex(100, 19.8).text, "Индекс тела равен 19.8.\nУ вас худощавое телосложение.");
    EXPECT_EQ(bodyIndex(100, 26).text, "Индекс тела равен 26.0.\nУ вас среднее телосложение.");
    EXPECT_EQ(bodyIndex(100, 26.1).text, "Индекс тела равен 26.1.\nУ вас тучное телосложение.");
    EXPECT_EQ(bodyIndex(165, 60).source, "22.0");
    EXPECT_EQ(bodyIndex(0, 60).text, "Индекс тела не определен");
    EXPECT_EQ(bodyIndex(165, 0).source, "2");
}

}  // namespace
}  // namespace tilika::frame

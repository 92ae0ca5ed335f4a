#include "session/form_dialogs.h"

#include <gtest/gtest.h>

#include "diary/reference_lists.h"
#include "frame/form_kinds.h"
#include "support/core_fixture.h"

namespace tilika::session {
namespace {

namespace formkind = frame::formkind;

DetailRequest request(int kind, int parentFlag = 0, std::string cap = {}, std::string dat = {},
                      int cotype = 0, bool edit = false) {
    DetailRequest result;
    result.kind = kind;
    result.parentFlag = parentFlag;
    result.cap = std::move(cap);
    result.dat = std::move(dat);
    result.cotype = cotype;
    result.edit = edit;
    return result;
}

class FormDialogsTest : public test::CoreFixture {
protected:
    FormContent form(DetailRequest asked, bool lightTheme = true) {
        asked.msg = "Сообщение";
        return detailPrepare(asked, DetailContext{dates, clock.now(), &lists, lightTheme});
    }

    diary::ReferenceLists lists{context};
};

TEST_F(FormDialogsTest, EveryFormStartsWithItsMessage) {
    for (int kind : {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 18, 19, 27, 104, 105, 999}) {
        const auto content = form(request(kind, 7, "Заголовок"));
        ASSERT_FALSE(content.rows.empty()) << kind;
        EXPECT_EQ(content.rows[0].tp, formkind::heading);
        EXPECT_EQ(content.rows[0].caption, "Сообщение");
        EXPECT_EQ(content.parentFlag, 7);
        EXPECT_EQ(content.caption, "Заголовок");
    }
    EXPECT_EQ(form(request(6)).rows.size(), 1u);
    EXPECT_EQ(form(request(999)).rows.size(), 1u);
}

TEST_F(FormDialogsTest, TemperatureReminderAndFeeding) {
    const auto temperature = form(request(4));
    ASSERT_EQ(temperature.rows.size(), 3u);
    EXPECT_EQ(temperature.rows[1].tp, formkind::slider);
    EXPECT_EQ(temperature.rows[1].scalemin, "30");
    EXPECT_EQ(temperature.rows[1].scalemax, "45");
    EXPECT_EQ(temperature.rows[1].scaletype, "2");
    EXPECT_TRUE(temperature.rows[1].startactive);
    EXPECT_EQ(temperature.rows[1].source, "36.6");
    EXPECT_EQ(temperature.rows[2].caption, "Время замера");
    EXPECT_EQ(temperature.rows[2].source, "10:00");

    const auto reminder = form(request(5, 0, "", "Купить витамины"));
    EXPECT_EQ(reminder.rows[1].source, "Купить витамины");
    EXPECT_TRUE(reminder.rows[2].required);

    const auto feeding = form(request(18, 0, "", R"({"left": "90", "right": "5"})"));
    ASSERT_EQ(feeding.rows.size(), 3u);
    EXPECT_EQ(feeding.rows[1].field, "left");
    EXPECT_EQ(feeding.rows[1].source, "01:30");
    EXPECT_EQ(feeding.rows[2].source, "00:05");
    EXPECT_TRUE(feeding.rows[2].startbutton);
    EXPECT_EQ(feeding.rows[2].startprogress, "Идет кормление правой грудью ...");
    EXPECT_EQ(feeding.rows[2].editdescr, "Продолжительность (часы и минуты)");
}

TEST_F(FormDialogsTest, ListsFromTheReferenceListsOrTheCaller) {
    const auto many = form(request(1, 0, "Достижения", "", 1, true));
    const auto& list = many.rows[1];
    EXPECT_EQ(list.tp, formkind::list);
    EXPECT_EQ(list.listtype, 2);
    EXPECT_EQ(list.listedittype, 1);
    EXPECT_TRUE(list.edit);
    EXPECT_FALSE(list.list.empty());

    DetailRequest given = request(2, 0, "Выбор", "WASADDEDREQUIRED");
    given.list = {{"Один", "A", 0, 0, 1, false}, {"Два", "B", 0, 0, 1, true}};
    const auto one = form(given);
    EXPECT_EQ(one.rows[1].listtype, 1);
    EXPECT_TRUE(one.rows[1].required);
    EXPECT_EQ(one.rows[1].list.size(), 2u);
    EXPECT_EQ(one.rows[1].source, "B");

    const auto products = form(request(27, 0, "", "", 200));
    EXPECT_EQ(products.rows[1].caption, "Объем");
    EXPECT_EQ(products.rows[2].listedittype, 3);
    EXPECT_EQ(products.rows[2].listtype, 1);
}

TEST_F(FormDialogsTest, MeasuresAndBirth) {
    const auto measures = form(request(9, 0, "", R"({"bio1": "38.5", "bio5": 11})"), false);
    ASSERT_EQ(measures.rows.size(), 7u);
    EXPECT_EQ(measures.rows[1].pic, "b-size.png");
    EXPECT_EQ(measures.rows[2].source, "38.5");
    EXPECT_TRUE(measures.rows[2].startactive);
    EXPECT_EQ(measures.rows[2].pic, "b-num1.png");
    EXPECT_FALSE(measures.rows[3].startactive);
    EXPECT_EQ(measures.rows[6].source, "11");
    EXPECT_EQ(measures.rows[6].scalemin, "1");
    EXPECT_EQ(measures.rows[6].scalemax, "40");

    const auto birth = form(request(16, 0, "", R"({"rost": "52", "ves": "3.450", "way": "2"})"));
    EXPECT_EQ(birth.rows[2].caption, "Вес малыша (кг.)");
    EXPECT_EQ(birth.rows[2].scaletype, "3");
    EXPECT_EQ(birth.rows[2].source, "3.450");
    EXPECT_TRUE(birth.rows[3].required);
    EXPECT_EQ(birth.rows[6].list[1].checked, true);
    EXPECT_EQ(birth.rows[6].source, "2");

    const auto note = form(request(104, 0, "", "Текст"));
    EXPECT_EQ(note.rows[2].source, "22.11.2026");
}

}  // namespace
}  // namespace tilika::session

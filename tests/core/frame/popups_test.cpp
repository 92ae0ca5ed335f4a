#include "frame/popups.h"

#include <gtest/gtest.h>

#include "core/settings_file.h"
#include "core/settings_keys.h"
#include "platform/settings_store.h"
#include "support/temp_dir.h"

namespace tilika::frame {
namespace {

TEST(PopupsTest, MenuItemsAndTheirRows) {
    const auto items =
        parseMenuItems("Редактировать<td>pm-edit.png<tr>Удалить<td>pm-clear.png<tr>Отмена");
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[0].caption, "Редактировать");
    EXPECT_EQ(items[0].picture, "pm-edit.png");
    EXPECT_EQ(items[2].caption, "Отмена");
    EXPECT_TRUE(items[2].picture.empty());
    EXPECT_TRUE(parseMenuItems("").empty());

    EXPECT_EQ(menuRows(1), 1);
    EXPECT_EQ(menuRows(3), 1);
    EXPECT_EQ(menuRows(4), 2);
    EXPECT_EQ(menuRows(6), 2);
    EXPECT_EQ(menuRows(7), 3);
    EXPECT_EQ(menuRows(12), 3);
}

TEST(PopupsTest, TheLengthWheelCorrectsItself) {
    WheelPicker length(popupkind::length, "13<td>дни");
    EXPECT_EQ(length.value(), "13<td>дни");
    // Thirteen weeks is no course: the count comes back to twelve.
    EXPECT_TRUE(length.select(1, 1));
    EXPECT_EQ(length.value(), "12<td>недели");
    EXPECT_TRUE(length.select(1, 2));
    EXPECT_EQ(length.value(), "3<td>месяцы");
    EXPECT_FALSE(length.select(1, 0));
    EXPECT_FALSE(length.select(0, 99));
    EXPECT_EQ(length.value(), "100<td>дни");
    // An old value beyond the limit opens already corrected.
    EXPECT_EQ(WheelPicker(popupkind::length, "20<td>месяцы").value(), "3<td>месяцы");

    WheelPicker doza(popupkind::doza, "1/2<td>шт.");
    EXPECT_EQ(doza.rows(0).size(), 203u);
    EXPECT_EQ(doza.value(), "1/2<td>шт.");
    EXPECT_FALSE(doza.select(0, 500));
    EXPECT_EQ(doza.selected(0), 202);
    WheelPicker inter(popupkind::inter, "нет такого");
    EXPECT_EQ(inter.value(), "1<td>раз в день");
}

TEST(PopupsTest, ListsStartAtTheOldValue) {
    const std::vector<ListEntry> data{{"Все", "0"}, {"Вопросы", "3"}, {"Ответы", "4"}};
    EXPECT_EQ(listStartRow(data, "3"), 1);
    EXPECT_EQ(listStartRow(data, "9"), 0);
    EXPECT_EQ(listResult(2), "2");
}

TEST(PopupsTest, WelcomeOfAFirstStartAndOfANewVersion) {
    const auto first = firstStartPage(false);
    EXPECT_EQ(first.name, "Тилика");
    ASSERT_EQ(first.buttons.size(), 3u);
    EXPECT_EQ(first.buttons[2].caption, "Облако");
    EXPECT_EQ(first.buttons[2].tag, 4);
    const auto update = firstStartPage(true);
    ASSERT_EQ(update.buttons.size(), 1u);
    EXPECT_EQ(update.buttons[0].tag, 1);
    EXPECT_NE(update.texts[2].find("вашимa"), std::string::npos);
    EXPECT_EQ(update.start, "Начать работу");

    test::TempDir dir;
    core::JsonSettingsStore settings(dir.path() / "settings.json");
    settings.setBool(core::keys::firstStart, true);
    settings.setInt(core::keys::becomeActive, 17);
    settings.setBool(core::keys::rating, true);
    EXPECT_TRUE(firstStartDue(settings, "0-1-0"));
    firstStartDone(settings, "0-1-0");
    EXPECT_FALSE(firstStartDue(settings, "0-1-0"));
    EXPECT_TRUE(firstStartDue(settings, "0-2-0"));
    EXPECT_FALSE(settings.boolValue(core::keys::firstStart));
    EXPECT_EQ(settings.intValue(core::keys::becomeActive), 0);
    EXPECT_FALSE(settings.boolValue(core::keys::rating));
}

}  // namespace
}  // namespace tilika::frame

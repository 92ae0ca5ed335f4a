#include "session/menu_blocks.h"

#include <gtest/gtest.h>

#include <fstream>

#include "core/ids.h"
#include "core/settings_keys.h"
#include "diary/profiles.h"
#include "support/core_fixture.h"

namespace tilika::session {
namespace {

class MenuBlocksTest : public test::CoreFixture {
protected:
    MenuBlocksTest() {
        state.menuItems = core::buildMenuItems(1, "1.0");
        db().exec("delete from child");
    }

    std::string addChild(const std::string& name, std::optional<std::string> birth, int sex) {
        diary::Profiles profiles(context);
        const std::string gid = core::newID();
        diary::SetupRecord record = profiles.loadSetupData(gid);
        record.name = name;
        record.sbirthdate = std::move(birth);
        record.sex = sex;
        EXPECT_TRUE(profiles.saveSetupData(diary::saveflag::cloud, record, gid));
        return gid;
    }
};

TEST_F(MenuBlocksTest, ABlockShowsTheChildAndCarriesItsRows) {
    const std::string masha = addChild("Маша", "2025-05-10", 1);
    const std::string unnamed = addChild("Я", "2026-11-22", 0);

    state.lightTheme = false;
    auto blocks = childBlocks(context);
    ASSERT_EQ(blocks.size(), 2u);
    const ChildBlock& first = blocks[0];  // the elder first
    EXPECT_EQ(first.guid, masha);
    EXPECT_EQ(first.name, "Маша");
    EXPECT_EQ(first.birth, "10.05.2025");
    EXPECT_EQ(first.age, "1 год, 6 месяцев и 12 дней");
    EXPECT_EQ(first.sexPicture, "w-pic.png");
    EXPECT_EQ(first.dayPicture, "m-day.png");
    EXPECT_TRUE(first.photo.empty());
    EXPECT_EQ(first.placeholder, "ti-child.png");
    // Ten pages and three actions, all for this child.
    ASSERT_EQ(first.rows.size(), 13u);
    for (const core::MenuRow& row : first.rows) {
        EXPECT_EQ(row.gid, masha);
    }
    EXPECT_EQ(first.rows.front().id, 1);
    EXPECT_EQ(first.rows.back().id, 22);

    EXPECT_EQ(blocks[1].name, "Без имени");  // one letter is not a name
    EXPECT_EQ(blocks[1].sexPicture, "b-pic.png");

    // A light background takes the dark-lined signs; a stored portrait is
    // the block's photo.
    state.lightTheme = true;
    const auto portrait = diary::Profiles(context).portraitPath(unnamed);
    std::filesystem::create_directories(portrait.parent_path());
    std::ofstream(portrait) << "jpeg";
    blocks = childBlocks(context);
    EXPECT_EQ(blocks[0].sexPicture, "b-w-pic.png");
    EXPECT_EQ(blocks[0].dayPicture, "b-m-day.png");
    EXPECT_EQ(blocks[1].photo, portrait);
}

TEST_F(MenuBlocksTest, TheTableDecidesPagesRowsAndHeights) {
    const auto& table = state.menuItems;
    // The diary's row stands after the timeline's, so position and id differ.
    EXPECT_EQ(pagePosition(table, 1), 1);
    EXPECT_EQ(pagePosition(table, 10), 9);
    EXPECT_EQ(pagePosition(table, 9), 10);
    EXPECT_EQ(pagePosition(table, 22), 0);  // an action, not a page
    EXPECT_EQ(pageIdAt(table, 10), 9);
    EXPECT_EQ(pageIdAt(table, 11), 0);
    EXPECT_EQ(pageIdAt(table, 0), 0);

    const auto common = commonRows(table);
    EXPECT_EQ(common.front().id, 31);
    EXPECT_EQ(common.back().tp, core::menukind::version);
    EXPECT_EQ(common.size() + childRows(table, "x").size(), table.size());

    EXPECT_EQ(blockHeight(false, 13), 300);
    EXPECT_EQ(blockHeight(true, 13), 310 + 13 * 40);

    EXPECT_EQ(menuCommand(9), MenuCommand::openPage);
    EXPECT_EQ(menuCommand(22), MenuCommand::childSettings);
    EXPECT_EQ(menuCommand(31), MenuCommand::addChild);
    EXPECT_EQ(menuCommand(42), MenuCommand::background);
    EXPECT_EQ(menuCommand(52), MenuCommand::setting);
    EXPECT_EQ(menuCommand(21), MenuCommand::coming);
    EXPECT_EQ(menuCommand(40), MenuCommand::coming);
    EXPECT_EQ(menuCommand(0), MenuCommand::none);
}

TEST_F(MenuBlocksTest, BadgesCountWhatIsNewUpToNinetyNine) {
    EXPECT_EQ(menuCounter(settings, state, 32), 0);  // nothing stored yet
    EXPECT_EQ(menuCounter(settings, state, 45), 0);

    settings.setValue(core::keys::chatmessages,
                      nlohmann::json::array({{{"group", 3}, {"name", "Сон"}, {"count", 4}},
                                             {{"group", 7}, {"name", "Еда"}, {"count", "2"}},
                                             {{"group", 9}, {"name", "Без числа"}}}));
    EXPECT_EQ(menuCounter(settings, state, 32), 6);
    state.chatIndi = false;  // the chat count is turned off
    EXPECT_EQ(menuCounter(settings, state, 32), 0);

    state.newscount = 150;
    EXPECT_EQ(menuCounter(settings, state, 34), 99);
    settings.setInt(core::keys::oproscount, 2);
    EXPECT_EQ(menuCounter(settings, state, 45), 2);
    EXPECT_EQ(menuCounter(settings, state, 40), 0);

    settings.setValue(core::keys::chatmessages, "broken");
    state.chatIndi = true;
    EXPECT_EQ(menuCounter(settings, state, 32), 0);
}

}  // namespace
}  // namespace tilika::session

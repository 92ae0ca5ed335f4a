#include "frame/navigation.h"

#include <gtest/gtest.h>

#include <fstream>

#include "core/settings_keys.h"
#include "support/core_fixture.h"

namespace tilika::frame {
namespace {

using Move = TiltNavigator::Move;

TEST(NavigationTest, PagesFollowInACircle) {
    EXPECT_EQ(nextPagePosition(1, 10), 2);
    EXPECT_EQ(nextPagePosition(10, 10), 1);  // the last is followed by the first
    EXPECT_EQ(nextPagePosition(1, 1), 1);
    EXPECT_EQ(nextPagePosition(3, 0), 0);

    EXPECT_EQ(swipeEnd(91, 360), SwipeEnd::menu);
    EXPECT_EQ(swipeEnd(90, 360), SwipeEnd::rest);
    EXPECT_EQ(swipeEnd(-91, 360), SwipeEnd::nextPage);
    EXPECT_EQ(swipeEnd(-30, 360), SwipeEnd::rest);
}

TEST(NavigationTest, ATiltMovesOnceUntilTheDeviceIsLevelAgain) {
    TiltNavigator tilt;
    EXPECT_EQ(tilt.update(0.4, false, true), Move::none);  // not far enough
    EXPECT_EQ(tilt.update(0.6, false, true), Move::toMenu);
    EXPECT_EQ(tilt.update(0.4, false, true), Move::none);
    EXPECT_EQ(tilt.update(0.6, false, true), Move::none);  // never came back to level
    EXPECT_EQ(tilt.update(0.1, false, true), Move::none);
    EXPECT_EQ(tilt.update(-0.7, false, true), Move::nextPage);

    // Upside down, the other side means the same.
    TiltNavigator flipped;
    EXPECT_EQ(flipped.update(-0.6, true, true), Move::toMenu);

    // Without a child open nothing moves, however far it tilts.
    TiltNavigator idle;
    EXPECT_EQ(idle.update(0.9, false, false), Move::none);
    EXPECT_EQ(idle.update(0.9, false, false), Move::none);
}

class MenuSettingsTest : public test::CoreFixture {};

TEST_F(MenuSettingsTest, SwitchesAreStoredAndSeenByTheProcess) {
    EXPECT_TRUE(menuSetting(settings, 56));  // recommendations show unless turned off
    EXPECT_TRUE(menuSetting(settings, 55));  // and so do the counts of unread messages
    EXPECT_FALSE(menuSetting(settings, 53));
    EXPECT_FALSE(menuSetting(settings, 57));

    state.pageDirty.fill(false);
    EXPECT_TRUE(changeMenuSetting(settings, state, 51, true));
    EXPECT_TRUE(settings.boolValue(core::keys::emptyNote));
    EXPECT_TRUE(state.pageDirty[8]);
    EXPECT_FALSE(state.pageDirty[9]);

    EXPECT_TRUE(changeMenuSetting(settings, state, 53, true));
    EXPECT_TRUE(state.accelerate);
    EXPECT_TRUE(menuSetting(settings, 53));
    EXPECT_TRUE(changeMenuSetting(settings, state, 56, false));
    EXPECT_FALSE(state.showRec);
    EXPECT_FALSE(menuSetting(settings, 56));
    state.menuDirty = false;
    EXPECT_TRUE(changeMenuSetting(settings, state, 55, false));
    EXPECT_FALSE(state.chatIndi);
    EXPECT_TRUE(state.menuDirty);
}

TEST_F(MenuSettingsTest, ASwitchThatCannotBeStoredSaysSoYetWorks) {
    // A file stands where the settings' folder should be, which no one, not
    // even root, can write into.
    std::ofstream(dir.path() / "blocked") << "";
    core::JsonSettingsStore unwritable(dir.path() / "blocked" / "settings.json");
    const core::WriteResult stored = changeMenuSetting(unwritable, state, 53, true);
    EXPECT_EQ(stored.failure(), core::WriteFailure::settings);
    EXPECT_EQ(stored.message(), "Не удалось сохранить данные: не удалось записать файл настроек.");
    EXPECT_TRUE(state.accelerate);
    EXPECT_TRUE(menuSetting(unwritable, 53));
}

}  // namespace
}  // namespace tilika::frame

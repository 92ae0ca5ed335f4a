#pragma once

#include <optional>
#include <string_view>

#include "core/write_result.h"

namespace tilika::core {
struct AppState;
}
namespace tilika::platform {
class SettingsStore;
}

// How the root screen moves between the menu and the pages, apart from the
// drawing: which page follows which, where a swipe lands, the tilt of the
// device, and the switches of the menu.
namespace tilika::frame {

// The position (from 1) of the page after `position` among `pageCount`
// pages; the first follows the last.
int nextPagePosition(int position, int pageCount);

// Where the pages go when the finger lifts, from how far the centre of the
// page on top stands from the middle of a screen `width` wide.
enum class SwipeEnd {
    menu,      // dragged well to the right: back to the menu
    nextPage,  // dragged well to the left: on to the next page
    rest,      // back where it was
};
SwipeEnd swipeEnd(double centreOffset, double width);

// Turning the device to a side moves once; it has to come back near level
// before it can move again.
class TiltNavigator {
public:
    enum class Move { none, toMenu, nextPage };

    // One reading of the sideways acceleration (in g). Without a child open
    // nothing moves.
    Move update(double x, bool upsideDown, bool childOpen);

private:
    // 0 level, 1 and -1 turned to a side, 2 moved and waiting for level.
    int slideregim_ = 0;
};

// The switches at the foot of the menu: the setting each keeps (rows 51 to
// 56), and what it is when never set.
std::optional<std::string_view> menuSettingKey(int rowId);
bool menuSettingDefault(int rowId);
// The switch as stored.
bool menuSetting(const platform::SettingsStore& settings, int rowId);
// Stores a switch and lets the process see it: the flags that the whole
// program reads, and the pages that show what it changes. The switch works
// at once even when the settings file can't be written; the result says so,
// and the store writes it again with the next change.
core::WriteResult changeMenuSetting(platform::SettingsStore& settings, core::AppState& state,
                                    int rowId, bool on);

}  // namespace tilika::frame

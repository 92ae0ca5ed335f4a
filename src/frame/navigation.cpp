#include "frame/navigation.h"

#include "core/app_state.h"
#include "core/settings_keys.h"
#include "platform/settings_store.h"

namespace tilika::frame {
namespace {

// The page whose days the empty-day switch hides is reloaded by this number.
constexpr std::size_t kEmptyNotePage = 8;

constexpr double kLevel = 0.3;
constexpr double kTurned = 0.5;

}  // namespace

int nextPagePosition(int position, int pageCount) {
    if (pageCount <= 0) {
        return 0;
    }
    return position >= pageCount || position < 1 ? 1 : position + 1;
}

SwipeEnd swipeEnd(double centreOffset, double width) {
    if (centreOffset > width / 4) {
        return SwipeEnd::menu;
    }
    if (centreOffset < -width / 4) {
        return SwipeEnd::nextPage;
    }
    return SwipeEnd::rest;
}

TiltNavigator::Move TiltNavigator::update(double x, bool upsideDown, bool childOpen) {
    if (x < kLevel && x > -kLevel) {
        slideregim_ = 0;
    }
    if (slideregim_ == 0 && x > kTurned) {
        slideregim_ = 1;
    }
    if (slideregim_ == 0 && x < -kTurned) {
        slideregim_ = -1;
    }
    // Upside down the sides swap; a waiting state stays as it is.
    if (upsideDown && (slideregim_ == 1 || slideregim_ == -1)) {
        slideregim_ = -slideregim_;
    }
    if (!childOpen) {
        return Move::none;
    }
    if (slideregim_ == 1) {
        slideregim_ = 2;
        return Move::toMenu;
    }
    if (slideregim_ == -1) {
        slideregim_ = 2;
        return Move::nextPage;
    }
    return Move::none;
}

std::optional<std::string_view> menuSettingKey(int rowId) {
    switch (rowId) {
        case 51:
            return core::keys::emptyNote;
        case 52:
            return core::keys::pass;
        case 53:
            return core::keys::accelerate;
        case 54:
            return core::keys::pillsAlarm;
        case 55:
            return core::keys::chatIndi;
        case 56:
            return core::keys::showRec;
        default:
            return std::nullopt;
    }
}

// Unread counts and the last records show until the user turns them off.
bool menuSettingDefault(int rowId) {
    return rowId == 55 || rowId == 56;
}

bool menuSetting(const platform::SettingsStore& settings, int rowId) {
    const auto key = menuSettingKey(rowId);
    if (!key) {
        return false;
    }
    return settings.contains(*key) ? settings.boolValue(*key) : menuSettingDefault(rowId);
}

core::WriteResult changeMenuSetting(platform::SettingsStore& settings, core::AppState& state,
                                    int rowId, bool on) {
    const auto key = menuSettingKey(rowId);
    if (!key) {
        return {};
    }
    settings.setBool(*key, on);
    const bool stored = settings.synchronize();
    switch (rowId) {
        case 51:
            state.pageDirty[kEmptyNotePage] = true;
            break;
        case 53:
            state.accelerate = on;
            break;
        case 54:
            state.pillsAlarm = on;
            break;
        case 55:
            state.chatIndi = on;
            state.menuDirty = true;
            break;
        case 56:
            state.showRec = on;
            break;
        default:
            break;
    }
    if (!stored) {
        return core::WriteFailure::settings;
    }
    return {};
}

}  // namespace tilika::frame

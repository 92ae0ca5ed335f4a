#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/date.h"

namespace tilika::platform {

struct Alert {
    std::string title;
    std::string text;
    std::vector<std::string> buttons;  // the first one cancels
    int tag = 0;
    // Called with the index of the button pressed; may be empty.
    std::function<void(int button)> onClose;
};

struct Shortcut {
    std::string type;
    std::string title;
    std::string subtitle;
    std::string icon;
};

struct ScreenSize {
    double width = 320;
    double height = 480;
};

// The user-facing services of the platform the core asks for: windows,
// alerts, notification registration, home-screen shortcuts. The Qt shell
// does what a desktop can and logs one line for the rest.
class Shell {
public:
    virtual ~Shell() = default;

    virtual bool isTablet() const = 0;
    virtual ScreenSize screenSize() const = 0;

    // Notification types as a bit mask: 1 badge, 2 sound, 4 alert.
    virtual void registerUserNotifications(int types) = 0;
    virtual void registerForRemoteNotifications() = 0;
    virtual void setShortcuts(const std::vector<Shortcut>& shortcuts) = 0;

    virtual void showAlert(Alert alert) = 0;
    virtual void openUrl(const std::string& url) = 0;

    // Creates and shows the main window with its root page.
    virtual void showRootWindow() = 0;
    // True when the root page is on top, with no dialog over it.
    virtual bool rootIsCurrent() const = 0;
    // Opens the day editor on the given day for the active profile.
    virtual void openDayEditor(Date day) = 0;
    // Ends any text input, closing an on-screen keyboard.
    virtual void hideKeyboard() = 0;
    // Hides the current screen behind the lock screen.
    virtual void coverWithLock() = 0;
};

}  // namespace tilika::platform

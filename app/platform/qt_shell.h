#pragma once

#include <QWidget>

#include <functional>
#include <memory>

#include "platform/date.h"
#include "platform/shell.h"

namespace tilika::platform {

// The platform services on a desktop: alerts are message boxes, URLs open in
// the desktop's handler, and the root window is a phone-shaped window.
// Home-screen shortcuts and push registration don't exist here (yet) and
// only leave a line in the log.
class QtShell final : public Shell {
public:
    using RootFactory = std::function<std::unique_ptr<QWidget>()>;

    // The default window: portrait, the proportions of a phone.
    static constexpr int kWindowWidth = 360;
    static constexpr int kWindowHeight = 640;

    QtShell();
    ~QtShell() override;

    void setRootFactory(RootFactory factory) { rootFactory_ = std::move(factory); }
    // Opens the editor of a day for the active child in the root window.
    using DayEditorOpener = std::function<void(Date day)>;
    void setDayEditorOpener(DayEditorOpener opener) { dayEditorOpener_ = std::move(opener); }
    // Lays the lock's cover over the root window.
    void setLockCoverer(std::function<void()> cover) { lockCoverer_ = std::move(cover); }
    QWidget* rootWindow() const { return root_.get(); }
    void closeRootWindow() { root_.reset(); }

    bool isTablet() const override { return false; }
    ScreenSize screenSize() const override;
    void registerUserNotifications(int types) override;
    void registerForRemoteNotifications() override;
    void setShortcuts(const std::vector<Shortcut>& shortcuts) override;
    void showAlert(Alert alert) override;
    void openUrl(const std::string& url) override;
    void showRootWindow() override;
    bool rootIsCurrent() const override;
    void openDayEditor(Date day) override;
    void hideKeyboard() override;
    void coverWithLock() override;

private:
    RootFactory rootFactory_;
    DayEditorOpener dayEditorOpener_;
    std::function<void()> lockCoverer_;
    std::unique_ptr<QWidget> root_;
};

}  // namespace tilika::platform

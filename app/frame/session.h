#pragma once

#include <QMetaObject>
#include <QTimer>

#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "core/folder_lock.h"
#include "core/notification_ledger.h"
#include "core/settings_file.h"
#include "frame/pictures.h"
#include "platform/desktop_notifier.h"
#include "platform/folders.h"
#include "platform/qt_image_codec.h"
#include "platform/qt_pictures.h"
#include "platform/qt_shell.h"
#include "platform/settings_store.h"
#include "session/application.h"

namespace tilika::platform {
class Clock;
}

namespace tilika::frame {

// One running program over one data folder: the platform services, the core
// application, the root screen, and the wiring of Qt's application states to
// the core's activation entry points, and the delivery of reminders while
// the program is open. Needs a QApplication.
class Session {
public:
    Session(const platform::Clock& clock, std::filesystem::path dataDir,
            std::filesystem::path resourceDir);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    enum class StartResult {
        Started,
        FolderUnavailable,  // the data folder can't be created or written: folderError()
        AlreadyRunning,     // another Tilika works on the same folder
    };

    // Lays out the data folder, makes sure no other copy of the program works
    // on it, and launches. Nothing is started unless the result is Started.
    StartResult start();
    // Why the data folder can't be used, after a start that found it so.
    std::error_code folderError() const { return folderError_; }
    const std::filesystem::path& dataDir() const { return folders_.dataDir(); }

    session::Application& application() { return application_; }
    platform::QtShell& shell() { return shell_; }
    QWidget* rootWindow() const { return shell_.rootWindow(); }
    // The program's pictures, read once, for every screen to draw with.
    const platform::QtPictures& pictures() const { return qtPictures_; }

    // $XDG_DATA_HOME/tilika, or ~/.local/share/tilika.
    static std::filesystem::path defaultDataDir();
    // Resources beside the executable (a build tree), or in ../share/tilika
    // (an installed program).
    static std::filesystem::path defaultResourceDir();

private:
    void onApplicationStateChanged(Qt::ApplicationState state);
    void tellAboutDamagedSettings();
    // Reminders: the timer is set for the next one, and looks again every
    // 30 s, since a machine that slept lets a timer run late.
    class DeliveryNotifier;
    void armDeliveryTimer();
    void deliverDue();
    void showWaitingReminders();
    void raiseWindow();
    // Reminders reach a closed program only through the user's timer: the
    // first time there is something to remind of and no timer, the program
    // offers to set it up, once.
    void offerReminderTimer();

    platform::DataFolders folders_;
    Pictures pictures_;
    platform::QtPictures qtPictures_{pictures_};
    platform::QtImageCodec imageCodec_;
    core::FolderLock lock_;
    std::error_code folderError_;
    core::JsonSettingsStore settings_;
    platform::QtShell shell_;
    session::Application application_;
    core::LedgerNotifier ledger_;
    std::unique_ptr<DeliveryNotifier> notifier_;
    platform::DesktopNotifier desktop_;
    QTimer deliveryTimer_;
    // Reminders that came while the window was elsewhere and the desktop
    // could not show them; they wait for the window to be looked at.
    std::vector<std::string> waitingReminders_;
    QMetaObject::Connection stateConnection_;
    bool active_ = false;
    bool timerOffered_ = false;
};

}  // namespace tilika::frame

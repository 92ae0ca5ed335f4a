#include "frame/session.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QTimer>

#include <cstdlib>

#include "frame/view_controller.h"

namespace tilika::frame {

Session::Session(const platform::Clock& clock, std::filesystem::path dataDir,
                 std::filesystem::path resourceDir)
    : folders_(std::move(dataDir), std::move(resourceDir)),
      pictures_(folders_.path(platform::SystemFolder::Root) / "pictures"),
      settings_(folders_.path(platform::SystemFolder::Library) / "settings.json"),
      application_(clock, settings_, folders_, shell_) {
    shell_.setRootFactory([this] {
        return std::make_unique<ViewController>(
            RootServices{application_, qtPictures_, imageCodec_,
                         folders_.path(platform::SystemFolder::Root) / "content"});
    });
    shell_.setDayEditorOpener([this](platform::Date day) {
        auto* root = qobject_cast<ViewController*>(shell_.rootWindow());
        const std::optional<std::string>& gid = application_.state().activeGid;
        if (root != nullptr && gid) {
            root->openDayEditor(day, *gid);
        }
    });
}

Session::~Session() {
    QObject::disconnect(stateConnection_);
    // The window shows the application's state, so it goes first.
    shell_.closeRootWindow();
}

Session::StartResult Session::start() {
    if (!folders_.createLayout(folderError_)) {
        return StartResult::FolderUnavailable;
    }
    const auto lockPath = folders_.path(platform::SystemFolder::Library) / "tilika.lock";
    switch (lock_.acquire(lockPath)) {
        case core::FolderLock::Result::Acquired:
            break;
        case core::FolderLock::Result::HeldByOther:
            return StartResult::AlreadyRunning;
        case core::FolderLock::Result::Failed:
            folderError_ = lock_.error();
            return StartResult::FolderUnavailable;
    }
    application_.didFinishLaunching({});
    tellAboutDamagedSettings();
    stateConnection_ =
        QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, qGuiApp,
                         [this](Qt::ApplicationState state) { onApplicationStateChanged(state); });
    // The window may already have become active while launching.
    onApplicationStateChanged(QGuiApplication::applicationState());
    return StartResult::Started;
}

// Background and switches are back to their defaults, which the user would
// otherwise take for a fault of the program. Told once: the copy kept aside
// leaves a settings file that reads, and the next start has nothing to tell.
void Session::tellAboutDamagedSettings() {
    const auto copy = settings_.damagedCopy();
    if (!copy) {
        return;
    }
    platform::Alert alert;
    alert.title = "Настройки сброшены";
    alert.text =
        "Настройки программы были повреждены и сброшены; копия сохранена: " + copy->string();
    alert.buttons = {"OK"};
    // After the window and whatever it shows as it appears, so that the
    // message stands on top.
    QTimer::singleShot(0, qGuiApp, [this, alert = std::move(alert)]() mutable {
        shell_.showAlert(std::move(alert));
    });
}

void Session::onApplicationStateChanged(Qt::ApplicationState state) {
    switch (state) {
        case Qt::ApplicationActive:
            if (!active_) {
                active_ = true;
                application_.didBecomeActive();
                // The screen shows what the program's own activation changed.
                if (auto* root = qobject_cast<ViewController*>(rootWindow())) {
                    root->becomeActive();
                }
            }
            break;
        case Qt::ApplicationInactive:
            if (active_) {
                active_ = false;
                application_.willResignActive();
            }
            break;
        case Qt::ApplicationHidden:
        case Qt::ApplicationSuspended:
            if (active_) {
                active_ = false;
                application_.willResignActive();
            }
            application_.didEnterBackground();
            break;
    }
}

std::filesystem::path Session::defaultDataDir() {
    if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg != nullptr && *xdg == '/') {
        return std::filesystem::path(xdg) / "tilika";
    }
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home != nullptr ? home : ".") / ".local" / "share" / "tilika";
}

// The build puts the resources beside the executable; an installed program has
// them where the build says the installed layout puts them, e.g. ../share/tilika.
std::filesystem::path Session::defaultResourceDir() {
    const std::filesystem::path exeDir = QCoreApplication::applicationDirPath().toStdString();
    const std::filesystem::path beside = exeDir / "resources";
    std::error_code error;
    if (std::filesystem::is_directory(beside, error)) {
        return beside;
    }
    return (exeDir / TILIKA_INSTALLED_RESOURCES).lexically_normal();
}

}  // namespace tilika::frame

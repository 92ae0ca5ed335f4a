#include "frame/session.h"

#include <QApplication>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>

#include "core/settings_keys.h"
#include "frame/view_controller.h"
#include "platform/reminder_timer.h"

namespace tilika::frame {
namespace {

// The longest the delivery timer waits: a machine that slept, or a clock
// that was set, would otherwise make a reminder late by as much.
constexpr std::chrono::milliseconds kDeliveryRecheck = std::chrono::seconds(30);
// How long a starting program waits for its window to come forward before
// it hands the reminders to the desktop.
constexpr std::chrono::milliseconds kFirstDelivery = std::chrono::seconds(2);

}  // namespace

// The ledger as the application sees it: after each change the delivery
// timer is set again, since the next reminder may be a new one.
class Session::DeliveryNotifier final : public platform::Notifier {
public:
    DeliveryNotifier(core::LedgerNotifier& ledger, std::function<void()> changed)
        : ledger_(ledger), changed_(std::move(changed)) {}

    std::vector<platform::LocalNotification> scheduled() const override {
        return ledger_.scheduled();
    }
    void cancelAll() override {
        ledger_.cancelAll();
        changedOutsideBatch();
    }
    void schedule(const platform::LocalNotification& n) override {
        ledger_.schedule(n);
        changedOutsideBatch();
    }
    void beginChanges() override {
        ++depth_;
        ledger_.beginChanges();
    }
    void endChanges() override {
        ledger_.endChanges();
        depth_ = std::max(0, depth_ - 1);
        changedOutsideBatch();
    }

private:
    void changedOutsideBatch() {
        if (depth_ == 0) {
            changed_();
        }
    }

    core::LedgerNotifier& ledger_;
    std::function<void()> changed_;
    int depth_ = 0;
};

Session::Session(const platform::Clock& clock, std::filesystem::path dataDir,
                 std::filesystem::path resourceDir)
    : folders_(std::move(dataDir), std::move(resourceDir)),
      pictures_(folders_.path(platform::SystemFolder::Root) / "pictures"),
      settings_(folders_.path(platform::SystemFolder::Library) / "settings.json"),
      application_(clock, settings_, folders_, shell_),
      ledger_(folders_.path(platform::SystemFolder::Library), application_.dates()),
      notifier_(std::make_unique<DeliveryNotifier>(ledger_,
                                                   [this] {
                                                       armDeliveryTimer();
                                                       offerReminderTimer();
                                                   })),
      desktop_(platform::reminderPicture(folders_)) {
    deliveryTimer_.setSingleShot(true);
    QObject::connect(&deliveryTimer_, &QTimer::timeout, [this] { deliverDue(); });
    QObject::connect(&desktop_, &platform::DesktopNotifier::activated, [this] { raiseWindow(); });
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
    shell_.setLockCoverer([this] {
        if (auto* root = qobject_cast<ViewController*>(shell_.rootWindow())) {
            root->lockView();
        }
    });
}

Session::~Session() {
    QObject::disconnect(stateConnection_);
    deliveryTimer_.stop();
    application_.setNotifier(nullptr);
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
    application_.setNotifier(notifier_.get());
    application_.didFinishLaunching({});
    // What came due while the program was closed is for the window about to
    // appear; its activation sets the timer again, with the window active.
    deliveryTimer_.start(kFirstDelivery);
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
                showWaitingReminders();
                armDeliveryTimer();
            }
            break;
        case Qt::ApplicationInactive:
            if (active_) {
                active_ = false;
                application_.willResignActive();
                // A desktop window left for another stays in sight of
                // whoever passes by: it is covered as a phone's program is
                // when it goes to the background.
                application_.didEnterBackground();
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

void Session::armDeliveryTimer() {
    auto wait = kDeliveryRecheck;
    if (const auto next = ledger_.nextFireDate()) {
        wait = std::clamp(std::chrono::duration_cast<std::chrono::milliseconds>(
                              *next - application_.dates().now()),
                          std::chrono::milliseconds(0), kDeliveryRecheck);
    }
    deliveryTimer_.start(wait);
}

// A reminder in front of the user is shown in the window; one that comes
// while the window is elsewhere goes to the desktop, and a click on it
// brings the window back.
void Session::deliverDue() {
    for (const platform::LocalNotification& due : ledger_.takeDue(application_.dates().now())) {
        if (active_) {
            application_.didReceiveLocalNotification(due.alertBody);
        } else if (!desktop_.notify(QString::fromStdString(due.alertBody), true)) {
            waitingReminders_.push_back(due.alertBody);
            QApplication::alert(rootWindow());
        }
    }
    armDeliveryTimer();
}

void Session::showWaitingReminders() {
    std::vector<std::string> waiting = std::move(waitingReminders_);
    waitingReminders_.clear();
    for (const std::string& body : waiting) {
        application_.didReceiveLocalNotification(body);
    }
}

void Session::offerReminderTimer() {
    if (timerOffered_ || settings_.boolValue(core::keys::reminderTimerOffered) ||
        ledger_.scheduled().empty()) {
        return;
    }
    const std::filesystem::path templates = folders_.path(platform::SystemFolder::Root) / "systemd";
    if (platform::ReminderTimer(templates).installed()) {
        return;
    }
    timerOffered_ = true;
    // Only a desktop whose user manager answers can run the timer; asking is
    // quick, but not so quick that the window should wait for it.
    // Owned by a member, so that a session that ends first takes the probe
    // and its answer with it.
    auto* probe = new QProcess(&deliveryTimer_);
    QObject::connect(
        probe, &QProcess::finished, &deliveryTimer_,
        [this, probe, templates](int exitCode, QProcess::ExitStatus status) {
            probe->deleteLater();
            if (status != QProcess::NormalExit || exitCode != 0) {
                return;
            }
            settings_.setBool(core::keys::reminderTimerOffered, true);
            settings_.synchronize();
            platform::Alert alert;
            alert.title = "Напоминания";
            alert.text =
                "Показывать напоминания и тогда, когда Тилика закрыта? Для этого в системе "
                "будет включен таймер пользователя, который раз в минуту проверяет, не пора ли "
                "напомнить.";
            alert.buttons = {"Нет", "Да"};
            alert.onClose = [this, templates](int button) {
                if (button != 1) {
                    return;
                }
                platform::ReminderTimer timer(templates);
                const auto outcome =
                    timer.install(QCoreApplication::applicationFilePath().toStdString(),
                                  std::filesystem::absolute(folders_.dataDir()));
                platform::Alert told;
                told.title = "Напоминания";
                told.text = platform::installText(outcome, timer);
                told.buttons = {"OK"};
                shell_.showAlert(std::move(told));
            };
            shell_.showAlert(std::move(alert));
        });
    // A missing systemctl ends here as a failure to start.
    QObject::connect(probe, &QProcess::errorOccurred, &deliveryTimer_,
                     [probe](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart) {
                             probe->deleteLater();
                         }
                     });
    probe->start(QStringLiteral("systemctl"),
                 {QStringLiteral("--user"), QStringLiteral("show-environment")});
}

void Session::raiseWindow() {
    QWidget* window = rootWindow();
    if (window == nullptr) {
        return;
    }
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->activateWindow();
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

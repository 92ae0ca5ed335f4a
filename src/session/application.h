#pragma once

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>
#include <string>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/reserve_copies.h"

namespace tilika::platform {
class Notifier;
class Shell;
struct ScreenSize;
}  // namespace tilika::platform

namespace tilika::session {

// The scale of the layout constants, which are given for a 320 x 480
// portrait screen, for a screen (or window) of this size.
void applyScreenSize(core::AppState& state, platform::ScreenSize size);

struct LaunchOptions {
    // Type of the home-screen shortcut the program was started from.
    std::optional<std::string> shortcutType;
};

// The start of the program and its answers to the platform: launch in its
// fixed order, becoming active, resigning, going to the background, opened
// URLs, shortcuts and notifications. The shell calls these entry points; all
// of them run on the main thread.
class Application {
public:
    Application(const platform::Clock& clock, platform::SettingsStore& settings,
                const platform::Folders& folders, platform::Shell& shell);
    ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    bool didFinishLaunching(const LaunchOptions& options);
    void didBecomeActive();
    void willResignActive();
    void didEnterBackground();
    void willEnterForeground() {}
    void willTerminate() {}

    // Always true: a URL the program can't use is ignored.
    bool openUrl(const std::string& url);
    // Remembers the shortcut; it is acted on at the next activation.
    void performShortcut(const std::string& type);
    void didReceiveLocalNotification(const std::string& body);
    void didReceiveRemoteNotification(const nlohmann::json& payload);
    void didRegisterForRemoteNotifications(const std::string& tokenDescription);
    void didFailToRegisterForRemoteNotifications(const std::string& error);

    // Greets each child once on each birthday, and asks for a rating.
    void checkAppStoreAlert();
    // Opens the program's page in the store; false when this build has none.
    bool gotoAppStore();
    // Acts on a shortcut "NEWNOTE|<profile>": makes the profile active and
    // opens today's diary entry for it.
    void quickStart(const std::string& shortcut);

    // The diary was found damaged at the start (or on a later day) and put
    // aside; the restore screen offers the daily copies or an empty start.
    bool baseDamaged() const { return database_.damaged(); }
    // The daily copies, the sound ones first, newest first.
    std::vector<core::ReserveCopy> reserveCopies() const;
    // Makes a copy the diary; false when it could not be done.
    bool restoreFromCopy(const std::filesystem::path& copy);
    // Starts over from the template, as a new installation does; only ever
    // on the user's word.
    bool startEmpty();

    // Where reminders wait for their time; without one nothing is scheduled.
    void setNotifier(platform::Notifier* notifier) { notifier_ = notifier; }
    // The reminders of the diary, and of the medicine courses while their
    // switch is on, follow the days as saved: all pending ones are thrown
    // away and scheduled afresh.
    void rebuildNotifications();
    void updateNoteAlarms();
    void updatePillsAlarms();

    core::AppState& state() { return state_; }
    const core::Dates& dates() const { return dates_; }
    core::DatabaseStore& database() { return database_; }
    core::Context& context() { return context_; }
    // Where the screens open links and show alerts.
    platform::Shell& shell() { return shell_; }

private:
    void fromOldVersion();
    void fromOldVersionChild1();
    void addLegacyEntries(SQLite::Database& db);
    void buildShortcuts();
    // Everything shown comes from the database that is there now.
    void databaseReplaced();

    void prepareTranslate();
    void correctBackground();
    // Hooks of services that are not part of the program yet.
    void dropboxInit();
    bool dropboxHandleOpenUrl(const std::string& url);

    const platform::Clock& clock_;
    platform::SettingsStore& settings_;
    const platform::Folders& folders_;
    platform::Shell& shell_;
    platform::Notifier* notifier_ = nullptr;
    core::AppState state_;
    core::Dates dates_;
    core::DatabaseStore database_;
    core::Context context_;
};

}  // namespace tilika::session

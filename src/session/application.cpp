#include "session/application.h"

#include <cctype>
#include <stdexcept>
#include <string>
#include <utility>

#include "core/build_info.h"
#include "core/ids.h"
#include "core/menu_rows.h"
#include "core/settings_keys.h"
#include "core/text.h"
#include "diary/day_rows.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "frame/backgrounds.h"
#include "frame/translation.h"
#include "medication/reminders.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "platform/log.h"
#include "platform/notifier.h"
#include "platform/settings_store.h"
#include "platform/shell.h"
#include "session/upgrade.h"

namespace tilika::session {

namespace {

// Notification types: badge, sound and alert.
constexpr int kAllNotificationTypes = 7;
constexpr int kBirthdayAlertTag = 13;
constexpr int kReminderAlertTag = 1;
constexpr int kPushAlertTag = 2;

bool isOldCloudMode(long long mode) {
    return mode == 2 || mode == 4 || mode == 5;
}

bool isFileUrl(std::string_view url) {
    constexpr std::string_view scheme = "file://";
    if (url.size() < scheme.size()) {
        return false;
    }
    for (std::size_t i = 0; i < scheme.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(url[i])) != scheme[i]) {
            return false;
        }
    }
    return true;
}

platform::Alert okAlert(std::string title, std::string text, int tag) {
    platform::Alert alert;
    alert.title = std::move(title);
    alert.text = std::move(text);
    alert.buttons = {"ОК"};
    alert.tag = tag;
    return alert;
}

}  // namespace

Application::Application(const platform::Clock& clock, platform::SettingsStore& settings,
                         const platform::Folders& folders, platform::Shell& shell)
    : clock_(clock),
      settings_(settings),
      folders_(folders),
      shell_(shell),
      dates_(clock),
      database_(folders, dates_),
      context_{clock_, settings_, folders_, dates_, database_, state_} {}

Application::~Application() = default;

bool Application::didFinishLaunching(const LaunchOptions& options) {
    state_ = core::AppState{};
    state_.isIPad = shell_.isTablet();

    shell_.registerUserNotifications(kAllNotificationTypes);

    settings_.remove(core::keys::deactive);
    settings_.setBool(core::keys::webKitDiskImageCacheEnabled, false);

    // Old cloud modes are switched off, not carried into the current one:
    // their users choose again.
    if (settings_.contains(core::keys::icloud) &&
        isOldCloudMode(settings_.intValue(core::keys::icloud))) {
        settings_.setInt(core::keys::icloud, core::cloudmode::off);
        settings_.synchronize();
    }

    if (settings_.contains(core::keys::newscount)) {
        state_.newscount = settings_.intValue(core::keys::newscount);
    }
    state_.cloudMode = settings_.contains(core::keys::icloud)
                           ? static_cast<int>(settings_.intValue(core::keys::icloud))
                           : core::cloudmode::off;

    if (settings_.contains(core::keys::accelerate)) {
        state_.accelerate = settings_.boolValue(core::keys::accelerate);
    }
    if (settings_.contains(core::keys::pillsAlarm)) {
        state_.pillsAlarm = settings_.boolValue(core::keys::pillsAlarm);
    }
    if (settings_.contains(core::keys::chatIndi)) {
        state_.chatIndi = settings_.boolValue(core::keys::chatIndi);
    } else {
        settings_.setBool(core::keys::chatIndi, true);
    }
    if (settings_.contains(core::keys::backgroundId)) {
        state_.backgroundId = settings_.intValue(core::keys::backgroundId);
    }
    if (settings_.contains(core::keys::showRec)) {
        state_.showRec = settings_.boolValue(core::keys::showRec);
    } else {
        settings_.setBool(core::keys::showRec, true);
    }
    settings_.synchronize();

    prepareTranslate();
    correctBackground();

    if (!settings_.contains(core::keys::appguid)) {
        settings_.setText(core::keys::appguid, core::newID());
        settings_.synchronize();
    }
    state_.appguid = settings_.textValue(core::keys::appguid);

    fromOldVersion();

    state_.menuItems = core::buildMenuItems(state_.langid, core::build::kShortVersion);
    state_.versionKey = core::replaceAll(core::build::kShortVersion, ".", "-");
    state_.pageCount = pageCount(state_.menuItems);

    applyScreenSize(state_, shell_.screenSize());

    state_.markAllPagesDirty();
    dropboxInit();

    if (options.shortcutType) {
        state_.pendingShortcut = options.shortcutType;
    }

    shell_.showRootWindow();

    shell_.registerUserNotifications(kAllNotificationTypes);
    shell_.registerForRemoteNotifications();
    buildShortcuts();
    return true;
}

void applyScreenSize(core::AppState& state, platform::ScreenSize size) {
    // Layout constants are given for a 320 x 480 portrait screen.
    if (size.width > size.height) {
        std::swap(size.width, size.height);
    }
    state.scaleY = size.height / 480.0;
    state.scaleX = size.width / 320.0;
}

bool Application::gotoAppStore() {
    const std::string page = core::build::kStorePageUrl;
    if (page.empty()) {
        return false;
    }
    shell_.openUrl(page);
    return true;
}

void Application::fromOldVersion() {
    // A damaged diary is put aside here and nothing takes its place; the
    // screens see baseDamaged() and let the user choose what comes next.
    if (database_.fromOldVersionNewRestore()) {
        fromOldVersionChild1();
    }
    // The remaining steps bring databases of older versions forward, column
    // by column; a database made from the current template needs none.
    Upgrade(context_).run();
}

void Application::fromOldVersionChild1() {
    settings_.setBool(core::keys::firstStart, true);
    settings_.synchronize();

    // The very first versions kept the child's birthday and sex in the
    // settings; a new installation has neither and starts from today.
    const core::Date birthday =
        settings_.dateValue(core::keys::legacyBirthday).value_or(dates_.now());
    const long long sex = settings_.intValue(core::keys::legacySex);
    SQLite::Database* db = database_.connectToBase();
    if (db == nullptr) {
        return;
    }
    core::runGuarded("first profile", [&] {
        SQLite::Statement update(*db,
                                 "update child set birthday=?, sex=?, sbirthdate=? where chid=1");
        const auto seconds =
            std::chrono::duration_cast<std::chrono::seconds>(birthday.time_since_epoch());
        update.bind(1, static_cast<std::int64_t>(seconds.count()));
        update.bind(2, static_cast<std::int64_t>(sex));
        dateToBase(dates_, update, 3, birthday, false);
        update.exec();
    });
    addLegacyEntries(*db);
}

void Application::addLegacyEntries(SQLite::Database& db) {
    // The very first versions kept the child's heights and weights, and the
    // days of a few first milestones, in the settings too. A new
    // installation has none of them.
    const std::string gid = core::newID2(core::idkind::profile, 1);
    core::runGuarded("first profile's entries", [&] {
        core::WriteTransaction transaction(db);
        diary::DayRows rows(db, dates_);
        for (const auto& [regim, type] : {std::pair{1, "rost"}, std::pair{2, "ves"}}) {
            const long long count = settings_.intValue(core::keys::legacyRegimCount(regim));
            for (long long n = 1; n <= count; ++n) {
                const auto day = settings_.dateValue(core::keys::legacyRegimDate(regim, n));
                if (!day) {
                    continue;
                }
                const double value = settings_.doubleValue(core::keys::legacyRegimValue(regim, n));
                rows.insertValue(type, core::formatFixed(value, 2), *day, gid, false, false);
            }
        }
        for (const auto& [key, type] :
             {std::pair{"pos11", "rich2"}, std::pair{"pos12", "rich1"}, std::pair{"pos13", "rich4"},
              std::pair{"pos14", "rich5"}, std::pair{"pos15", "rich6"}}) {
            if (const auto day = settings_.dateValue(key)) {
                rows.insertValue(type, "1", *day, gid, false, false);
            }
        }
        if (!rows.result()) {
            throw std::runtime_error("the old entries could not be stored");
        }
        transaction.commit();
    });
}

std::vector<core::ReserveCopy> Application::reserveCopies() const {
    return core::reserveCopies(folders_.path(platform::SystemFolder::Reserv), dates_);
}

bool Application::restoreFromCopy(const std::filesystem::path& copy) {
    if (!database_.restoreFrom(copy)) {
        return false;
    }
    databaseReplaced();
    return true;
}

bool Application::startEmpty() {
    if (!database_.startEmpty()) {
        return false;
    }
    fromOldVersionChild1();
    databaseReplaced();
    return true;
}

void Application::databaseReplaced() {
    // A profile chosen in the old diary may not be in this one.
    state_.activeGid.reset();
    state_.markAllPagesDirty();
    state_.menuDirty = true;
    buildShortcuts();
}

void Application::buildShortcuts() {
    std::vector<platform::Shortcut> shortcuts;
    for (const auto& child : diary::Profiles(context_).profileList()) {
        shortcuts.push_back({"NEWNOTE|" + std::to_string(child.chid), "Дневник",
                             "Новая запись (" + child.chname + ")", "note"});
    }
    shell_.setShortcuts(shortcuts);
}

void Application::didBecomeActive() {
    checkAppStoreAlert();

    // A shortcut that arrives while a dialog is open is dropped: acting on it
    // later, out of the blue, would be worse than not acting at all.
    if (state_.pendingShortcut && shell_.rootIsCurrent()) {
        quickStart(*state_.pendingShortcut);
    }
    state_.pendingShortcut.reset();

    state_.chatAwake = true;

    rebuildNotifications();
}

void Application::checkAppStoreAlert() {
    if (settings_.boolValue(core::keys::appStore) || state_.appid != core::edition::child) {
        return;
    }
    const core::Date now = dates_.now();
    const std::string today = dates_.dateToString(now, "dd.MM");
    const int year = dates_.decodeDate(now).year;

    for (const auto& child : diary::Profiles(context_).profileList()) {
        if (!child.sbirthdate || dates_.dateToString(child.sbirthdate, "dd.MM") != today) {
            continue;
        }
        const int age = year - dates_.decodeDate(*child.sbirthdate).year;
        const std::string key = core::keys::birthdayGreeted(child.chid, age);
        if (age < 1 || settings_.boolValue(key)) {
            continue;
        }
        settings_.helpFinish(key);

        platform::Alert alert;
        alert.title = "День рождения";
        alert.text = child.chname + " празднует сегодня свой " + std::to_string(age) +
                     "-й день рождения! Автор программы искренне поздравляет вашу семью с этим "
                     "событием 🎂! В этот знаменательный день не могли бы Вы написать хороший "
                     "отзыв о программе или просто поставить ей оценку в AppSore?";
        alert.buttons = {"Не сейчас", "Так и быть"};
        alert.tag = kBirthdayAlertTag;
        alert.onClose = [this](int button) {
            if (button == 1) {
                settings_.helpFinish(core::keys::appStore);
                gotoAppStore();
            }
        };
        shell_.showAlert(std::move(alert));
    }
}

void Application::quickStart(const std::string& shortcut) {
    const std::vector<std::string> pieces = core::split(shortcut, "|");
    // The shortcut carries the old numeric profile id, and it becomes the
    // active profile as it stands.
    if (pieces.size() > 1) {
        state_.activeGid = pieces[1];
    }
    if (pieces.front() == "NEWNOTE" && state_.activeGid) {
        shell_.openDayEditor(dates_.noTime(dates_.now()));
    }
}

void Application::willResignActive() {
    settings_.setDate(core::keys::deactive, dates_.now());
    settings_.synchronize();
    shell_.hideKeyboard();
}

void Application::didEnterBackground() {
    if (settings_.boolValue(core::keys::pass)) {
        shell_.coverWithLock();
    }
}

bool Application::openUrl(const std::string& url) {
    if (dropboxHandleOpenUrl(url)) {
        return true;
    }
    if (isFileUrl(url)) {
        state_.pendingFileUrl = url;
        shell_.showAlert(okAlert(
            "Файл к документу",
            "Теперь Вам следует перейти в режим редактирования анализов или в режим "
            "редактирования документов ребенка и вставить этот файл в документ выбрав пункт меню "
            "'Файл PDF' или 'Заменить файлом PDF'.",
            0));
    }
    return true;
}

void Application::performShortcut(const std::string& type) {
    state_.pendingShortcut = type;
}

void Application::didReceiveLocalNotification(const std::string& body) {
    shell_.showAlert(okAlert("Напоминание", body, kReminderAlertTag));
}

void Application::didReceiveRemoteNotification(const nlohmann::json& payload) {
    platform::log("Remote notification: " +
                  payload.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
    if (!payload.is_object() || !payload.contains("aps") || !payload["aps"].is_object()) {
        return;
    }
    const nlohmann::json& aps = payload["aps"];
    if (!aps.contains("badge") || !aps.contains("show")) {
        return;
    }
    std::string message;
    if (aps.contains("alert") && aps["alert"].is_string()) {
        message = aps["alert"].get<std::string>();
    } else if (aps.contains("alert") && aps["alert"].is_object() && aps["alert"].contains("body") &&
               aps["alert"]["body"].is_string()) {
        message = aps["alert"]["body"].get<std::string>();
    }
    shell_.showAlert(okAlert("Внимание", message, kPushAlertTag));
}

void Application::didRegisterForRemoteNotifications(const std::string& tokenDescription) {
    std::string token;
    for (char c : tokenDescription) {
        if (c != ' ' && c != '<' && c != '>') {
            token.push_back(c);
        }
    }
    state_.pushToken = token;
}

void Application::didFailToRegisterForRemoteNotifications(const std::string& error) {
    platform::log("Failed to get token, error: " + error);
}

void Application::prepareTranslate() {
    frame::prepareTranslate(state_,
                            folders_.path(platform::SystemFolder::Root) / "translate.sqlite");
}

void Application::correctBackground() {
    frame::correctBackground(state_, false);
}

// Hooks of services that are not part of the program yet. Each is called at
// the moment its service will need, so the order of launch and activation is
// already the final one.

void Application::dropboxInit() {
    state_.dropboxReady = false;
}

bool Application::dropboxHandleOpenUrl(const std::string& /*url*/) {
    return false;
}

void Application::rebuildNotifications() {
    if (notifier_ == nullptr) {
        return;
    }
    // One change for the notifier: one that keeps its notifications writes
    // them once per rebuild, and only when they differ.
    notifier_->beginChanges();
    // The cancel comes first: with the medicines' switch off, their
    // reminders go with it.
    updateNoteAlarms();
    if (state_.pillsAlarm) {
        updatePillsAlarms();
    }
    notifier_->endChanges();
}

void Application::updateNoteAlarms() {
    if (notifier_ != nullptr) {
        medication::Reminders(context_, *notifier_).updateNoteAlarms();
    }
}

void Application::updatePillsAlarms() {
    if (notifier_ == nullptr) {
        return;
    }
    // Every list, removed rows too: an old course still names its medicine
    // and meal by rows that may have been removed since.
    std::vector<diary::ListRow> lists;
    diary::ReferenceLists(context_).loadConstList(lists, 0, "");
    medication::Reminders(context_, *notifier_).updatePillsAlarms(lists);
}

}  // namespace tilika::session

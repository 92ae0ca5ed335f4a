#include "session/application.h"

#include <gtest/gtest.h>

#include "core/build_info.h"
#include "core/ids.h"
#include "core/settings_file.h"
#include "core/settings_keys.h"
#include "core/text.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "platform/log.h"
#include "platform/settings_store.h"
#include "platform/shell.h"
#include "support/temp_dir.h"

namespace tilika::session {
using namespace core;
namespace {

using namespace std::chrono_literals;

class RecordingShell final : public platform::Shell {
public:
    bool rootCurrent = true;
    platform::ScreenSize screen{960, 640};
    std::vector<int> notificationRegistrations;
    bool remoteRegistered = false;
    std::vector<platform::Shortcut> shortcuts;
    std::vector<platform::Alert> alerts;
    std::vector<std::string> openedUrls;
    std::vector<Date> editorDays;
    int rootShown = 0;
    int keyboardHidden = 0;
    int lockCovers = 0;

    bool isTablet() const override { return true; }
    platform::ScreenSize screenSize() const override { return screen; }
    void registerUserNotifications(int types) override {
        notificationRegistrations.push_back(types);
    }
    void registerForRemoteNotifications() override { remoteRegistered = true; }
    void setShortcuts(const std::vector<platform::Shortcut>& s) override { shortcuts = s; }
    void showAlert(platform::Alert alert) override { alerts.push_back(std::move(alert)); }
    void openUrl(const std::string& url) override { openedUrls.push_back(url); }
    void showRootWindow() override { ++rootShown; }
    bool rootIsCurrent() const override { return rootCurrent; }
    void openDayEditor(Date day) override { editorDays.push_back(day); }
    void hideKeyboard() override { ++keyboardHidden; }
    void coverWithLock() override { ++lockCovers; }
};

class ApplicationTest : public ::testing::Test {
protected:
    test::TempDir dir;
    platform::DataFolders folders{dir.path(), test::resourceDir()};
    std::filesystem::path settingsFile = dir.path() / "Library" / "settings.json";
    core::JsonSettingsStore settings{settingsFile};
    platform::ManualClock clock{Date{}, "Europe/Moscow"};
    RecordingShell shell;
    Application app{clock, settings, folders, shell};

    void SetUp() override { clock.set(*app.dates().dateFromString("2026-11-22 10:00")); }

    void launch() { ASSERT_TRUE(app.didFinishLaunching({})); }

    void addChild(long long chid, const std::string& name, const std::string& birth,
                  int deleted = 0) {
        SQLite::Statement insert(*app.database().connectToBase(),
                                 "insert into child (chid, chname, sbirthdate, deleted, "
                                 "childguid) values (?, ?, ?, ?, ?)");
        insert.bind(1, static_cast<std::int64_t>(chid));
        insert.bind(2, name);
        insert.bind(3, birth);
        insert.bind(4, deleted);
        insert.bind(5, newID2(idkind::profile, chid));
        insert.exec();
    }

    std::vector<int> menuIds() {
        std::vector<int> ids;
        for (const auto& row : app.state().menuItems) {
            ids.push_back(row.id);
        }
        return ids;
    }
};

TEST_F(ApplicationTest, FirstLaunchSetsUpSettingsDatabaseAndMenu) {
    launch();

    core::JsonSettingsStore stored(settingsFile);
    EXPECT_TRUE(stored.boolValue(keys::chatIndi));
    EXPECT_TRUE(stored.boolValue(keys::showRec));
    EXPECT_TRUE(stored.boolValue(keys::firstStart));
    EXPECT_TRUE(stored.contains(keys::webKitDiskImageCacheEnabled));
    EXPECT_FALSE(stored.boolValue(keys::webKitDiskImageCacheEnabled));
    EXPECT_FALSE(stored.contains(keys::icloud));
    EXPECT_EQ(stored.textValue(keys::appguid).size(), 36u);

    const AppState& state = app.state();
    EXPECT_EQ(state.appid, edition::child);
    EXPECT_EQ(state.cloudMode, cloudmode::off);
    EXPECT_EQ(state.backgroundId, 3);
    EXPECT_TRUE(state.isIPad);
    EXPECT_EQ(state.appguid, stored.textValue(keys::appguid));
    EXPECT_EQ(state.versionKey, replaceAll(build::kShortVersion, ".", "-"));
    EXPECT_DOUBLE_EQ(state.scaleX, 2.0);  // 640 x 960 in portrait
    EXPECT_DOUBLE_EQ(state.scaleY, 2.0);
    for (bool dirty : state.pageDirty) {
        EXPECT_TRUE(dirty);
    }

    EXPECT_EQ(menuIds(),
              (std::vector<int>{1,  2,  3,  4,  5,  6,  7,  8,  10, 9,  23, 21, 22, 31, 32,
                                40, 45, 48, 34, 36, 37, 38, 42, 43, 51, 52, 53, 54, 55, 56, 0}));
    EXPECT_EQ(state.pageCount, 10);
    EXPECT_EQ(state.menuItems.back().comment, std::string("Версия ") + build::kShortVersion);
    EXPECT_EQ(state.menuItems[0].gid, "LOCAL");
    EXPECT_EQ(state.menuItems[13].name, "Добавить ребенка");
    EXPECT_EQ(state.menuItems[13].gid, "MAIN");

    EXPECT_EQ(shell.rootShown, 1);
    EXPECT_EQ(shell.notificationRegistrations, (std::vector<int>{7, 7}));
    EXPECT_TRUE(shell.remoteRegistered);
    ASSERT_EQ(shell.shortcuts.size(), 1u);
    EXPECT_EQ(shell.shortcuts[0].type, "NEWNOTE|1");
    EXPECT_EQ(shell.shortcuts[0].title, "Дневник");

    // The first profile is born today, until the parent says otherwise.
    SQLite::Statement child(*app.database().connectToBase(),
                            "select sbirthdate, childguid from child where chid=1");
    ASSERT_TRUE(child.executeStep());
    EXPECT_EQ(child.getColumn(0).getString(), "2026-11-22");
    EXPECT_EQ(child.getColumn(1).getString(), newID2(idkind::profile, 1));
}

TEST_F(ApplicationTest, LaterLaunchesKeepIdentityAndData) {
    launch();
    const std::string appguid = app.state().appguid;
    settings.setBool(keys::firstStart, false);
    settings.setDate(keys::deactive, clock.now());
    clock.advance(48h);
    launch();

    EXPECT_EQ(app.state().appguid, appguid);
    EXPECT_FALSE(settings.boolValue(keys::firstStart));
    EXPECT_FALSE(settings.contains(keys::deactive));
    SQLite::Statement child(*app.database().connectToBase(),
                            "select sbirthdate from child where chid=1");
    ASSERT_TRUE(child.executeStep());
    EXPECT_EQ(child.getColumn(0).getString(), "2026-11-22");
}

TEST_F(ApplicationTest, FirstVersionsSettingsBecomeTheFirstChildsEntries) {
    const auto day = [&](const char* text) { return *app.dates().dateFromString(text); };
    settings.setDate(keys::legacyBirthday, day("2014-03-01 00:00"));
    settings.setInt(keys::legacySex, 1);
    settings.setInt(keys::legacyRegimCount(1), 2);
    settings.setValue(keys::legacyRegimValue(1, 1), 52.5);
    settings.setDate(keys::legacyRegimDate(1, 1), day("2014-03-01 12:00"));
    settings.setValue(keys::legacyRegimValue(1, 2), 56);
    settings.setDate(keys::legacyRegimDate(1, 2), day("2014-04-01 12:00"));
    // Counted but never dated: nothing to place it on.
    settings.setInt(keys::legacyRegimCount(2), 2);
    settings.setValue(keys::legacyRegimValue(2, 1), 3.4);
    settings.setDate(keys::legacyRegimDate(2, 1), day("2014-03-01 12:00"));
    settings.setValue(keys::legacyRegimValue(2, 2), 4.1);
    settings.setDate("pos12", day("2014-05-10 09:00"));
    launch();

    {
        std::vector<std::string> rows;
        SQLite::Statement query(
            *app.database().connectToBase(),
            "select type || ' ' || date(sdat) || ' ' || value || ' ' || childguid "
            "from childdata order by sdat, type");
        while (query.executeStep()) {
            rows.push_back(query.getColumn(0).getString());
        }
        const std::string gid = newID2(idkind::profile, 1);
        EXPECT_EQ(rows, (std::vector<std::string>{
                            "rost 2014-03-01 52.50 " + gid, "ves 2014-03-01 3.40 " + gid,
                            "rost 2014-04-01 56.00 " + gid, "rich1 2014-05-10 1 " + gid}));
        SQLite::Statement child(*app.database().connectToBase(),
                                "select sbirthdate, sex from child where chid=1");
        ASSERT_TRUE(child.executeStep());
        EXPECT_EQ(child.getColumn(0).getString(), "2014-03-01");
        EXPECT_EQ(child.getColumn(1).getInt(), 1);
    }
    // A later launch does not take them over again.
    launch();
    SQLite::Statement again(*app.database().connectToBase(), "select count(*) from childdata");
    ASSERT_TRUE(again.executeStep());
    EXPECT_EQ(again.getColumn(0).getInt(), 4);
}

TEST_F(ApplicationTest, SwitchesOldCloudModesOff) {
    for (const auto& [stored, expected] :
         std::vector<std::pair<int, int>>{{2, 1}, {4, 1}, {5, 1}, {11, 11}, {12, 12}, {1, 1}}) {
        settings.setInt(keys::icloud, stored);
        launch();
        EXPECT_EQ(app.state().cloudMode, expected) << stored;
        EXPECT_EQ(core::JsonSettingsStore(settingsFile).intValue(keys::icloud), expected);
    }
}

TEST_F(ApplicationTest, ReadsStoredSwitches) {
    settings.setBool(keys::accelerate, true);
    settings.setBool(keys::pillsAlarm, true);
    settings.setBool(keys::chatIndi, false);
    settings.setBool(keys::showRec, false);
    settings.setInt(keys::backgroundId, 0);
    settings.setInt(keys::newscount, 5);
    launch();
    const AppState& state = app.state();
    EXPECT_TRUE(state.accelerate);
    EXPECT_TRUE(state.pillsAlarm);
    EXPECT_FALSE(state.chatIndi);
    EXPECT_FALSE(state.showRec);
    EXPECT_EQ(state.backgroundId, 0);
    EXPECT_EQ(state.newscount, 5);
}

TEST(MenuRows, LeaveOutRussianOnlyServicesForOtherLanguages) {
    const auto rows = buildMenuItems(2, "1.0");
    std::vector<int> ids;
    for (const auto& row : rows) {
        ids.push_back(row.id);
    }
    EXPECT_EQ(ids, (std::vector<int>{1,  2,  3,  4,  5,  6,  7,  10, 9,  23, 21, 22, 31,
                                     32, 36, 37, 38, 42, 43, 51, 52, 53, 54, 55, 56, 0}));
    EXPECT_EQ(pageCount(rows), 9);
    EXPECT_EQ(pageCount({}), 0);
}

TEST_F(ApplicationTest, GreetsEachChildOncePerBirthday) {
    launch();
    addChild(2, "Маша", "2024-11-22");
    addChild(3, "Петя", "2025-05-22");
    addChild(4, "Оля", "2023-11-22", 1);  // removed

    app.didBecomeActive();
    ASSERT_EQ(shell.alerts.size(), 1u);
    EXPECT_EQ(shell.alerts[0].title, "День рождения");
    EXPECT_EQ(shell.alerts[0].tag, 13);
    EXPECT_TRUE(shell.alerts[0].text.starts_with(
        "Маша празднует сегодня свой 2-й день рождения! Автор программы"));
    EXPECT_EQ(shell.alerts[0].buttons, (std::vector<std::string>{"Не сейчас", "Так и быть"}));
    EXPECT_TRUE(settings.boolValue(keys::birthdayGreeted(2, 2)));

    app.didBecomeActive();
    shell.alerts[0].onClose(0);  // "Не сейчас"
    EXPECT_EQ(shell.alerts.size(), 1u);
    EXPECT_TRUE(shell.openedUrls.empty());

    // A year on both Маша and the first child have a birthday, the elder first.
    clock.set(*app.dates().dateFromString("2027-11-22 09:00"));
    app.didBecomeActive();
    ASSERT_EQ(shell.alerts.size(), 3u);
    EXPECT_TRUE(shell.alerts[1].text.starts_with("Маша празднует сегодня свой 3-й"));
    EXPECT_TRUE(shell.alerts[2].text.starts_with(" празднует сегодня свой 1-й"));
    shell.alerts[2].onClose(1);  // "Так и быть"
    EXPECT_TRUE(settings.boolValue(keys::appStore));
    // The store page opens when this build has one.
    EXPECT_EQ(shell.openedUrls.size(), std::string(build::kStorePageUrl).empty() ? 0u : 1u);

    clock.set(*app.dates().dateFromString("2028-11-22 09:00"));
    app.didBecomeActive();
    EXPECT_EQ(shell.alerts.size(), 3u);
}

TEST_F(ApplicationTest, ActsOnAShortcutOnlyOverTheRootPage) {
    ASSERT_TRUE(app.didFinishLaunching({.shortcutType = "NEWNOTE|1"}));
    EXPECT_EQ(app.state().pendingShortcut, "NEWNOTE|1");
    app.didBecomeActive();
    ASSERT_EQ(shell.editorDays.size(), 1u);
    EXPECT_EQ(app.dates().dateToString(shell.editorDays[0], formats::moment),
              "2026-11-22 00:00:00");
    EXPECT_EQ(app.state().activeGid, "1");
    EXPECT_FALSE(app.state().pendingShortcut);

    // Arriving over a dialog, it is dropped and never acted on later.
    shell.rootCurrent = false;
    app.performShortcut("NEWNOTE|2");
    app.didBecomeActive();
    shell.rootCurrent = true;
    app.didBecomeActive();
    EXPECT_EQ(shell.editorDays.size(), 1u);
    EXPECT_EQ(app.state().activeGid, "1");

    app.quickStart("OTHER|5");
    EXPECT_EQ(app.state().activeGid, "5");
    EXPECT_EQ(shell.editorDays.size(), 1u);
}

TEST_F(ApplicationTest, QuickStartNeedsAProfile) {
    launch();
    app.quickStart("NEWNOTE");
    EXPECT_TRUE(shell.editorDays.empty());
    app.quickStart("");
    EXPECT_TRUE(shell.editorDays.empty());
    EXPECT_FALSE(app.state().activeGid);
}

TEST_F(ApplicationTest, RemembersWhenItWasLeft) {
    launch();
    app.willResignActive();
    EXPECT_EQ(core::JsonSettingsStore(settingsFile).dateValue(keys::deactive), clock.now());
    EXPECT_EQ(shell.keyboardHidden, 1);

    app.didEnterBackground();
    EXPECT_EQ(shell.lockCovers, 0);
    settings.setBool(keys::pass, true);
    app.didEnterBackground();
    EXPECT_EQ(shell.lockCovers, 1);
}

TEST_F(ApplicationTest, KeepsAnOpenedFileForTheDocumentScreens) {
    launch();
    EXPECT_TRUE(app.openUrl("https://example.org/page"));
    EXPECT_TRUE(shell.alerts.empty());
    EXPECT_FALSE(app.state().pendingFileUrl);

    EXPECT_TRUE(app.openUrl("file:///home/anna/Анализ крови.pdf"));
    EXPECT_EQ(app.state().pendingFileUrl, "file:///home/anna/Анализ крови.pdf");
    ASSERT_EQ(shell.alerts.size(), 1u);
    EXPECT_EQ(shell.alerts[0].title, "Файл к документу");
    EXPECT_EQ(shell.alerts[0].buttons, std::vector<std::string>{"ОК"});
}

TEST_F(ApplicationTest, ShowsNotificationsThatArrive) {
    std::vector<std::string> logged;
    platform::setLogSink([&](std::string_view line) { logged.emplace_back(line); });
    struct RestoreLog {
        ~RestoreLog() { platform::setLogSink({}); }
    } restoreLog;
    launch();

    app.didReceiveLocalNotification("Дать Нурофен");
    ASSERT_EQ(shell.alerts.size(), 1u);
    EXPECT_EQ(shell.alerts[0].title, "Напоминание");
    EXPECT_EQ(shell.alerts[0].text, "Дать Нурофен");
    EXPECT_EQ(shell.alerts[0].tag, 1);

    app.didReceiveRemoteNotification({{"aps", {{"badge", 2}, {"alert", "Новый ответ"}}}});
    EXPECT_EQ(shell.alerts.size(), 1u);
    app.didReceiveRemoteNotification(
        {{"aps", {{"badge", 2}, {"alert", "Новый ответ"}, {"show", 1}}}});
    ASSERT_EQ(shell.alerts.size(), 2u);
    EXPECT_EQ(shell.alerts[1].title, "Внимание");
    EXPECT_EQ(shell.alerts[1].text, "Новый ответ");
    EXPECT_EQ(shell.alerts[1].tag, 2);
    for (const nlohmann::json& odd : {nlohmann::json::array({1, 2}), nlohmann::json("aps"),
                                      nlohmann::json{{"aps", 5}}, nlohmann::json{}}) {
        app.didReceiveRemoteNotification(odd);
    }
    EXPECT_EQ(shell.alerts.size(), 2u);

    app.didRegisterForRemoteNotifications("<0a1b 2c3d>");
    EXPECT_EQ(app.state().pushToken, "0a1b2c3d");
    app.didFailToRegisterForRemoteNotifications("no network");
    EXPECT_EQ(logged.back(), "Failed to get token, error: no network");
}

}  // namespace
}  // namespace tilika::session

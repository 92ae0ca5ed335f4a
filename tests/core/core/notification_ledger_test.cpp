#include "core/notification_ledger.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/dates.h"
#include "platform/clock.h"
#include "platform/log.h"
#include "support/temp_dir.h"

namespace tilika::core {
namespace {

namespace fs = std::filesystem;
using platform::LocalNotification;

class NotificationLedger : public ::testing::Test {
protected:
    test::TempDir dir;
    fs::path library = dir.path() / "Library";
    platform::ManualClock clock{Date{}, "Europe/Moscow"};
    Dates dates{clock};
    std::vector<std::string> logLines;

    NotificationLedger() {
        fs::create_directories(library);
        clock.set(at("2026-11-22 09:00"));
        platform::setLogSink([this](std::string_view line) { logLines.emplace_back(line); });
    }
    ~NotificationLedger() override { platform::setLogSink({}); }

    Date at(const std::string& minute) const { return *dates.dateFromString(minute); }

    LocalNotification reminder(const std::string& minute, const std::string& body) const {
        return {at(minute), clock.timeZoneId(), "Открыть", body, ""};
    }

    std::vector<std::string> bodies(const std::vector<LocalNotification>& list) const {
        std::vector<std::string> result;
        for (const auto& n : list) {
            result.push_back(dates.dateToString(n.fireDate, formats::timeOfDay) + " " +
                             n.alertBody);
        }
        return result;
    }

    std::string fileText() const {
        std::ifstream in(library / "notifications.json");
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
};

TEST_F(NotificationLedger, RebuildWritesOnlyWhatChangedAndCancelKeepsDueEntries) {
    LedgerNotifier ledger(library, dates);
    const auto rebuild = [&](std::initializer_list<LocalNotification> list) {
        ledger.beginChanges();
        ledger.cancelAll();
        for (const auto& n : list) {
            ledger.schedule(n);
        }
        ledger.endChanges();
    };
    rebuild(
        {reminder("2026-11-22 12:00", "Аня: обед"), reminder("2026-11-22 09:30", "<врач> & Co")});
    EXPECT_EQ(ledger.writes(), 1);
    EXPECT_EQ(bodies(ledger.scheduled()),
              (std::vector<std::string>{"09:30 <врач> & Co", "12:00 Аня: обед"}));
    EXPECT_EQ(ledger.nextFireDate(), at("2026-11-22 09:30"));

    // The same rebuild again leaves the file alone.
    rebuild(
        {reminder("2026-11-22 12:00", "Аня: обед"), reminder("2026-11-22 09:30", "<врач> & Co")});
    EXPECT_EQ(ledger.writes(), 1);

    // 09:30 has come but nobody has shown it: a rebuild keeps it, without
    // adding it a second time, and it is no longer among the waiting ones.
    clock.set(at("2026-11-22 09:31"));
    rebuild({reminder("2026-11-22 09:30", "<врач> & Co"), reminder("2026-11-22 18:00", "ужин")});
    EXPECT_EQ(bodies(ledger.scheduled()), (std::vector<std::string>{"18:00 ужин"}));
    EXPECT_EQ(bodies(ledger.takeDue(clock.now())), (std::vector<std::string>{"09:30 <врач> & Co"}));
    EXPECT_TRUE(ledger.takeDue(clock.now()).empty());

    // Once shown it stays shown, however often the diary is rebuilt.
    rebuild({reminder("2026-11-22 09:30", "<врач> & Co"), reminder("2026-11-22 18:00", "ужин")});
    EXPECT_TRUE(ledger.takeDue(clock.now()).empty());

    // A damaged file is kept aside and the next rebuild starts afresh.
    std::ofstream(library / "notifications.json") << "{\"pending\": [tru";
    rebuild({reminder("2026-11-22 20:00", "сон")});
    EXPECT_TRUE(fs::exists(library / "notifications.json.damaged"));
    EXPECT_EQ(bodies(ledger.scheduled()), (std::vector<std::string>{"20:00 сон"}));
    EXPECT_NE(fileText().find("\"fireDate\": \"2026-11-22 20:00\""), std::string::npos);
}

TEST_F(NotificationLedger, TwoProcessesOnOneFolderDeliverAnEntryOnce) {
    LedgerNotifier program(library, dates);
    LedgerNotifier timer(library, dates);
    program.schedule(reminder("2026-11-22 10:00", "прививка"));
    program.schedule(reminder("2026-11-22 10:05", "сироп"));

    EXPECT_TRUE(timer.takeDue(at("2026-11-22 09:59")).empty());
    EXPECT_EQ(bodies(timer.takeDue(at("2026-11-22 10:00"))),
              (std::vector<std::string>{"10:00 прививка"}));
    EXPECT_TRUE(program.takeDue(at("2026-11-22 10:01")).empty());
    EXPECT_EQ(program.nextFireDate(), at("2026-11-22 10:05"));
    EXPECT_EQ(bodies(program.takeDue(at("2026-11-22 10:10"))),
              (std::vector<std::string>{"10:05 сироп"}));
    EXPECT_TRUE(timer.takeDue(at("2026-11-22 10:10")).empty());
    EXPECT_FALSE(timer.nextFireDate());
}

TEST_F(NotificationLedger, KeepsTheWallClockAcrossAZoneChange) {
    LedgerNotifier ledger(library, dates);
    ledger.schedule(reminder("2026-11-22 10:00", "Аня: прогулка"));
    const Date tenInMoscow = at("2026-11-22 10:00");

    // Moscow to Yekaterinburg: ten o'clock is still ten o'clock, two hours
    // earlier on the time line. The family lands at 09:00 local time.
    clock.set(at("2026-11-22 07:00"));
    clock.setTimeZoneId("Asia/Yekaterinburg");
    ASSERT_EQ(ledger.scheduled().size(), 1u);
    EXPECT_EQ(dates.dateToString(ledger.scheduled()[0].fireDate, formats::minute),
              "2026-11-22 10:00");
    EXPECT_EQ(ledger.nextFireDate(), tenInMoscow - std::chrono::hours(2));
    EXPECT_TRUE(ledger.takeDue(at("2026-11-22 09:59")).empty());
    EXPECT_EQ(ledger.takeDue(at("2026-11-22 10:00")).size(), 1u);
}

TEST_F(NotificationLedger, KeepsTheSoonest64AndDropsWhatIsLongOverdue) {
    LedgerNotifier ledger(library, dates);
    ledger.beginChanges();
    ledger.cancelAll();
    // An evening reminder the laptop slept through, and one just late.
    ledger.schedule(reminder("2026-11-21 20:59", "вчера вечером"));
    ledger.schedule(reminder("2026-11-21 21:01", "чуть позже"));
    for (int day = 70; day > 0; --day) {
        ledger.schedule({dates.addDays(at("2026-11-22 12:00"), day), clock.timeZoneId(), "Открыть",
                         "день " + std::to_string(day), ""});
    }
    ledger.endChanges();
    const auto waiting = ledger.scheduled();
    ASSERT_EQ(waiting.size(), 63u);
    EXPECT_EQ(waiting.front().alertBody, "день 1");
    EXPECT_EQ(waiting.back().alertBody, "день 63");
    EXPECT_EQ(std::count_if(logLines.begin(), logLines.end(),
                            [](const std::string& line) { return line.find("64") != line.npos; }),
              1);
    EXPECT_EQ(bodies(ledger.takeDue(clock.now())), (std::vector<std::string>{"21:01 чуть позже"}));
}

TEST_F(NotificationLedger, ReportsAFolderThatCannotBeRead) {
    LedgerNotifier missing(dir.path() / "nowhere" / "Library", dates);
    EXPECT_FALSE(missing.readable());
    EXPECT_TRUE(missing.takeDue(clock.now()).empty());
    EXPECT_FALSE(fs::exists(dir.path() / "nowhere"));

    LedgerNotifier ledger(library, dates);
    EXPECT_TRUE(ledger.readable());
    EXPECT_FALSE(ledger.nextFireDate());
    EXPECT_EQ(ledger.writes(), 0);
}

}  // namespace
}  // namespace tilika::core

#include "medication/reminders.h"

#include <gtest/gtest.h>

#include "diary/display_texts.h"
#include "diary/reference_lists.h"
#include "diary/value_codecs.h"
#include "frame/list_choices.h"
#include "medication/dose_times.h"
#include "support/core_fixture.h"
#include "support/recording_notifier.h"

namespace tilika::medication {
namespace {

using nlohmann::json;

constexpr std::string_view kFirstChild = "00000000-0000-0000-0001-000000000001";

class RemindersTest : public test::CoreFixture {
protected:
    test::RecordingNotifier notifier;
    Reminders reminders{context, notifier};
    std::vector<diary::ListRow> lists;

    RemindersTest() { diary::ReferenceLists(context).loadConstList(lists, 0, ""); }

    // A day row of the diary, `days` from today.
    void put(std::string_view type, int days, const std::string& value,
             std::string_view gid = kFirstChild) {
        SQLite::Statement insert(db(),
                                 "insert into childdata (type, value, sdat, childguid) "
                                 "values (?, ?, ?, ?)");
        insert.bind(1, std::string(type));
        insert.bind(2, value);
        insert.bind(3, dates.dateToString(dates.addDays(dates.now(), days), "yyyy-MM-dd"));
        insert.bind(4, std::string(gid));
        insert.exec();
    }

    static std::string alarms(const json& elements) { return diary::jsonFromObject(elements); }

    void rebuild(bool pills) {
        reminders.updateNoteAlarms();
        if (pills) {
            reminders.updatePillsAlarms(lists);
        }
    }

    // The pending notifications as "dd.MM HH:mm body", in the order given.
    std::vector<std::string> pending() const {
        std::vector<std::string> out;
        for (const auto& n : notifier.pending) {
            out.push_back(dates.dateToString(n.fireDate, "dd.MM HH:mm") + " " + n.alertBody);
        }
        return out;
    }

    std::string meal(std::string_view caption) const {
        return frame::indexByCaption(lists, diary::cotype::meals, caption);
    }

    json course(const std::string& inter, const std::string& eat,
                const std::string& times = "") const {
        json c{{"pillname", lists.front().index},
               {"pilldoza", "1/2<td>шт."},
               {"pillinter", inter},
               {"pilleat", meal(eat)}};
        if (!times.empty()) {
            c["pilltime"] = times;
        }
        return c;
    }

    std::string medicine() const { return diary::checkStringToRead(lists.front().index, lists); }
};

TEST_F(RemindersTest, RemindersStillToComeAreScheduledWithTheirTexts) {
    notifier.schedule({});  // left from an earlier rebuild
    put("alarm", -1, alarms({{{"time", "12:00"}, {"temp", "Вчера"}}}));
    put("alarm", 0,
        alarms({{{"time", "09:00"}, {"temp", "Уже прошло"}},
                {{"time", "18:00"}, {"temp", "Вечером"}},
                {{"time", "11:00"}, {"temp", ""}}}));
    put("alarm", 1, "Купить витамины");  // no JSON: nothing to schedule
    put("alarm", 2,
        alarms({{{"temp", "без времени"}},
                {{"time", "25:00"}, {"temp", "x"}},
                {{"time", "8:00"}, {"temp", "x"}},
                "not an element",
                {{"time", "07:15"}, {"temp", "<b>Мазь</b> & капли"}}}));
    // The rows are read by their old profile number, which the names are not
    // keyed by: even a row that has one shows no name.
    db().exec("update childdata set chid=1");

    reminders.updateNoteAlarms();
    EXPECT_EQ(notifier.cancels, 1);
    EXPECT_EQ(pending(), (std::vector<std::string>{
                             "22.11 18:00 (null): Вечером",
                             "22.11 11:00 (null): Напоминание программы Тилика",
                             "24.11 07:15 (null): <b>Мазь</b> & капли",
                         }));
    for (const auto& n : notifier.pending) {
        EXPECT_EQ(n.timeZone, "Europe/Moscow");
        EXPECT_EQ(n.alertAction, "Открыть");
        EXPECT_EQ(n.soundName, "");
    }

    // A later rebuild replaces, it doesn't add; a minute past a reminder's
    // time it is gone.
    clock.set(*dates.dateFromString("2026-11-22 11:01"));
    reminders.updateNoteAlarms();
    EXPECT_EQ(notifier.pending.size(), 2u);

    // Without a database nothing is scheduled, and what was cancelled stays
    // so until the next rebuild.
    database.disconnectFromBase();
    std::filesystem::remove(database.path());
    rebuild(true);
    EXPECT_TRUE(notifier.pending.empty());
}

TEST_F(RemindersTest, TheNextTwentyDayRowsOfAllChildrenAreServed) {
    const std::string anya = newChild("2024-03-01");
    for (int day = 1; day <= 12; ++day) {
        put("alarm", day, alarms({{{"time", "10:00"}, {"temp", "Маша " + std::to_string(day)}}}));
        put("alarm", day, alarms({{{"time", "09:00"}, {"temp", "Аня " + std::to_string(day)}}}),
            anya);
    }
    put("alarm", 13, alarms({{{"time", "10:00"}, {"temp", "Маша 13"}}}));

    reminders.updateNoteAlarms();
    const auto shown = pending();
    ASSERT_EQ(shown.size(), 20u);
    // By day, and within a day in the order the rows were written, whatever
    // their times.
    EXPECT_EQ(shown[0], "23.11 10:00 (null): Маша 1");
    EXPECT_EQ(shown[1], "23.11 09:00 (null): Аня 1");
    EXPECT_EQ(shown[19], "02.12 09:00 (null): Аня 10");

    reminders.updateNoteAlarms();
    EXPECT_EQ(pending(), shown);
}

TEST_F(RemindersTest, DosesFollowTheSwitchAndOnlyWorkedOutTimesFollowTheMeals) {
    const std::string anya = newChild("2024-03-01");
    put("alarm", 0, alarms({{{"time", "23:00"}, {"temp", "Спать"}}}));
    put("pills", 0,
        diary::jsonFromObject(json::array({course("2<td>раз в день", "После еды", "08:00<td>21:30"),
                                           course("2<td>раз в день", "Перед едой")})),
        anya);
    put("pills", 1, diary::jsonFromObject(json::array({course("1<td>раз в день", "Перед едой")})));
    put("pills", 2, "не курс");
    const std::string m = medicine();

    rebuild(true);
    EXPECT_EQ(pending(), (std::vector<std::string>{
                             "22.11 23:00 (null): Спать",
                             "22.11 21:30 Аня: " + m + ": 1/2 штуки",
                             "22.11 19:55 Аня: " + m + ": 1/2 штуки (Перед едой)",
                             "23.11 07:55 Без имени: " + m + ": 1/2 штуки (Перед едой)",
                         }));

    rebuild(false);
    EXPECT_EQ(pending(), (std::vector<std::string>{"22.11 23:00 (null): Спать"}));

    // Only the hour of a meal counts; times the parent set stay where they
    // are.
    ASSERT_TRUE(setObed(db(), "09:30<table>11:00<table>14:00<table>16:00<table>21:45"));
    rebuild(true);
    EXPECT_EQ(pending(), (std::vector<std::string>{
                             "22.11 23:00 (null): Спать",
                             "22.11 21:30 Аня: " + m + ": 1/2 штуки",
                             "22.11 20:55 Аня: " + m + ": 1/2 штуки (Перед едой)",
                             "23.11 08:55 Без имени: " + m + ": 1/2 штуки (Перед едой)",
                         }));
}

TEST_F(RemindersTest, FiveDosesGoWithTheMealsAndMoreByTheClock) {
    clock.set(*dates.dateFromString("2026-11-22 00:30"));
    put("pills", 1,
        diary::jsonFromObject(json::array(
            {course("5<td>раз в день", "После еды"), course("6<td>раз в день", "После еды")})));

    rebuild(true);
    const std::string dose = "Без имени: " + medicine() + ": 1/2 штуки";
    EXPECT_EQ(pending(), (std::vector<std::string>{
                             "23.11 08:10 " + dose + " (После еды)",
                             "23.11 11:10 " + dose + " (После еды)",
                             "23.11 14:10 " + dose + " (После еды)",
                             "23.11 16:10 " + dose + " (После еды)",
                             "23.11 20:10 " + dose + " (После еды)",
                             "23.11 08:00 " + dose + ", После еды",
                             "23.11 10:45 " + dose + ", После еды",
                             "23.11 13:30 " + dose + ", После еды",
                             "23.11 16:15 " + dose + ", После еды",
                             "23.11 19:00 " + dose + ", После еды",
                             "23.11 22:00 " + dose + ", После еды",
                         }));
}

// Reminders keep their time on the wall clock across a change of clocks; a
// time the change skips is no time at all.
TEST_F(RemindersTest, ChangesOfClocksKeepTheWallClockTime) {
    clock.setTimeZoneId("Europe/Berlin");
    clock.set(*dates.dateFromString("2027-03-27 10:00"));
    put("alarm", 1,
        alarms(
            {{{"time", "02:30"}, {"temp", "Пропущено"}}, {{"time", "10:00"}, {"temp", "Утро"}}}));
    put("pills", 1,
        diary::jsonFromObject(json::array({course("1<td>раз в день", "", "02:15<td>09:00")})));

    rebuild(true);
    EXPECT_EQ(pending(), (std::vector<std::string>{
                             "28.03 10:00 (null): Утро",
                             "28.03 09:00 Без имени: " + medicine() + ": 1/2 штуки",
                         }));
    ASSERT_FALSE(notifier.pending.empty());
    EXPECT_EQ(notifier.pending.front().timeZone, "Europe/Berlin");
    EXPECT_EQ(notifier.pending.front().fireDate - dates.now(), std::chrono::hours(23));
}

// The rebuild reads the next days of one type over all children at every
// activation: a diary made before the index came gets it when it is opened.
TEST_F(RemindersTest, OlderDiariesGainTheIndexByTypeAndDayAtOpen) {
    const std::string index = "select count(*) from sqlite_master where name='childdata_type_day'";
    EXPECT_EQ(queryText(index), "1");
    db().exec("drop index childdata_type_day");
    database.disconnectFromBase();
    EXPECT_EQ(queryText(index), "1");
}

}  // namespace
}  // namespace tilika::medication

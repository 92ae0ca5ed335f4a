#include "session/upgrade.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <map>
#include <sstream>

#include "core/ids.h"
#include "core/reserve_copies.h"
#include "core/settings_keys.h"
#include "diary/day_rows.h"
#include "diary/diary_store.h"
#include "support/core_fixture.h"

namespace tilika::session {
namespace {

namespace fs = std::filesystem;

std::string readText(const fs::path& file) {
    std::ifstream in(file);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// Every table's statement and rows, in a fixed order: two files with the
// same dump hold the same diary.
std::string dumpOf(const fs::path& file) {
    SQLite::Database db(file.string(), SQLite::OPEN_READONLY);
    std::string dump;
    std::vector<std::string> tables;
    SQLite::Statement schema(db, "select type, name, sql from sqlite_master order by name");
    while (schema.executeStep()) {
        dump += schema.getColumn(2).getString() + ";\n";
        if (schema.getColumn(0).getString() == "table") {
            tables.push_back(schema.getColumn(1).getString());
        }
    }
    for (const auto& table : tables) {
        SQLite::Statement rows(db, "select * from " + table + " order by rowid");
        while (rows.executeStep()) {
            dump += table + ":";
            for (int i = 0; i < rows.getColumnCount(); ++i) {
                dump += " " + (rows.getColumn(i).isNull() ? "NULL" : rows.getColumn(i).getString());
            }
            dump += "\n";
        }
    }
    return dump;
}

class UpgradeTest : public test::CoreFixture {
protected:
    fs::path reserv() const { return database.path().parent_path(); }

    // Puts a diary of an old version, built by one of the scripts, in
    // place of the new one.
    void oldDiary(const std::string& script) {
        database.disconnectFromBase();
        fs::remove(database.path());
        SQLite::Database old(database.path().string(),
                             SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        old.exec(readText(fs::path(TILIKA_SOURCE_DIR) / "tests/core/data" / script));
    }

    // One launch's chain; the copy it took before changing anything, if
    // any.
    fs::path upgrade() {
        database.disconnectFromBase();
        Upgrade chain(context);
        chain.run();
        return chain.backupFile();
    }

    std::vector<std::string> column(const std::string& sql) {
        std::vector<std::string> values;
        SQLite::Statement query(db(), sql);
        while (query.executeStep()) {
            values.push_back(query.getColumn(0).isNull() ? "NULL" : query.getColumn(0).getString());
        }
        return values;
    }

    int count(const std::string& sql) { return std::stoi(queryText(sql)); }

    // What the diary shows on these days of the first profile.
    std::vector<std::map<std::string, std::string>> shown(const std::vector<const char*>& days) {
        std::vector<std::map<std::string, std::string>> values;
        diary::DiaryStore store(context, courses);
        for (const char* day : days) {
            std::vector<diary::DayNote> notes;
            store.loadNoteData(notes, diary::loadregim::oneDay, 0, *dates.dateFromString(day),
                               core::newID2(core::idkind::profile, 1));
            values.push_back(notes.empty() ? std::map<std::string, std::string>{}
                                           : notes.front().values);
        }
        return values;
    }

    void touch(const fs::path& file) { std::ofstream(file) << file.filename().string(); }
};

TEST_F(UpgradeTest, OldestDiaryComesForwardWithItsRows) {
    oldDiary("oldest_diary.sql");
    // The first versions kept the first profile's tag ticks in the settings.
    settings.setBool("picTag2", true);
    const fs::path copy = upgrade();
    EXPECT_EQ(column("select tagguid from childselect where childguid='" +
                     core::newID2(core::idkind::profile, 1) + "' and seltypeid=1"),
              std::vector<std::string>{core::newID2(core::idkind::listRow, 2)});

    // Grams become kilograms; weights already in kilograms stay.
    EXPECT_EQ(column("select value from childdata where type='ves' order by datid"),
              (std::vector<std::string>{"3.500", "4.2", "5.150", "3.5"}));
    // Each day's marks become one row per kind, numbered as the lists are.
    EXPECT_EQ(column("select type || '=' || value from childdata where type in ('achive', "
                     "'health') order by chid, dat, type"),
              (std::vector<std::string>{"achive=1<tr>3", "health=1", "achive=2"}));
    EXPECT_EQ(count("select count(*) from childdata where type like 'achiv_%' and type <> "
                    "'achive' or type like 'health_%'"),
              0);
    EXPECT_EQ(queryText("select value from childdata where type='comment'"), "Первый раз в парке");

    // Days and birthdays as text, in the diary's time zone.
    EXPECT_EQ(column("select sdat from childdata where type='ves' order by datid"),
              (std::vector<std::string>{"2011-03-14", "2011-04-14", "2011-05-14", "2013-07-03"}));
    EXPECT_EQ(column("select sbirthdate || ' ' || sbirthtime || ' ' || blood || ' ' || "
                     "allergen || childguid from child order by chid"),
              (std::vector<std::string>{"2011-03-14 06:00 00000000-0000-0000-0002-000000000031 "
                                        "00000000-0000-0000-0001-000000000001",
                                        "2013-07-02 06:00 00000000-0000-0000-0002-000000000031 "
                                        "00000000-0000-0000-0001-000000000002"}));

    // The lists are the new diary's, with the seeded rows under their fixed
    // guids, each once.
    SQLite::Database shipped((folders.path(platform::SystemFolder::Root) / "child.sqlite").string(),
                             SQLite::OPEN_READONLY);
    SQLite::Statement template_rows(shipped, "select count(*) from childconst");
    template_rows.executeStep();
    EXPECT_EQ(count("select count(*) from childconst"), template_rows.getColumn(0).getInt());
    for (int seed : {7, 24, 31, 61, 69, 72}) {
        EXPECT_EQ(count("select count(*) from childconst where coguid='" +
                        core::newID2(core::idkind::seededRow, seed) + "'"),
                  1)
            << seed;
    }

    // The copy holds the diary as it was, and the daily rotation leaves it
    // alone.
    ASSERT_FALSE(copy.empty());
    EXPECT_EQ(copy.filename(), "before-upgrade-261122.sqlite");
    EXPECT_FALSE(core::isCopyName(copy));
    SQLite::Database before(copy.string(), SQLite::OPEN_READONLY);
    EXPECT_FALSE(before.tableExists("childconst"));
}

TEST_F(UpgradeTest, OldestDiaryReadsLikeTheSameDaysEnteredToday) {
    const std::vector<const char*> days = {"2011-03-14", "2011-04-14", "2011-05-14"};
    oldDiary("oldest_diary.sql");
    upgrade();
    const auto upgraded = shown(days);

    ASSERT_TRUE(database.startEmpty());
    db().exec("update child set sbirthdate='2011-03-14' where chid=1");
    const std::string gid = core::newID2(core::idkind::profile, 1);
    diary::DayRows rows(db(), dates);
    const auto put = [&](const char* day, const char* type, const char* value) {
        rows.insertValue(type, value, *dates.dateFromString(day), gid, true, false);
    };
    put("2011-03-14", "ves", "3.500");
    put("2011-03-14", "rost", "51");
    put("2011-04-14", "ves", "4.2");
    put("2011-04-14", "achive", "1<tr>3");
    put("2011-04-14", "health", "1");
    put("2011-05-14", "ves", "5.150");
    const auto temperature = nlohmann::json::array({{{"temp", "37.2"}, {"time", "12:30"}}});
    put("2011-05-14", "temp", temperature.dump(2).c_str());
    put("2011-05-14", "comment", "Первый раз в парке");
    EXPECT_EQ(upgraded, shown(days));
    EXPECT_EQ(upgraded[1].at("ves"), "4.2");
}

TEST_F(UpgradeTest, PhotosFollowTheirProfilesAndNeverOverwrite) {
    oldDiary("oldest_diary.sql");
    const fs::path documents = folders.path(platform::SystemFolder::Document);
    fs::remove_all(documents / "picture");
    touch(documents / "1-14-04-2011.jpg");
    touch(documents / "1-14-04-2011-s.jpg");
    touch(documents / "notes.txt");
    // A photo already in its new place wins over one left behind.
    fs::create_directories(documents / "picture");
    touch(documents / "2-03-07-2013.jpg");
    std::ofstream(documents / "picture" / "2-03-07-2013.jpg") << "kept";
    touch(documents / "picture" / "child2.jpg");
    upgrade();

    EXPECT_TRUE(fs::exists(documents / "picture" / "1-14-04-2011.jpg"));
    EXPECT_TRUE(fs::exists(documents / "picture-s" / "1-14-04-2011-s.jpg"));
    EXPECT_TRUE(fs::exists(documents / "notes.txt"));
    EXPECT_TRUE(fs::exists(documents / "2-03-07-2013.jpg"));
    EXPECT_EQ(readText(documents / "picture" / "2-03-07-2013.jpg"), "kept");
    EXPECT_FALSE(fs::exists(documents / "picture" / "child2.jpg"));
    EXPECT_EQ(readText(documents / "picture" / "child-00000000-0000-0000-0001-000000000002.jpg"),
              "child2.jpg");
    EXPECT_EQ(queryText("select childguid from child where chid=2"),
              "00000000-0000-0000-0001-000000000002");
}

TEST_F(UpgradeTest, OldMedicineRecordsGainTheirFieldAndLoseCopiesOnce) {
    // A course as the versions before the times of day stored it: the key
    // of the spread course came right after the first day.
    const std::string course =
        "7<table>1<td>2<table>3<td>1<table>10<table>18<table>1<td>1<table>"
        "20.11.2014<table>K1";
    const auto oldPills = [&](bool copiesRemoved) {
        oldDiary("lists_without_guids.sql");
        settings.setBool(core::keys::oldVersionPill3, copiesRemoved);
        {
            SQLite::Statement insert(db(),
                                     "insert into childdata (chid, dat, type, value) "
                                     "values (1, 1425157200, 'pills', ?)");
            insert.bind(1, course + "<end>" + course);
            insert.exec();
        }
        upgrade();
        upgrade();
        return nlohmann::json::parse(queryText("select value from childdata where type='pills'"));
    };
    for (bool copiesRemoved : {true, false}) {
        const auto courses = oldPills(copiesRemoved);
        ASSERT_EQ(courses.size(), copiesRemoved ? 2u : 1u);
        EXPECT_EQ(courses[0].value("key", ""), "K1");
        EXPECT_EQ(courses[0].value("pillsdate", ""), "20.11.2014");
        EXPECT_EQ(courses[0].value("pilltime", "?"), "");
    }
    EXPECT_TRUE(settings.boolValue(core::keys::oldVersionPill3));
    EXPECT_EQ(queryText("select obed from child"),
              "08:00<table>11:00<table>14:00<table>16:00<table>20:00");
}

TEST_F(UpgradeTest, ListsWithoutGuidsGainTheNewerColumnsAndRows) {
    oldDiary("lists_without_guids.sql");
    upgrade();

    // The user's own rows and choices stay as they were.
    EXPECT_EQ(queryText("select coname from childconst where coid=40"), "Бабушкин пирог");
    EXPECT_EQ(queryText("select blood from child"), core::newID2(core::idkind::listRow, 33));
    EXPECT_EQ(queryText("select coguid from childconst where coid=40"),
              core::newID2(core::idkind::listRow, 40));
    EXPECT_EQ(count("select count(*) from childselect where seltagid=2"), 1);
    EXPECT_EQ(column("select value from childdata where type='ves' order by datid"),
              (std::vector<std::string>{"3.350", "4.1"}));

    // The rows later versions brought come with their fixed guids; the
    // user's own food of the "other" kind keeps the seeded ones out.
    EXPECT_EQ(count("select count(*) from childconst where coguid like "
                    "'00000000-0000-0000-0004-%'"),
              9 + 18 + 3 + 2 + 1);
    EXPECT_EQ(count("select count(*) from childconst where cotype=103"), 10);
    EXPECT_EQ(queryText("select count(*) from childkorm"), "0");
    EXPECT_EQ(queryText("select sbirthdate from child"), "2015-01-01");
    EXPECT_EQ(queryText("select sdat from childdata where type='temp'"), "2015-03-01");
}

TEST_F(UpgradeTest, ASecondRunChangesNothing) {
    for (const char* script : {"oldest_diary.sql", "lists_without_guids.sql"}) {
        oldDiary(script);
        upgrade();
        const std::string once = dumpOf(database.path());
        EXPECT_TRUE(upgrade().empty()) << script;
        EXPECT_EQ(dumpOf(database.path()), once) << script;
    }
}

TEST_F(UpgradeTest, ALaunchFinishesAChainCutShort) {
    oldDiary("oldest_diary.sql");
    upgrade();
    const std::string whole = dumpOf(database.path());

    // A launch killed after the first steps leaves them done and the rest
    // undone; the next launch picks up from there.
    oldDiary("oldest_diary.sql");
    {
        Upgrade cut(context);
        cut.fromOldVersionConstGuid();
        cut.fromOldVersionChildFields();
        cut.fromOldVersionChildCorrectVes();
        cut.fromOldVersionChild7();
    }
    upgrade();
    EXPECT_EQ(dumpOf(database.path()), whole);
}

TEST_F(UpgradeTest, CurrentDiaryIsLeftAsItIs) {
    newChild("2024-05-01", "3.4", "52");
    const std::string before = dumpOf(database.path());
    EXPECT_TRUE(upgrade().empty());
    EXPECT_EQ(dumpOf(database.path()), before);
    for (const auto& entry : fs::directory_iterator(reserv())) {
        EXPECT_EQ(entry.path().filename().string().find("before-upgrade"), std::string::npos);
    }
}

}  // namespace
}  // namespace tilika::session

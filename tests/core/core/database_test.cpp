#include "core/database.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sqlite3.h>

#include "core/dates.h"
#include "core/ids.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "support/temp_dir.h"

namespace tilika::core {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class DatabaseStoreTest : public ::testing::Test {
protected:
    test::TempDir dir;
    platform::DataFolders folders{dir.path() / "data", test::resourceDir()};
    platform::ManualClock clock{Date{}, "Europe/Moscow"};
    Dates dates{clock};
    DatabaseStore store{folders, dates};

    void SetUp() override { clock.set(*dates.dateFromString("2026-11-22 10:00")); }

    fs::path reserv() const { return folders.path(platform::SystemFolder::Reserv); }

    std::set<std::string> reservFiles() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(reserv())) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    static int count(SQLite::Database& db, const std::string& sql) {
        SQLite::Statement query(db, sql);
        return query.executeStep() ? query.getColumn(0).getInt() : -1;
    }

    static int countIn(const fs::path& file, const std::string& sql) {
        SQLite::Database db(file.string(), SQLite::OPEN_READONLY);
        return count(db, sql);
    }

    void addNote(std::string_view value) {
        SQLite::Database* db = store.connectToBase();
        ASSERT_NE(db, nullptr);
        SQLite::Statement insert(*db,
                                 "insert into childdata (type, value, sdat, childguid) "
                                 "values ('note', ?, '2026-11-22', ?)");
        insert.bind(1, std::string(value));
        insert.bind(2, newID2(idkind::profile, 1));
        insert.exec();
    }
};

TEST_F(DatabaseStoreTest, FirstRunCopiesTheTemplateWithItsLists) {
    EXPECT_TRUE(store.fromOldVersionNewRestore());
    EXPECT_FALSE(store.fromOldVersionNewRestore());
    ASSERT_TRUE(fs::is_regular_file(store.path()));
    EXPECT_TRUE(store.testBaseFile());

    SQLite::Database* db = store.connectToBase();
    ASSERT_NE(db, nullptr);
    for (int cotype : {1, 2, 3, 4, 5, 6, 7, 8, 9, 101, 102, 103, 200, 201}) {
        EXPECT_GT(
            count(*db, "select count(*) from childconst where cotype=" + std::to_string(cotype)), 0)
            << cotype;
    }
    EXPECT_EQ(count(*db, "select count(*) from childconst where cotype=3 and deleted=4"), 1);
    EXPECT_GT(count(*db,
                    "select count(*) from childconst where cotype=3 and coname like "
                    "'%<tr>1' and deleted=2"),
              0);
    EXPECT_EQ(count(*db, "select count(*) from childconst where cotype=4"), 9);
    EXPECT_EQ(count(*db, "select count(*) from childconst where coguid is null or coname is null"),
              0);
    EXPECT_EQ(count(*db, "select count(*) - count(distinct coguid) from childconst"), 0);

    // Rows other devices know by their fixed guids.
    auto captionOf = [&](const std::string& guid) {
        SQLite::Statement query(*db, "select coname from childconst where coguid=?");
        query.bind(1, guid);
        return query.executeStep() ? query.getColumn(0).getString() : std::string("<none>");
    };
    EXPECT_EQ(captionOf(newID2(idkind::listRow, 31)), "Не известна");
    EXPECT_EQ(captionOf(newID2(idkind::seededRow, 61)), "Нутрилон 1");
    EXPECT_EQ(captionOf(newID2(idkind::seededRow, 70)), "Сцеженное молоко<tr>2");
    EXPECT_EQ(captionOf(newID2(idkind::seededRow, 9)), "Парацетамол");
    EXPECT_EQ(captionOf(newID2(idkind::seededRow, 52)), "Свидетельство о рождении");

    EXPECT_EQ(count(*db, "select count(*) from child where chid=1 and childguid='" +
                             newID2(idkind::profile, 1) + "'"),
              1);
    EXPECT_EQ(count(*db, "select count(*) from childdata"), 0);
}

TEST_F(DatabaseStoreTest, MovesADatabaseFromAnOldHomeAndKeepsItsRows) {
    ASSERT_TRUE(store.fromOldVersionNewRestore());
    addNote("from the old home");
    store.disconnectFromBase();

    const fs::path documents = folders.path(platform::SystemFolder::Document);
    fs::rename(store.path(), documents / "child.sqlite");
    EXPECT_FALSE(store.fromOldVersionNewRestore());
    EXPECT_FALSE(fs::exists(documents / "child.sqlite"));
    EXPECT_EQ(countIn(store.path(), "select count(*) from childdata"), 1);

    // A file in an old home wins over the one in place, which is kept aside.
    fs::create_directories(folders.path(platform::SystemFolder::Library));
    fs::copy_file(store.path(), folders.path(platform::SystemFolder::Library) / "child.sqlite");
    addNote("only in the newer file");
    store.disconnectFromBase();
    EXPECT_FALSE(store.fromOldVersionNewRestore());
    EXPECT_EQ(countIn(store.path(), "select count(*) from childdata"), 1);
    fs::path kept = store.path();
    kept += ".replaced";
    EXPECT_EQ(countIn(kept, "select count(*) from childdata"), 2);

    // Files in both old homes: each displaced file is kept under a name of
    // its own, and a pending journal travels with its database.
    fs::copy_file(store.path(), folders.path(platform::SystemFolder::Library) / "child.sqlite");
    fs::copy_file(kept, documents / "child.sqlite");
    std::ofstream(documents / "child.sqlite-journal") << "journal";
    // The moved database is checked at once, and SQLite settles the journal
    // beside it then: it must have travelled, or it would be left behind.
    EXPECT_FALSE(store.fromOldVersionNewRestore());
    EXPECT_FALSE(fs::exists(documents / "child.sqlite-journal"));
    EXPECT_TRUE(fs::exists(reserv() / "child.sqlite.replaced-2"));
    EXPECT_TRUE(fs::exists(reserv() / "child.sqlite.replaced-3"));
    EXPECT_EQ(countIn(store.path(), "select count(*) from childdata"), 2);
}

TEST_F(DatabaseStoreTest, CopiesOncePerDayNamedForYesterday) {
    ASSERT_TRUE(store.fromOldVersionNewRestore());
    ASSERT_NE(store.connectToBase(), nullptr);
    EXPECT_EQ(reservFiles(), (std::set<std::string>{"261121.sqlite", "child.sqlite"}));

    addNote("Sunday");
    ASSERT_NE(store.connectToBase(), nullptr);
    EXPECT_EQ(reservFiles().size(), 2u);
    // The copy holds the day as it was before its first connect.
    EXPECT_EQ(countIn(reserv() / "261121.sqlite", "select count(*) from childdata"), 0);

    // Past midnight, with the connection still open, the next connect copies
    // Sunday's data under Sunday's name.
    clock.advance(15h);
    addNote("Monday");
    EXPECT_EQ(reservFiles(),
              (std::set<std::string>{"261121.sqlite", "261122.sqlite", "child.sqlite"}));
    EXPECT_EQ(countIn(reserv() / "261122.sqlite", "select count(*) from childdata"), 1);
    EXPECT_EQ(countIn(store.path(), "select count(*) from childdata"), 2);

    // A new store on the same day (the next start) copies nothing more.
    store.disconnectFromBase();
    DatabaseStore restarted(folders, dates);
    ASSERT_NE(restarted.connectToBase(), nullptr);
    EXPECT_EQ(reservFiles().size(), 3u);
}

TEST_F(DatabaseStoreTest, KeepsFiveFilesAndDropsTheOldestCopy) {
    ASSERT_TRUE(store.fromOldVersionNewRestore());
    for (const char* name : {"261001.sqlite", "261002.sqlite", "261003.sqlite", "261004.sqlite"}) {
        fs::copy_file(store.path(), reserv() / name);
    }
    std::ofstream(reserv() / "261120.sqlite.part") << "left by a crash";
    // The copy taken before an upgrade is kept by hand, outside the count.
    fs::copy_file(store.path(), reserv() / "before-upgrade-200101.sqlite");

    ASSERT_NE(store.connectToBase(), nullptr);
    EXPECT_EQ(reservFiles(),
              (std::set<std::string>{"261002.sqlite", "261003.sqlite", "261004.sqlite",
                                     "261121.sqlite", "child.sqlite", "261120.sqlite.part",
                                     "before-upgrade-200101.sqlite"}));

    // One file goes per day, however many there are.
    for (const char* name : {"250101.sqlite", "250102.sqlite"}) {
        fs::copy_file(store.path(), reserv() / name);
    }
    clock.advance(24h);
    ASSERT_NE(store.connectToBase(), nullptr);
    EXPECT_FALSE(reservFiles().contains("250101.sqlite"));
    EXPECT_TRUE(reservFiles().contains("250102.sqlite"));
    EXPECT_TRUE(reservFiles().contains("261122.sqlite"));
    EXPECT_TRUE(reservFiles().contains("child.sqlite"));
    EXPECT_TRUE(reservFiles().contains("before-upgrade-200101.sqlite"));
}

TEST_F(DatabaseStoreTest, RetriesAFailedCopyAFewTimes) {
    ASSERT_TRUE(store.fromOldVersionNewRestore());
    // Something in the way of the copy's file makes it fail.
    const fs::path blocker = reserv() / "261121.sqlite.part";
    fs::create_directories(blocker / "inside");

    for (int attempt = 0; attempt < 2; ++attempt) {
        ASSERT_NE(store.connectToBase(), nullptr);
        EXPECT_FALSE(fs::exists(reserv() / "261121.sqlite"));
    }
    fs::remove_all(blocker);
    ASSERT_NE(store.connectToBase(), nullptr);
    EXPECT_EQ(countIn(reserv() / "261121.sqlite", "select count(*) from child"), 1);

    // After three failures the day goes without a copy rather than stall
    // every operation.
    clock.advance(24h);
    fs::create_directories(reserv() / "261122.sqlite.part" / "inside");
    for (int attempt = 0; attempt < 3; ++attempt) {
        store.connectToBase();
    }
    fs::remove_all(reserv() / "261122.sqlite.part");
    store.connectToBase();
    EXPECT_FALSE(fs::exists(reserv() / "261122.sqlite"));
}

TEST_F(DatabaseStoreTest, NeverCreatesAnEmptyDatabase) {
    EXPECT_EQ(store.connectToBase(), nullptr);
    EXPECT_FALSE(fs::exists(store.path()));
    EXPECT_TRUE(store.testBaseFile());  // nothing to open is not a broken file

    // Without a template to copy, the store stays empty rather than invent one.
    platform::DataFolders bare(dir.path() / "bare", dir.path() / "no-resources");
    DatabaseStore empty(bare, dates);
    EXPECT_TRUE(empty.fromOldVersionNewRestore());
    EXPECT_EQ(empty.connectToBase(), nullptr);
}

TEST_F(DatabaseStoreTest, ReadsAndBindsStoredForms) {
    ASSERT_TRUE(store.fromOldVersionNewRestore());
    SQLite::Database* db = store.connectToBase();
    ASSERT_NE(db, nullptr);
    db->exec("create temp table forms (day text, moment text)");

    SQLite::Statement insert(*db, "insert into forms values (?, ?)");
    const Date when = *dates.dateFromString("2026-02-03 04:05:06");
    dateToBase(dates, insert, 1, when, false);
    dateToBase(dates, insert, 2, when, true);
    insert.exec();
    insert.reset();
    dateToBase(dates, insert, 1, std::nullopt, false);
    insert.bind(2, "not a date");
    insert.exec();

    SQLite::Statement select(*db, "select day, moment from forms order by rowid");
    ASSERT_TRUE(select.executeStep());
    EXPECT_EQ(stringFromBase(select, 0), "2026-02-03");
    EXPECT_EQ(stringFromBase(select, 1), "2026-02-03 04:05:06");
    EXPECT_EQ(dateFromBase(dates, select, 0, false), dates.noTime(when));
    EXPECT_EQ(dateFromBase(dates, select, 1, true), when);
    ASSERT_TRUE(select.executeStep());
    EXPECT_EQ(stringFromBase(select, 0), std::nullopt);
    EXPECT_EQ(dateFromBase(dates, select, 0, false), std::nullopt);
    EXPECT_EQ(dateFromBase(dates, select, 1, true), std::nullopt);
}

TEST_F(DatabaseStoreTest, WritesOfOneActionLandTogether) {
    ASSERT_TRUE(store.fromOldVersionNewRestore());
    SQLite::Database& db = *store.connectToBase();
    {
        WriteTransaction outer(db);
        addNote("kept");
        {
            // An inner whole joins the outer one instead of failing.
            WriteTransaction inner(db);
            addNote("inner");
            inner.commit();
        }
        outer.commit();
    }
    {
        WriteTransaction abandoned(db);
        addNote("lost");
    }
    EXPECT_EQ(count(db, "select count(*) from childdata"), 2);

    // A part that failed inside, even one whose failure was caught and
    // dropped on the way, fails the whole: nothing of it is kept.
    db.exec("PRAGMA query_only = 1");
    const WriteResult result = tryWrite("whole", [&] {
        WriteTransaction outer(db);
        EXPECT_FALSE(runGuarded("part", [&] {
            WriteTransaction inner(db);
            addNote("half");
            inner.commit();
        }));
        db.exec("PRAGMA query_only = 0");
        addNote("other half");
        outer.commit();
    });
    EXPECT_EQ(result.failure(), WriteFailure::readOnly);
    EXPECT_EQ(count(db, "select count(*) from childdata"), 2);
    EXPECT_NE(sqlite3_get_autocommit(db.getHandle()), 0);
}

TEST_F(DatabaseStoreTest, QuietlyEndsAFailedStatement) {
    ASSERT_TRUE(store.fromOldVersionNewRestore());
    SQLite::Database* db = store.connectToBase();
    bool reached = false;
    EXPECT_FALSE(runGuarded("probe", [&] {
        SQLite::Statement probe(*db, "select nosuchcolumn from child");
        reached = true;
    }));
    EXPECT_FALSE(reached);
}

}  // namespace
}  // namespace tilika::core

#include "core/reserve_copies.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "support/core_fixture.h"

namespace tilika::core {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

enum class Damage { cutTo100Bytes, garbage, pageOverwritten };

class DamagedDiaryTest : public test::CoreFixture {
protected:
    fs::path reserv() const { return folders.path(platform::SystemFolder::Reserv); }
    fs::path live() const { return database.path(); }

    // A second child and entries on two days, then a day later the daily
    // copy of all that: "261122.sqlite".
    void fillAndCopy() {
        db().exec(
            "insert into child (chname, childguid, sbirthdate) "
            "values ('Вера', 'vera', '2025-03-01')");
        db().exec(
            "insert into childdata (type, value, sdat, childguid) values "
            "('note', 'a', '2026-11-21', 'vera'), ('note', 'b', '2026-11-22', 'vera'), "
            "('note', 'c', '2026-11-22 18:00:00', 'vera')");
        clock.advance(24h);
        db();
        ASSERT_TRUE(fs::exists(reserv() / "261122.sqlite"));
    }

    void damage(Damage kind) {
        database.disconnectFromBase();
        const auto size = fs::file_size(live());
        switch (kind) {
            case Damage::cutTo100Bytes:
                fs::resize_file(live(), 100);
                break;
            case Damage::garbage: {
                std::mt19937 random(7);
                std::ofstream out(live(), std::ios::binary | std::ios::trunc);
                for (std::uintmax_t i = 0; i < size; ++i) {
                    out.put(static_cast<char>(random()));
                }
                break;
            }
            case Damage::pageOverwritten: {
                // Page 2 is the root of the first table; the file keeps its size.
                std::fstream out(live(), std::ios::binary | std::ios::in | std::ios::out);
                out.seekp(4096);
                for (int i = 0; i < 4096; ++i) {
                    out.put(static_cast<char>(0x5a ^ i));
                }
                break;
            }
        }
    }

    static int countIn(const fs::path& file, const char* sql) {
        SQLite::Database copy(file.string(), SQLite::OPEN_READONLY);
        SQLite::Statement query(copy, sql);
        return query.executeStep() ? query.getColumn(0).getInt() : -1;
    }
};

TEST_F(DamagedDiaryTest, ADamagedDiaryIsKeptAsideAndRestoredFromACopy) {
    fillAndCopy();
    damage(Damage::cutTo100Bytes);
    clock.advance(24h);

    // The next start: nothing is made where the diary was, and no copy of
    // the broken file pushes a good one out.
    DatabaseStore restarted(folders, dates);
    EXPECT_FALSE(restarted.fromOldVersionNewRestore());
    EXPECT_TRUE(restarted.damaged());
    EXPECT_EQ(restarted.connectToBase(), nullptr);
    EXPECT_FALSE(fs::exists(live()));
    EXPECT_EQ(restarted.damagedFile(), reserv() / "child.sqlite.damaged");
    EXPECT_EQ(fs::file_size(restarted.damagedFile()), 100u);
    EXPECT_FALSE(fs::exists(reserv() / "261123.sqlite"));

    const std::vector<ReserveCopy> copies = reserveCopies(reserv(), dates);
    ASSERT_EQ(copies.size(), 2u);
    EXPECT_EQ(copies[0].file.filename(), "261122.sqlite");
    EXPECT_EQ(dates.dateToString(copies[0].day, "dd.MM.yyyy"), "22.11.2026");
    EXPECT_TRUE(copies[0].sound);
    EXPECT_EQ(copies[0].children, 2);
    EXPECT_EQ(copies[0].days, 2);
    EXPECT_EQ(copies[1].file.filename(), "261121.sqlite");
    EXPECT_EQ(copies[1].children, 1);
    EXPECT_EQ(copies[1].days, 0);
    EXPECT_EQ(copySummary(copies[0]), "2 ребенка, 2 дня в дневнике");
    EXPECT_EQ(copySummary(copies[1]), "1 ребенок, 0 дней в дневнике");

    ASSERT_TRUE(restarted.restoreFrom(copies[0].file));
    EXPECT_FALSE(restarted.damaged());
    SQLite::Database* db = restarted.connectToBase();
    ASSERT_NE(db, nullptr);
    EXPECT_EQ(db->execAndGet("select chname from child where childguid='vera'").getString(),
              "Вера");
    EXPECT_TRUE(fs::exists(reserv() / "child.sqlite.damaged"));
    // The restored diary is the one the day's copy is made of.
    EXPECT_EQ(countIn(reserv() / "261123.sqlite", "select count(*) from childdata"), 3);
}

TEST_F(DamagedDiaryTest, EveryKindOfDamageIsCaughtAtStartOrOnANewDay) {
    fillAndCopy();
    const fs::path good = dir.path() / "good.sqlite";
    database.disconnectFromBase();
    fs::copy_file(live(), good);

    int kept = 0;
    for (Damage kind : {Damage::cutTo100Bytes, Damage::garbage, Damage::pageOverwritten}) {
        SCOPED_TRACE(static_cast<int>(kind));
        fs::copy_file(good, live(), fs::copy_options::overwrite_existing);
        damage(kind);
        EXPECT_EQ(checkDatabaseFile(live()), FileHealth::damaged);
        DatabaseStore restarted(folders, dates);
        EXPECT_FALSE(restarted.fromOldVersionNewRestore());
        ASSERT_TRUE(restarted.damaged());
        // Each damaged file is kept under a name of its own.
        EXPECT_EQ(
            restarted.damagedFile().filename(),
            ++kept == 1 ? "child.sqlite.damaged" : "child.sqlite.damaged-" + std::to_string(kept));
        EXPECT_FALSE(fs::exists(live()));
    }

    // A program left running past midnight checks the file before the copy.
    fs::copy_file(good, live());
    ASSERT_NE(database.connectToBase(), nullptr);
    damage(Damage::pageOverwritten);
    clock.advance(24h);
    EXPECT_EQ(database.connectToBase(), nullptr);
    EXPECT_TRUE(database.damaged());
    EXPECT_FALSE(fs::exists(reserv() / "261123.sqlite"));
    EXPECT_TRUE(fs::exists(reserv() / "child.sqlite.damaged-4"));
    EXPECT_EQ(checkDatabaseFile(reserv() / "261122.sqlite"), FileHealth::sound);
}

TEST_F(DamagedDiaryTest, DamagedCopiesComeLastAndAreNeverRestored) {
    fillAndCopy();
    std::ofstream(reserv() / "261123.sqlite") << "not a database at all";
    std::ofstream(reserv() / "notes.sqlite") << "not a daily copy";

    const std::vector<ReserveCopy> copies = reserveCopies(reserv(), dates);
    ASSERT_EQ(copies.size(), 3u);
    EXPECT_TRUE(copies[0].sound);
    EXPECT_EQ(copies[0].file.filename(), "261122.sqlite");
    EXPECT_FALSE(copies[2].sound);
    EXPECT_EQ(copies[2].file.filename(), "261123.sqlite");
    EXPECT_EQ(copySummary(copies[2]), "копия повреждена");

    EXPECT_FALSE(database.restoreFrom(copies[2].file));
    EXPECT_EQ(queryText("select count(*) from child"), "2");

    // Restoring over a sound diary keeps the one it replaces.
    ASSERT_TRUE(database.restoreFrom(reserv() / "261121.sqlite"));
    EXPECT_EQ(queryText("select count(*) from child"), "1");
    EXPECT_EQ(countIn(reserv() / "child.sqlite.replaced", "select count(*) from child"), 2);
}

TEST_F(DamagedDiaryTest, StartsEmptyOnlyWhenAskedAndKeepsTheDamagedFile) {
    fillAndCopy();
    damage(Damage::garbage);
    DatabaseStore restarted(folders, dates);
    restarted.fromOldVersionNewRestore();
    ASSERT_TRUE(restarted.damaged());
    // Asking again, as a second start would, still makes nothing.
    EXPECT_FALSE(restarted.fromOldVersionNewRestore());
    EXPECT_FALSE(fs::exists(live()));

    ASSERT_TRUE(restarted.startEmpty());
    EXPECT_FALSE(restarted.damaged());
    ASSERT_NE(restarted.connectToBase(), nullptr);
    EXPECT_EQ(countIn(live(), "select count(*) from child"), 1);
    EXPECT_EQ(countIn(live(), "select count(*) from childdata"), 0);
    EXPECT_TRUE(fs::exists(reserv() / "child.sqlite.damaged"));
}

}  // namespace
}  // namespace tilika::core

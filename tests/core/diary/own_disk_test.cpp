// Saves on a disk that really refuses them: a small tmpfs of this run alone,
// turned read-only or filled up under the program. run_on_own_disk.sh gives
// the tests that disk; without it they are skipped.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>
#include <vector>

#include "core/ids.h"
#include "diary/diary_store.h"
#include "frame/navigation.h"
#include "support/core_fixture.h"

namespace tilika::diary {
namespace {

namespace fs = std::filesystem;

// The disk the tests were given, or nothing.
std::optional<fs::path> ownDisk() {
    const char* disk = std::getenv("TILIKA_TEST_DISK");
    if (disk == nullptr || *disk == '\0') {
        return std::nullopt;
    }
    return fs::path(disk);
}

class OwnDiskTest : public test::CoreFixture {
protected:
    DiaryStore store{context, courses};
    Profiles profiles{context};
    const std::string gid = core::newID2(core::idkind::profile, 1);
    const core::Date today = *dates.dateFromString("2026-11-20");
    std::vector<ListRow> list;
    std::vector<CatalogueRow> day;
    SetupRecord child;

    void SetUp() override {
        if (!ownDisk()) {
            GTEST_SKIP() << "needs a disk of its own; ctest runs it through run_on_own_disk.sh";
        }
        ASSERT_EQ(dir.path().parent_path(), *ownDisk()) << "the diary must live on that disk";

        // A child with a day, saved while the disk takes writes.
        child = profiles.loadSetupData(gid);
        child.name = "Миша";
        ASSERT_TRUE(profiles.saveSetupData(saveflag::form, child, gid));
        store.lists().loadConstList(list, cotype::all, "");
        store.noteStructToTodayNote(store.todayNoteForDay(today, gid), day, list);
        day[16].source = "первая заметка";  // note
        ASSERT_TRUE(store.saveNoteData(1, day, list, gid, today));
    }

    void TearDown() override {
        if (ownDisk()) {
            remount(false);
            std::error_code error;
            fs::remove(*ownDisk() / "filler", error);
        }
    }

    static void remount(bool readOnly) {
        unsigned long flags = MS_REMOUNT;
        if (readOnly) {
            flags |= MS_RDONLY;
        }
        ASSERT_EQ(::mount(nullptr, ownDisk()->c_str(), nullptr, flags, nullptr), 0)
            << std::strerror(errno);
    }

    // Writes a file until the disk has no byte left.
    static void fill() {
        const fs::path filler = *ownDisk() / "filler";
        const int fd = ::open(filler.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ASSERT_GE(fd, 0) << std::strerror(errno);
        const std::vector<char> block(64 * 1024, 'x');
        for (std::size_t size = block.size(); size > 0; size /= 2) {
            while (::write(fd, block.data(), size) == static_cast<ssize_t>(size)) {
            }
        }
        const int written = errno;
        ::close(fd);
        ASSERT_EQ(written, ENOSPC) << std::strerror(written);
    }

    // The saves of a parent's evening: the profile, the day with a course
    // over a week, a new list row and a switch of the menu.
    void saveAll(std::optional<core::WriteFailure> database,
                 std::optional<core::WriteFailure> settingsFile) {
        child.name = "Михаил";
        EXPECT_EQ(profiles.saveSetupData(saveflag::form, child, gid).failure(), database);
        day[16].source = "вторая заметка";
        day[4].source =
            R"([{"pillname":")" + core::newID2(core::idkind::seededRow, 8) +
            R"(","pilldoza":"1<td>шт.","pillinter":"3<td>раз в день","pilllength":"1<td>недели",)"
            R"("pillsdate":"20.11.2026"}])";
        EXPECT_EQ(store.saveNoteData(1, day, list, gid, today).failure(), database);
        std::vector<ListRow> complaints;
        EXPECT_EQ(store.lists()
                      .addFromListScreen(NewListRow::plain(cotype::complaints, "Икота"), complaints)
                      .result.failure(),
                  database);
        EXPECT_EQ(frame::changeMenuSetting(settings, state, 53, true).failure(), settingsFile);
    }

    void expectFirstEvening() {
        EXPECT_EQ(profiles.loadSetupData(gid).name, "Миша");
        EXPECT_EQ(store.todayNoteForDay(today, gid).value("note"), "первая заметка");
        EXPECT_EQ(queryText("select count(*) from childdata where type='pills'"), "0");
        EXPECT_EQ(queryText("select count(*) from childconst where coname='Икота'"), "0");
    }

    void expectSecondEvening() {
        EXPECT_EQ(profiles.loadSetupData(gid).name, "Михаил");
        EXPECT_EQ(store.todayNoteForDay(today, gid).value("note"), "вторая заметка");
        EXPECT_EQ(queryText("select count(*) from childdata where type='pills'"), "7");
        EXPECT_EQ(queryText("select count(*) from childconst where coname='Икота'"), "1");
    }
};

TEST_F(OwnDiskTest, ADiskTurnedReadOnlyLosesNothingAndTakesTheSavesOnceWritable) {
    // A remount waits for no file open for writing: the program lets its
    // connection go, as it does when it goes to the background.
    database.disconnectFromBase();
    remount(true);
    saveAll(core::WriteFailure::readOnly, core::WriteFailure::settings);
    expectFirstEvening();

    remount(false);
    saveAll(std::nullopt, std::nullopt);
    expectSecondEvening();
}

TEST_F(OwnDiskTest, AFullDiskLosesNothingAndTakesTheSavesOnceThereIsRoom) {
    fill();
    saveAll(core::WriteFailure::diskFull, core::WriteFailure::settings);
    expectFirstEvening();

    fs::remove(*ownDisk() / "filler");
    saveAll(std::nullopt, std::nullopt);
    expectSecondEvening();
}

}  // namespace
}  // namespace tilika::diary

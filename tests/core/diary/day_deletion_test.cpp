#include "diary/day_deletion.h"

#include <gtest/gtest.h>

#include <fstream>

#include "core/ids.h"
#include "diary/day_rows.h"
#include "support/core_fixture.h"

namespace tilika::diary {
namespace {

namespace fs = std::filesystem;

class DayDeletionTest : public test::CoreFixture {
protected:
    DiaryStore store{context, courses};
    fs::path documents = folders.path(platform::SystemFolder::Document);

    static void touch(const fs::path& file) { std::ofstream(file) << "x"; }

    DayNote day(const std::string& gid, const char* date) {
        return store.todayNoteForDay(*dates.dateFromString(date), gid);
    }
};

TEST_F(DayDeletionTest, RowsGoAndOnlyOldAnalysisFilesWithThem) {
    const std::string gid = core::newID();
    DayRows rows(db(), dates);
    const core::Date june = *dates.dateFromString("2026-06-01");
    const core::Date july = *dates.dateFromString("2026-07-01");
    rows.insertValue("note", "Заметка", june, gid, true, false);
    rows.insertValue("temp", R"([{"time":"08:00","temp":"37.2"}])", june, gid, true, false);
    rows.insertValue("analizy", "Кровь<br>1<br>old.jpg<tr>Моча<br>2<br>../outside.jpg", june, gid,
                     true, false);
    rows.insertValue("analizy", R"([{"tp":"1","file":"new.jpg"}])", july, gid, true, false);
    rows.insertValue("note", "Другой день", july, gid, true, false);
    for (const char* name : {"old.jpg", "new.jpg"}) {
        touch(documents / "analizy" / name);
    }
    touch(documents / "outside.jpg");
    // The guid profile's photo, under the names the program writes.
    const fs::path photo = documents / "picture" / (gid + "-01-06-2026.jpg");
    const fs::path thumbnail = documents / "picture-s" / (gid + "-01-06-2026-s.jpg");
    touch(photo);
    touch(thumbnail);

    ASSERT_TRUE(deleteDiaryDay(store, context, day(gid, "2026-06-01"), gid));
    const DayNote after = day(gid, "2026-06-01");
    EXPECT_TRUE(after.values.empty());
    EXPECT_FALSE(fs::exists(documents / "analizy" / "old.jpg"));
    EXPECT_TRUE(fs::exists(documents / "outside.jpg"));
    // The photo outlives the rows: the day comes back empty, with it.
    EXPECT_TRUE(fs::exists(photo));
    EXPECT_TRUE(fs::exists(thumbnail));

    ASSERT_TRUE(deleteDiaryDay(store, context, day(gid, "2026-07-01"), gid));
    EXPECT_TRUE(day(gid, "2026-07-01").values.empty());
    EXPECT_TRUE(fs::exists(documents / "analizy" / "new.jpg"));
}

TEST_F(DayDeletionTest, NumericProfilesLoseTheirPhotoWithTheDay) {
    DayRows(db(), dates)
        .insertValue("note", "Старый", *dates.dateFromString("2026-06-01"), "7", true, false);
    const fs::path photo = documents / "picture" / "01-06-2026-7.jpg";
    const fs::path thumbnail = documents / "picture-s" / "01-06-2026-7-s.jpg";
    touch(photo);
    touch(thumbnail);
    ASSERT_TRUE(deleteDiaryDay(store, context, day("7", "2026-06-01"), "7"));
    EXPECT_FALSE(fs::exists(photo));
    EXPECT_FALSE(fs::exists(thumbnail));
}

}  // namespace
}  // namespace tilika::diary

#include "diary/day_editor.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/ids.h"
#include "diary/day_cloud.h"
#include "diary/day_rows.h"
#include "diary/profiles.h"
#include "support/core_fixture.h"
#include "support/fake_image_codec.h"

namespace tilika::diary {
namespace {

namespace fs = std::filesystem;

class CountingCloud final : public DayCloud {
public:
    void dataToCloud(int kind, core::Date /*date*/, std::string_view /*gid*/) override {
        kinds.push_back(kind);
    }
    std::vector<int> kinds;
};

class DayEditorTest : public test::CoreFixture {
protected:
    DiaryStore store{context, courses};
    test::FakeImageCodec images;
    CountingCloud cloud;
    DayEditor editor{context, store, images, cloud};
    const std::string gid = newChild("2026-01-10", "3.2");

    core::Date at(const char* text) { return *dates.dateFromString(text); }

    void put(const char* date, const char* type, const std::string& value) {
        DayRows(db(), dates).insertValue(type, value, at(date), gid, true, false);
    }
    std::string stored(const char* date, const char* type) {
        return DayRows(db(), dates).getDateValue(at(date), type, gid);
    }
    void open(const char* date) { editor.prepare(store.todayNoteForDay(at(date), gid), gid); }

    std::size_t indexOf(std::string_view field) const {
        const auto& rows = editor.noteData();
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (rows[i].field == field) {
                return i;
            }
        }
        ADD_FAILURE() << "no row " << field;
        return rows.size();
    }
    std::size_t photoIndex() const { return editor.noteData().size() - 1; }

    fs::path documents() const { return folders.path(platform::SystemFolder::Document); }
    static std::string contents(const fs::path& file) {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    bool anyPageDirty() const {
        for (const bool dirty : state.pageDirty) {
            if (dirty) {
                return true;
            }
        }
        return false;
    }
};

TEST_F(DayEditorTest, SavesOnlyWhatChangedAndMarksTheDayPages) {
    put("2026-11-20", "note", "было");
    open("2026-11-20");
    EXPECT_EQ(editor.caption(), "20.11.2026");
    EXPECT_FALSE(editor.needSave());

    // Leaving a day untouched writes nothing at all.
    put("2026-11-20", "note", "изменено другим устройством");
    EXPECT_FALSE(editor.save(true).written);
    EXPECT_EQ(stored("2026-11-20", "note"), "изменено другим устройством");
    EXPECT_FALSE(anyPageDirty());

    state.cloudMode = core::cloudmode::off;
    editor.editData(indexOf("smile"), "смеялся");
    const DaySaved saved = editor.save(true);
    EXPECT_TRUE(saved.written);
    EXPECT_TRUE(saved.ok()) << saved.message();
    EXPECT_EQ(stored("2026-11-20", "smile"), "смеялся");
    EXPECT_FALSE(editor.needSave());
    for (std::size_t page = 0; page < state.pageDirty.size(); ++page) {
        const bool expected = page <= 3 || page == 6 || page == 9 || page == 10;
        EXPECT_EQ(state.pageDirty[page], expected) << page;
    }
    EXPECT_TRUE(cloud.kinds.empty());

    state.cloudMode = core::cloudmode::icloud;
    editor.editData(indexOf("smile"), "снова смеялся");
    EXPECT_TRUE(editor.save(true).ok());
    EXPECT_EQ(cloud.kinds, std::vector<int>{DayCloud::kDayRecord});
}

TEST_F(DayEditorTest, PhotoIsWrittenWithItsThumbnailAndCleared) {
    open("2026-11-20");
    editor.setPhoto(test::FakeImageCodec::blank(4000, 3000));
    EXPECT_TRUE(editor.noteData()[photoIndex()].isphoto);
    ASSERT_TRUE(editor.save(true).ok());

    const fs::path photo = documents() / "picture" / (gid + "-20-11-2026.jpg");
    const fs::path thumbnail = documents() / "picture-s" / (gid + "-20-11-2026-s.jpg");
    EXPECT_EQ(contents(photo), "JPEG 4000x3000 q=100");
    EXPECT_EQ(contents(thumbnail), "JPEG 160x120 q=100");
    EXPECT_FALSE(fs::exists(photo.string() + ".part"));
    open("2026-11-20");
    EXPECT_TRUE(editor.noteData()[photoIndex()].isphoto);

    editor.clearPhoto();
    ASSERT_TRUE(editor.save(true).ok());
    EXPECT_FALSE(fs::exists(photo));
    EXPECT_FALSE(fs::exists(thumbnail));
}

TEST_F(DayEditorTest, FailedPhotoWriteKeepsTheRowsAndTheOldPhoto) {
    open("2026-11-20");
    editor.setPhoto(test::FakeImageCodec::blank(300, 200));
    ASSERT_TRUE(editor.save(true).ok());
    const fs::path photo = documents() / "picture" / (gid + "-20-11-2026.jpg");

    // A thumbnail's place that can't be written over (a folder in the way),
    // as a full or read-only disk would refuse it.
    const fs::path thumbnail = documents() / "picture-s" / (gid + "-20-11-2026-s.jpg");
    fs::remove(thumbnail);
    fs::create_directories(thumbnail / "in-the-way");
    open("2026-11-20");
    editor.editData(indexOf("note"), "запись");
    editor.setPhoto(test::FakeImageCodec::blank(800, 600));
    const DaySaved saved = editor.save(true);

    EXPECT_TRUE(saved.rows.ok());
    EXPECT_TRUE(saved.photoFailed);
    EXPECT_FALSE(saved.message().empty());
    EXPECT_EQ(stored("2026-11-20", "note"), "запись");
    EXPECT_EQ(contents(photo), "JPEG 300x200 q=100");
    EXPECT_TRUE(editor.noteData()[photoIndex()].isphoto);
}

TEST_F(DayEditorTest, GidThatLeadsOutOfThePictureFolderWritesNoFile) {
    const std::string bad = "../escape";
    editor.prepare(store.todayNoteForDay(at("2026-11-20"), bad), bad);
    editor.setPhoto(test::FakeImageCodec::blank(40, 30));
    const DaySaved saved = editor.save(true);
    EXPECT_TRUE(saved.photoFailed);
    EXPECT_FALSE(fs::exists(documents() / "escape-20-11-2026.jpg"));
    EXPECT_FALSE(fs::exists(documents() / "picture" / ".." / "escape-20-11-2026.jpg"));
}

TEST_F(DayEditorTest, ElementDeletionIsSavedOnlyWithAnotherChange) {
    put("2026-11-20", "sleep",
        R"([{"start":"13:00","end":"15:00","interval":"02:00"},{"start":"20:00","end":"","interval":"00:00"}])");
    put("2026-11-20", "temp", R"([{"time":"08:00","temp":"37.2"},{"time":"20:00","temp":"36.6"}])");
    open("2026-11-20");
    const std::size_t sleep = indexOf("sleep");
    EXPECT_EQ(editor.elementMenu(sleep), "Редактировать<td>pm-edit.png<tr>Удалить<td>pm-clear.png");
    ASSERT_EQ(editor.noteData()[sleep].multiarray.size(), 2u);

    // A sleep removed on its own stays in the diary.
    editor.deleteElement(sleep, 0);
    EXPECT_EQ(editor.noteData()[sleep].multiarray.size(), 1u);
    EXPECT_FALSE(editor.needSave());
    EXPECT_FALSE(editor.save(true).written);
    EXPECT_NE(stored("2026-11-20", "sleep").find("13:00"), std::string::npos);

    // A temperature removed is saved, and so is the sleep removed with it.
    editor.deleteTimedRow(indexOf("temp"), 0);
    EXPECT_TRUE(editor.needSave());
    ASSERT_TRUE(editor.save(true).ok());
    EXPECT_EQ(stored("2026-11-20", "temp").find("37.2"), std::string::npos);
    EXPECT_NE(stored("2026-11-20", "temp").find("36.6"), std::string::npos);
    EXPECT_EQ(stored("2026-11-20", "sleep").find("13:00"), std::string::npos);

    // An old plain value offers removal only, and goes whole.
    put("2026-11-21", "sleep", "спал днем");
    open("2026-11-21");
    EXPECT_EQ(editor.elementMenu(indexOf("sleep")), "Удалить<td>pm-clear.png");
    editor.deleteElement(indexOf("sleep"), 0);
    EXPECT_TRUE(editor.noteData()[indexOf("sleep")].source.empty());
}

TEST_F(DayEditorTest, FormAnswersBuildTheValues) {
    open("2026-11-20");
    std::vector<CatalogueRow> form(2);
    form[1].source = "ходили к врачу";
    EXPECT_TRUE(editor.afterEdit(indexOf("doctor"), form));
    EXPECT_EQ(editor.noteData()[indexOf("doctor")].text, "ходили к врачу");
    EXPECT_TRUE(editor.needSave());

    // Records of a period: a new one goes last, an edited one keeps its place.
    std::vector<CatalogueRow> walk(3);
    walk[0].field = "start";
    walk[0].source = "10:00";
    walk[1].field = "end";
    walk[1].source = "11:00";
    walk[2].field = "interval";
    walk[2].source = "01:00";
    editor.newPills(indexOf("walk"), walk);
    walk[0].source = "16:00";
    editor.newPills(indexOf("walk"), walk);
    walk[0].source = "09:30";
    editor.editPills(indexOf("walk"), 0, walk);
    const auto& rows = editor.noteData()[indexOf("walk")].multiarray;
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_NE(rows[0].source.find("09:30"), std::string::npos);
    EXPECT_NE(rows[1].source.find("16:00"), std::string::npos);

    // A slider's row is not redrawn, and its value marks it active.
    EXPECT_FALSE(editor.editData(indexOf("ves"), "4.250"));
    EXPECT_TRUE(editor.noteData()[indexOf("ves")].active.value_or(false));
}

TEST_F(DayEditorTest, MovingToAnotherDaySavesWithoutMarkingPages) {
    open("2026-11-20");
    editor.editData(indexOf("note"), "первый день");
    const DaySaved saved = editor.moveBy(1);
    EXPECT_TRUE(saved.written);
    EXPECT_EQ(stored("2026-11-20", "note"), "первый день");
    EXPECT_FALSE(anyPageDirty());
    EXPECT_EQ(editor.caption(), "21.11.2026");
    EXPECT_TRUE(editor.noteData()[indexOf("note")].source.empty());
    EXPECT_FALSE(editor.needSave());

    editor.moveTo(at("2026-11-20"));
    EXPECT_EQ(editor.noteData()[indexOf("note")].source, "первый день");
}

TEST_F(DayEditorTest, FailedSaveKeepsTheDayInMemory) {
    open("2026-11-20");
    editor.editData(indexOf("note"), "не потерять");
    state.cloudMode = core::cloudmode::icloud;
    db().exec("PRAGMA query_only = 1");

    const DaySaved moved = editor.moveBy(1);
    EXPECT_EQ(moved.rows.failure(), core::WriteFailure::readOnly);
    EXPECT_FALSE(moved.message().empty());
    // Still the same day, with what was typed, and still to be saved.
    EXPECT_EQ(editor.caption(), "20.11.2026");
    EXPECT_EQ(editor.noteData()[indexOf("note")].source, "не потерять");
    EXPECT_TRUE(editor.needSave());
    EXPECT_TRUE(cloud.kinds.empty());

    db().exec("PRAGMA query_only = 0");
    EXPECT_TRUE(editor.save(true).ok());
    EXPECT_EQ(stored("2026-11-20", "note"), "не потерять");
}

TEST_F(DayEditorTest, GarbledValuesReadAsTheyCan) {
    put("2026-11-20", "pills", R"([{"pillname":7},"x",{"pilldoza":"1<td>"}])");
    put("2026-11-20", "sleep", "[{\"start\":");
    put("2026-11-20", "temp", "{}");
    open("2026-11-20");
    editor.deleteElement(indexOf("pills"), 5);
    editor.deleteElement(indexOf("pills"), 0);
    editor.deleteElement(indexOf("sleep"), 0);
    editor.deleteTimedRow(indexOf("temp"), 3);
    editor.editData(indexOf("note"), "дальше");
    EXPECT_TRUE(editor.save(true).rows.ok());
}

TEST_F(DayEditorTest, SliderStartsFromTheLastMeasure) {
    open("2026-11-20");
    // Before any measure, the weight at birth.
    EXPECT_DOUBLE_EQ(editor.sliderStart(indexOf("ves")).value_or(0), 3.2);
    EXPECT_FALSE(editor.sliderStart(indexOf("rost")).has_value());

    put("2026-11-01", "ves", "5.100");
    put("2026-11-25", "ves", "5.400");
    open("2026-11-20");
    EXPECT_DOUBLE_EQ(editor.sliderStart(indexOf("ves")).value_or(0), 5.1);
    editor.editData(indexOf("ves"), "5.300");
    EXPECT_DOUBLE_EQ(editor.sliderStart(indexOf("ves")).value_or(0), 5.3);
}

TEST_F(DayEditorTest, TeethFormKnowsTheTeethBeforeTheDay) {
    put("2026-09-01", "tooth", "1<tr>2");
    put("2026-10-01", "tooth", "5<tr>101<tr>garbage<tr>150");
    put("2026-11-20", "tooth", "7");
    open("2026-11-20");
    const EntryForm form = editor.toothForm(indexOf("tooth"));
    ASSERT_EQ(form.rows.size(), 2u);
    EXPECT_EQ(form.rows[1].caption, "Молочные зубы");
    // The day's own change is the form's value, not part of what came before.
    EXPECT_EQ(form.rows[1].tooth, "2<tr>5");
    EXPECT_EQ(form.defaults.at("tooth"), "7");
}

}  // namespace
}  // namespace tilika::diary

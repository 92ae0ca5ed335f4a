#include "diary/diary_search.h"

#include <gtest/gtest.h>

#include <fstream>

#include "core/ids.h"
#include "diary/day_rows.h"
#include "diary/table_days.h"
#include "support/core_fixture.h"

namespace tilika::diary {
namespace {

class DiarySearchTest : public test::CoreFixture {
protected:
    DiaryStore store{context, courses};
    std::vector<ListRow> list;
    std::string gid;

    DiarySearchTest() {
        const std::string guid = core::newID();
        Profiles profiles(context);
        SetupRecord record = profiles.loadSetupData(guid);
        record.name = "Аня";
        record.sbirthdate = "2026-03-01";
        EXPECT_TRUE(profiles.saveSetupData(saveflag::cloud, record, guid));
        gid = guid;
        store.lists().loadConstList(list, cotype::all, "");
    }

    void put(const char* date, const char* type, const std::string& value) {
        DayRows(db(), dates)
            .insertValue(type, value, *dates.dateFromString(date), gid, true, false);
    }

    std::vector<DayNote> load(int regim) {
        std::vector<DayNote> days;
        store.loadNoteData(days, regim, 1, *dates.dateFromString("2026-11-22"), gid);
        return days;
    }

    TableDays prepare(std::vector<DayNote>& days, int regim) {
        return prepareTableDays(store, days, list, Profiles(context).loadSetupData(gid), regim);
    }

    std::string day(const DayNote& note) const {
        return dates.dateToString(note.dat, core::formats::day);
    }

    // The days found, as "yyyy-MM-dd".
    std::vector<std::string> search(std::vector<DayNote>& days, std::string_view text, int regim) {
        const TableDays table = prepare(days, regim);
        std::vector<std::string> found;
        for (std::size_t i : DiarySearch(text).find(table.search)) {
            found.push_back(day(days[i]));
        }
        return found;
    }
};

TEST_F(DiarySearchTest, FindsBySectionWordAndByContentIgnoringCase) {
    put("2026-05-01", "ves", "6.100");
    put("2026-06-01", "ves", "7.350");
    put("2026-06-02", "temp", R"([{"time":"08:15","temp":"37.9"}])");
    put("2026-06-03", "alarm", R"([{"time":"08:30","temp":"Дать сироп"}])");
    put("2026-06-04", "sleep", R"([{"start":"08:10","end":"09:00","interval":"00:50"}])");
    put("2026-06-05", "pills", "Нурофен 1/2 таблетки");
    put("2026-06-06", "note", "Пили сироп Нурофен после сна");
    put("2026-06-07", "note", "Вес не меряли");

    for (int regim : {loadregim::withoutEmptyDays, loadregim::everyDay}) {
        SCOPED_TRACE(regim);
        std::vector<DayNote> days = load(regim);
        // The word finds every weighing whatever the number; a note that
        // mentions the weight is found by its text.
        const std::vector<std::string> weights{"2026-05-01", "2026-06-01", "2026-06-07"};
        EXPECT_EQ(search(days, "вес", regim), weights);
        EXPECT_EQ(search(days, "ВЕС", regim), weights);
        // The whole text must be the word: a trailing blank finds only texts.
        EXPECT_EQ(search(days, "Вес ", regim), std::vector<std::string>{"2026-06-07"});
        // A part of a time finds temperatures and reminders, never a sleep.
        EXPECT_EQ(search(days, "08:", regim),
                  (std::vector<std::string>{"2026-06-02", "2026-06-03"}));
        EXPECT_EQ(search(days, "Сон", regim), std::vector<std::string>{"2026-06-04"});
        EXPECT_EQ(search(days, "нурофен", regim),
                  (std::vector<std::string>{"2026-06-05", "2026-06-06"}));
        // Empty text: the whole year, every position once.
        EXPECT_EQ(search(days, "", regim).size(), days.size());
        // Pattern characters are plain letters.
        for (const char* odd : {"%", "_", "[", ".*"}) {
            EXPECT_TRUE(search(days, odd, regim).empty()) << odd;
        }
        EXPECT_TRUE(search(days, std::string(1000, 'x'), regim).empty());
    }
}

TEST_F(DiarySearchTest, APreparedYearIsCompletedInDateOrderWithOnlyWhatItsDaysShow) {
    const std::string ill = core::newID2(core::idkind::listRow, 66);
    const std::string recovered = core::newID2(core::idkind::listRow, 64);
    put("2026-04-10", "bolezn", ill);
    put("2026-04-12", "note", "Кашель");
    put("2026-04-20", "bolezn", recovered);
    put("2026-04-22", "note", "Гуляли");

    // Without its empty days the year comes without texts; the illness runs
    // from the day it starts over the days shown after it, up to recovery.
    std::vector<DayNote> days = load(loadregim::withoutEmptyDays);
    ASSERT_EQ(days.size(), 4u);
    const TableDays table = prepare(days, loadregim::withoutEmptyDays);
    ASSERT_EQ(table.rows.size(), 4u);
    ASSERT_EQ(table.search.size(), 4u);
    for (const DayNote& note : days) {
        EXPECT_TRUE(note.compliteOK) << day(note);
    }
    EXPECT_EQ(days[0].color, kIllnessNote);
    EXPECT_EQ(days[1].color, kIllnessNote);
    EXPECT_TRUE(days[2].flags.isbolezn);
    EXPECT_EQ(days[2].color, kNeutralNote);
    EXPECT_FALSE(days[3].flags.isbolezn);

    // A day lays out only the rows it has something in.
    ASSERT_EQ(table.rows[1].size(), 1u);
    EXPECT_EQ(table.rows[1].front().field, "note");
    EXPECT_EQ(table.rows[1].front().text, "Кашель");
    EXPECT_TRUE(DiarySearch("кашель").matches(table.search[1]));
    EXPECT_FALSE(DiarySearch("кашель").matches(table.search[3]));
}

TEST_F(DiarySearchTest, SectionWordsNeedSomethingInTheRow) {
    EXPECT_TRUE(filterTypeName("temp", "", "37.2", "температура"));
    EXPECT_TRUE(filterTypeName("priv", "АКДС", "", "ПРИВИВКИ"));
    EXPECT_FALSE(filterTypeName("temp", "", "", "Температура"));
    EXPECT_FALSE(filterTypeName("temp", "x", "x", "Температур"));
    EXPECT_FALSE(filterTypeName("unknown", "x", "x", ""));
    EXPECT_EQ(sectionWord("biosize"), "Биометрика");
    EXPECT_EQ(sectionWord("dieta"), "Диета");
    EXPECT_EQ(foldedText("ЁЛКА Ёлка"), foldedText("ёлка ёЛКА"));
}

TEST_F(DiarySearchTest, HiddenEmptyDaysStillShowTheirPhotos) {
    put("2026-06-01", "note", "Первые шаги");
    const auto documents = folders.path(platform::SystemFolder::Document);
    for (const auto& file : {documents / "picture" / (gid + "-02-06-2026.jpg"),
                             documents / "picture-s" / (gid + "-02-06-2026-s.jpg")}) {
        std::ofstream(file) << "jpeg";
    }
    std::vector<DayNote> days = load(loadregim::withoutEmptyDays);
    ASSERT_EQ(days.size(), 2u);
    EXPECT_EQ(days[0].value("note"), "Первые шаги");
    EXPECT_TRUE(days[1].flags.isphoto);
    EXPECT_EQ(dates.dateToString(days[1].dat, core::formats::day), "2026-06-02");
}

}  // namespace
}  // namespace tilika::diary

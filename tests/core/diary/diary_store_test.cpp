#include "diary/diary_store.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <thread>

#include "core/ids.h"
#include "diary/day_rows.h"
#include "support/core_fixture.h"

namespace tilika::diary {
namespace {

namespace fs = std::filesystem;

class DiaryStoreTest : public test::CoreFixture {
protected:
    DiaryStore store{context, courses};
    Profiles profiles{context};
    const std::string illGuid = core::newID2(core::idkind::listRow, 66);  // Корь
    const std::string recoveryGuid = core::newID2(core::idkind::listRow, 64);  // Выздоровление

    core::Date at(const char* text) { return *dates.dateFromString(text); }
    std::string day(std::optional<core::Date> date) {
        return dates.dateToString(date, core::formats::day);
    }

    std::string addChild(const std::string& birth, const std::string& ves = "0") {
        const std::string gid = core::newID();
        SetupRecord record = profiles.loadSetupData(gid);
        record.name = "Аня";
        record.sbirthdate = birth;
        record.ves = ves;
        EXPECT_TRUE(profiles.saveSetupData(saveflag::cloud, record, gid));
        return gid;
    }

    void put(const std::string& gid, const char* date, const char* type, const std::string& value) {
        DayRows(db(), dates).insertValue(type, value, at(date), gid, true, false);
    }

    std::vector<DayNote> load(int regim, int year, const std::string& gid,
                              const char* date = "2026-11-22") {
        std::vector<DayNote> days;
        store.loadNoteData(days, regim, year, at(date), gid);
        return days;
    }

    // A course of three doses a day for a week from 20 November.
    static std::string weekCourse() {
        return R"([{"pillname":")" + core::newID2(core::idkind::seededRow, 8) +
               R"(","pilldoza":"1<td>шт.","pillinter":"3<td>раз в день","pillperiod":")" +
               core::newID2(core::idkind::seededRow, 10) + R"(","pilleat":")" +
               core::newID2(core::idkind::seededRow, 18) +
               R"(","pilllength":"1<td>недели","pillsdate":"20.11.2026"}])";
    }

    const DayNote* find(const std::vector<DayNote>& days, const char* date) {
        for (const DayNote& d : days) {
            if (day(d.dat) == date) {
                return &d;
            }
        }
        return nullptr;
    }
};

TEST_F(DiaryStoreTest, AYearOfLifeStartsOnTheBirthday) {
    const std::string gid = addChild("2024-02-29");
    put(gid, "2025-02-28", "note", "последний день первого года");
    put(gid, "2025-03-01", "note", "первый день второго года");
    put(gid, "2026-02-28", "note", "последний день второго года");
    put(gid, "2026-03-01", "note", "третий год");

    // In a year without 29 February the year of life starts on 1 March.
    const auto everyDay = load(loadregim::everyDay, 2, gid);
    ASSERT_EQ(everyDay.size(), 365u);
    EXPECT_EQ(day(everyDay.front().dat), "2025-03-01");
    EXPECT_EQ(everyDay.front().value("note"), "первый день второго года");
    EXPECT_EQ(day(everyDay.back().dat), "2026-02-28");
    EXPECT_EQ(everyDay.front().year, 1);
    EXPECT_EQ(everyDay.front().group, 13);

    const auto withRows = load(loadregim::withoutEmptyDays, 2, gid);
    ASSERT_EQ(withRows.size(), 2u);
    EXPECT_EQ(withRows[1].value("note"), "последний день второго года");
    EXPECT_FALSE(withRows[0].compliteOK);  // texts wait for drawing

    const auto first = load(loadregim::everyDay, 1, gid);
    EXPECT_EQ(first.size(), 366u);  // 29 February 2024 to 28 February 2025
    EXPECT_EQ(day(first.front().dat), "2024-02-29");
}

TEST_F(DiaryStoreTest, OneDayIsAlwaysThere) {
    const std::string gid = addChild("2025-05-01");
    const auto empty = load(loadregim::oneDay, 0, gid, "2026-11-20 15:30");
    ASSERT_EQ(empty.size(), 1u);
    EXPECT_EQ(dates.dateToString(empty[0].dat, core::formats::moment), "2026-11-20 15:30:00");
    EXPECT_TRUE(empty[0].values.empty());

    put(gid, "2026-11-20", "note", "Пошли в парк");
    put(gid, "2026-11-21", "note", "Другой день");
    const auto filled = load(loadregim::oneDay, 0, gid, "2026-11-20 15:30");
    ASSERT_EQ(filled.size(), 1u);
    EXPECT_EQ(filled[0].value("note"), "Пошли в парк");
    EXPECT_EQ(day(filled[0].dat), "2026-11-20");
    EXPECT_EQ(store.todayNoteForDay(at("2026-11-21"), gid).value("note"), "Другой день");
}

TEST_F(DiaryStoreTest, ShowsWeightWithItsGainOnlyWhereTheYearIsShown) {
    const std::string gid = addChild("2026-01-10", "3.2");
    put(gid, "2026-02-10", "ves", "3.500");
    put(gid, "2026-03-10", "ves", "3.1");
    put(gid, "2026-03-10", "rost", "54");

    const auto year = load(loadregim::everyDay, 1, gid);
    EXPECT_EQ(find(year, "2026-02-10")->value("ves"), "3.500 (+0.300)");
    EXPECT_EQ(find(year, "2026-03-10")->value("ves"), "3.100 (-0.100)");
    // Without a height at birth the first measure is the base.
    EXPECT_EQ(find(year, "2026-03-10")->value("rost"), "54.0");

    EXPECT_EQ(load(loadregim::oneDay, 0, gid, "2026-02-10")[0].value("ves"), "3.500");
    const auto chart = load(loadregim::weight, 0, gid);
    ASSERT_EQ(chart.size(), 2u);
    EXPECT_EQ(chart[1].value("ves"), "3.1");
    EXPECT_TRUE(chart[0].values.count("rost") == 0);

    EXPECT_DOUBLE_EQ(store.getLastValue(at("2026-02-20"), "ves", gid), 3.5);
    EXPECT_EQ(day(store.getLastValueDate()), "2026-02-10");
    EXPECT_DOUBLE_EQ(store.getLastValue(at("2026-01-20"), "ves", gid), 3.2);  // at birth
    EXPECT_FALSE(store.getLastValueDate());
}

TEST_F(DiaryStoreTest, AnIllnessRunsOnUntilTheRecoveryDay) {
    const std::string gid = addChild("2025-01-10");
    put(gid, "2025-12-20", "bolezn", illGuid);
    put(gid, "2026-01-15", "bolezn", recoveryGuid);

    const auto year = load(loadregim::everyDay, 2, gid);
    ASSERT_EQ(day(year.front().dat), "2026-01-10");
    for (const char* sick : {"2026-01-10", "2026-01-12", "2026-01-14"}) {
        EXPECT_EQ(find(year, sick)->color, kIllnessNote) << sick;
        EXPECT_TRUE(find(year, sick)->flags.isbolezn) << sick;
    }
    const DayNote* recovered = find(year, "2026-01-15");
    EXPECT_TRUE(recovered->flags.isbolezn);
    EXPECT_EQ(recovered->color, kNeutralNote);
    EXPECT_FALSE(find(year, "2026-01-16")->flags.isbolezn);
    EXPECT_EQ(find(year, "2026-01-16")->color, kNeutralNote);

    // An illness that starts today stays uncoloured on the days ahead.
    put(gid, "2026-11-22", "bolezn", illGuid);
    const auto now = load(loadregim::everyDay, 2, gid);
    EXPECT_EQ(find(now, "2026-11-22")->color, kIllnessNote);
    EXPECT_TRUE(find(now, "2026-11-22")->flags.istoday);
    EXPECT_TRUE(find(now, "2026-11-23")->flags.isbolezn);
    EXPECT_EQ(find(now, "2026-11-23")->color, kNeutralNote);
}

TEST_F(DiaryStoreTest, FindsPhotosAndKeepsDaysThatHaveOne) {
    const std::string gid = addChild("2026-01-10");
    const auto documents = folders.path(platform::SystemFolder::Document);
    std::ofstream(documents / "picture" / (gid + "-05-02-2026.jpg")) << "photo";
    std::ofstream(documents / "picture-s" / (gid + "-05-02-2026-s.jpg")) << "thumb";
    std::ofstream(documents / "picture" / (gid + "-06-02-2026.jpg")) << "no thumbnail";

    const auto days = load(loadregim::withoutEmptyDays, 1, gid);
    ASSERT_EQ(days.size(), 1u);
    EXPECT_EQ(day(days[0].dat), "2026-02-05");
    EXPECT_TRUE(days[0].flags.isphoto);
    EXPECT_TRUE(days[0].photopath.ends_with("picture-s/" + gid + "-05-02-2026-s.jpg"));
    EXPECT_TRUE(days[0].photopath2.ends_with("picture/" + gid + "-05-02-2026.jpg"));

    const auto report = load(loadregim::report, 1, gid);
    ASSERT_EQ(report.size(), 1u);
    EXPECT_EQ(report[0].photopath, report[0].photopath2);
    EXPECT_EQ(report[0].day, "05.02.2026 четверг");
}

TEST_F(DiaryStoreTest, GroupsDaysByMonthOfLife) {
    const std::string gid = addChild("2026-09-25");
    const auto days = load(loadregim::everyDay, 1, gid);
    SetupRecord setup = profiles.loadSetupData(gid);
    std::vector<DayGroup> groups;
    const TablePosition position = store.prepareGroupData(days, setup, groups);
    ASSERT_EQ(groups.size(), 12u);
    EXPECT_EQ(groups[0].name, "1-й месяц");
    EXPECT_EQ(groups[0].name2, "25.09.26-24.10.26");
    EXPECT_EQ(groups[0].count, 30);
    EXPECT_EQ(groups[2].name, "3-й месяц");
    // Today, 22 November, is the 29th day of the second month: the table
    // shows the row above it.
    EXPECT_EQ(position.section, 1);
    EXPECT_EQ(position.row, 27);

    std::vector<DayGroup> none;
    EXPECT_EQ(store.prepareGroupData({}, setup, none).section, -1);
}

TEST_F(DiaryStoreTest, FillsTheCatalogueFromADay) {
    const std::string gid = addChild("2026-01-10");
    put(gid, "2026-11-22", "achive", core::newID2(core::idkind::listRow, 15));
    put(gid, "2026-11-22", "temp", R"([{"time":"08:00","temp":"37.5"}])");
    put(gid, "2026-11-22", "ves", "9.1");
    const DayNote today = store.todayNoteForDay(at("2026-11-22"), gid);
    std::vector<ListRow> list;
    store.lists().loadConstList(list, cotype::all, "");
    std::vector<CatalogueRow> rows;
    store.noteStructToTodayNote(today, rows, list);
    ASSERT_EQ(rows.size(), 18u);
    EXPECT_EQ(rows[0].text, "Первые шаги");
    EXPECT_EQ(rows[6].multiarray.size(), 1u);
    EXPECT_EQ(rows[6].multiarray[0].cap, "37.5");
    EXPECT_EQ(rows[6].text, "");
    EXPECT_EQ(rows[7].source, "9.1");
    EXPECT_EQ(rows[7].active, true);
    EXPECT_EQ(rows[8].active, false);
    EXPECT_FALSE(rows[17].isphoto);

    // Fields of old medication records read by their picker positions.
    CatalogueRow dose;
    dose.tp = tp::medicationDose;
    dose.source = "2<td>2";
    store.updateNoteToday(dose, list, std::nullopt);
    EXPECT_EQ(dose.text, "1/2 штуки");

    CatalogueRow birth;
    birth.tp = tp::birthResult;
    birth.source = R"({"rost":"52","ves":"3.4","type":"2","time":"06:10"})";
    store.updateNoteToday(birth, list, std::nullopt);
    EXPECT_EQ(birth.text, "Кесарево сечение\nРост: 52\nВес: 3.4\nВремя родов: 06:10");
    CatalogueRow scan;
    scan.tp = tp::ultrasound;
    scan.source = R"({"rost":"0","ves":"1.25"})";
    store.updateNoteToday(scan, list, std::nullopt);
    EXPECT_EQ(scan.text, "Вес: 1.250");
}

TEST_F(DiaryStoreTest, SavingADayReplacesItWhole) {
    const std::string gid = addChild("2026-01-10");
    put(gid, "2026-11-20", "note", "старая заметка");
    put(gid, "2026-11-20", "smile", "уйдет");
    // An empty value on its own deletes nothing...
    DayRows(db(), dates).insertValue("smile", "", at("2026-11-20"), gid, true, false);
    EXPECT_EQ(store.todayNoteForDay(at("2026-11-20"), gid).value("smile"), "уйдет");

    // ...but saving the day replaces all of it.
    std::vector<ListRow> list;
    store.lists().loadConstList(list, cotype::all, "");
    std::vector<CatalogueRow> rows;
    store.noteStructToTodayNote(store.todayNoteForDay(at("2026-11-20"), gid), rows, list);
    rows[16].source = "новая заметка";  // note
    rows[9].source = "";                // smile
    rows[7].source = "8.250";           // ves
    EXPECT_TRUE(store.saveNoteData(1, rows, list, gid, at("2026-11-20")));

    const DayNote saved = store.todayNoteForDay(at("2026-11-20"), gid);
    EXPECT_EQ(saved.value("note"), "новая заметка");
    EXPECT_EQ(saved.values.count("smile"), 0u);
    EXPECT_EQ(saved.value("ves"), "8.250");
    EXPECT_EQ(queryText("select count(*) from childdata"), "2");

    // A write that fails halfway (a full disk, say) leaves the day as it was.
    db().exec(
        "create temp trigger fail before insert on childdata when new.value='сбой' "
        "begin select raise(abort, 'disk full'); end");
    rows[16].source = "сбой";
    rows[9].source = "не сохранится";
    EXPECT_FALSE(store.saveNoteData(1, rows, list, gid, at("2026-11-20")));
    const DayNote kept = store.todayNoteForDay(at("2026-11-20"), gid);
    EXPECT_EQ(kept.value("note"), "новая заметка");
    EXPECT_EQ(kept.values.count("smile"), 0u);
}

TEST_F(DiaryStoreTest, ACourseSavedOnOneDayLivesOnAllItsDays) {
    const std::string gid = addChild("2026-01-10");
    std::vector<ListRow> list;
    store.lists().loadConstList(list, cotype::all, "");

    std::vector<CatalogueRow> rows;
    store.noteStructToTodayNote(store.todayNoteForDay(at("2026-11-20"), gid), rows, list);
    rows[4].source = weekCourse();
    EXPECT_TRUE(store.saveNoteData(1, rows, list, gid, at("2026-11-20")));
    EXPECT_EQ(queryText("select count(*) from childdata where type='pills'"), "7");
    EXPECT_EQ(queryText("select max(sdat) from childdata where type='pills'"), "2026-11-26");

    // Removed from the course on a later day, it is gone from every day.
    rows.clear();
    store.noteStructToTodayNote(store.todayNoteForDay(at("2026-11-24"), gid), rows, list);
    ASSERT_EQ(rows[4].multiarray.size(), 1u);
    EXPECT_TRUE(rows[4].multiarray[0].text.starts_with("Нурофен: 1 штука"));
    rows[4].source = "";
    EXPECT_TRUE(store.saveNoteData(1, rows, list, gid, at("2026-11-24")));
    EXPECT_EQ(queryText("select count(*) from childdata where type='pills'"), "0");
}

TEST_F(DiaryStoreTest, ADayIsSavedWholeOrNotAtAll) {
    const std::string gid = addChild("2026-01-10");
    put(gid, "2026-11-20", "note", "старая заметка");
    put(gid, "2026-11-24", "note", "другой день");
    std::vector<ListRow> list;
    store.lists().loadConstList(list, cotype::all, "");
    std::vector<CatalogueRow> rows;
    store.noteStructToTodayNote(store.todayNoteForDay(at("2026-11-20"), gid), rows, list);
    rows[4].source = weekCourse();
    rows[16].source = "новая заметка";
    const auto unchanged = [&] {
        EXPECT_EQ(queryText("select count(*) from childdata where type='pills'"), "0");
        EXPECT_EQ(queryText("select count(*) from childdata"), "2");
        EXPECT_EQ(store.todayNoteForDay(at("2026-11-20"), gid).value("note"), "старая заметка");
    };

    // The course's fifth day can't be written, deep inside the save.
    db().exec(
        "create temp trigger failDay before insert on childdata "
        "when new.type='pills' and new.sdat='2026-11-24' "
        "begin select raise(abort, 'disk full'); end");
    const core::WriteResult saved = store.saveNoteData(1, rows, list, gid, at("2026-11-20"));
    EXPECT_FALSE(saved);
    EXPECT_TRUE(saved.message().starts_with("Не удалось сохранить данные: ")) << saved.message();
    unchanged();
    db().exec("drop trigger failDay");

    // A record from another device brings a list row of its own, which
    // lands with the day or not at all.
    std::vector<ListRow> incoming = list;
    const std::string medicine = "AAAAAAAA-1111-4111-8111-000000000001";
    incoming.push_back({"Энтерофурил", medicine, cotype::medicines, 0, 1, false});
    db().exec(
        "create temp trigger failList before insert on childconst "
        "begin select raise(abort, 'disk full'); end");
    EXPECT_FALSE(store.saveNoteData(2, rows, incoming, gid, at("2026-11-20")));
    unchanged();
    db().exec("drop trigger failList");

    // The same database that can't be written at all says so.
    db().exec("PRAGMA query_only = 1");
    EXPECT_EQ(store.saveNoteData(2, rows, incoming, gid, at("2026-11-20")).failure(),
              core::WriteFailure::readOnly);
    EXPECT_EQ(store.noteDeleteValue(at("2026-11-24"), "note", gid).failure(),
              core::WriteFailure::readOnly);
    EXPECT_EQ(store.noteDeleteValue(at("2026-11-20"), std::nullopt, gid).failure(),
              core::WriteFailure::readOnly);
    EXPECT_EQ(store.moveDates(true).failure(), core::WriteFailure::readOnly);
    unchanged();
    EXPECT_EQ(queryText("select sdat from childdata order by sdat"), "2026-11-20");

    db().exec("PRAGMA query_only = 0");
    EXPECT_TRUE(store.saveNoteData(2, rows, incoming, gid, at("2026-11-20")));
    EXPECT_EQ(queryText("select count(*) from childdata where type='pills'"), "7");
    EXPECT_EQ(store.todayNoteForDay(at("2026-11-20"), gid).value("note"), "новая заметка");
    EXPECT_EQ(queryText("select coname from childconst where coguid='" + medicine + "'"),
              "Энтерофурил");
}

TEST_F(DiaryStoreTest, MovesDiaryDaysButNotFeedings) {
    const std::string gid = addChild("2026-01-10");
    put(gid, "2026-03-01", "note", "A");
    db().exec(
        "insert into childkorm (kodates, kotype, kovalue, childguid) values "
        "('2026-03-01 08:00:00', 1, '{}', '" +
        gid + "')");
    EXPECT_TRUE(store.moveDates(true));
    EXPECT_EQ(queryText("select sdat from childdata"), "2026-03-02");
    EXPECT_EQ(queryText("select kodates from childkorm"), "2026-03-01 08:00:00");
    EXPECT_TRUE(store.moveDates(false));
    EXPECT_TRUE(store.moveDates(false));
    EXPECT_EQ(queryText("select sdat from childdata"), "2026-02-28");
}

// Everything a screen shows of a day, as one text to compare.
std::string describe(const std::vector<DayNote>& days, const core::Dates& dates) {
    std::ostringstream out;
    for (const DayNote& d : days) {
        out << dates.dateToString(d.dat, core::formats::moment) << " " << d.day << " " << d.weekday
            << " " << d.year << "/" << d.month << "/" << d.group << " " << d.compliteOK
            << d.flags.istoday << d.flags.isphoto << d.flags.isbolezn << d.flags.isdieta << " "
            << d.color.r << "," << d.color.a << " " << d.photopath << " " << d.photopath2;
        for (const auto& [type, value] : d.values) {
            out << " " << type << "=" << value;
        }
        out << "\n";
    }
    return out.str();
}

TEST_F(DiaryStoreTest, AWorkerWithItsOwnConnectionLoadsTheSameDays) {
    const std::string gid = addChild("2025-01-10", "3.4");
    put(gid, "2025-12-20", "bolezn", illGuid);
    put(gid, "2026-01-15", "bolezn", recoveryGuid);
    put(gid, "2026-02-01", "dieta", "5");
    put(gid, "2026-03-10", "ves", "9.1");
    put(gid, "2026-11-22", "note", "сегодня");
    const auto documents = folders.path(platform::SystemFolder::Document);
    std::ofstream(documents / "picture" / (gid + "-05-02-2026.jpg")) << "photo";
    std::ofstream(documents / "picture-s" / (gid + "-05-02-2026-s.jpg")) << "thumb";

    // What the screen reads on its own thread before it hands the load over.
    std::vector<ListRow> list;
    store.lists().loadConstList(list, cotype::all, "");
    const SetupRecord setup = profiles.loadSetupData(gid);

    for (const int regim : {loadregim::everyDay, loadregim::withoutEmptyDays}) {
        const std::string ordinary = describe(load(regim, 2, gid), dates);
        std::vector<DayNote> days;
        std::thread worker([&] {
            const auto connection = database.openConnection();
            ASSERT_NE(connection, nullptr);
            store.loadNoteData(*connection, list, setup, days, regim, 2, at("2026-11-22"), gid);
        });
        worker.join();
        EXPECT_GT(days.size(), 1u);
        EXPECT_EQ(describe(days, dates), ordinary) << regim;
    }
}

TEST_F(DiaryStoreTest, AYearWindowReadsOnlyThatChildsDays) {
    std::string plan;
    SQLite::Statement explain(db(),
                              "explain query plan select sdat, type, value from childdata where "
                              "childguid=? and date(sdat)>=date(?) and date(sdat)<date(?) "
                              "order by date(sdat)");
    while (explain.executeStep()) {
        plan += explain.getColumn(3).getString() + "\n";
    }
    EXPECT_NE(plan.find("USING INDEX childdata_child_day"), std::string::npos) << plan;
    EXPECT_EQ(plan.find("SCAN childdata"), std::string::npos) << plan;
}

}  // namespace
}  // namespace tilika::diary

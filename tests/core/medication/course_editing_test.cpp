// A course as a parent keeps it through the day editor: entered on one day,
// it lives on all its days, and is edited or removed from any of them as one
// object.

#include <gtest/gtest.h>

#include "diary/day_cloud.h"
#include "diary/day_editor.h"
#include "diary/day_rows.h"
#include "diary/diary_store.h"
#include "diary/value_codecs.h"
#include "frame/form_values.h"
#include "frame/list_choices.h"
#include "medication/course_form.h"
#include "support/core_fixture.h"
#include "support/fake_image_codec.h"

namespace tilika::medication {
namespace {

using nlohmann::json;

class CourseEditingTest : public test::CoreFixture {
protected:
    diary::DiaryStore store{context, courses};
    test::FakeImageCodec images;
    diary::NoCloud cloud;
    diary::DayEditor editor{context, store, images, cloud};
    const std::string gid = newChild("2026-01-10");

    core::Date at(const std::string& date) { return *dates.dateFromString(date); }
    void open(const std::string& date) {
        editor.prepare(store.todayNoteForDay(at(date), gid), gid);
    }

    std::size_t row(std::string_view field) const {
        const std::size_t at = frame::posByField(editor.noteData(), field);
        EXPECT_NE(at, 0u) << "no row " << field;
        return at - 1;
    }
    const diary::CatalogueRow& pills() const { return editor.noteData()[row("pills")]; }

    // The course form as the parent leaves it: `course` is the element it
    // was opened on, if any, and `changes` what the parent set.
    frame::FormRows form(std::optional<std::string> course,
                         const std::map<std::string, std::string>& changes) {
        diary::EntryForm entry = courseForm(course, editor.caption(), editor.listData());
        for (const auto& [field, value] : changes) {
            entry.defaults[field] = value;
        }
        frame::fillSources(entry.rows, entry.defaults);
        return entry.rows;
    }
    std::string period(std::string_view caption) const {
        return frame::indexByCaption(editor.listData(), diary::cotype::howOften, caption);
    }

    // Every stored row of courses: the date, then what each course reads
    // there, for all children.
    std::map<std::string, std::vector<std::string>> readings() {
        std::map<std::string, std::vector<std::string>> days;
        SQLite::Statement query(db(),
                                "select sdat, childguid from childdata where type='pills' "
                                "order by sdat, childguid");
        std::vector<std::pair<std::string, std::string>> found;
        while (query.executeStep()) {
            found.emplace_back(query.getColumn(0).getString(), query.getColumn(1).getString());
        }
        for (const auto& [sdat, child] : found) {
            editor.prepare(store.todayNoteForDay(at(sdat), child), child);
            for (const auto& line : pills().multiarray) {
                days[sdat.substr(0, 10)].push_back(line.text);
            }
        }
        return days;
    }
    std::string datids() {
        return queryText(
            "select group_concat(datid || sdat, ',') from childdata where "
            "type='pills' and sdat not like '2026-11-26%'");
    }
};

TEST_F(CourseEditingTest, ACourseIsEnteredOnceAndEditedOrRemovedFromAnyOfItsDays) {
    // Twice a week from a Wednesday, for a week.
    open("2026-11-25");
    editor.newPills(row("pills"), form(std::nullopt, {{"pillperiod", period("2 раза в неделю")},
                                                      {"pilldoza", "1/2<td>шт."}}));
    EXPECT_TRUE(editor.needSave());
    ASSERT_EQ(pills().multiarray.size(), 1u);
    // No medicine chosen yet: the sentence starts with its colon.
    EXPECT_EQ(pills().multiarray[0].text,
              ": 1/2 штуки, 2 раза в неделю, 3 раза в сутки, Независимо от еды, 1 неделю "
              "(1 день из 7)");
    ASSERT_TRUE(editor.save(true).ok());
    EXPECT_TRUE(state.pageDirty[9]);

    auto days = readings();
    ASSERT_EQ(days.size(), 3u);
    EXPECT_TRUE(days.at("2026-11-25").at(0).ends_with(" (1 день из 7)"));
    EXPECT_TRUE(days.at("2026-11-26").at(0).ends_with(" (2 день из 7)"));
    EXPECT_TRUE(days.at("2026-11-30").at(0).ends_with(" (6 день из 7)"));
    const std::string key = diary::jsonText(diary::jsonToArray(pills().source)[0], "key");
    ASSERT_FALSE(key.empty());

    // Saved again without a change of the course, other days keep their rows.
    open("2026-11-26");
    const std::string before = datids();
    editor.editData(row("note"), "спала хорошо");
    ASSERT_TRUE(editor.save(true).ok());
    EXPECT_EQ(datids(), before);

    // Edited from its last day, the course changes on all of them, and its
    // first day is still the one it was entered on.
    open("2026-11-30");
    editor.editPills(row("pills"), 0,
                     form(pills().multiarray[0].source, {{"pilldoza", "2<td>мл."}}));
    ASSERT_TRUE(editor.save(true).ok());
    days = readings();
    ASSERT_EQ(days.size(), 3u);
    for (const auto& [day, lines] : days) {
        ASSERT_EQ(lines.size(), 1u) << day;
        EXPECT_NE(lines[0].find(": 2 миллилитра, "), std::string::npos) << lines[0];
    }
    EXPECT_TRUE(days.at("2026-11-30").at(0).ends_with(" (6 день из 7)"));
    EXPECT_EQ(queryText("select count(*) from childdata where value like '%" + key + "%'"), "0");

    // Removing it alone is not a change of the day: it stays everywhere.
    open("2026-11-30");
    editor.deleteElement(row("pills"), 0);
    EXPECT_TRUE(pills().multiarray.empty());
    EXPECT_FALSE(editor.needSave());
    editor.save(true);
    EXPECT_EQ(readings().size(), 3u);

    // Removed together with another change, it goes from all its days.
    open("2026-11-30");
    editor.deleteElement(row("pills"), 0);
    editor.editData(row("note"), "курс отменили");
    ASSERT_TRUE(editor.save(true).ok());
    EXPECT_TRUE(readings().empty());
}

TEST_F(CourseEditingTest, ASaveThatFailsOnAnyOfTheCoursesDaysWritesNoneOfThem) {
    open("2026-11-25");
    editor.editData(row("note"), "начали курс");
    editor.newPills(row("pills"), form(std::nullopt, {{"pilllength", "10<td>дни"}}));
    // The disk refuses the course's seventh day, after six were written.
    db().exec(
        "create trigger refuse before insert on childdata when new.sdat = '2026-12-01' "
        "begin select raise(abort, 'disk I/O error'); end");
    EXPECT_FALSE(editor.save(true).ok());
    EXPECT_EQ(queryText("select count(*) from childdata where sdat >= '2026-11-25'"), "0");
    EXPECT_TRUE(editor.needSave());
    EXPECT_EQ(pills().multiarray.size(), 1u);

    db().exec("drop trigger refuse");
    ASSERT_TRUE(editor.save(true).ok());
    EXPECT_EQ(readings().size(), 10u);
}

TEST_F(CourseEditingTest, OldValuesAndOtherChildrensCoursesStayAsTheyAre) {
    diary::DayRows rows(db(), dates);
    // An old plain value is shown as it stands and can only be removed.
    rows.insertValue("pills", "Нурофен по 1/2 три раза", at("2026-11-20"), gid, true, false);
    open("2026-11-20");
    ASSERT_EQ(pills().multiarray.size(), 1u);
    EXPECT_EQ(pills().multiarray[0].text, "Нурофен по 1/2 три раза");
    EXPECT_EQ(editor.elementMenu(row("pills")), "Удалить<td>pm-clear.png");
    editor.deleteElement(row("pills"), 0);
    editor.editData(row("note"), "без лекарств");
    ASSERT_TRUE(editor.save(true).ok());
    EXPECT_EQ(rows.getDateValue(at("2026-11-20"), "pills", gid), "");

    // Keys another device wrote: one with the wildcards of a search, one that
    // those wildcards would match, and one that isn't text at all.
    const std::string sister = newChild("2024-03-01");
    auto course = [&](json key, const std::string& start) {
        json record{{"pillname", ""},
                    {"pilldoza", "1<td>шт."},
                    {"pillinter", "1<td>раз в день"},
                    {"pillperiod", period("Ежедневно")},
                    {"pilleat", ""},
                    {"pilllength", "2<td>дни"},
                    {"pillsdate", start}};
        if (!key.is_null()) {
            record["key"] = std::move(key);
        }
        return record;
    };
    for (const char* day : {"2026-11-22", "2026-11-23"}) {
        rows.insertValue("pills", json::array({course("50%_", "22.11.2026")}).dump(), at(day), gid,
                         true, false);
        rows.insertValue("pills", json::array({course("50%x", "22.11.2026")}).dump(), at(day),
                         sister, true, false);
    }
    open("2026-11-23");
    EXPECT_EQ(editor.elementMenu(row("pills")),
              "Редактировать<td>pm-edit.png<tr>Удалить<td>pm-clear.png");
    editor.deleteElement(row("pills"), 0);
    editor.editData(row("note"), "отменили");
    ASSERT_TRUE(editor.save(true).ok());
    EXPECT_EQ(rows.getDateValue(at("2026-11-22"), "pills", gid), "");
    EXPECT_EQ(rows.getDateValue(at("2026-11-22"), "pills", sister),
              json::array({course("50%x", "22.11.2026")}).dump());

    // A course whose first day can't be read is looked for on every day.
    for (const char* day : {"2026-11-27", "2026-11-28"}) {
        rows.insertValue("pills", json::array({course("undated", "")}).dump(), at(day), gid, true,
                         false);
    }
    open("2026-11-28");
    editor.deleteElement(row("pills"), 0);
    editor.editData(row("note"), "тоже отменили");
    ASSERT_TRUE(editor.save(true).ok());
    EXPECT_EQ(rows.getDateValue(at("2026-11-27"), "pills", gid), "");

    // A course whose key is a number is a course never spread: its save
    // spreads it under a key of its own.
    const std::string numbered = json::array({course(7, "24.11.2026")}).dump();
    rows.insertValue("pills", numbered, at("2026-11-24"), gid, true, false);
    open("2026-11-24");
    editor.editData(row("pills"), numbered);
    editor.editData(row("note"), "новый курс");
    ASSERT_TRUE(editor.save(true).ok());
    const json spread = diary::jsonToArray(rows.getDateValue(at("2026-11-25"), "pills", gid));
    ASSERT_EQ(spread.size(), 1u);
    EXPECT_TRUE(spread[0]["key"].is_string());
    EXPECT_EQ(diary::jsonToArray(rows.getDateValue(at("2026-11-24"), "pills", gid)), spread);
}

}  // namespace
}  // namespace tilika::medication

#include "medication/day_schedule.h"

#include <gtest/gtest.h>

#include "diary/day_rows.h"
#include "diary/reference_lists.h"
#include "diary/value_codecs.h"
#include "frame/list_choices.h"
#include "medication/dose_times.h"
#include "platform/recording_canvas.h"
#include "support/core_fixture.h"

namespace tilika::medication {
namespace {

using nlohmann::json;
using platform::DrawCommand;

constexpr const char* kNoReminders = "0<tr>В этом дне напоминаний нет";
constexpr const char* kNoMedicines = "0<tr>Приема лекарств и процедур в этом дне нет";

class DayScheduleTest : public test::CoreFixture {
protected:
    const std::string gid = newChild("2026-01-10");
    std::vector<diary::ListRow> lists;
    DaySchedule schedule{context};
    const core::Date today = *dates.dateFromString("2026-11-22");

    DayScheduleTest() {
        diary::ReferenceLists(context).loadConstList(lists, 0, "");
        schedule.activateView(gid);
        EXPECT_TRUE(setObed(db(), kDefaultMeals));
    }

    json course(std::string_view meal, const std::string& inter,
                std::optional<std::string> pilltime = std::nullopt) const {
        json record = {
            {"key", core::newID()},
            {"pillname", frame::indexByCaption(lists, diary::cotype::medicines, "Нурофен")},
            {"pilldoza", "1<td>шт."},
            {"pillinter", inter},
            {"pillperiod", frame::indexByCaption(lists, diary::cotype::howOften, "Ежедневно")},
            {"pilleat", frame::indexByCaption(lists, diary::cotype::meals, meal)},
            {"pilllength", "1<td>недели"},
            {"pillsdate", "20.11.2026"}};
        if (pilltime) {
            record["pilltime"] = *pilltime;
        }
        return record;
    }

    void store(std::string_view type, const std::string& value) {
        diary::DayRows(db(), dates).insertValue(type, value, today, gid, true, false);
    }
    void courses(const std::vector<json>& records) { store("pills", json(records).dump()); }
    void reminders(const json& elements) { store("alarm", elements.dump()); }
};

// What each course reads as on 22.11.2026, its third day of seven.
std::string dose(std::string_view suffix = "") {
    return "23<tr>Нурофен: 1 штука" + std::string(suffix) + "  (3 день из 7)";
}

TEST_F(DayScheduleTest, AnEmptyDayTellsOfNoRemindersAndNoMedicines) {
    const std::vector<InDayRow> empty{{1, "", "00:00", kNoReminders},
                                      {1, "", "00:01", kNoMedicines}};
    EXPECT_EQ(schedule.prepare(today), empty);

    // Values that can't be read, and reminders without a time of day, are
    // as good as none.
    store("alarm", "Позвонить врачу");
    store("pills", "Нурофен по 1/2 три раза");
    EXPECT_EQ(schedule.prepare(today), empty);
    reminders(json::array({{{"time", "25:00"}, {"temp", "a"}},
                           {{"time", "8:00"}, {"temp", "b"}},
                           {{"temp", "c"}},
                           "not an object"}));
    store("pills", "[]");
    EXPECT_EQ(schedule.prepare(today), empty);

    // Another day of the same child is empty too.
    reminders(json::array({{{"time", "10:00"}, {"temp", "Гулять"}}}));
    EXPECT_EQ(schedule.prepare(dates.addDays(today, 1)), empty);
}

TEST_F(DayScheduleTest, CoursesAfterMealsShareTheirMealBlocks) {
    courses({course("После еды", "3<td>раз в день"), course("После еды", "3<td>раз в день")});
    // A reminder at a meal's own time comes before the meal's block.
    reminders(json::array({{{"time", "09:00"}, {"temp", "Гулять"}}}));
    const std::string both = dose() + "<end>" + dose();
    const std::vector<InDayRow> expected{
        {1, "09:00", "09:00", "5<tr>Гулять"},
        {1, "", "09:01", ""},
        {2, "завтрак", "09:03", ""},
        {3, "После еды", "09:04", both},
        {1, "", "09:05", ""},
        {1, "", "14:01", ""},
        {2, "обед", "14:03", ""},
        {3, "После еды", "14:04", both},
        {1, "", "14:05", ""},
        {1, "", "20:01", ""},
        {2, "ужин", "20:03", ""},
        {3, "После еды", "20:04", both},
    };
    EXPECT_EQ(schedule.prepare(today), expected);
}

TEST_F(DayScheduleTest, MealsChosenByDosesADayAndByRelation) {
    // Five doses take every meal; the meals' own minutes count here.
    ASSERT_TRUE(setObed(db(), "09:30<table>11:00<table>14:00<table>16:00<table>20:00"));
    courses({course("Перед едой", "5<td>раз в день", "07:00<td>07:10")});
    std::vector<std::string> meals;
    for (const InDayRow& row : schedule.prepare(today)) {
        if (row.tp == indaykind::meal) {
            meals.push_back(row.pos + " " + row.right);
        } else if (row.tp == indaykind::relation) {
            EXPECT_EQ(row.right, "Перед едой");
            EXPECT_EQ(row.value, dose());
        }
    }
    EXPECT_EQ(meals, (std::vector<std::string>{"09:33 завтрак", "11:03 2ой завтрак", "14:03 обед",
                                               "16:03 полдник", "20:03 ужин"}));

    // A dose with the meal is the meal row's own item; a relation of the
    // parent's own leaves the meal rows empty.
    courses({course("Во время еды", "1<td>раз в день")});
    EXPECT_EQ(schedule.prepare(today)[2], (InDayRow{2, "завтрак", "09:33", dose()}));
    ASSERT_TRUE(diary::ReferenceLists(context)
                    .addConst(diary::cotype::meals, "Запивать молоком", 0)
                    .result);
    lists.clear();
    diary::ReferenceLists(context).loadConstList(lists, 0, "");
    schedule.activateView(gid);
    courses({course("Запивать молоком", "2<td>раз в день")});
    for (const InDayRow& row : schedule.prepare(today)) {
        if (row.pos != "00:00") {
            EXPECT_EQ(row.value, "") << row.pos;
            EXPECT_NE(row.tp, indaykind::relation);
        }
    }
}

TEST_F(DayScheduleTest, RelationsAtOneMealSortEarliestFirst) {
    courses({course("Перед едой", "1<td>раз в день"), course("За 1 час до еды", "1<td>раз в день"),
             course("Через 1 час после еды", "1<td>раз в день"),
             course("После еды", "1<td>раз в день")});
    std::vector<std::string> order;
    for (const InDayRow& row : schedule.prepare(today)) {
        order.push_back(row.pos + " " + row.right);
    }
    EXPECT_EQ(order, (std::vector<std::string>{"00:00 ", "09:01 ", "09:02 За 1 час до еды",
                                               "09:02 Перед едой", "09:03 завтрак",
                                               "09:04 После еды", "09:04 Через 1 час после еды"}));
    EXPECT_LT(DaySchedule::compareRight("За 1 час до еды", "Перед едой"), 0);
    EXPECT_EQ(DaySchedule::compareRight("Своя", "завтрак"), 0);
}

TEST_F(DayScheduleTest, ClockCoursesStandAtTheirDoseTimes) {
    // Hand-set times count for a course that doesn't go by the meals, and a
    // reminder at the same minute shares its row.
    courses({course("Независимо от еды", "3<td>раз в день", "08:00<td>13:30<td>21:00")});
    reminders(json::array({{{"time", "08:00"}, {"temp", "Гулять"}}}));
    const std::vector<InDayRow>& rows = schedule.prepare(today);
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0], (InDayRow{1, "08:00", "08:00", "5<tr>Гулять<end>" + dose()}));
    EXPECT_EQ(rows[1], (InDayRow{1, "13:30", "13:30", dose()}));
    EXPECT_EQ(rows[2], (InDayRow{1, "21:00", "21:00", dose()}));

    // Eight doses are too many for the meals: they go by the clock, with
    // the relation after a comma.
    diary::DayRows(db(), dates).deleteValue("alarm", today, gid);
    courses({course("После еды", "8<td>раз в день")});
    std::vector<std::string> times;
    for (const InDayRow& row : schedule.prepare(today)) {
        if (row.tp == indaykind::plain && !row.right.empty()) {
            EXPECT_EQ(row.value, dose(", После еды"));
            times.push_back(row.right);
        }
    }
    EXPECT_EQ(times, (std::vector<std::string>{"08:00", "10:00", "12:00", "14:00", "16:00", "18:00",
                                               "20:00", "22:00"}));
}

TEST_F(DayScheduleTest, MealTimesWrapWithinTheDay) {
    const std::string late = "09:00<table>11:00<table>14:00<table>16:00<table>23:58";
    EXPECT_EQ(DaySchedule::gt(late, 5, 1), "23:59");
    EXPECT_EQ(DaySchedule::gt(late, 5, 3), "00:01");
    EXPECT_EQ(DaySchedule::gt(late, 1, 4), "09:04");
    // Meal times with pieces missing start at midnight.
    EXPECT_EQ(DaySchedule::gt("09:00", 3, 2), "00:02");

    ASSERT_TRUE(setObed(db(), late));
    courses({course("После еды", "2<td>раз в день")});
    const std::vector<InDayRow>& rows = schedule.prepare(today);
    ASSERT_GE(rows.size(), 3u);
    EXPECT_EQ(rows[1], (InDayRow{2, "ужин", "00:01", ""}));
    EXPECT_EQ(rows[2], (InDayRow{3, "После еды", "00:02", dose()}));
}

TEST_F(DayScheduleTest, MealFormRoundTrip) {
    MealForm form = schedule.mealForm();
    EXPECT_EQ(form.caption, "Время приема пищи");
    std::vector<std::string> fields;
    for (const frame::FormRow& row : form.rows) {
        fields.push_back(row.field + " " + row.caption + " " + row.source);
    }
    EXPECT_EQ(fields, (std::vector<std::string>{"time1 Завтрак 09:00", "time4 Второй завтрак 11:00",
                                                "time2 Обед 14:00", "time5 Полдник 16:00",
                                                "time3 Ужин 20:00"}));
    form.rows[0].source = "08:15";
    form.rows[4].source = "19:45";
    ASSERT_TRUE(schedule.editObed(form.rows));
    // Every child has the same meals.
    newChild("2025-05-05");
    EXPECT_EQ(queryText("select count(distinct obed) from child"), "1");
    EXPECT_EQ(getObed(&db()), "08:15<table>11:00<table>14:00<table>16:00<table>19:45");
    EXPECT_EQ(schedule.mealForm().rows[4].source, "19:45");
}

// ---- drawing ----

std::vector<std::string> pictures(const platform::RecordingCanvas& canvas) {
    std::vector<std::string> names;
    for (const DrawCommand& command : canvas.commands()) {
        if (command.kind == DrawCommand::Kind::Image) {
            names.push_back(command.text);
        }
    }
    return names;
}

TEST(InDayCellPaintTest, GroundsPicturesAndLabels) {
    const platform::Color second{0.7, 0, 0, 1};
    InDayCellPaint paint(InDayCellLook{true, {0, 0, 0, 1}, second});
    const platform::Rect rect{0, 0, 320, 0};
    platform::RecordingCanvas canvas;

    // A separator is a short spacer and draws nothing.
    EXPECT_EQ(paint.height(InDayRow{1, "", "09:01", ""}, 320, canvas), 25);

    // A meal row: a 5% ground, the meal in bold at the right edge.
    const InDayRow meal{2, "завтрак", "09:03", "23<tr>Нурофен: 1 штука"};
    paint.prepareInDayCell(meal, rect, canvas);
    ASSERT_FALSE(canvas.commands().empty());
    EXPECT_EQ(canvas.commands()[0].kind, DrawCommand::Kind::FillRect);
    EXPECT_EQ(canvas.commands()[0].color, (platform::Color{0, 0, 0, 0.05}));
    EXPECT_EQ(canvas.commands()[0].rect.height, paint.height(meal, 320, canvas));
    const auto label = std::find_if(canvas.commands().begin(), canvas.commands().end(),
                                    [](const DrawCommand& c) { return c.text == "завтрак"; });
    ASSERT_NE(label, canvas.commands().end());
    EXPECT_EQ(label->font.weight, platform::FontWeight::Bold);
    EXPECT_DOUBLE_EQ(label->rect.right(), 320 - 8);
    EXPECT_EQ(pictures(canvas), std::vector<std::string>{"c-ne-pills128.png"});

    // A relation row has a lighter ground; every line of every item has its
    // picture, plain ones without colour icons.
    canvas.clear();
    InDayCellPaint plain(InDayCellLook{false, {0, 0, 0, 1}, second});
    const InDayRow relation{3, "После еды", "09:04", "23<tr>Нурофен\nс водой<end>5<tr>Гулять"};
    const double one = plain.height(InDayRow{3, "После еды", "09:04", "5<tr>Гулять"}, 320, canvas);
    EXPECT_GT(plain.height(relation, 320, canvas), one);
    plain.prepareInDayCell(relation, rect, canvas);
    EXPECT_EQ(canvas.commands()[0].color, (platform::Color{0, 0, 0, 0.02}));
    EXPECT_EQ(pictures(canvas),
              (std::vector<std::string>{"ne-pills128.png", "ne-pills128.png", "ne-alarm128.png"}));

    // A line of an empty day: no ground, no picture, centred in the second
    // colour.
    canvas.clear();
    paint.prepareInDayCell(InDayRow{1, "", "00:00", kNoReminders}, rect, canvas);
    ASSERT_EQ(canvas.commands().size(), 1u);
    EXPECT_EQ(canvas.commands()[0].text, "В этом дне напоминаний нет");
    EXPECT_EQ(canvas.commands()[0].align, platform::TextAlign::Center);
    EXPECT_EQ(canvas.commands()[0].color, second);
}

}  // namespace
}  // namespace tilika::medication

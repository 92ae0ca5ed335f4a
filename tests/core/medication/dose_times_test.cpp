#include "medication/dose_times.h"

#include <gtest/gtest.h>

#include "diary/display_texts.h"
#include "diary/reference_lists.h"
#include "diary/value_codecs.h"
#include "frame/form_values.h"
#include "frame/list_choices.h"
#include "medication/course_form.h"
#include "support/core_fixture.h"

namespace tilika::medication {
namespace {

using nlohmann::json;

class DoseTimesTest : public test::CoreFixture {
protected:
    std::vector<diary::ListRow> lists;
    core::Date today;

    DoseTimesTest() : today(dates.noTime(dates.now())) {
        diary::ReferenceLists(context).loadConstList(lists, 0, "");
    }

    std::string indexOf(int list, std::string_view caption) const {
        return frame::indexByCaption(lists, list, caption);
    }

    std::string clock(std::optional<core::Date> at) const {
        return at ? dates.dateToString(*at, "HH:mm") : "none";
    }

    std::vector<std::string> clocks(const std::vector<DoseTime>& doses) const {
        std::vector<std::string> out;
        for (const auto& dose : doses) {
            out.push_back(dates.dateToString(dose.dat, "dd.MM.yyyy HH:mm") + " " + dose.msg);
        }
        return out;
    }

    // The course form as a parent leaves it for a new course, with `changes`.
    frame::FormRows form(const std::map<std::string, std::string>& changes) const {
        diary::EntryForm course = courseForm(std::nullopt, "22.11.2026", lists);
        for (const auto& [field, value] : changes) {
            course.defaults[field] = value;
        }
        frame::fillSources(course.rows, course.defaults);
        return course.rows;
    }
};

TEST_F(DoseTimesTest, DosesSpreadOverTheDayOrRoundTheClock) {
    std::vector<std::string> waking;
    for (int pos = 1; pos <= 7; ++pos) {
        waking.push_back(clock(generateTime(dates, today, 1, 7, pos)));
    }
    EXPECT_EQ(waking, (std::vector<std::string>{"08:00", "10:15", "12:30", "15:00", "17:15",
                                                "19:30", "22:00"}));
    EXPECT_EQ(clock(generateTime(dates, today, 2, 7, 2)), "03:25");
    std::vector<std::string> roundTheClock;
    for (int pos = 1; pos <= 3; ++pos) {
        roundTheClock.push_back(clock(generateTime(dates, today, 2, 3, pos)));
    }
    EXPECT_EQ(roundTheClock, (std::vector<std::string>{"00:00", "08:00", "16:00"}));
    EXPECT_EQ(clock(generateTime(dates, today, 1, 1, 1)), "08:00");
    EXPECT_EQ(clock(generateTime(dates, today, 9, 3, 2)), "00:00");

    EXPECT_EQ(clock(generateTimeEat(dates, today, 9, "Через 1 час после еды")), "10:10");
    EXPECT_EQ(clock(generateTimeEat(dates, today, 9, "За 1 час до еды")), "08:00");
    EXPECT_EQ(clock(generateTimeEat(dates, today, 9, "Перед едой")), "08:55");
    EXPECT_EQ(clock(generateTimeEat(dates, today, 9, "Своя привычка")), "09:00");
    // Doses that would fall off the day have no time at all.
    EXPECT_EQ(clock(generateTimeEat(dates, today, 0, "Перед едой")), "none");
    EXPECT_EQ(clock(generateTimeEat(dates, today, 23, "Через 1 час после еды")), "none");
    // The date stays the day asked for.
    EXPECT_EQ(dates.dateToString(*generateTimeEat(dates, today, 14, "После еды"), "dd.MM.yyyy"),
              "22.11.2026");
}

TEST_F(DoseTimesTest, MealTimesAreOneSetForAllChildren) {
    EXPECT_EQ(getObed(&db()), "08:00<table>11:00<table>14:00<table>16:00<table>20:00");
    newChild("2024-03-01");  // meal times are one set for both children
    const std::string meals = "07:30<table>10:00<table>13:00<table>16:30<table>19:00";
    ASSERT_TRUE(setObed(db(), meals));
    EXPECT_EQ(queryText("select count(distinct obed) || obed from child"), "1" + meals);
    db().exec("update child set obed=null");
    EXPECT_EQ(getObed(&db()), kDefaultMeals);
    EXPECT_EQ(getObed(nullptr), kDefaultMeals);
}

TEST_F(DoseTimesTest, TheFormsTimesFollowItsDosesAndMeals) {
    const DoseTimes times(dates, lists, getObed(&db()));
    const std::string afterMeals = indexOf(diary::cotype::meals, "После еды");
    EXPECT_EQ(
        times.getCurrentPillTime(form({{"pillinter", "3<td>раз в день"}, {"pilleat", afterMeals}})),
        "08:10<td>14:10<td>20:10");
    EXPECT_EQ(times.getCurrentPillTime(form({{"pillinter", "3<td>раз в сутки"}})),
              "00:00<td>08:00<td>16:00");
    // Over five doses the meals can't hold them: they spread by count.
    EXPECT_EQ(
        times.getCurrentPillTime(form({{"pillinter", "6<td>раз в день"}, {"pilleat", afterMeals}})),
        "08:00<td>10:45<td>13:30<td>16:15<td>19:00<td>22:00");
    // Hand-set times don't count, and without meals there is nothing.
    EXPECT_EQ(
        times.getCurrentPillTime(form({{"pilltime", "07:00"}, {"pillinter", "1<td>раз в день"}})),
        "08:00");
    EXPECT_EQ(times.getCurrentPillTime(form({{"pilleat", ""}})), "");

    // The times come in the order of the meals, not of the clock.
    const DoseTimes lateBreakfast(dates, lists,
                                  "20:00<table>11:00<table>14:00<table>16:00<table>08:00");
    EXPECT_EQ(lateBreakfast.getCurrentPillTime(
                  form({{"pillinter", "2<td>раз в день"}, {"pilleat", afterMeals}})),
              "20:10<td>08:10");
}

TEST_F(DoseTimesTest, ADaysCoursesGiveTheirDosesInOrder) {
    const DoseTimes times(dates, lists, std::string(kDefaultMeals));
    const std::string medicine = lists.front().index;
    const std::string medicineName = diary::checkStringToRead(medicine, lists);
    json timed{{"pillname", medicine},
               {"pilldoza", "1/2<td>шт."},
               {"pilltime", "21:00<td>07:30"},
               {"pillinter", "5<td>раз в день"}};
    json byMeals{{"pilldoza", "1<td>мл."},
                 {"pillinter", "2<td>раз в день"},
                 {"pilleat", indexOf(diary::cotype::meals, "Перед едой")}};
    json spread{{"pilldoza", "2<td>капля"},
                {"pillinter", "6<td>раз в сутки"},
                {"pilleat", indexOf(diary::cotype::meals, "Во время еды")}};
    const std::string value =
        diary::jsonFromObject(json::array({timed, "not a course", 7, byMeals, spread}));
    EXPECT_EQ(clocks(times.pillsToTimeArray(today, value)),
              (std::vector<std::string>{
                  "22.11.2026 21:00 " + medicineName + ": 1/2 штуки",
                  "22.11.2026 07:30 " + medicineName + ": 1/2 штуки",
                  "22.11.2026 08:55 : 1 миллилитр (Перед едой)",
                  "22.11.2026 19:55 : 1 миллилитр (Перед едой)",
                  "22.11.2026 00:00 : 2 капли, Во время еды",
                  "22.11.2026 04:00 : 2 капли, Во время еды",
                  "22.11.2026 08:00 : 2 капли, Во время еды",
                  "22.11.2026 12:00 : 2 капли, Во время еды",
                  "22.11.2026 16:00 : 2 капли, Во время еды",
                  "22.11.2026 20:00 : 2 капли, Во время еды",
              }));

    // What isn't a time, or isn't a course, has no doses; a damaged count
    // can't make the day endless.
    EXPECT_TRUE(times.pillsToTimeArray(today, "Нурофен по 1/2").empty());
    json junk{{"pilltime", "25:99<td>x<td>"}};
    EXPECT_TRUE(times.pillsToTimeArray(today, json::array({junk}).dump()).empty());
    json endless{{"pillinter", "2147483647<td>раз в сутки"},
                 {"pilleat", indexOf(diary::cotype::meals, "Независимо от еды")}};
    EXPECT_LE(times.pillsToTimeArray(today, json::array({endless}).dump()).size(), 24u * 60u);
}

}  // namespace
}  // namespace tilika::medication

#include "diary/old_values.h"

#include <gtest/gtest.h>

#include "core/dates.h"
#include "core/ids.h"
#include "diary/display_texts.h"
#include "diary/value_codecs.h"
#include "platform/clock.h"

namespace tilika::diary {
namespace {

using nlohmann::json;

// Record rows read their dates in the device's zone.
const platform::ManualClock kClock{core::Date{}, "Europe/Moscow"};
const core::Dates kDates{kClock};

std::string guid1(int n) {
    return core::newID2(core::idkind::profile, n);
}
std::string guid2(int n) {
    return core::newID2(core::idkind::listRow, n);
}

// Old databases numbered their rows; the upgrade gave those rows kind-2 guids.
const std::vector<ListRow> kList{
    {"Общий анализ крови", guid2(32), 200, 2, 1, false},
    {"Общий анализ мочи", guid2(33), 200, 2, 1, false},
    {"Нутрилон 1", guid2(61), 6, 2, 1, false},
    {"Желток яйца (шт.)<tr>12", guid2(71), 9, 5, 1, false},
    {"Агуша яблочный сок (мил.)<tr>10", guid2(72), 9, 5, 1, false},
};

TEST(OldValues, TimedRowsConvertToTheRowsTheyShowed) {
    const std::string old = "09:00<td>37.2<tr>08:00<td>36.6";
    const std::string converted = oldValueToJson("temp", old, kList);
    EXPECT_EQ(jsonToArray(converted), json::parse(R"([{"time":"09:00","temp":"37.2"},
                                                      {"time":"08:00","temp":"36.6"}])"));
    EXPECT_EQ(multiFromString(converted, tp::timedRows), multiFromString(old, tp::timedRows));
    EXPECT_EQ(
        multiFromString(oldValueToJson("alarm", "10:00<td>Врач", kList), tp::reminders).at(0).cap,
        "Врач");

    const std::string pressure = oldValueToJson("pressure",
                                                "07:30<table>120<table>80<table>"
                                                "<end>18:00<table>130<table>85",
                                                kList);
    EXPECT_EQ(jsonToArray(pressure),
              json::parse(R"([{"time":"07:30","pressure1":"120","pressure2":"80","comment":""},
                              {"time":"18:00","pressure1":"130","pressure2":"85","comment":""}])"));
    EXPECT_EQ(jsonToArray(oldValueToJson("zhid", "12:00<table>500<table>300<table>жарко", kList)),
              json::parse(R"([{"time":"12:00","in":"500","out":"300","comment":"жарко"}])"));
}

TEST(OldValues, RecordsConvertToWhatTheReadersShow) {
    const std::string sleep =
        oldValueToJson("sleep", "13:00<table>15:00<table>02:00<end>21:00<table>07:00<end>", kList);
    const auto periods = multi2FromString(sleep, kList, tp::periods, std::nullopt, kDates);
    ASSERT_EQ(periods.size(), 2u);
    EXPECT_EQ(periods[0].text, "с 13:00 до 15:00 (02:00)");
    EXPECT_EQ(periods[1].text, "с 21:00 до 07:00 ()");

    EXPECT_EQ(biosizeStringToRead(oldValueToJson("biosize", "42<tr><tr>48", kList)),
              "Окружность головы: 42\nОбхват талии: 48");
    EXPECT_EQ(jsonToDictionary(oldValueToJson("birthresult", "52<tr>3.4<tr>2", kList)),
              (json{{"rost", "52"}, {"ves", "3.4"}, {"type", "2"}, {"time", ""}}));
    EXPECT_EQ(jsonToDictionary(oldValueToJson("uzi", "30", kList)),
              (json{{"rost", "30"}, {"ves", ""}}));

    const std::string analyses =
        oldValueToJson("analizy", "1<br>32<br>5-1.jpg<br>1<tr>1<br>33<br>a-5-2.JPG<br>2", kList);
    EXPECT_EQ(analizyStringToRead(analyses, kList), "Общий анализ крови, Общий анализ мочи");
    const json records = jsonToArray(analyses);
    EXPECT_EQ(records[0]["file"], guid1(5) + "-1.jpg");
    EXPECT_EQ(records[1]["file"], "a-" + guid1(5) + "-2.JPG");
    EXPECT_EQ(records[1]["tag"], "2");
    EXPECT_EQ(jsonToArray(oldValueToJson("documents", "1<br>51", kList))[0],
              (json{{"tp", "1"}, {"captiontype", guid2(51)}, {"file", ""}, {"tag", ""}}));
}

TEST(OldValues, FeedingsConvertByKind) {
    auto feeding = [](std::string_view old) {
        return kormToString(oldValueToJson("kovalue", old, kList), kList);
    };
    EXPECT_EQ(feeding("1<tr>10<tr>5"), "Левая грудь: 10 мин.\nПравая грудь: 5 мин.");
    EXPECT_EQ(feeding("2<tr>61<tr>120"), "Нутрилон 1: 120 мил.");
    EXPECT_EQ(feeding("3<tr>Кефир<tr>100"), "100 мил.");
    EXPECT_EQ(feeding("4<tr>Творог<tr>50"), "50 г.");
    EXPECT_EQ(feeding("7<tr>71<tr>1"), "Желток яйца: 1 шт.");
    EXPECT_EQ(feeding("7<tr>72<tr>200"), "Агуша яблочный сок: 200 мил.");
    EXPECT_EQ(jsonToDictionary(oldValueToJson("kovalue", "7<tr>99<tr>2", kList))["measure"], "");
    EXPECT_EQ(jsonToDictionary(oldValueToJson("kovalue", "9", kList)), (json{{"tp", "9"}}));
    EXPECT_EQ(feeding("x"), "");
}

TEST(OldValues, CoursesReadInFormOrderWithPickerPositionsSpelledOut) {
    const std::string old =
        "8<table>5<td>2<table>2<td>0<table>10<table>18<table>0<td>1<table>01.03.2014"
        "<table>08:00<td>20:00<table>K-1<end>"
        "7<table>0<td>8<table>0<td>1<table>11<table>15<table>2<td>0<table>05.03.2014<table>";
    const json courses = jsonToArray(oldValueToJson("pills", old, kList));
    ASSERT_EQ(courses.size(), 2u);
    EXPECT_EQ(courses[0], (json{{"pillname", guid2(8)},
                                {"pilldoza", "3<td>шт."},
                                {"pillinter", "3<td>раз в день"},
                                {"pillperiod", guid2(10)},
                                {"pilleat", guid2(18)},
                                {"pilllength", "1<td>недели"},
                                {"pillsdate", "01.03.2014"},
                                {"pilltime", "08:00<td>20:00"},
                                {"key", "K-1"}}));
    EXPECT_EQ(courses[1]["pilldoza"], "1/8<td>капля");
    EXPECT_EQ(courses[1]["pilllength"], "3<td>дни");
    EXPECT_FALSE(courses[1].contains("key"));
    EXPECT_EQ(extractKeys("pills", oldValueToJson("pills", old, kList)).key,
              (std::vector<std::string>{"K-1"}));

    // A record cut short keeps what it has.
    EXPECT_EQ(oldValueToDic("pills", "8<table>5", kList)["pilldoza"], "3<td>");
    EXPECT_EQ(oldValueToDic("pills", "8<table>5", kList)["pillsdate"], "");
}

TEST(OldValues, PickerPositionsReadAsTheirTexts) {
    ASSERT_EQ(oldListFor(5, 0).size(), 203u);
    EXPECT_EQ(oldListFor(5, 0)[3], "1");
    EXPECT_EQ(oldListFor(4, 0).size(), 100u);
    EXPECT_EQ(oldListFor(6, 1), (std::vector<std::string>{"раз в день", "раз в сутки"}));
    EXPECT_TRUE(oldListFor(7, 0).empty());

    EXPECT_EQ(oldList("pilldoza", "2<td>5"), "1/2<td>ст.лож.");
    EXPECT_EQ(oldList("pillinter", "23<td>1"), "24<td>раз в сутки");
    EXPECT_EQ(oldList("pilllength", "999<td>-1"), "<td>-1");
    EXPECT_EQ(oldList("pilllength", "1/2<td>недели"), "1/2<td>недели");
    EXPECT_EQ(oldList("pilldoza", ""), "");
    EXPECT_EQ(oldList("pillname", "2<td>5"), "2<td>5");
}

TEST(OldValues, OtherValuesAndListsConvertOrStay) {
    EXPECT_EQ(oldValueToJson("allergen", "3<tr>12", kList), guid2(3) + "<tr>" + guid2(12));
    EXPECT_EQ(oldValueToJson("bolezn", "5", kList), guid2(5));
    EXPECT_EQ(oldValueToJson("bolezn", guid2(5), kList), guid2(5));
    // The tick lists of the diary are read through their list, which knows
    // old numbers, so they stay.
    EXPECT_EQ(oldValueToJson("achive", "3<tr>12", kList), "3<tr>12");
    EXPECT_EQ(oldValueToJson("ves", "3500", kList), "3500");
    EXPECT_EQ(oldValueToJson("tooth", "5<tr>105", kList), "5<tr>105");
    EXPECT_EQ(oldValueToJson("temp", "", kList), "");
    // Converting twice changes nothing.
    const std::string once = oldValueToJson("temp", "08:00<td>36.6", kList);
    EXPECT_EQ(oldValueToJson("temp", once, kList), once);
    EXPECT_EQ(oldValueToDic("note", "текст", kList), json::object());
    EXPECT_EQ(jsonToArray(oldValueToJson("temp", "<tr><td><tr>08:00", kList)),
              json::parse(R"([{"time":"","temp":""},{"time":"08:00","temp":""}])"));
}

TEST(OldValues, FileNamesTakeTheProfileGuid) {
    EXPECT_EQ(oldFileNameToNew("5-12-03-2013.jpg"), guid1(5) + "-12-03-2013.jpg");
    EXPECT_EQ(oldFileNameToNew("a-12-3.PDF"), "a-" + guid1(12) + "-3.PDF");
    EXPECT_EQ(oldFileNameToNew("d-1-2.jpg"), "d-" + guid1(1) + "-2.jpg");
    for (const std::string same :
         {"5.jpg", "a-5.jpg", "5-2.png", "photo-2.jpg", "-2.jpg", "child-5.jpg", "5-2", ""}) {
        EXPECT_EQ(oldFileNameToNew(same), same);
    }
    const std::string renamed = guid1(5) + "-1.jpg";
    EXPECT_EQ(oldFileNameToNew(renamed), renamed);
}

TEST(OldValues, SortsOldRecordsByTime) {
    EXPECT_EQ(sortValueByTime("12:00<td>b<end>08:00<td>a<end>12:00<td>c<end>7:30"),
              "7:30<end>08:00<td>a<end>12:00<td>b<end>12:00<td>c");
    EXPECT_EQ(sortValueByTime(""), "");
}

}  // namespace
}  // namespace tilika::diary

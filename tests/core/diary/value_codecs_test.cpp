#include "diary/value_codecs.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/dates.h"
#include "core/ids.h"
#include "platform/clock.h"

namespace tilika::diary {
namespace {

using nlohmann::json;

// Record rows read their dates in the device's zone.
const platform::ManualClock kClock{core::Date{}, "Europe/Moscow"};
const core::Dates kDates{kClock};

CatalogueRow formRow(std::string field, std::string source, int tp = 0) {
    CatalogueRow row;
    row.field = std::move(field);
    row.source = std::move(source);
    row.tp = tp;
    return row;
}

// A form as the editor hands it over: the caption row first.
std::vector<CatalogueRow> form(std::vector<CatalogueRow> rows) {
    rows.insert(rows.begin(), formRow("", "Замеры температуры"));
    return rows;
}

std::vector<std::string> times(const std::vector<MultiRow>& rows) {
    std::vector<std::string> out;
    for (const MultiRow& row : rows) {
        out.push_back(row.time + " " + row.cap);
    }
    return out;
}

TEST(ValueCodecs, TellsJsonFromOldFormsAndParsesOnlyWhatFits) {
    EXPECT_FALSE(jsonIs(""));
    EXPECT_FALSE(jsonIs(" ["));
    EXPECT_FALSE(jsonIs("08:00<td>36.6"));
    EXPECT_TRUE(jsonIs("{x"));
    EXPECT_TRUE(jsonIs("["));

    EXPECT_TRUE(jsonToDictionary("{\"bio1\":\"45\"}").is_object());
    EXPECT_TRUE(jsonToArray("[]").is_array());
    for (const std::string bad :
         {"", "{x", "[{\"time\":\"08:00\"", "[1] tail", "\"text\"", "36.6", "[\"\xff\xfe\"]"}) {
        EXPECT_TRUE(jsonToDictionary(bad).is_null()) << bad;
        EXPECT_TRUE(jsonToArray(bad).is_null()) << bad;
    }
    // The wrong shape reads as nothing rather than as the other container.
    EXPECT_TRUE(jsonToDictionary("[{\"time\":\"08:00\"}]").is_null());
    EXPECT_TRUE(jsonToArray("{\"time\":\"08:00\"}").is_null());
    // Nesting far beyond any value of ours is refused outright.
    EXPECT_TRUE(jsonToArray(std::string(100000, '[') + std::string(100000, ']')).is_null());
    // Brackets inside texts don't count as nesting.
    EXPECT_TRUE(jsonToArray("[\"" + std::string(100, '[') + "\"]").is_array());
}

TEST(ValueCodecs, WritesStablePrettyJson) {
    json record = json::object();
    record["time"] = "08:00";
    record["temp"] = "Дать 5 капель";
    EXPECT_EQ(jsonFromObject(record),
              "{\n  \"temp\": \"Дать 5 капель\",\n  \"time\": \"08:00\"\n}");

    // Broken UTF-8 from an old record must not stop a save.
    const std::string written = jsonFromObject(json{{"temp", std::string("37\xff")}});
    EXPECT_EQ(jsonToDictionary(written)["temp"], "37\xEF\xBF\xBD");

    // Numbers where text belongs still read, other shapes read as nothing.
    const json odd =
        json::parse(R"({"temp": 36.6, "time": 8, "key": null, "in": [1], "ok": true})");
    EXPECT_EQ(jsonText(odd, "temp"), "36.6");
    EXPECT_EQ(jsonText(odd, "time"), "8");
    EXPECT_EQ(jsonText(odd, "ok"), "true");
    EXPECT_EQ(jsonText(odd, "key"), "");
    EXPECT_EQ(jsonText(odd, "in"), "");
    EXPECT_EQ(jsonText(odd, "missing"), "");
    EXPECT_EQ(jsonText(json::array({"temp"}), "temp"), "");
}

TEST(ValueCodecs, TemperaturesSortByTimeAndEqualTimesKeepEntryOrder) {
    std::string value = jsonFromDic(tp::timedRows, "temp", "",
                                    form({formRow("time", "09:00"), formRow("temp", "37.2")}), -1);
    value = jsonFromDic(tp::timedRows, "temp", value,
                        form({formRow("time", "08:00"), formRow("temp", "36.6")}), -1);
    EXPECT_EQ(times(multiFromString(value, tp::timedRows)),
              (std::vector<std::string>{"08:00 36.6", "09:00 37.2"}));

    value = jsonFromDic(tp::timedRows, "temp", value,
                        form({formRow("time", "08:00"), formRow("temp", "36.9")}), -1);
    const std::vector<MultiRow> rows = multiFromString(value, tp::timedRows);
    EXPECT_EQ(times(rows), (std::vector<std::string>{"08:00 36.6", "08:00 36.9", "09:00 37.2"}));
    EXPECT_EQ(rows[0].index, 1);
    EXPECT_EQ(rows[2].index, 3);

    // The old form of the same day reads into the same rows.
    EXPECT_EQ(multiFromString("08:00<td>36.6<tr>08:00<td>36.9<tr>09:00<td>37.2", tp::timedRows),
              rows);
    // And the rows write back to the same value.
    EXPECT_EQ(multiToString(rows), value);
}

TEST(ValueCodecs, RemindersKeepTheirTextUnderTemp) {
    const std::string value =
        jsonFromDic(tp::reminders, "alarm", "",
                    form({formRow("time", "10:00"), formRow("temp", "Дать витамин D")}), -1);
    const json stored = jsonToArray(value);
    ASSERT_EQ(stored.size(), 1u);
    EXPECT_EQ(stored[0]["temp"], "Дать витамин D");
    EXPECT_EQ(multiFromString(value, tp::reminders).at(0).cap, "Дать витамин D");
    EXPECT_EQ(multiFromString("10:00<td>Дать витамин D", tp::reminders),
              multiFromString(value, tp::reminders));
}

TEST(ValueCodecs, RecordListsAppendReplaceAndSortByKind) {
    auto course = [](std::string name, std::string time) {
        return form({formRow("pillname", std::move(name)), formRow("pilltime", std::move(time))});
    };
    auto names = [](const std::string& value, std::string_view key) {
        std::vector<std::string> out;
        for (const json& record : jsonToArray(value)) {
            out.push_back(jsonText(record, key));
        }
        return out;
    };
    // Courses keep the order they were entered in, whatever their times.
    std::string pills = jsonFromDic(tp::medication, "pills", "", course("A", "20:00"), -1);
    pills = jsonFromDic(tp::medication, "pills", pills, course("B", "08:00"), -1);
    EXPECT_EQ(names(pills, "pillname"), (std::vector<std::string>{"A", "B"}));
    EXPECT_EQ(jsonToArray(pills)[0].size(), 2u) << "the caption row has no field";

    EXPECT_EQ(names(jsonFromDic(tp::medication, "pills", pills, course("C", ""), 0), "pillname"),
              (std::vector<std::string>{"C", "B"}));
    EXPECT_EQ(names(jsonFromDic(tp::medication, "pills", pills, course("C", ""), 1), "pillname"),
              (std::vector<std::string>{"A", "C"}));
    EXPECT_EQ(names(jsonFromDic(tp::medication, "pills", pills, course("C", ""), 7), "pillname"),
              (std::vector<std::string>{"A", "B", "C"}));
    const std::string one = jsonFromDic(tp::medication, "pills", "", course("A", ""), -1);
    EXPECT_EQ(names(jsonFromDic(tp::medication, "pills", one, course("C", ""), 0), "pillname"),
              (std::vector<std::string>{"C"}));
    // A plain-text course from before JSON is replaced by a new list.
    EXPECT_EQ(
        names(jsonFromDic(tp::medication, "pills", "Нурофен", course("A", ""), -1), "pillname"),
        (std::vector<std::string>{"A"}));

    auto measure = [](std::string time, std::string high) {
        return form({formRow("time", std::move(time)), formRow("pressure1", std::move(high)),
                     formRow("pressure2", "80"), formRow("comment", "")});
    };
    std::string pressure = jsonFromDic(tp::pressure, "pressure", "", measure("18:00", "130"), -1);
    pressure = jsonFromDic(tp::pressure, "pressure", pressure, measure("07:30", "120"), -1);
    EXPECT_EQ(names(pressure, "time"), (std::vector<std::string>{"07:30", "18:00"}));
    EXPECT_EQ(times(multiFromString(pressure, tp::pressure)),
              (std::vector<std::string>{"07:30 120/80", "18:00 130/80"}));
}

TEST(ValueCodecs, SingleValuesComeFromTheirFormRows) {
    const auto rows = form({formRow("value", "5<tr>105")});
    EXPECT_EQ(jsonFromDic(tp::teeth, "tooth", "", rows, -1), "5<tr>105");
    EXPECT_EQ(jsonFromDic(tp::text, "note", "", {}, -1), "");
    EXPECT_EQ(jsonFromDic(tp::photo, "", "", rows, -1), "");

    const json bio = jsonToDictionary(
        jsonFromDic(tp::bodyMeasures, "biosize", "",
                    form({formRow("bio1", "45", 1015), formRow("bio5", "12.5", 1015),
                          formRow("note", "не мерили", 1001)}),
                    -1));
    EXPECT_EQ(bio, (json{{"bio1", "45"}, {"bio5", "12.5"}}));

    const auto birth = form({formRow("rost", "52"), formRow("ves", "3.4"), formRow("time", "06:10"),
                             formRow("x", "-"), formRow("y", "-"), formRow("type", "2")});
    EXPECT_EQ(jsonToDictionary(jsonFromDic(tp::birthResult, "birthresult", "", birth, -1)),
              (json{{"rost", "52"}, {"ves", "3.4"}, {"type", "2"}, {"time", "06:10"}}));
}

TEST(ValueCodecs, RecordRowsReadAndWriteBack) {
    const std::vector<ListRow> medicines{{"Нурофен<tr>1", core::newID2(4, 8), 101, 2, 1, false}};
    const std::string sleep = R"([{"start":"13:00","end":"15:00","interval":"02:00"},
                                  {"start":"21:00","end":"07:00"}])";
    const std::vector<MultiRow> rows =
        multi2FromString(sleep, {}, tp::periods, std::nullopt, kDates);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].text, "с 13:00 до 15:00 (02:00)");
    EXPECT_EQ(rows[1].text, "с 21:00 до 07:00 ()");
    EXPECT_EQ(intervalToRead2(rows[0].source), rows[0].text);
    EXPECT_EQ(jsonToArray(multi2ToString(rows)), jsonToArray(sleep));

    const std::string course = R"([{"pillname":")" + core::newID2(4, 8) + R"(","key":"K"}])";
    EXPECT_EQ(multi2FromString(course, medicines, tp::medication, std::nullopt, kDates).at(0).text,
              "Нурофен: , , , , ");
    const auto legacy =
        multi2FromString("Нурофен по 1/2", medicines, tp::medication, std::nullopt, kDates);
    ASSERT_EQ(legacy.size(), 1u);
    EXPECT_EQ(legacy[0].text, "Нурофен по 1/2");
    EXPECT_TRUE(
        multi2FromString("13:00<table>15:00", {}, tp::periods, std::nullopt, kDates).empty());
    EXPECT_EQ(intervalToRead2("13:00<table>15:00"), "");

    EXPECT_EQ(pressureToString(json{{"pressure1", "120"}, {"pressure2", "80"}}), "120/80");
    EXPECT_EQ(pressureToString(json{{"pressure1", "120"}, {"comment", "после сна"}}),
              "120/ - после сна");
    EXPECT_EQ(zhidToString(json{{"in", "500"}, {"out", "300"}, {"comment", ""}}), "500>300");
    EXPECT_EQ(zhidToString(json::array()), ">");
}

TEST(ValueCodecs, ExtractsCourseKeys) {
    const std::string value = R"([{"pillname":"A","key":"K1"},{"pillname":"B"},7,
                                  {"pillname":"C","key":"K2"}])";
    const CourseKeys keys = extractKeys("pills", value);
    EXPECT_EQ(keys.key, (std::vector<std::string>{"K1", "K2"}));
    ASSERT_EQ(keys.nokey.size(), 1u);
    EXPECT_EQ(jsonToDictionary(keys.nokey[0]), (json{{"pillname", "B"}}));
    ASSERT_EQ(keys.keyvalue.size(), 2u);
    EXPECT_EQ(jsonText(jsonToDictionary(keys.keyvalue[1]), "pillname"), "C");

    EXPECT_TRUE(extractKeys("temp", value).key.empty());
    EXPECT_TRUE(extractKeys("pills", "A<table>B").nokey.empty());
}

TEST(ValueCodecs, MalformedValuesGiveNoRowsOrPartRows) {
    const std::string deep = std::string(40, '[') + std::string(40, ']');
    for (const std::string& bad :
         {std::string("["), std::string("{x"), std::string("[1,\"a\",null]"),
          std::string("{\"time\":\"08:00\"}"), std::string("[{\"time\":\"08\xff\"}]"), deep}) {
        for (int kind : {tp::timedRows, tp::reminders, tp::pressure, tp::fluids}) {
            EXPECT_TRUE(multiFromString(bad, kind).empty()) << bad;
        }
        EXPECT_TRUE(multi2FromString(bad, {}, tp::medication, std::nullopt, kDates).empty()) << bad;
        EXPECT_TRUE(extractKeys("pills", bad).nokey.empty()) << bad;
    }
    for (const std::string bad : {"", "{x", "[{\"start\":\"13:00\"}]", "{\"start\":\"1\xff\"}"}) {
        EXPECT_EQ(intervalToRead2(bad), "") << bad;
    }
    // Numbers where text belongs still give their rows.
    EXPECT_EQ(times(multiFromString(R"([{"time":8,"temp":36.6},{}])", tp::timedRows)),
              (std::vector<std::string>{"8 36.6", " "}));
    // Old values with pieces missing read them as empty texts.
    EXPECT_EQ(times(multiFromString("08:00<tr><td>37<tr>", tp::timedRows)),
              (std::vector<std::string>{"08:00 ", " 37"}));
    EXPECT_TRUE(multiFromString("", tp::timedRows).empty());
}

}  // namespace
}  // namespace tilika::diary

#include "diary/display_texts.h"

#include <gtest/gtest.h>

#include "core/ids.h"

namespace tilika::diary {
namespace {

std::string guid2(int n) {
    return core::newID2(core::idkind::listRow, n);
}
std::string guid4(int n) {
    return core::newID2(core::idkind::seededRow, n);
}

// A small whole list, as the diary loads it: captions with and without tails.
const std::vector<ListRow> kList{
    {"Улыбается", guid2(3), 1, 2, 1, false},
    {"Держит голову<tr>1", guid2(7), 1, 2, 1, false},
    {"Корь<tr>1", guid2(40), 3, 2, 1, false},
    {"Клинический анализ крови", guid4(31), 200, 2, 1, false},
    {"Общий анализ мочи", guid4(33), 200, 2, 1, false},
    {"Нутрилон 1", guid4(61), 6, 2, 1, false},
    {"  Хипп 1 Combiotic (смесь)", guid4(63), 6, 2, 1, false},
    {"Сцеженное молоко<tr>2", guid4(70), 6, 4, 1, false},
    {"Желток яйца (шт.)<tr>12", guid4(71), 9, 5, 1, false},
};

TEST(DisplayTexts, CheckedItemsReadAsCaptionsWithoutTails) {
    EXPECT_EQ(checkStringToRead(guid2(3) + "<tr>" + guid2(99) + "<tr>7", kList),
              "Улыбается\nДержит голову");
    EXPECT_EQ(checkStringToRead(guid2(99) + "<tr>" + guid2(40), kList), "Корь");
    EXPECT_EQ(checkStringToRead("", kList), "");
    EXPECT_EQ(checkStringToRead("<tr><tr>", kList), "");
    EXPECT_EQ(checkStringToRead(guid2(3), {}), "");
}

TEST(DisplayTexts, TeethReadOneChangeALine) {
    EXPECT_EQ(toothStringToRead("5<tr>105"),
              "Прорезался верхний центральный резец (51)\nВыпал верхний центральный резец (51)");
    EXPECT_EQ(toothStringToRead("1<tr>20<tr>111"),
              "Прорезался верхний второй коренной (55)\nПрорезался нижний второй коренной (75)\n"
              "Выпал нижний второй коренной (85)");
    // A number that names no tooth keeps only the first word.
    EXPECT_EQ(toothStringToRead("21<tr>0<tr>150<tr>зуб"),
              "Прорезался \nПрорезался \nВыпал \nПрорезался ");
    EXPECT_EQ(toothStringToRead(""), "");
    EXPECT_EQ(toothStringToRead("3<tr>"), "Прорезался верхний клык (53)");
}

TEST(DisplayTexts, AnalysesJoinTheirKindsWithCommas) {
    const std::string two = R"([{"tp":"1","captiontype":")" + guid4(31) +
                            R"(","file":"a.jpg","tag":"1"},{"captiontype":")" + guid4(33) +
                            R"("}])";
    EXPECT_EQ(analizyStringToRead(two, kList), "Клинический анализ крови, Общий анализ мочи");
    // An unknown kind still takes its place in the list.
    const std::string firstMissing =
        R"([{"captiontype":"gone"},{"file":"b.jpg"},{"captiontype":")" + guid4(33) + R"("}])";
    EXPECT_EQ(analizyStringToRead(firstMissing, kList), ", , Общий анализ мочи");
    EXPECT_EQ(analizyStringToRead("1<br>31<br>a.jpg<br>1", kList), "");
    EXPECT_EQ(analizyStringToRead(R"({"captiontype":")" + guid4(31) + R"("})", kList), "");
}

TEST(DisplayTexts, BodyMeasuresReadTheOnesTaken) {
    EXPECT_EQ(
        biosizeStringToRead(R"({"bio1":"42","bio2":"","bio3":"48","bio5":"11.5","bio9":"1"})"),
        "Окружность головы: 42\nОбхват талии: 48\nДлина стопы: 11.5");
    EXPECT_EQ(biosizeStringToRead(R"({"bio4":52})"), "Обхват бедер: 52");
    EXPECT_EQ(biosizeStringToRead("42<tr>50<tr>48<tr>52<tr>11"), "");
    EXPECT_EQ(biosizeStringToRead("{}"), "");
}

TEST(DisplayTexts, FeedingsReadByKind) {
    EXPECT_EQ(kormToString(R"({"tp":"1","tip":"Грудное молоко","left":"10","right":"5"})", kList),
              "Левая грудь: 10 мин.\nПравая грудь: 5 мин.");
    EXPECT_EQ(kormToString(R"({"tp":"1","left":"0","right":"5"})", kList),
              "\nПравая грудь: 5 мин.");
    EXPECT_EQ(kormToString(R"({"tp":"1","left":"12","right":"0"})", kList), "Левая грудь: 12 мин.");
    EXPECT_EQ(kormToString(R"({"tp":"1"})", kList), "");

    EXPECT_EQ(kormToString(R"({"tp":"3","tip":"Кефир","volume":"100","measure":"мил."})", kList),
              "100 мил.");
    EXPECT_EQ(kormToString(R"({"tp":"4","tip":"Творог","volume":"50","measure":"г."})", kList),
              "50 г.");
    auto product = [](const std::string& guid, std::string_view volume, std::string_view measure) {
        return R"({"tp":"2","tip":")" + guid + R"(","volume":")" + std::string(volume) +
               R"(","measure":")" + std::string(measure) + R"("})";
    };
    EXPECT_EQ(kormToString(product(guid4(63), "120", "мил."), kList), "Хипп 1 Combiotic: 120 мил.");
    EXPECT_EQ(kormToString(product(guid4(70), "90", "мил."), kList), "Сцеженное молоко: 90 мил.");
    EXPECT_EQ(kormToString(product(guid4(71), "1", "шт."), kList), "Желток яйца: 1 шт.");
    EXPECT_EQ(kormToString(product("gone", "30", "мил."), kList), "30 мил.");

    EXPECT_EQ(kormToString(R"({"tp":"0","volume":"30"})", kList), "");
    EXPECT_EQ(kormToString(R"({"tp":"x"})", kList), "");
    EXPECT_EQ(kormToString("2<tr>61<tr>120", kList), "");
    EXPECT_EQ(kormToString("[1]", kList), "");
}

}  // namespace
}  // namespace tilika::diary

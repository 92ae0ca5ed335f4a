#include "development/sizes.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/app_state.h"
#include "frame/translation.h"

namespace tilika::development {
namespace {

const std::string kByAge =
    "Т.к. рост не указан (либо указан неправильно), то по возрасту ребенку соответствуют "
    "следующие размеры одежды";
const std::string kByHeight =
    "Исходя из указанного роста ребенку скорее всего подойдут следующие размеры одежды";
const std::string kByGirths =
    "Исходя из указанного роста и биометрических данных ребенку скорее всего подойдут "
    "следующие размеры одежды";
const std::string kAllFit =
    "Исходя из указанного роста и биометрических данных ребенку идеально подойдут следующие "
    "размеры одежды";
const std::string kHatByAge =
    "Исходя из возраста Вашего ребенка (биометрические данные не указаны) ему подойдет "
    "следующий размер шапочки";

SizeInputs measures(float rost, float chest, float waist, float hips, int months) {
    return SizeInputs{rost, 0, chest, waist, hips, 0, months};
}

// The card as "style text=value" lines, with the picture and the shift of
// region lines.
std::vector<std::string> card(const ClothingSizes& sizes) {
    std::vector<std::string> out;
    for (const SizeLine& line : sizes.lines) {
        std::string text = std::to_string(line.style) + " " + line.text;
        if (!line.value.empty()) {
            text += "=" + line.value;
        }
        if (!line.picture.empty()) {
            text += " " + line.picture + " " + std::to_string(line.correctLeft);
        }
        out.push_back(text);
    }
    return out;
}

// Where the line with the hat's size stands; the region lines before it come
// and go with the clothing size.
std::size_t hatSizeLine(const std::vector<std::string>& lines) {
    const auto it = std::find_if(lines.begin(), lines.end(), [](const std::string& line) {
        return line.starts_with("5 Размер=");
    });
    return static_cast<std::size_t>(it - lines.begin());
}

TEST(ClothingSizesTest, HeightGirthsAndAgeChooseTheSizeAndItsWording) {
    const core::AppState state;
    struct Case {
        SizeInputs in;
        int match;
        std::string text;
        std::string size;  // of the region lines
    };
    const Case cases[] = {
        {measures(60, 46, 46, 46, 3), 4, kAllFit, "62"},
        {measures(60, 45, 47, 45, 3), 4, kAllFit, "62"},  // bounds belong to the row
        {measures(60, 46, 0, 0, 3), 2, kByGirths, "62"},
        {measures(60, 44, 46, 46, 3), 3, kByGirths, "62"},
        {measures(60, 48, 48, 48, 3), 1, kByHeight, "62"},
        {measures(45, 0, 0, 0, 0), 1, kByHeight, "50"},
        {measures(44.9F, 0, 0, 0, 0), 0, kByAge, "50"},
        {measures(40, 0, 0, 0, 2), 0, kByAge, "56"},
        // The rows of 140 and 146 are reached neither by height nor by age.
        {measures(134.9F, 0, 0, 0, 200), 1, kByHeight, "134"},
        {measures(135, 0, 0, 0, 120), 0, kByAge, "134"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "height " << c.in.rost << " at " << c.in.months);
        const ClothingSizes sizes = clothingSizes(state, c.in);
        EXPECT_EQ(sizes.match, c.match);
        const auto lines = card(sizes);
        ASSERT_GE(lines.size(), 6u);
        EXPECT_EQ(lines[0], "3 " + c.text);
        EXPECT_EQ(lines[2], "5 Евросоюз=" + c.size + " flag2 -30");
        EXPECT_EQ(lines[5], "0 ");
    }
}

TEST(ClothingSizesTest, TheWholeCardForAHeightAlone) {
    const core::AppState state;
    const std::vector<std::string> expected{
        "3 " + kByHeight,
        "5 Россия=22 flag1 -30",
        "5 Евросоюз=74 flag2 -30",
        "5 Англия=9 (month) flag3 -30",
        "5 США=9-12M flag4 -30",
        "0 ",
        "3 " + kHatByAge,
        "5 Размер=46",
        "0 ",
        "4 Определить размер обуви не удалось из-за отсутствия необходимых биометрических "
        "данных (длина стопы)",
    };
    EXPECT_EQ(card(clothingSizes(state, measures(74, 0, 0, 0, 12))), expected);
}

TEST(ClothingSizesTest, BirthDateAheadGivesHintsAZeroHatAndNoShoes) {
    const core::AppState state;
    const std::vector<std::string> expected{
        "4 Определить размеры одежды не удалось из-за отсутствия данных на возраст Вашего "
        "ребенка",
        "0 ",
        "3 " + kHatByAge,
        "5 Размер=0",
        "0 ",
    };
    EXPECT_EQ(card(clothingSizes(state, measures(0, 46, 46, 46, -2))), expected);
}

TEST(ClothingSizesTest, HatByHeadGirthRoundsUpElseByAge) {
    const core::AppState state;
    const std::string byHead =
        "3 Согласно указанным Вами биометрическим данным ребенку подойдет следующий размер "
        "шапочки";
    const struct {
        float head;
        std::string text;
        std::string size;
    } cases[] = {
        {55.5F, byHead, "56"},        {35.1F, byHead, "40"},           {44, byHead, "44"},
        {35, "3 " + kHatByAge, "46"}, {56.5F, "3 " + kHatByAge, "46"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.head);
        const auto lines = card(clothingSizes(state, SizeInputs{0, c.head, 0, 0, 0, 0, 12}));
        const std::size_t at = hatSizeLine(lines);
        ASSERT_LT(at, lines.size());
        EXPECT_EQ(lines[at - 1], c.text);
        EXPECT_EQ(lines[at], "5 Размер=" + c.size);
    }
}

TEST(ClothingSizesTest, ShoesByFootLengthAndTheHintFromHalfAYear) {
    const core::AppState state;
    const struct {
        float foot;
        int months;
        int shoe;
        int sock;
        bool hint;
    } cases[] = {
        {9.4F, 5, 0, 0, false},     {9.4F, 6, 0, 0, true},      {9.5F, 5, 16, 10, false},
        {16.1F, 30, 25, 16, false}, {16.2F, 30, 26, 16, false}, {22.69F, 90, 35, 22, false},
        {22.7F, 90, 0, 0, true},  // the last row only closes the one before it
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "foot " << c.foot << " at " << c.months);
        const ClothingSizes sizes =
            clothingSizes(state, SizeInputs{0, 0, 0, 0, 0, c.foot, c.months});
        EXPECT_EQ(sizes.shoe, c.shoe);
        auto lines = card(sizes);
        // What follows the hat's size and its separator.
        const std::size_t at = hatSizeLine(lines);
        ASSERT_LT(at + 1, lines.size());
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(at) + 2);
        std::vector<std::string> expected;
        if (c.shoe > 0) {
            expected = {"3 Следующие размеры обуви и носков должны подойти Вашему ребенку",
                        "5 Обувь=" + std::to_string(c.shoe), "5 Носки=" + std::to_string(c.sock)};
        } else if (c.hint) {
            expected = {
                "4 Определить размер обуви не удалось из-за отсутствия необходимых "
                "биометрических данных (длина стопы)"};
        }
        EXPECT_EQ(lines, expected);
    }
}

TEST(ClothingSizesTest, RegionNames) {
    core::AppState state;
    // Up to 56 the Russian and American names are the newborn's.
    for (const int size : {40, 50, 56}) {
        EXPECT_EQ(odSize(state, size, 1), "18") << size;
        EXPECT_EQ(odSize(state, size, 4), "New born, first size, 0-3M") << size;
    }
    EXPECT_EQ(odSize(state, 56, 3), "Up to 1 month");
    EXPECT_EQ(odSize(state, 40, 3), std::nullopt);
    EXPECT_EQ(odSize(state, 140, 1), "36");
    for (const int region : {1, 3, 4}) {
        EXPECT_EQ(odSize(state, 146, region), std::nullopt) << region;
    }
    EXPECT_EQ(odSize(state, 146, 2), "146");
    EXPECT_EQ(odSize(state, 74, 5), std::nullopt);
    EXPECT_EQ(odSize(state, 98, 4), "3Т");

    // Only the names ending in a Cyrillic letter are translated.
    state.langid = frame::language::german;
    state.trandic = {{"3Т", "3T"}, {"4Т", "4T"}, {"2T", "zwei"}, {"5T (XS)", "fünf"}};
    EXPECT_EQ(odSize(state, 98, 4), "3T");
    EXPECT_EQ(odSize(state, 104, 4), "4T");
    EXPECT_EQ(odSize(state, 92, 4), "2T");
    EXPECT_EQ(odSize(state, 110, 4), "5T (XS)");
}

}  // namespace
}  // namespace tilika::development

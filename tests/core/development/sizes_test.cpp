#include "development/sizes.h"

#include <gtest/gtest.h>

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
const std::string kNoAge =
    "Определить размеры одежды не удалось из-за отсутствия данных на возраст Вашего ребенка";
const std::string kHatByHead =
    "Согласно указанным Вами биометрическим данным ребенку подойдет следующий размер шапочки";
const std::string kHatByAge =
    "Исходя из возраста Вашего ребенка (биометрические данные не указаны) ему подойдет "
    "следующий размер шапочки";
const std::string kNoFoot =
    "Определить размер обуви не удалось из-за отсутствия необходимых биометрических данных "
    "(длина стопы)";

SizeInputs body(float rost, float chest, float waist, float hips, int months) {
    SizeInputs in;
    in.rost = rost;
    in.bio2 = chest;
    in.bio3 = waist;
    in.bio4 = hips;
    in.months = months;
    return in;
}

// The lines of the card from the hat on: what follows the first separator.
std::vector<SizeLine> afterClothing(const ClothingSizes& sizes) {
    auto it = sizes.lines.begin();
    while (it != sizes.lines.end() && it->style != sizestyle::separator) {
        ++it;
    }
    return {it == sizes.lines.end() ? it : it + 1, sizes.lines.end()};
}

TEST(ClothingSizesTest, HeightGirthsAndAgeChooseTheSizeAndItsWording) {
    const core::AppState state;
    struct Case {
        SizeInputs in;
        int match;
        int shown;  // the size of the region lines, 0 for none
        std::string text;
        int style;
    };
    const Case cases[] = {
        {body(74, 0, 0, 0, 12), 1, 74, kByHeight, sizestyle::body},
        {body(60, 46, 46, 46, 3), 4, 62, kAllFit, sizestyle::body},
        // Bounds belong to the row.
        {body(60, 45, 47, 45, 3), 4, 62, kAllFit, sizestyle::body},
        {body(60, 46, 0, 0, 3), 2, 62, kByGirths, sizestyle::body},
        // Without the chest, waist and hips reach 3, which reads as 2 does.
        {body(60, 44, 46, 46, 3), 3, 62, kByGirths, sizestyle::body},
        {body(60, 48, 48, 48, 3), 1, 62, kByHeight, sizestyle::body},
        // The rows of 140 and 146 are never reached, by height or by age.
        {body(134.9F, 0, 0, 0, 200), 1, 134, kByHeight, sizestyle::body},
        {body(135, 0, 0, 0, 120), 0, 134, kByAge, sizestyle::body},
        {body(150, 0, 0, 0, 200), 0, 134, kByAge, sizestyle::body},
        {body(40, 0, 0, 0, 2), 0, 56, kByAge, sizestyle::body},
        {body(44.9F, 0, 0, 0, 0), 0, 50, kByAge, sizestyle::body},
        {body(45, 0, 0, 0, 0), 1, 50, kByHeight, sizestyle::body},
        {body(0, 46, 46, 46, -1), 0, 0, kNoAge, sizestyle::hint},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "height " << c.in.rost << " at " << c.in.months);
        const ClothingSizes sizes = clothingSizes(state, c.in);
        EXPECT_EQ(sizes.match, c.match);
        ASSERT_FALSE(sizes.lines.empty());
        EXPECT_EQ(sizes.lines[0].text, c.text);
        EXPECT_EQ(sizes.lines[0].style, c.style);
        const std::size_t regions = c.shown > 0 ? 4 : 0;
        ASSERT_GT(sizes.lines.size(), regions + 1);
        EXPECT_EQ(sizes.lines[regions + 1].style, sizestyle::separator);
        if (c.shown > 0) {
            EXPECT_EQ(sizes.lines[2].value, std::to_string(c.shown));
        }
    }
}

TEST(ClothingSizesTest, RegionLinesCarryFlagsAndNames) {
    const core::AppState state;
    const ClothingSizes sizes = clothingSizes(state, body(74, 0, 0, 0, 12));
    EXPECT_EQ(sizes.rostSize, 74);
    const std::vector<std::pair<std::string, std::string>> expected{
        {"Россия", "22"}, {"Евросоюз", "74"}, {"Англия", "9 (month)"}, {"США", "9-12M"}};
    ASSERT_GE(sizes.lines.size(), 5u);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const SizeLine& line = sizes.lines[i + 1];
        EXPECT_EQ(line.style, sizestyle::labelled);
        EXPECT_EQ(line.text, expected[i].first);
        EXPECT_EQ(line.value, expected[i].second);
        EXPECT_EQ(line.picture, "flag" + std::to_string(i + 1));
        EXPECT_EQ(line.correctLeft, kRegionValueShift);
    }
}

TEST(ClothingSizesTest, HatByHeadGirthRoundsUpElseByAge) {
    const core::AppState state;
    struct Case {
        float head;
        int months;
        std::string text;
        std::string size;
    };
    const Case cases[] = {
        {55.5F, 100, kHatByHead, "56"},
        {35.1F, 0, kHatByHead, "40"},
        {44, 0, kHatByHead, "44"},
        // 35 and less, or above the largest hat searched, fall back on age.
        {35, 12, kHatByAge, "46"},
        {56.5F, 12, kHatByAge, "46"},
        {0, 2, kHatByAge, "35"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "head " << c.head);
        SizeInputs in;
        in.bio1 = c.head;
        in.months = c.months;
        const auto lines = afterClothing(clothingSizes(state, in));
        ASSERT_GE(lines.size(), 3u);
        EXPECT_EQ(lines[0].text, c.text);
        EXPECT_EQ(lines[0].style, sizestyle::body);
        EXPECT_EQ(lines[1].text, "Размер");
        EXPECT_EQ(lines[1].value, c.size);
        EXPECT_EQ(lines[2].style, sizestyle::separator);
    }
}

TEST(ClothingSizesTest, ShoesByFootLengthAndTheHintFromHalfAYear) {
    const core::AppState state;
    struct Case {
        float foot;
        int months;
        int shoe;  // 0 for none
        int sock;
        bool hint;
    };
    const Case cases[] = {
        {9.4F, 5, 0, 0, false},
        {9.4F, 6, 0, 0, true},
        {9.5F, 5, 16, 10, false},
        {16.2F, 30, 26, 16, false},
        {16.1F, 30, 25, 16, false},
        {22.69F, 90, 35, 22, false},
        // The last row only closes the one before it.
        {22.7F, 90, 0, 0, true},
        {0, 12, 0, 0, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "foot " << c.foot << " at " << c.months);
        SizeInputs in;
        in.bio5 = c.foot;
        in.months = c.months;
        const ClothingSizes sizes = clothingSizes(state, in);
        auto lines = afterClothing(sizes);
        lines.erase(lines.begin(), lines.begin() + 3);  // the hat
        EXPECT_EQ(sizes.shoe, c.shoe);
        if (c.shoe > 0) {
            ASSERT_EQ(lines.size(), 3u);
            EXPECT_EQ(lines[0].text,
                      "Следующие размеры обуви и носков должны подойти Вашему ребенку");
            EXPECT_EQ(lines[1].text, "Обувь");
            EXPECT_EQ(lines[1].value, std::to_string(c.shoe));
            EXPECT_EQ(lines[2].text, "Носки");
            EXPECT_EQ(lines[2].value, std::to_string(c.sock));
        } else if (c.hint) {
            ASSERT_EQ(lines.size(), 1u);
            EXPECT_EQ(lines[0].text, kNoFoot);
            EXPECT_EQ(lines[0].style, sizestyle::hint);
        } else {
            EXPECT_TRUE(lines.empty());
        }
    }
}

TEST(ClothingSizesTest, BirthDateAheadGivesTheHintsAndNoShoes) {
    const core::AppState state;
    SizeInputs in;
    in.months = -2;
    const ClothingSizes sizes = clothingSizes(state, in);
    ASSERT_EQ(sizes.lines.size(), 5u);
    EXPECT_EQ(sizes.lines[0].text, kNoAge);
    EXPECT_EQ(sizes.lines[0].style, sizestyle::hint);
    EXPECT_EQ(sizes.lines[1].style, sizestyle::separator);
    EXPECT_EQ(sizes.lines[2].text, kHatByAge);
    EXPECT_EQ(sizes.lines[3].value, "0");
    EXPECT_EQ(sizes.lines[4].style, sizestyle::separator);
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
    EXPECT_EQ(odSize(state, 62, 1), "18-20");
    EXPECT_EQ(odSize(state, 140, 1), "36");
    EXPECT_EQ(odSize(state, 140, 4), "L");
    EXPECT_EQ(odSize(state, 146, 1), std::nullopt);
    EXPECT_EQ(odSize(state, 146, 3), std::nullopt);
    EXPECT_EQ(odSize(state, 146, 4), std::nullopt);
    EXPECT_EQ(odSize(state, 146, 2), "146");
    EXPECT_EQ(odSize(state, 74, 5), std::nullopt);
    EXPECT_EQ(odSize(state, 98, 4), "3Т");
    EXPECT_EQ(odSize(state, 104, 4), "4Т");

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

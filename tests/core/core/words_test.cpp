#include "core/words.h"

#include <gtest/gtest.h>

namespace tilika::core {
namespace {

TEST(Words, AgreesNounsWithCounts) {
    const std::pair<int, const char*> cases[] = {
        {1, "год"},    {2, "года"},  {5, "лет"},  {11, "лет"},  {12, "лет"},
        {21, "год"},   {22, "года"}, {25, "лет"}, {111, "лет"}, {0, "лет"},
        {104, "года"}, {-1, "лет"},  {-2, "лет"},
    };
    for (const auto& [count, form] : cases) {
        EXPECT_EQ(rusForms(count, "год", "года", "лет"), form) << count;
    }
    EXPECT_EQ(rusForms4(0, "ложка", "ложки", "ложек", "ложки"), "ложки");
    EXPECT_EQ(rusForms4(-1, "ложка", "ложки", "ложек", "ложки"), "ложки");
    EXPECT_EQ(rusForms4(5, "ложка", "ложки", "ложек", "ложки"), "ложек");
}

TEST(Words, SpellsDoseUnits) {
    EXPECT_EQ(rusScon("1/2", "ст.лож."), "столовой ложки");
    EXPECT_EQ(rusScon("1/16", "мл."), "миллилитра");
    EXPECT_EQ(rusScon("1", "капля"), "капля");
    EXPECT_EQ(rusScon("3", "капля"), "капли");
    EXPECT_EQ(rusScon("12", "впрыск"), "впрысков");
    EXPECT_EQ(rusScon("2", "куб.см."), "кубических сантиметра");
    EXPECT_EQ(rusScon(" 21 ", "шт."), "штука");
    // Not a listed fraction, so it counts as its whole part.
    EXPECT_EQ(rusScon("3/4", "мг."), "миллиграмма");
    EXPECT_EQ(rusScon("5/6", "мг."), "миллиграммов");
    EXPECT_EQ(rusScon("", "мерн.лож."), "мерной ложки");
    EXPECT_EQ(rusScon("2", "таблетка"), "");
}

TEST(Words, ComparesTimesOfDay) {
    EXPECT_EQ(timeCompare("08:30", "10:00"), -90);
    EXPECT_EQ(timeCompare("10:00", "08:30"), 90);
    EXPECT_EQ(timeCompare("23:59", "00:00"), 23 * 60 + 59);
    EXPECT_EQ(timeCompare("12:00", "12:00"), 0);
    // Damaged times read what they can and never fail.
    EXPECT_EQ(timeCompare("9", "00:05"), 9 * 60 - 5);
    EXPECT_EQ(timeCompare("", "xx:yy"), 0);
}

TEST(Words, NamesDaysAndMonths) {
    EXPECT_EQ(weekday(1), "вс");
    EXPECT_EQ(weekday(6), "пт");
    EXPECT_EQ(weekday(0), "сб");
    EXPECT_EQ(weekday(8), "сб");
    EXPECT_EQ(weekdayfull(2), "понедельник");
    EXPECT_EQ(weekdayfull(-3), "суббота");
    EXPECT_EQ(monthName(1), "январь");
    EXPECT_EQ(monthName(11), "ноябрь");
    EXPECT_EQ(monthName(12), "декабрь");
    EXPECT_EQ(monthName(0), "декабрь");
    EXPECT_EQ(monthName(13), "декабрь");
}

}  // namespace
}  // namespace tilika::core

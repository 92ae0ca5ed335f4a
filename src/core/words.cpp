#include "core/words.h"

#include <array>
#include <cmath>

#include "core/text.h"

namespace tilika::core {
namespace {

struct UnitForms {
    std::string_view unit, a, b, c, d;
};

constexpr std::array<UnitForms, 9> kUnits{{
    {"мл.", "миллилитр", "миллилитра", "миллилитров", "миллилитра"},
    {"мг.", "миллиграмм", "миллиграмма", "миллиграммов", "миллиграмма"},
    {"шт.", "штука", "штуки", "штук", "штуки"},
    {"мерн.лож.", "мерная ложка", "мерные ложки", "мерных ложек", "мерной ложки"},
    {"ч.лож.", "чайная ложка", "чайные ложки", "чайных ложек", "чайной ложки"},
    {"ст.лож.", "столовая ложка", "столовые ложки", "столовых ложек", "столовой ложки"},
    {"куб.см.", "кубический сантиметр", "кубических сантиметра", "кубических сантиметров",
     "кубического сантиметра"},
    {"впрыск", "впрыск", "впрыска", "впрысков", "впрыска"},
    {"капля", "капля", "капли", "капель", "капли"},
}};

constexpr std::array<std::string_view, 7> kFractions{"1/2", "1/3", "1/4", "1/5",
                                                     "1/6", "1/8", "1/16"};

}  // namespace

std::string weekday(int number) {
    static constexpr std::array<std::string_view, 6> names{"вс", "пн", "вт", "ср", "чт", "пт"};
    return std::string(number >= 1 && number <= 6 ? names[number - 1] : "сб");
}

std::string weekdayfull(int number) {
    static constexpr std::array<std::string_view, 6> names{"воскресенье", "понедельник", "вторник",
                                                           "среда",       "четверг",     "пятница"};
    return std::string(number >= 1 && number <= 6 ? names[number - 1] : "суббота");
}

std::string monthName(int number) {
    static constexpr std::array<std::string_view, 11> names{
        "январь", "февраль", "март",     "апрель",  "май",   "июнь",
        "июль",   "август",  "сентябрь", "октябрь", "ноябрь"};
    return std::string(number >= 1 && number <= 11 ? names[number - 1] : "декабрь");
}

int timeCompare(std::string_view time1, std::string_view time2) {
    // Hours are the first three characters (the colon ends the number),
    // minutes everything from the fourth on.
    auto hours = [](std::string_view t) { return floatValue(t.substr(0, 3)); };
    auto minutes = [](std::string_view t) { return t.size() > 3 ? floatValue(t.substr(3)) : 0.0; };
    const double difference =
        (hours(time1) - hours(time2)) * 60.0 + minutes(time1) - minutes(time2);
    return static_cast<int>(std::lround(difference));
}

std::string rusForms(int count, std::string_view a, std::string_view b, std::string_view c) {
    // Negative counts leave the remainders outside every range and so take c.
    const int lastTwo = count % 100;
    const int last = count % 10;
    if (lastTwo >= 11 && lastTwo <= 19) {
        return std::string(c);
    }
    if (last == 1) {
        return std::string(a);
    }
    if (last >= 2 && last <= 4) {
        return std::string(b);
    }
    return std::string(c);
}

std::string rusForms4(int count, std::string_view a, std::string_view b, std::string_view c,
                      std::string_view d) {
    if (count < 1) {
        return std::string(d);
    }
    return rusForms(count, a, b, c);
}

std::string rusScon(std::string_view dose, std::string_view unit) {
    int count = intValue(dose);
    for (std::string_view fraction : kFractions) {
        if (dose == fraction) {
            count = -1;
            break;
        }
    }
    for (const UnitForms& forms : kUnits) {
        if (forms.unit == unit) {
            return rusForms4(count, forms.a, forms.b, forms.c, forms.d);
        }
    }
    return {};
}

}  // namespace tilika::core

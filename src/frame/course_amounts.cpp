#include "frame/course_amounts.h"

#include <array>
#include <limits>

#include "core/dates.h"
#include "core/text.h"
#include "core/words.h"

namespace tilika::frame {
namespace {

// The stored unit abbreviations in the order of the dose wheel; old values
// store the position.
constexpr std::array<std::string_view, 9> kUnits{
    "мл.", "мг.", "шт.", "мерн.лож.", "ч.лож.", "ст.лож.", "куб.см.", "впрыск", "капля"};

// The fractions at the top of the dose wheel, before the whole numbers.
constexpr std::array<std::string_view, 3> kFractions{"1/8", "1/4", "1/2"};
constexpr int kDozaCounts = 200;
constexpr int kInterCounts = 24;
constexpr int kLengthCounts = 100;

struct CountWords {
    std::string_view stored;  // the second field as stored
    std::string_view a, b, c;
};

// "Раз" has no form of its own for many: five "раз" like one.
constexpr std::array<CountWords, 2> kInterWords{{
    {"раз в день", "раз в день", "раза в день", "раз в день"},
    {"раз в сутки", "раз в сутки", "раза в сутки", "раз в сутки"},
}};

constexpr std::array<CountWords, 3> kLengthWords{{
    {"дни", "день", "дня", "дней"},
    {"недели", "неделя", "недели", "недель"},
    {"месяцы", "месяц", "месяца", "месяцев"},
}};

// The first and second field of a "<td>" pair; a missing one is "".
std::string field(std::string_view value, std::size_t which) {
    const std::vector<std::string> fields = core::split(value, "<td>");
    return which < fields.size() ? fields[which] : std::string();
}

std::string countAndWord(int count, const std::string& word) {
    return std::to_string(count) + " " + word;
}

const CountWords* wordsFor(std::string_view stored, const auto& table) {
    for (const CountWords& words : table) {
        if (words.stored == stored) {
            return &words;
        }
    }
    return nullptr;
}

// Position `position` of a table, or nothing when it is off the table.
template <class Table>
auto atPosition(const Table& table, int position) -> decltype(&table[0]) {
    if (position < 0 || static_cast<std::size_t>(position) >= table.size()) {
        return nullptr;
    }
    return &table[static_cast<std::size_t>(position)];
}

std::string intervalWord(int count, const CountWords* words, bool im) {
    if (words == nullptr) {
        return {};
    }
    // After a verb ("принимать 1 неделю") only the feminine noun changes.
    const std::string_view a = (!im && words->stored == "недели") ? "неделю" : words->a;
    return core::rusForms(count, a, words->b, words->c);
}

std::string periodWord(int count, const CountWords* words) {
    return words == nullptr ? std::string() : core::rusForms(count, words->a, words->b, words->c);
}

// The wheel positions of old values count from 0 for a count of 1.
int countAtPosition(int position) {
    return position == std::numeric_limits<int>::max() ? position : position + 1;
}

}  // namespace

std::vector<std::string> pickerRows(Picker picker, int component) {
    std::vector<std::string> rows;
    auto counts = [&rows](int from, int to) {
        for (int n = from; n <= to; ++n) {
            rows.push_back(std::to_string(n));
        }
    };
    auto words = [&rows](const auto& table) {
        for (const CountWords& w : table) {
            rows.emplace_back(w.stored);
        }
    };
    switch (picker) {
        case Picker::length:
            if (component == 0) {
                counts(1, kLengthCounts);
            } else if (component == 1) {
                words(kLengthWords);
            }
            break;
        case Picker::doza:
            if (component == 0) {
                rows.assign(kFractions.begin(), kFractions.end());
                counts(1, kDozaCounts);
            } else if (component == 1) {
                rows.assign(kUnits.begin(), kUnits.end());
            }
            break;
        case Picker::inter:
            if (component == 0) {
                counts(1, kInterCounts);
            } else if (component == 1) {
                words(kInterWords);
            }
            break;
    }
    return rows;
}

int correctLengthRow(int countRow, int wordRow) {
    // The wheel is where a course's length is limited: 12 weeks, 3 months.
    constexpr int kLastWeekRow = 11;
    constexpr int kLastMonthRow = 2;
    if (wordRow == 1 && countRow > kLastWeekRow) {
        return kLastWeekRow;
    }
    if (wordRow == 2 && countRow > kLastMonthRow) {
        return kLastMonthRow;
    }
    return countRow;
}

std::string dozaToRead3(std::string_view value) {
    if (value.empty()) {
        return {};
    }
    const std::string amount = field(value, 0);
    return amount + " " + core::rusScon(amount, field(value, 1));
}

std::string periodToRead3(std::string_view value) {
    if (value.empty()) {
        return {};
    }
    const int count = core::intValue(field(value, 0));
    return countAndWord(count, periodWord(count, wordsFor(field(value, 1), kInterWords)));
}

std::string intervalToRead3(std::string_view value, bool im) {
    if (value.empty()) {
        return {};
    }
    const int count = core::intValue(field(value, 0));
    return countAndWord(count, intervalWord(count, wordsFor(field(value, 1), kLengthWords), im));
}

std::string dozaToRead(std::string_view value) {
    if (value.empty()) {
        return {};
    }
    const int position = core::intValue(field(value, 0));
    const std::string_view* unit = atPosition(kUnits, core::intValue(field(value, 1)));
    // Positions past the wheel's end still count on; one before its start
    // names no amount, and then no word either.
    if (position < 0) {
        return " ";
    }
    if (const std::string_view* fraction = atPosition(kFractions, position)) {
        // Old versions read a fraction with the plural of a few ("1/2 чайные
        // ложки"), which is the form of a count of 2.
        return std::string(*fraction) + " " + (unit ? core::rusScon("2", *unit) : std::string());
    }
    const std::string amount = std::to_string(position - 2);
    return amount + " " + (unit ? core::rusScon(amount, *unit) : std::string());
}

std::string periodToRead(std::string_view value) {
    if (value.empty()) {
        return {};
    }
    const int count = countAtPosition(core::intValue(field(value, 0)));
    const CountWords* words = atPosition(kInterWords, core::intValue(field(value, 1)));
    return countAndWord(count, periodWord(count, words));
}

std::string intervalToRead(std::string_view value, bool im) {
    if (value.empty()) {
        return {};
    }
    const int count = countAtPosition(core::intValue(field(value, 0)));
    const CountWords* words = atPosition(kLengthWords, core::intValue(field(value, 1)));
    return countAndWord(count, intervalWord(count, words, im));
}

int pillLengthToDays(std::string_view pilllength, core::Date start, const core::Dates& dates) {
    const int count = core::intValue(field(pilllength, 0));
    const std::string unit = field(pilllength, 1);
    if (unit == "дни") {
        return count;
    }
    if (unit == "недели") {
        const long long days = static_cast<long long>(count) * 7;
        return days > std::numeric_limits<int>::max()   ? std::numeric_limits<int>::max()
               : days < std::numeric_limits<int>::min() ? std::numeric_limits<int>::min()
                                                        : static_cast<int>(days);
    }
    if (unit == "месяцы") {
        return dates.getDays(start, dates.addMonths(start, count));
    }
    return 0;
}

}  // namespace tilika::frame

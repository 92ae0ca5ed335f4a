#include "development/growth_centiles.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <istream>
#include <iterator>
#include <numbers>

#include "core/text.h"
#include "platform/log.h"

namespace tilika::development {

namespace {

// The tables run to a few hundred rows; a file far past that is not one.
constexpr std::size_t kMaxRows = 2000;
constexpr std::size_t kMaxLine = 1000;
// Lengths turn into heights here; that month alone may come twice.
constexpr double kMethodChangeMonth = 24;

std::vector<std::string_view> words(std::string_view line) {
    std::vector<std::string_view> result;
    std::size_t at = 0;
    while (at < line.size()) {
        const std::size_t start = line.find_first_not_of(" \t\r", at);
        if (start == std::string_view::npos) {
            break;
        }
        const std::size_t end = std::min(line.find_first_of(" \t\r", start), line.size());
        result.push_back(line.substr(start, end - start));
        at = end;
    }
    return result;
}

std::string lineError(int line, std::string_view what) {
    return "строка " + std::to_string(line) + ": " + std::string(what);
}

}  // namespace

std::optional<double> plainNumber(std::string_view text) {
    text = core::trimmed(text);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() ||
        !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::optional<LmsTable> LmsTable::load(const std::filesystem::path& file, std::string& error) {
    std::ifstream input(file, std::ios::binary);
    if (!input) {
        error = "файл не найден";
        return std::nullopt;
    }
    return parse(input, error);
}

std::optional<LmsTable> LmsTable::parse(std::istream& input, std::string& error) {
    LmsTable table;
    std::string line;
    int lineNumber = 0;
    bool repeated = false;
    while (std::getline(input, line)) {
        ++lineNumber;
        if (line.size() > kMaxLine) {
            error = lineError(lineNumber, "слишком длинная строка");
            return std::nullopt;
        }
        const std::string_view text = core::trimmed(line);
        if (text.empty() || text.front() == '#') {
            continue;
        }
        const auto pieces = words(text);
        if (pieces.size() != 4) {
            error = lineError(lineNumber, "нужно четыре числа: месяц, L, M, S");
            return std::nullopt;
        }
        std::array<double, 4> values{};
        for (std::size_t i = 0; i < 4; ++i) {
            const auto value = plainNumber(pieces[i]);
            if (!value) {
                error = lineError(lineNumber, "не число «" + std::string(pieces[i]) + "»");
                return std::nullopt;
            }
            values[i] = *value;
        }
        const LmsRow row{values[0], {values[1], values[2], values[3]}};
        if (row.month < 0) {
            error = lineError(lineNumber, "отрицательный месяц");
            return std::nullopt;
        }
        if (!(row.lms.m > 0) || !(row.lms.s > 0)) {
            error = lineError(lineNumber, "M и S должны быть больше нуля");
            return std::nullopt;
        }
        if (!table.rows_.empty()) {
            const double previous = table.rows_.back().month;
            const bool secondOfChange =
                row.month == previous && row.month == kMethodChangeMonth && !repeated;
            if (row.month < previous || (row.month == previous && !secondOfChange)) {
                error = lineError(lineNumber, "месяцы идут не по возрастанию");
                return std::nullopt;
            }
            repeated = repeated || secondOfChange;
        }
        if (table.rows_.size() >= kMaxRows) {
            error = lineError(lineNumber, "слишком много строк");
            return std::nullopt;
        }
        table.rows_.push_back(row);
    }
    if (input.bad()) {
        error = "файл не читается";
        return std::nullopt;
    }
    if (table.rows_.empty()) {
        error = "в файле нет ни одной строки данных";
        return std::nullopt;
    }
    return table;
}

std::optional<Lms> LmsTable::at(double month) const {
    if (rows_.empty() || !std::isfinite(month) || month < rows_.front().month ||
        month > rows_.back().month) {
        return std::nullopt;
    }
    // The last row at or before the age, and the first after it: at the month
    // given twice the second row (the new method) is the one in force.
    const auto after = std::upper_bound(rows_.begin(), rows_.end(), month,
                                        [](double m, const LmsRow& row) { return m < row.month; });
    const LmsRow& low = *std::prev(after);
    if (after == rows_.end() || low.month == month) {
        return low.lms;
    }
    const double t = (month - low.month) / (after->month - low.month);
    const auto mix = [t](double a, double b) { return a + (b - a) * t; };
    return Lms{mix(low.lms.l, after->lms.l), mix(low.lms.m, after->lms.m),
               mix(low.lms.s, after->lms.s)};
}

double centileValue(const Lms& lms, double z) {
    if (std::abs(lms.l) < 1e-12) {
        return lms.m * std::exp(lms.s * z);
    }
    return lms.m * std::pow(1 + lms.l * lms.s * z, 1 / lms.l);
}

std::optional<double> zScore(const Lms& lms, double value) {
    if (!(value > 0) || !(lms.m > 0) || !(lms.s > 0)) {
        return std::nullopt;
    }
    if (std::abs(lms.l) < 1e-12) {
        return std::log(value / lms.m) / lms.s;
    }
    return (std::pow(value / lms.m, lms.l) - 1) / (lms.l * lms.s);
}

double normalCdf(double z) {
    return 0.5 * std::erfc(-z / std::numbers::sqrt2);
}

std::string centileText(double z) {
    const long centile = std::lround(normalCdf(z) * 100);
    if (centile < 1) {
        return "ниже 1-го центиля";
    }
    if (centile > 99) {
        return "выше 99-го центиля";
    }
    return std::to_string(centile) + "-й центиль";
}

std::string lastMeasureText(double value, int decimals, std::string_view unit, double z) {
    return "Последний замер: " + core::formatFixed(value, decimals) + " " + std::string(unit) +
           " — " + centileText(z);
}

std::array<std::string, 2> lmsFileNames(GrowthMeasure measure, int sex) {
    const std::string sexPart = sex == 0 ? "_boys" : "_girls";
    if (measure == GrowthMeasure::weight) {
        return {"wfa" + sexPart + "_0_60.txt", "wfa" + sexPart + "_61_120.txt"};
    }
    return {"lhfa" + sexPart + "_0_60.txt", "hfa" + sexPart + "_61_228.txt"};
}

bool LmsTable::append(const LmsTable& older) {
    if (older.rows_.empty() || (!rows_.empty() && older.rows_.front().month <= lastMonth())) {
        return false;
    }
    rows_.insert(rows_.end(), older.rows_.begin(), older.rows_.end());
    return true;
}

const LmsTable* GrowthCentiles::table(GrowthMeasure measure, int sex) {
    const auto [young, old] = lmsFileNames(measure, sex);
    auto found = tables_.find(young);
    if (found == tables_.end()) {
        std::string error;
        auto table = LmsTable::load(folder_ / young, error);
        if (!table) {
            platform::log("Центили " + young + " не загружены: " + error);
        } else if (auto later = LmsTable::load(folder_ / old, error); !later) {
            platform::log("Центили " + old + " не загружены: " + error);
        } else if (!table->append(*later)) {
            platform::log("Центили " + old + " не продолжают " + young);
        }
        found = tables_.emplace(young, std::move(table)).first;
    }
    return found->second ? &*found->second : nullptr;
}

}  // namespace tilika::development

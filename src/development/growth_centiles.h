#pragma once

#include <array>
#include <filesystem>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tilika::development {

// A number written in full and nothing else ("76.5", " 3 "); nothing for
// "", "abc", "12kg" or a value that is not finite.
std::optional<double> plainNumber(std::string_view text);

// The Box-Cox power, median and coefficient of variation of a measure at one
// age; together they turn a z-score into a value and back.
struct Lms {
    double l = 1;
    double m = 0;
    double s = 0;
};

struct LmsRow {
    double month = 0;
    Lms lms;
};

// The ages (in months) and their LMS values, read from lines "month L M S".
// Months rise; one month may be given twice where the measure changes
// method (length lying down, then height standing, at 24 months), the first
// row closing the part before and the second opening the part after.
class LmsTable {
public:
    // Reads the table from a file or a stream; nothing, with the reason in
    // `error`, for a table that is missing, empty or wrong in any line.
    static std::optional<LmsTable> load(const std::filesystem::path& file, std::string& error);
    static std::optional<LmsTable> parse(std::istream& input, std::string& error);

    // The values at an age, straight between the rows about it; nothing
    // before the first row or after the last.
    std::optional<Lms> at(double month) const;
    double lastMonth() const { return rows_.empty() ? 0 : rows_.back().month; }
    // Goes on with the table of the older ages; false, with nothing added,
    // unless it starts after this one's last month.
    bool append(const LmsTable& older);
    const std::vector<LmsRow>& rows() const { return rows_; }

private:
    std::vector<LmsRow> rows_;
};

// A month of age in days, as the growth tables count it.
inline constexpr double kDaysPerMonth = 30.4375;

// The centile lines drawn over a chart: their z-scores and names.
inline constexpr std::array<double, 5> kCentileZ{-1.881, -1.036, 0, 1.036, 1.881};
inline constexpr std::array<std::string_view, 5> kCentileNames{"3", "15", "50", "85", "97"};

// The value at a z-score, and the z-score of a value (nothing for a value
// that is not above zero).
double centileValue(const Lms& lms, double z);
std::optional<double> zScore(const Lms& lms, double value);
// The standard normal distribution: the share of children below z.
double normalCdf(double z);
// "55-й центиль"; "ниже 1-го центиля" and "выше 99-го центиля" past the ends.
std::string centileText(double z);
// "Последний замер: 76.0 см — 55-й центиль".
std::string lastMeasureText(double value, int decimals, std::string_view unit, double z);

enum class GrowthMeasure { height, weight };

// The files of a measure's table for a sex (0 a boy, any other a girl): the
// growth standard to five years, then the reference for school ages that
// goes on from where it stops.
std::array<std::string, 2> lmsFileNames(GrowthMeasure measure, int sex);

// The tables of a folder, each read once when first asked for. A table that
// can't be read is logged once and stays absent; the charts then draw no
// centiles for it. Without its school-age part a table ends at five years.
class GrowthCentiles {
public:
    explicit GrowthCentiles(std::filesystem::path folder) : folder_(std::move(folder)) {}

    const LmsTable* table(GrowthMeasure measure, int sex);

private:
    std::filesystem::path folder_;
    std::map<std::string, std::optional<LmsTable>> tables_;
};

}  // namespace tilika::development

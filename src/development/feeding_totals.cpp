#include "development/feeding_totals.h"

#include <array>

#include "core/text.h"
#include "development/feeding.h"

namespace tilika::development {

namespace {

struct TotalsKind {
    std::string_view name;
    std::string_view unit;
};

// The units are those of the totals, "мл." for every volume, whatever unit
// the foods themselves were entered in.
constexpr std::array<TotalsKind, kKormKinds> kTotals{{
    {"Грудное молоко", "мин."},
    {"Смесь/сцеженное молоко", "мл."},
    {"Кефир", "мл."},
    {"Творог", "г."},
    {"Каши", "мл."},
    {"Супы и пюре", "мл."},
    {"Другое", "мл."},
}};

std::vector<long long> sumsOf(std::string_view text) {
    std::vector<long long> sums;
    for (const std::string& piece : core::split(text, "<tr>")) {
        sums.push_back(core::intValue(piece));
    }
    sums.resize(kKormKinds, 0);
    return sums;
}

std::string line(const TotalsKind& kind, long long val, std::string_view change) {
    std::string text = std::string(kind.name) + ": " + std::to_string(val) + " ";
    if (!change.empty()) {
        text.append("(").append(change).append(") ");
    }
    return text.append(kind.unit);
}

}  // namespace

std::vector<std::string> kormTotals(const KormRow& row) {
    std::vector<std::string> lines;
    if (row.tp != KormRow::totals) {
        return lines;
    }
    const std::vector<long long> vals = sumsOf(row.value);
    const std::vector<long long> lasts = sumsOf(row.last);
    for (std::size_t i = 0; i < kTotals.size(); ++i) {
        const TotalsKind& kind = kTotals[i];
        const long long val = vals[i];
        const long long last = lasts[i];
        if (val == 0 && last == 0) {
            continue;
        }
        // Other food is counted in whatever each product comes in: a sum of
        // grams and pieces would mean nothing.
        if (i + 1 == kormkind::other && val >= 1) {
            lines.emplace_back("Другое: итог не ведется");
        } else if (val == 0 && last >= 1) {
            lines.push_back(std::string(kind.name) + ": перестали");
        } else if (val > 0 && last > 0 && val > last) {
            lines.push_back(line(kind, val, "+" + std::to_string(val - last)));
        } else if (val > 0 && last > 0 && val < last) {
            lines.push_back(line(kind, val, std::to_string(val - last)));
        } else {
            lines.push_back(line(kind, val, {}));
        }
    }
    return lines;
}

}  // namespace tilika::development

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tilika::development {

struct KormRow;

// The heading of a day's totals row, drawn on a light grey ground.
inline constexpr std::string_view kKormTotalsCaption = "итого";

// The lines of a day's totals row, one for each kind of food given on that
// day or on the day before that has feedings, with the change since then:
// "Каши: 150 (+20) мл.", "Кефир: перестали". A row that isn't a totals row
// has none.
std::vector<std::string> kormTotals(const KormRow& row);

}  // namespace tilika::development

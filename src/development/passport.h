#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "core/write_result.h"

namespace tilika::core {
struct Context;
}

namespace tilika::diary {
struct SetupRecord;
}

namespace tilika::development {

// The latest measures of a child from the diary, as the passport shows them.
// Every text is empty while the measure is unknown; a `...per` text says how
// long ago the measure was taken.
struct PassportData {
    std::string rost;  // centimetres, "%.3f"
    std::string ves;   // kilograms, "%.3f"
    std::string rostper;
    std::string vesper;
    // Head, chest, waist, hips, foot.
    std::string bio1, bio2, bio3, bio4, bio5;
    std::string bio1per, bio2per, bio3per, bio4per, bio5per;
};

// A serious illness the child has had, with the age it came at.
struct IllnessOnCard {
    std::string name;
    std::string date;
};

// How ageString() tells an age.
namespace agemode {
inline constexpr int monthsAndDays = 0;
inline constexpr int weeks = 1;
inline constexpr int monthOfLife = 3;
}  // namespace agemode

// The data behind a child's passport: latest measures, ages, serious
// illnesses and allergens.
class Passport {
public:
    explicit Passport(core::Context& context) : context_(context) {}

    PassportData loadPassportData(std::string_view gid) const;

    // How long ago the day was, in whole months: "меньше месяца", "1 месяц
    // назад", "%d месяца назад", "болше года"; exactly a year reads "".
    std::string dateToPeriod(core::Date date) const;
    // The running month of life counted from the day: whole months to today
    // plus 1.
    int getCurMonth(core::Date date) const;
    // The running month of life of a child by its record.
    int getCurPeriod(const diary::SetupRecord& setup) const;
    // Whole weeks from the day to today, truncated towards the day.
    int getCurWeek(core::Date date) const;

    // The child's age today: in weeks and days, as the running month of
    // life, or (any other mode) in months and days.
    std::string ageString(int mode, const diary::SetupRecord& setup) const;

    // The illnesses of the card the diary holds for the child, by list order,
    // then by day.
    std::vector<IllnessOnCard> loadBolezn(std::string_view gid) const;

    // The captions of the allergens the child's profile has ticked.
    std::vector<std::string> prepareAllergHilite(std::string_view gid) const;

    // Stores the child's allergens (guids joined by "<tr>").
    core::WriteResult saveAllergen(std::string_view gid, std::string_view value);

private:
    std::string translated(std::string_view text) const;

    core::Context& context_;
};

}  // namespace tilika::development

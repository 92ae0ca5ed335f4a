#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/date.h"
#include "frame/form_row.h"

namespace tilika::core {
class Dates;
}

// The date and time rows of a form: which picker each opens, how its value
// is kept as text, and what an empty one shows. Every value goes through
// core::Dates, so a form reads and writes dates exactly as the diary does.
namespace tilika::frame {

// The picker a date or time row opens, and the pattern its value keeps.
struct MomentKind {
    int popup = 0;
    std::string_view format;
};
// Nothing for a row that is no date or time row.
std::optional<MomentKind> momentKind(int tp);

// The instant a row's value stands for, for its picker to start from: a time
// on the day of `now`, a date at its midnight. Nothing for an empty or
// unreadable value, or a row that is no date or time row.
std::optional<core::Date> rowMoment(const FormRow& row, const core::Dates& dates,
                                    core::Date now);
// A time "HH:mm" on the day of `now`; nothing when it can't be read.
std::optional<core::Date> timeOnDay(std::string_view time, const core::Dates& dates,
                                    core::Date now);
// The text a row of this kind keeps for a picked instant; "" for a row that
// is no date or time row.
std::string momentSource(int tp, core::Date picked, const core::Dates& dates);

// What a form shows is what it keeps: an empty date row takes today, an
// empty time row the time now, and an empty times row the fallback times.
void fillEmptyMoments(FormRows& rows, const core::Dates& dates, core::Date now);

}  // namespace tilika::frame

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"

namespace tilika::core {
class Dates;
}

// The amounts of a medication course as its form's pickers keep them: two
// texts joined by "<td>", a count and its word ("3<td>шт.", "3<td>раз в
// сутки", "1<td>недели"), or in values of the old index form the positions
// of the two wheels. Every reader takes any text at all and gives "" for an
// empty one.
namespace tilika::frame {

// The wheels of the course form's pickers, which are also the positions that
// values of the old index form store.
enum class Picker {
    length = 4,  // `pilllength`
    doza = 5,    // `pilldoza`
    inter = 6,   // `pillinter`
};
// The rows of one wheel (0 the count, 1 the word); an empty list for a wheel
// the picker doesn't have.
std::vector<std::string> pickerRows(Picker picker, int component);
// Where the count wheel of the length picker has to stand once the word wheel
// stands at `wordRow`: a course is at most 12 weeks or 3 months long.
int correctLengthRow(int countRow, int wordRow);

// "1/2<td>шт." reads "1/2 штуки", "21<td>капля" "21 капля".
std::string dozaToRead3(std::string_view value);
// "3<td>раз в сутки" reads "3 раза в сутки".
std::string periodToRead3(std::string_view value);
// "1<td>недели" reads "1 неделя" in the nominative (`im`), "1 неделю" when
// it follows a verb.
std::string intervalToRead3(std::string_view value, bool im);

// The same for values of the old index form, whose fields are the positions
// of the wheels. A position off the wheel leaves the word out.
std::string dozaToRead(std::string_view value);
std::string periodToRead(std::string_view value);
std::string intervalToRead(std::string_view value, bool im);

// The length of a course in days, from its `pilllength` and first day; 0 for
// a unit it doesn't know.
int pillLengthToDays(std::string_view pilllength, core::Date start, const core::Dates& dates);

}  // namespace tilika::frame

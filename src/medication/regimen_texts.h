#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "diary/reference_lists.h"

namespace tilika::core {
class Dates;
}

// The fields of a medication course and how they read aloud. A course is a
// JSON object of text fields (`pillname`, `pilldoza`, `pillinter`,
// `pillperiod`, `pilleat`, `pilllength`, `pillsdate`, `pilltime`, `key`); the
// amount fields are two texts joined by "<td>": "3<td>шт.", "3<td>раз в сутки",
// "1<td>недели". Every reader takes any text at all and gives "" for an empty
// one.
namespace tilika::medication {

// The values a new course starts with in its form.
inline constexpr std::string_view kNewCourseDoza = "3<td>шт.";
inline constexpr std::string_view kNewCourseInter = "3<td>раз в сутки";
inline constexpr std::string_view kNewCourseLength = "1<td>недели";
inline constexpr std::string_view kNewCourseTimes = "08:00<td>15:00<td>22:00";
// The captions of the period and meal rows a new course picks.
inline constexpr std::string_view kNewCoursePeriod = "Ежедневно";
inline constexpr std::string_view kNewCourseMeal = "Независимо от еды";
// What the times row shows when it reaches the form with no value at all.
inline constexpr std::string_view kFallbackTimes = "08:00<td>13:00<td>18:00";

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

// One course, given as JSON text, as a sentence: "Нурофен: 1/2 штуки,
// Ежедневно, 3 раза в день, После еды, 1 неделю". With a date, the day of the
// course it is follows: " (3 день из 7)". Names that are no longer in the
// lists read as empty texts.
std::string pillsToRead(std::string_view course, const std::vector<diary::ListRow>& listData,
                        std::optional<core::Date> forDate, const core::Dates& dates);

}  // namespace tilika::medication

#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/form_row.h"

namespace tilika::platform {
class ImageCodec;
}

namespace tilika::frame {

// Minutes as "HH:mm", each part the last two digits: 90 is "01:30"; no value
// is "00:00".
std::string mtt(std::optional<long long> minutes);
// "HH:mm" as minutes; a text without ":" is read as a number of minutes.
long long ttm(std::string_view text);
// The text padded on the left by the mask: inMask("7", "00") is "07".
std::string inMask(std::string_view text, std::string_view mask);
// The span between two times, across midnight ("23:30" to "00:10" is
// "00:40"), or the end of a span from its start and length. Only a minute
// sum above 60 carries: "08:30" and "00:30" end at "08:60", as stored spans
// always have. Nothing when both or neither of end and interval are given.
std::optional<std::string> countInterval(std::string_view start,
                                         std::optional<std::string_view> end,
                                         std::optional<std::string_view> interval);

// The value a slider row keeps for the ruler's position.
std::string sliderSource(double position, std::string_view scaletype);

// A tap on an item of a list row: with one choice it clears all and then
// flips the item, so a second tap leaves nothing; with many it flips the
// item. The row's value becomes the checked indices joined by "<tr>".
void checkTableItem(FormRow& row, std::size_t item);
// The indices of the checked items, in list order, joined by "<tr>".
std::string checkedIndices(const std::vector<ListRow>& list);

// The value of the teeth row: each tooth newly marked adds its number, each
// tooth no longer marked its number plus 100, joined by "<tr>".
std::string teethSource(std::string_view tooth, const std::vector<bool>& marks);
// The marks of the teeth known before, for the 20 teeth.
std::vector<bool> teethMarks(std::string_view tooth);
// The marks once the changes of a teeth row's value are applied to them.
std::vector<bool> teethMarks(std::string_view tooth, std::string_view changes);

// What a row shows beside its caption for its value: the captions of the
// chosen list items, the reading of a course's amounts, or the value itself.
// A date and time row with no value shows "00:00".
std::string shownValue(const FormRow& row, const std::vector<ListRow>& list);

// What the times row shows when it reaches the form with no value at all.
inline constexpr std::string_view kFallbackTimes = "08:00<td>13:00<td>18:00";

// The times of a times row, and that value with one of them replaced.
// A row with no value at all starts from the fallback times.
std::vector<std::string> timesOf(std::string_view source);
std::string replaceTime(std::string_view source, std::size_t position, std::string_view time);

// The running stopwatch: hours, then minutes and seconds of two digits.
std::string elapsedText(long long milliseconds);

// What the form tells when a required row is empty; only the first is told.
struct FieldError {
    std::size_t row = 0;  // from 0
    std::string message;
    std::string caption;  // "Ошибка"
};
std::optional<FieldError> checkField(const FormRows& rows);

// The row with this field, from 1, or 0; and its value.
std::size_t posByField(const FormRows& rows, std::string_view field);
std::optional<std::string> fieldValue(const FormRows& rows, std::string_view field);

// Fills the value of each row that has a field from the defaults.
void fillSources(FormRows& rows, const std::map<std::string, std::string>& defaults);
// The row of a profile form that removes the child.
bool removesRecord(const FormRow& row);

// A form of action rows alone has no OK button.
bool hidesOk(const FormRows& rows);

// After the start, end or length row changed, the other one of the span
// follows. Nothing happens unless all three rows are there. Answers the row
// that was set, from 0.
std::optional<std::size_t> autocalc(FormRows& rows, std::size_t changed);

// A photo picked for a photo row is kept at most this many pixels on its
// longer side: plenty for a page of the photo book, and the diary stays small.
inline constexpr int kLargestPhoto = 2048;
platform::Image fittedPhoto(const platform::ImageCodec& codec, platform::Image image);

// The body index from height in centimetres and weight in kilograms.
struct BodyIndex {
    std::string text;    // the line the form shows
    std::string source;  // the index, or "2" when it can't be told
};
BodyIndex bodyIndex(double rost, double ves);

}  // namespace tilika::frame

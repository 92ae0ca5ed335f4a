#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

#include "diary/reference_lists.h"

// Values as versions before the guid era stored them: delimited text with
// numeric ids and picker positions. The upgrade turns them into the current
// forms, and cloud records of old devices can still bring them in, so these
// readers take any text: a missing piece reads as "".
namespace tilika::diary {

// One old record of the entry `field` as the current record (temperature,
// analysis, medication course, sleep, body measures, feeding, ...); an empty
// object for a field whose values are not records. `clist` is the whole
// reference list, which a feeding needs for the unit of a product.
nlohmann::json oldValueToDic(std::string_view field, std::string_view value,
                             const std::vector<ListRow>& clist);

// A whole old value of `field` in its current form. Values already in JSON,
// empty values and plain texts stay as they are.
std::string oldValueToJson(std::string_view field, std::string_view value,
                           const std::vector<ListRow>& clist);

// The wheels of the pickers by which old medication records were stored as
// positions: 4 the length, 5 the dose, 6 the doses a day; component 0 the
// number, 1 the unit. Empty for any other list or component.
std::vector<std::string> oldListFor(int list, int component);

// An old medication field of two picker positions ("3<td>2") as the texts
// they stood for ("1<td>шт."). A part that is not a position stays as it is;
// a position off the wheel reads as "".
std::string oldList(std::string_view field, std::string_view value);

// The new name of an old photo or scan file, with the profile number turned
// into its guid: "5-2.jpg", "a-5-2.jpg". Names that are already new, that are
// not JPEG or PDF, or that don't have that shape stay as they are.
std::string oldFileNameToNew(std::string_view name);

// Orders the records of an old value ("<end>" between records) by the time
// in their first "<td>" piece; records of the same time keep their order.
std::string sortValueByTime(std::string_view source);

}  // namespace tilika::diary

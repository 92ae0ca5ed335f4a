#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "diary/reference_lists.h"
#include "frame/list_choices.h"

// How a stored value reads in the diary, the day editor and the reports. A
// value that can't be read gives "" (or the part that could be read).
namespace tilika::diary {

using frame::checkStringToRead;

// One line per change of teeth: "Прорезался верхний клык (53)", "Выпал ...".
std::string toothStringToRead(std::string_view value);

// The kinds of the analyses in a value, joined with ", ".
std::string analizyStringToRead(std::string_view value, const std::vector<ListRow>& lisdData);

// The body measures that were taken, one a line.
std::string biosizeStringToRead(std::string_view value);

// A product's short name: its caption before the unit in brackets, trimmed,
// without the caption's tail ("Сок (мил.)<tr>12" is "Сок").
std::string justName(std::string_view cap);

// One food of a feeding: "Левая грудь: 10 мин.", "Нутрилон 1: 120 мил.".
std::string kormToString(std::string_view value, const std::vector<ListRow>& list);

}  // namespace tilika::diary

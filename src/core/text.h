#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/number_text.h"

namespace tilika::core {

// Numbers are read from text the forgiving way of the stored values; the
// settings read them too, so the readers live with the seams.
using platform::floatValue;
using platform::intValue;

// A number with a fixed count of decimals and a point, whatever the C locale:
// formatFixed(3.5, 3) is "3.500".
std::string formatFixed(double value, int decimals);

// Splits at every occurrence of the separator; an empty text gives one empty
// piece, as stored delimited values expect.
std::vector<std::string> split(std::string_view text, std::string_view separator);

std::string join(const std::vector<std::string>& pieces, std::string_view separator);

std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);

// The text without white space and line breaks at either end.
std::string_view trimmed(std::string_view text);

}  // namespace tilika::core

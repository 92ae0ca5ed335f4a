#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tilika::core {

// Numbers travel as text in forms, settings and stored values. These read
// them the forgiving way the stored data expects: leading spaces are
// skipped, reading stops at the first character that doesn't fit, and a text
// with no number at all reads as zero. They never depend on the C locale.
int intValue(std::string_view text);
double floatValue(std::string_view text);

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

#pragma once

#include <string_view>

namespace tilika::platform {

// Numbers travel as text in forms, settings and stored values. These read
// them the forgiving way the stored data expects: leading spaces are
// skipped, reading stops at the first character that doesn't fit, and a text
// with no number at all reads as zero. They never depend on the C locale.
int intValue(std::string_view text);
double floatValue(std::string_view text);

}  // namespace tilika::platform

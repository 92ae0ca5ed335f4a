#pragma once

#include <chrono>

namespace tilika::platform {

// An instant on the time line. Which calendar day it belongs to depends on
// the time zone it is read in; everything that speaks of days goes through
// core::Dates with the device's zone.
using Date = std::chrono::sys_time<std::chrono::milliseconds>;

}  // namespace tilika::platform

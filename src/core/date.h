#pragma once

#include "platform/date.h"

namespace tilika::core {

// The instant is the seams' own value type; the core speaks of it as its own.
using platform::Date;

}  // namespace tilika::core

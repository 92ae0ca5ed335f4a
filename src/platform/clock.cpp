#include "platform/clock.h"

#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <memory>

namespace tilika::platform {

core::Date SystemClock::now() const {
    return std::chrono::time_point_cast<std::chrono::milliseconds>(
        std::chrono::system_clock::now());
}

std::string SystemClock::timeZoneId() const {
    std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString id;
    zone->getID(id);
    std::string result;
    id.toUTF8String(result);
    return result;
}

}  // namespace tilika::platform

#include "platform/clock.h"

#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <mutex>

namespace tilika::platform {

namespace {
constexpr std::chrono::seconds kZoneRefresh{5};
}

struct SystemClock::ZoneCache {
    std::mutex mutex;
    std::string id;
    std::chrono::steady_clock::time_point readAt;
};

SystemClock::SystemClock() : zone_(std::make_unique<ZoneCache>()) {}

SystemClock::~SystemClock() = default;

Date SystemClock::now() const {
    return std::chrono::time_point_cast<std::chrono::milliseconds>(
        std::chrono::system_clock::now());
}

std::string SystemClock::timeZoneId() const {
    // ICU's detection of the host zone is not thread-safe by itself; the
    // lock covers it, and nothing else in the program asks ICU for a default
    // zone.
    std::lock_guard lock(zone_->mutex);
    const auto now = std::chrono::steady_clock::now();
    if (zone_->id.empty() || now - zone_->readAt >= kZoneRefresh) {
        std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::detectHostTimeZone());
        icu::UnicodeString id;
        zone->getID(id);
        zone_->id.clear();
        id.toUTF8String(zone_->id);
        zone_->readAt = now;
    }
    return zone_->id;
}

}  // namespace tilika::platform

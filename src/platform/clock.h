#pragma once

#include <memory>
#include <string>

#include "platform/date.h"

namespace tilika::platform {

// Where "now" and the device's time zone come from. The core never asks the
// system directly, so tests can pin both and move them between calls.
class Clock {
public:
    virtual ~Clock() = default;

    virtual Date now() const = 0;
    // IANA name of the device's current time zone, such as "Europe/Moscow".
    virtual std::string timeZoneId() const = 0;
};

// The real clock: system time and the host's zone. Looking the zone up costs
// a read of the system's configuration, and every date operation asks for
// it, so the answer is kept for a few seconds; a zone change while the
// program runs is seen within that time. Safe to use from any thread.
class SystemClock final : public Clock {
public:
    SystemClock();
    ~SystemClock() override;

    Date now() const override;
    std::string timeZoneId() const override;

private:
    struct ZoneCache;
    std::unique_ptr<ZoneCache> zone_;
};

// A clock that says what it is told; for tests, benchmarks and replays.
class ManualClock final : public Clock {
public:
    ManualClock(Date now, std::string zone) : now_(now), zone_(std::move(zone)) {}

    Date now() const override { return now_; }
    std::string timeZoneId() const override { return zone_; }

    void set(Date now) { now_ = now; }
    void advance(std::chrono::milliseconds by) { now_ += by; }
    void setTimeZoneId(std::string zone) { zone_ = std::move(zone); }

private:
    Date now_;
    std::string zone_;
};

}  // namespace tilika::platform

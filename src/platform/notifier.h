#pragma once

#include <string>
#include <vector>

#include "platform/date.h"

namespace tilika::platform {

// A reminder to be shown at a time of day, whatever the program is doing
// then (it may not be running at all).
struct LocalNotification {
    Date fireDate{};
    std::string timeZone;     // the zone the fire date was worked out in
    std::string alertAction;  // "Открыть"
    std::string alertBody;
    std::string soundName;  // "" is the system's default sound

    bool operator==(const LocalNotification&) const = default;
};

// Where reminders wait for their time. There is no schedule of our own: the
// program throws all pending ones away and schedules them afresh whenever the
// diary could have changed.
class Notifier {
public:
    virtual ~Notifier() = default;

    // The notifications still waiting for their time.
    virtual std::vector<LocalNotification> scheduled() const = 0;
    // Drops every notification still waiting.
    virtual void cancelAll() = 0;
    virtual void schedule(const LocalNotification& notification) = 0;

    // A rebuild (a cancel and all that is scheduled after it) between these
    // two calls is taken as one change: a notifier that keeps its
    // notifications somewhere writes them once, and only if they differ.
    virtual void beginChanges() {}
    virtual void endChanges() {}
};

}  // namespace tilika::platform

#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "diary/reference_lists.h"

namespace tilika::core {
struct Context;
}

namespace tilika::platform {
class Notifier;
}

// The diary's reminders and the doses of medicine courses as notifications
// that come at their time. Nothing is kept of a schedule: each rebuild throws
// the pending ones away and schedules afresh from the diary.
namespace tilika::medication {

class Reminders {
public:
    Reminders(core::Context& context, platform::Notifier& notifier)
        : context_(context), notifier_(notifier) {}

    // Drops every pending notification, then schedules the reminders of the
    // diary still to come, from the next 20 day rows that hold any, of all
    // children together; later ones wait for a rebuild on a later day. A
    // database that won't open leaves none.
    void updateNoteAlarms();

    // Adds the doses still to come of the medicine courses, from the next 20
    // day rows that hold any, worked out over the reference lists `lists`
    // (all of them) and the meal times. It cancels nothing, so it follows
    // updateNoteAlarms().
    void updatePillsAlarms(const std::vector<diary::ListRow>& lists);

private:
    // A day row of one type from today on: its "yyyy-MM-dd", its value and
    // whose it is (the column the query names).
    struct DayRow {
        std::string day;
        std::string value;
        std::string owner;
    };

    std::vector<DayRow> nextRows(std::string_view query) const;
    std::map<std::string, std::string> childNames() const;
    // The body "name: text"; a child the names don't know reads "(null)".
    static std::string body(const std::map<std::string, std::string>& names,
                            const std::string& owner, std::string_view text);
    // Schedules one notification when its time is still to come.
    void scheduleAt(core::Date fire, std::string body) const;

    core::Context& context_;
    platform::Notifier& notifier_;
};

}  // namespace tilika::medication

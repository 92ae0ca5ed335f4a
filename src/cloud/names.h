#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/date.h"

namespace tilika::core {
class Dates;
}

namespace tilika::cloud {

// What the name of a record file says: its kind, the profile, and the day
// ("dd-MM-yyyy") of a day or feeding record or the device (`appguid`) of a
// marks file. A kind 3 name without a device is a profile removal.
struct RecordName {
    int kind = 0;
    std::string gid;
    std::string day;
    std::string appguid;

    bool operator==(const RecordName&) const = default;
};

// "CLOUD-1-<gid>.dat", "CLOUD-2-<gid>-<dd-MM-yyyy>.dat",
// "CLOUD-3-<gid>-<appguid>.dat", "CLOUD-3-<gid>.dat" or
// "CLOUD-4-<gid>-<dd-MM-yyyy>.dat", as the fields ask.
std::string recordName(const RecordName& name);

std::string profileRecordName(std::string_view gid);
std::string dayRecordName(std::string_view gid, core::Date day, const core::Dates& dates);
std::string marksRecordName(std::string_view gid, std::string_view appguid);
std::string removalRecordName(std::string_view gid);
std::string feedingRecordName(std::string_view gid, core::Date day, const core::Dates& dates);

// The fields of a record's name; nothing for any other name, or for one whose
// guid could not safely name a file. A guid may hold dashes itself, so a
// kind 3 name counts as a device's marks only when it ends in a whole guid.
std::optional<RecordName> parseRecordName(std::string_view name);

}  // namespace tilika::cloud

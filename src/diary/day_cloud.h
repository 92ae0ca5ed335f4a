#pragma once

#include <string_view>

#include "core/date.h"

namespace tilika::diary {

// Where a changed day or profile is sent to be mirrored in the cloud folder.
// The diary only says what changed; the records themselves are the cloud's.
class DayCloud {
public:
    // The kind of record of a whole day.
    static constexpr int kProfileRecord = 1;
    static constexpr int kDayRecord = 2;

    virtual ~DayCloud() = default;
    virtual void dataToCloud(int kind, core::Date date, std::string_view gid) = 0;
};

// Until the cloud records exist, a changed day stays on the device.
class NoCloud final : public DayCloud {
public:
    void dataToCloud(int /*kind*/, core::Date /*date*/, std::string_view /*gid*/) override {}
};

}  // namespace tilika::diary

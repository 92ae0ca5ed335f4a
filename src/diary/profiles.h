#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/date.h"

namespace tilika::core {
struct Context;
}

namespace tilika::diary {

// A child as the short lists show it.
struct ProfileListRow {
    std::optional<core::Date> sbirthdate;
    long long chid = 0;
    std::string chname;
};

// The children kept on this device.
class Profiles {
public:
    explicit Profiles(core::Context& context) : context_(context) {}

    // Children not removed, youngest birthday last.
    std::vector<ProfileListRow> profileList() const;

private:
    core::Context& context_;
};

}  // namespace tilika::diary

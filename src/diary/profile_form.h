#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diary/catalogue.h"
#include "diary/profiles.h"
#include "frame/form_kinds.h"

namespace tilika::core {
struct Context;
}
namespace tilika::platform {
class ImageCodec;
}

namespace tilika::diary {

// Form row kinds the profile form uses.
namespace formtp = frame::formkind;

// What the caller does with the filled form: save an existing child under
// its guid, or a new one under a fresh guid.
namespace formflag {
inline constexpr int existingChild = 1000;
inline constexpr int newChild = 1001;
}  // namespace formflag

struct ProfileFormContent {
    std::string caption;  // "Настройки" or "Новая запись"
    int parentFlag = 0;
    std::optional<std::string> gid;
    std::vector<CatalogueRow> rows;  // with each row's value in `source`
};

// The data side of the form for a child's profile: its rows, filled from
// the stored record, and the record made back from the edited rows.
class ProfileForm {
public:
    ProfileForm(core::Context& context, const platform::ImageCodec& images)
        : context_(context), images_(images) {}

    // The form for the child with this guid, or for a new child.
    ProfileFormContent setupDialog(std::optional<std::string_view> gid) const;

    // The record of the edited rows, ready for Profiles::saveSetupData. Writes
    // a new portrait or deletes the old one as the photo row says. No rows at
    // all make a record that removes the child.
    SetupRecord setupArrayToDic(const std::vector<CatalogueRow>& rows, std::string_view gid) const;

private:
    core::Context& context_;
    const platform::ImageCodec& images_;
};

}  // namespace tilika::diary

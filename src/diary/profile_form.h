#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diary/catalogue.h"
#include "diary/profiles.h"

namespace tilika::core {
struct Context;
}
namespace tilika::platform {
class ImageCodec;
}

namespace tilika::diary {

// Form row kinds the profile form uses.
namespace formtp {
inline constexpr int separator = 1001;
inline constexpr int heading = 1002;
inline constexpr int date = 1003;
inline constexpr int time = 1004;
inline constexpr int textLine = 1006;
inline constexpr int number = 1007;
inline constexpr int segments = 1009;
inline constexpr int photo = 1010;
inline constexpr int figures = 1011;
inline constexpr int listPick = 1017;
inline constexpr int button = 1023;
inline constexpr int documents = 1024;
}  // namespace formtp

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

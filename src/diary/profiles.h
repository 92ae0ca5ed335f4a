#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "core/write_result.h"

namespace tilika::core {
struct Context;
}

namespace tilika::diary {

// Everything the program keeps about one child besides the diary. Keys that
// may be absent are optional; `sbirthdate` absent means the profile doesn't
// exist yet.
struct SetupRecord {
    std::string name;
    std::optional<std::string> sbirthdate;  // "yyyy-MM-dd" as stored
    core::Date birthdate{};                 // the same day as a date
    int sex = 0;                            // 0 boy, 1 girl
    std::string blood;                      // guid of a blood group row
    std::string allerg;                     // allergens
    std::string ves = "0";                  // weight at birth, kilograms, as typed
    std::string rost = "0";                 // height at birth, centimetres, as typed
    std::optional<std::string> sbirthtime;  // "HH:mm"
    std::optional<core::Date> birthtime;    // only for a full moment text
    std::optional<std::string> documents;   // document records as JSON
    // After a load with a guid always true; false in a record to be saved
    // means "remove this child".
    std::optional<bool> active;
    // Running state while a diary is built.
    std::optional<bool> isbolezn;
    std::optional<bool> isdieta;
};

// Who saves a profile: the profile form keeps the stored allergens, which it
// has no row for; a record from another device brings its own.
namespace saveflag {
inline constexpr int form = 1;
inline constexpr int cloud = 2;
}  // namespace saveflag

// A child as the short lists show it.
struct ProfileListRow {
    std::optional<core::Date> sbirthdate;
    long long chid = 0;
    std::string chname;
};

struct ProfileRow {
    std::string guid;
    std::string childguid;
    std::string childname;
    std::optional<core::Date> sbirthdate;
    int sex = 0;
};

// A child's name as the lists show it: "Без имени" for one shorter than two
// letters.
std::string shownChildName(const std::string& name);

// The children kept on this device.
class Profiles {
public:
    explicit Profiles(core::Context& context) : context_(context) {}

    // Fills the defaults of a new child: born today, a boy, blood group
    // unknown, no allergens, birth height and weight "0".
    void initSetupStruct(SetupRecord& record) const;

    // The child's record over the defaults; with no guid the defaults only.
    SetupRecord loadSetupData(std::optional<std::string_view> gid) const;

    core::WriteResult saveSetupData(int flag, SetupRecord record, std::string_view gid);
    // Inserts a new child, updates one that exists, or, for a record that is
    // not active, removes the child: the profile is hidden and its portrait
    // deleted, while the diary rows stay. A record without a readable birth
    // date keeps the stored one. When the write fails, the stored profile
    // and the portrait stay as they were.
    core::WriteResult saveSetupDataChild(int flag, SetupRecord record, std::string_view gid);

    // Children not removed, in order of birth.
    std::vector<ProfileListRow> profileList() const;
    std::vector<ProfileRow> loadProfils() const;
    // Each child's guid to its name, "Без имени" for a name shorter than two
    // letters.
    std::map<std::string, std::string> childNames() const;

    // The guid of the child the template brings, while it is the only child
    // and nobody has saved it yet (no name, and no birth weight or height,
    // which every save writes); nothing otherwise. A new parent's first
    // profile is then that child, filled in, not a second one beside it.
    std::optional<std::string> untouchedTemplateChild() const;

    // picture/child-<gid>.jpg under Documents; empty for a guid that could
    // name a place outside that folder.
    std::filesystem::path portraitPath(std::string_view gid) const;

private:
    core::Context& context_;
};

}  // namespace tilika::diary

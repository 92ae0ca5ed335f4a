#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tilika::frame {

// Kinds of item on a page of reading matter.
namespace richtp {
inline constexpr int none = 0;  // only the gap below an item
inline constexpr int groupStart = 1;
inline constexpr int heading = 2;
inline constexpr int subheading = 3;
inline constexpr int body = 4;
inline constexpr int large = 5;
inline constexpr int picture = 6;
inline constexpr int linkRow = 7;
inline constexpr int button = 8;  // a button in JSON pages, a sub-heading in markup
inline constexpr int unknown = -1;
}  // namespace richtp

// One item of a page, as either source format gives it.
struct RichItem {
    int tp = richtp::none;
    std::string text;
    std::string format;
    std::string pic;
    std::string bigpic;
    std::string weblink;
    std::string hiddentext;
    std::optional<std::string> checkid;
    long long linkid = 0;
    long long groupid = 0;
};

struct RichGroup {
    long long groupid = 0;
    std::vector<RichItem> items;
};

// The markup: records cut by "<br>", fields by "<tr>", a field's key from
// its value by "<val>". Every record starts from the defaults except its
// group, which carries on from the record before until a record names
// another. Fields that can't be read are left out, and so is everything past
// the hundred thousandth item.
std::vector<RichItem> parseMarkup(std::string_view markup);

// The JSON form: an array of groups, each with "groupid" and its "Content".
// The groups of `append` are merged in: those at the head of it that share a
// group's number add to that group's items, the rest are put in number order.
// Text that doesn't parse gives no groups; what can't be read is skipped.
std::vector<RichGroup> parseJson(std::string_view json,
                                 std::optional<std::string_view> append = std::nullopt);

// The texts of the body items of one group of the markup, joined by line
// breaks, untranslated.
std::string extractGroupText(std::string_view markup, long long groupid);

// Content files are <name>.jsn (JSON) or <name>.txt (markup) in the content
// folder; "empty-u.txt" stands in for a missing one.
struct ContentFile {
    std::string text;  // trimmed of white space and line breaks at both ends
    bool json = false;
};
ContentFile loadContentFile(const std::filesystem::path& folder, std::string_view name);

// The markup file <name>.txt, or "empty-u.txt" when there is none, trimmed.
std::string fileToString(const std::filesystem::path& folder, std::string_view name);

}  // namespace tilika::frame

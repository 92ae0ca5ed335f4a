#pragma once

#include <string>
#include <vector>

namespace tilika::core {

// Kinds of main menu rows.
namespace menukind {
inline constexpr int page = 1;    // a page of the root pager
inline constexpr int action = 2;  // an action on the active child
inline constexpr int addChild = 3;
inline constexpr int service = 4;  // a service with a picture and a comment
inline constexpr int toggle = 5;   // a switch; its comment is its caption
inline constexpr int version = 6;
}  // namespace menukind

// Whom a row acts on.
inline constexpr const char* kMenuLocal = "LOCAL";  // the active profile
inline constexpr const char* kMenuMain = "MAIN";    // the whole program

struct MenuRow {
    int tp = 0;
    std::string pic;
    std::string name;
    int id = 0;
    std::string comment;
    std::string gid;
    bool needupdate = false;
    bool checked = false;  // a switch's state
    int hint = 0;          // the count on the row's badge; none at 0
};

// The main menu rows in their fixed order. Rows for services that exist
// only in Russian are left out for any other interface language; the ids
// of the remaining rows stay the same.
std::vector<MenuRow> buildMenuItems(int langid, const std::string& shortVersion);

// One-based position of the last page row, 0 when there is none.
int pageCount(const std::vector<MenuRow>& rows);

}  // namespace tilika::core

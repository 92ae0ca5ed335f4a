#pragma once

#include <string>
#include <string_view>

namespace tilika::core {

// Kinds of fixed guids: the digit that stands before the number.
namespace idkind {
inline constexpr int profile = 1;    // from the old numeric profile id
inline constexpr int listRow = 2;    // from a reference row's number
inline constexpr int seededRow = 4;  // rows every device adds with the same guid
}  // namespace idkind

// A fresh random guid, upper case, 8-4-4-4-12.
std::string newID();

// A fixed guid from a kind digit and a number, the same on every device:
// newID2(4, "61") is "00000000-0000-0000-0004-000000000061".
std::string newID2(int kind, std::string_view lid);
std::string newID2(int kind, long long lid);

}  // namespace tilika::core

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tilika::core {
struct Context;
}

namespace tilika::diary {

// The reference lists, by `cotype`.
namespace cotype {
inline constexpr int all = 0;
inline constexpr int achievements = 1;
inline constexpr int complaints = 2;
inline constexpr int illnesses = 3;
inline constexpr int bloodGroups = 4;
inline constexpr int allergens = 5;
inline constexpr int formula = 6;
inline constexpr int cereals = 7;
inline constexpr int purees = 8;
inline constexpr int otherFood = 9;
inline constexpr int medicines = 101;
inline constexpr int howOften = 102;
inline constexpr int meals = 103;
inline constexpr int analysisTypes = 200;
inline constexpr int documentTypes = 201;
}  // namespace cotype

// The `deleted` column of a list row.
namespace rowstate {
inline constexpr int user = 0;       // the user's own row; it can be removed
inline constexpr int removed = 1;    // hidden from its list, still readable
inline constexpr int protectedRow = 2;  // from here up: sorts first, can't be removed
inline constexpr int recovery = 4;   // in the illnesses: the child has recovered
}  // namespace rowstate

// One row of a reference list in memory.
struct ListRow {
    std::string cap;    // the caption as stored, tail included
    std::string index;  // the row's guid
    int tp = 0;         // its cotype
    int deleted = 0;
    int celltype = 1;
    bool checked = false;

    bool operator==(const ListRow&) const = default;
};

// The row of this guid, or of an old numeric id (a text shorter than 10
// characters, widened to the kind-2 guid of that number).
const ListRow* listByIndex(std::string_view guid, const std::vector<ListRow>& list);

// Appends a row in memory only, as the user's own row.
void addToList(std::vector<ListRow>& list, std::string index, std::string name, int tp,
               bool checked);

// A caption is shown up to its tail: the part from the first "<tr>" on.
std::string captionText(std::string_view coname);

// The name of a food unit by its code 1 to 5 ("Миллилитры (мил.)", ...); ""
// for any other code.
std::string meraToRead(int code);

}  // namespace tilika::diary

#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diary/catalogue.h"
#include "diary/reference_lists.h"

namespace tilika::diary {

// A form of the day editor for one record of an entry that keeps several a
// day: its title, its rows, and the values the rows start from, by field.
struct EntryForm {
    std::string caption;
    std::vector<CatalogueRow> rows;
    std::map<std::string, std::string> defaults;
};

// A sleep (`sleep`) or a walk (`walk`): start, end and length, each following
// the others. A new one starts now; an existing one from its record, given
// as JSON text. Any other field gives no rows.
EntryForm periodForm(std::string_view field, std::string_view nowTime,
                     std::optional<std::string_view> record);

// The form that adds a row to a reference list from a list row, by the row's
// `listedittype`: 1 a name alone, 2 an illness (with the switch that puts it
// on the child's card), 3 a food (with its unit, which it needs).
EntryForm newListRowForm(int listedittype);
// What that form handed back, as the row to store in list `cotype`; nothing
// without a name.
std::optional<NewListRow> newListRowOf(int listedittype, int cotype,
                                       const std::vector<CatalogueRow>& answer);

}  // namespace tilika::diary

#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diary/catalogue.h"

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

}  // namespace tilika::diary

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "diary/reference_lists.h"

namespace tilika::core {
class Dates;
}

// A medication course is kept in the diary as a JSON object of text fields
// (`pillname`, `pilldoza`, `pillinter`, `pillperiod`, `pilleat`,
// `pilllength`, `pillsdate`, `pilltime`, `key`), copied onto every day it
// reaches.
namespace tilika::diary {

// One course, given as JSON text, as a sentence: "Нурофен: 1/2 штуки,
// Ежедневно, 3 раза в день, После еды, 1 неделю". With a date, the day of the
// course it is follows: " (3 день из 7)". Names that are no longer in the
// lists read as empty texts.
std::string pillsToRead(std::string_view course, const std::vector<ListRow>& listData,
                        std::optional<core::Date> forDate, const core::Dates& dates);

}  // namespace tilika::diary

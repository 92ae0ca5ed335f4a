#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diary/entry_forms.h"

namespace tilika::medication {

// The form of one course: the medicine from its list, the amounts on their
// wheels, the period and the meals from their lists, the first day and the
// times. A new course (no record) starts on `day` with the usual amounts,
// daily and regardless of meals when those rows are in `lists`; an existing
// one from its record, given as JSON text.
diary::EntryForm courseForm(std::optional<std::string_view> course, std::string_view day,
                            const std::vector<diary::ListRow>& lists);

// The fields of the course the form holds, the ground its times are worked
// out from: every value row by its field, without the times. Nothing while
// the doses a day or the meals are not chosen.
std::optional<std::map<std::string, std::string>> courseOfForm(
    const std::vector<diary::CatalogueRow>& rows);

// The course's times follow its doses a day and its meals: once the row of
// `changed` took a new value, the times row gets what `times` works out from
// the course the form holds, or is cleared when it can't be worked out.
// Nothing happens after a change to any other row.
using CourseTimes =
    std::function<std::optional<std::string>(const std::map<std::string, std::string>& course)>;
void followCourseTimes(std::vector<diary::CatalogueRow>& rows, std::string_view changed,
                       const CourseTimes& times);

}  // namespace tilika::medication

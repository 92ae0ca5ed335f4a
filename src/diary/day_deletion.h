#pragma once

#include <string_view>

#include "core/write_result.h"
#include "diary/diary_store.h"

namespace tilika::core {
struct Context;
}

namespace tilika::diary {

// Deletes a day of the diary as a swipe on its row does: every row of the
// day, its photo by the names of the era of numeric profile ids, and the
// files of the day's analyses stored in their old form. The photo names
// never match a guid profile's files, so such a day comes back with its
// photo as an empty day; the photo outlives the rows on purpose. Nothing
// outside the photo and analysis folders is touched, whatever the names
// hold, and no file goes when the rows could not be deleted.
core::WriteResult deleteDiaryDay(DiaryStore& store, core::Context& context, const DayNote& day,
                                 std::string_view gid);

}  // namespace tilika::diary

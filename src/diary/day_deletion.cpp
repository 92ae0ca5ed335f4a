#include "diary/day_deletion.h"

#include <filesystem>
#include <string>
#include <system_error>

#include "core/context.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/text.h"
#include "diary/value_codecs.h"
#include "platform/folders.h"
#include "platform/number_text.h"

namespace tilika::diary {

namespace {

void removeIn(const std::filesystem::path& folder, std::string_view name) {
    if (!core::isPlainFileName(name)) {
        return;
    }
    std::error_code error;
    std::filesystem::remove(folder / std::string(name), error);
}

}  // namespace

core::WriteResult deleteDiaryDay(DiaryStore& store, core::Context& context, const DayNote& day,
                                 std::string_view gid) {
    if (!day.dat) {
        return {};
    }
    const core::WriteResult deleted = store.noteDeleteValue(*day.dat, std::nullopt, gid);
    if (!deleted) {
        return deleted;
    }
    const auto documents = context.folders.path(platform::SystemFolder::Document);

    const std::string stem = context.dates.dateToString(day.dat, core::formats::photoDay) + "-" +
                             std::to_string(platform::intValue(gid));
    removeIn(documents / "picture", stem + ".jpg");
    removeIn(documents / "picture-s", stem + "-s.jpg");

    // Only the old form of the value names its files: "caption<br>...<br>file".
    const std::string analizy = day.value("analizy");
    if (!analizy.empty() && !jsonIs(analizy)) {
        for (const std::string& record : core::split(analizy, "<tr>")) {
            const std::vector<std::string> fields = core::split(record, "<br>");
            if (fields.size() > 2 && !fields[2].empty()) {
                removeIn(documents / "analizy", fields[2]);
            }
        }
    }
    return deleted;
}

}  // namespace tilika::diary

#include "documents/day_analyses.h"

#include <algorithm>
#include <exception>
#include <fstream>
#include <iterator>

#include "core/app_state.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/ids.h"
#include "core/text.h"
#include "diary/day_rows.h"
#include "diary/value_codecs.h"
#include "documents/analyses.h"
#include "documents/attachments.h"
#include "platform/folders.h"

namespace tilika::documents {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kField = "analizy";

// The extension of the copy: letters and digits of the source's, lowered;
// whatever else a name from outside brings stays out of ours.
std::string extensionOf(const fs::path& path) {
    std::string extension;
    for (char c : path.extension().string()) {
        if ((c >= '0' && c <= '9') || (c >= 'a' && c <= 'z')) {
            extension += c;
        } else if (c >= 'A' && c <= 'Z') {
            extension += static_cast<char>(c - 'A' + 'a');
        }
    }
    return extension.empty() ? std::string("pdf") : extension;
}

// The tags of a day's value in the old form: items joined by "<tr>", the
// tag the fourth of their "<br>" pieces.
std::vector<int> oldTags(std::string_view value) {
    std::vector<int> tags;
    for (const std::string& item : core::split(value, "<tr>")) {
        const std::vector<std::string> pieces = core::split(item, "<br>");
        if (pieces.size() > 3) {
            tags.push_back(core::intValue(pieces[3]));
        }
    }
    return tags;
}

bool copyIn(const fs::path& from, const fs::path& to) {
    std::error_code error;
    if (!fs::is_regular_file(fs::status(from, error)) || error ||
        fs::file_size(from, error) > kMaxFileBytes || error) {
        return false;
    }
    std::ifstream in(from, std::ios::binary);
    const std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                          std::istreambuf_iterator<char>());
    return !in.bad() && core::writeFileReplacing(to, bytes);
}

}  // namespace

bool addToAnaliz(core::Context& context, std::string_view name, const fs::path& path,
                 core::Date day) {
    SQLite::Database* db = context.database.connectToBase();
    if (db == nullptr) {
        return false;
    }
    const std::string gid = core::newID2(1, 1);
    diary::DayRows rows(*db, context.dates);
    const std::string value = rows.getDateValue(day, kField, gid);

    const bool json = diary::jsonIs(value);
    std::vector<AnalysisItem> items;
    if (json) {
        items = prepare(value);
    }
    const int tag = json ? freeTag(items) : freeTag(oldTags(value));
    const std::string file = "a-" + context.dates.dateToString(day, core::formats::photoDay) + "-" +
                             std::to_string(tag) + "." + extensionOf(path);
    const fs::path folder = context.folders.path(platform::SystemFolder::Document) / "analizy";
    if (!core::isPlainFileName(file) || !copyIn(path, folder / file)) {
        return false;
    }

    std::string newValue;
    if (json) {
        // The screen reads JSON only: an old-form item appended here would
        // make it read the day as empty, and its next save would drop scans.
        items.push_back({itemtp::pdf, std::string(name), std::string(name), file, tag});
        newValue = close(items);
    } else {
        newValue = value.empty() ? std::string() : value + "<tr>";
        newValue += "2<br>" + std::string(name) + "<br>" + file + "<br>" + std::to_string(tag);
    }
    // The old row goes and the new one comes in one step.
    try {
        core::WriteTransaction transaction(*db);
        rows.insertValue(kField, newValue, day, gid, true, false);
        if (!rows.result().ok()) {
            return false;
        }
        transaction.commit();
    } catch (const std::exception&) {
        return false;
    }
    context.state.markAllPagesDirty();
    return true;
}

}  // namespace tilika::documents

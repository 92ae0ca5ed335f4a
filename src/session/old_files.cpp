#include "session/old_files.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>
#include <unistd.h>

#include "diary/old_values.h"
#include "platform/log.h"

namespace tilika::session {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kNewNameLength = 31;

// Moves `from` to `to` unless `to` exists. A hard link refuses a taken name
// without a window between looking and moving; where the file system has no
// links, the look comes first and nothing else writes these folders.
bool moveWithoutReplacing(const fs::path& from, const fs::path& to, std::error_code& error) {
    if (::link(from.c_str(), to.c_str()) == 0) {
        // Should the old name stay, both lead to the one file: nothing is
        // lost, and the photo shows under its new name.
        ::unlink(from.c_str());
        return true;
    }
    if (errno == EEXIST) {
        error = std::make_error_code(std::errc::file_exists);
        return false;
    }
    if (fs::exists(to, error)) {
        error = std::make_error_code(std::errc::file_exists);
        return false;
    }
    error.clear();
    fs::rename(from, to, error);
    return !error;
}

}  // namespace

std::vector<FileRename> guidFolder(const fs::path& folder) {
    std::vector<FileRename> renames;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with("child-") || name.size() >= kNewNameLength ||
            !entry.is_regular_file(error)) {
            continue;
        }
        const std::string renamed = diary::oldFileNameToNew(name);
        if (renamed != name) {
            renames.push_back({entry.path(), folder / renamed});
        }
    }
    // In the order of the names, so that progress reads the same each time.
    std::sort(renames.begin(), renames.end(),
              [](const FileRename& a, const FileRename& b) { return a.from < b.from; });
    return renames;
}

std::vector<FileRename> oldFileRenames(const fs::path& documents) {
    std::vector<FileRename> renames;
    for (const char* folder : {"picture", "picture-s", "analizy", "documents"}) {
        std::vector<FileRename> found = guidFolder(documents / folder);
        renames.insert(renames.end(), std::make_move_iterator(found.begin()),
                       std::make_move_iterator(found.end()));
    }
    return renames;
}

RenameOutcome renameOldFiles(const std::vector<FileRename>& renames,
                             const std::function<void(std::size_t, std::size_t)>& progress) {
    RenameOutcome outcome;
    const std::size_t total = renames.size();
    for (std::size_t i = 0; i < total; ++i) {
        const FileRename& rename = renames[i];
        std::error_code error;
        if (moveWithoutReplacing(rename.from, rename.to, error)) {
            ++outcome.renamed;
        } else {
            ++outcome.kept;
            platform::log("Could not rename " + rename.from.filename().string() + " to " +
                          rename.to.filename().string() + ": " + error.message());
        }
        if (progress) {
            progress(i + 1, total);
        }
    }
    return outcome;
}

}  // namespace tilika::session

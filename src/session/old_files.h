#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <vector>

namespace tilika::session {

// An old photo or scan and the name it takes.
struct FileRename {
    std::filesystem::path from;
    std::filesystem::path to;
};

// The renames one folder of photos or scans needs. Names from before the
// guid era carry the profile's number ("5-2.jpg", "a-5-2.jpg"); they take
// its guid instead. Names of 31 characters or more are new already, and
// the profile photos ("child-...") are renamed with the profiles
// themselves. Found by the names alone, so a run cut short is found again.
std::vector<FileRename> guidFolder(const std::filesystem::path& folder);

// The renames of every folder of photos and scans under Documents.
std::vector<FileRename> oldFileRenames(const std::filesystem::path& documents);

struct RenameOutcome {
    std::size_t renamed = 0;
    // Left under the old name: the new name was taken, or the move failed.
    std::size_t kept = 0;
};

// Does the renames in order and calls `progress` with the number done and
// the total after each. A file never replaces another: when the new name is
// taken, the old file stays as it is. Safe to run again on what is left.
// Runs on any thread; `progress` is called on the same one.
RenameOutcome renameOldFiles(const std::vector<FileRename>& renames,
                             const std::function<void(std::size_t, std::size_t)>& progress);

}  // namespace tilika::session

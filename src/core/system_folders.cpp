#include "core/system_folders.h"

#include <system_error>

#include "platform/folders.h"

namespace tilika::core {

using platform::SystemFolder;

std::optional<std::filesystem::path> getSystemFolder(const platform::Folders& folders,
                                                     std::string_view word) {
    if (word == "Document") {
        return folders.path(SystemFolder::Document);
    }
    if (word == "Library") {
        return folders.path(SystemFolder::Library);
    }
    if (word == "Temp") {
        return folders.path(SystemFolder::Temp);
    }
    if (word == "Reserv") {
        return folders.path(SystemFolder::Reserv);
    }
    if (word == "Root") {
        return folders.path(SystemFolder::Root);
    }
    if (word == "Cloud") {
        auto cloud = folders.path(SystemFolder::Cloud);
        std::error_code error;
        std::filesystem::create_directories(cloud, error);
        if (error || !std::filesystem::is_directory(cloud, error)) {
            return folders.path(SystemFolder::Temp);
        }
        return cloud;
    }
    return std::nullopt;
}

std::filesystem::path typeFilePath(const std::filesystem::path& base, std::string_view filename) {
    // Each rule needs the name to be longer than its marker, so a bare "a-"
    // or ".jpg" stays in the base folder.
    auto begins = [&](std::string_view prefix, std::size_t shortest) {
        return filename.size() >= shortest && filename.starts_with(prefix);
    };
    auto ends = [&](std::string_view suffix, std::size_t shortest) {
        return filename.size() >= shortest && filename.ends_with(suffix);
    };
    if (begins("a-", 4)) {
        return base / "analizy";
    }
    if (begins("d-", 4) || begins("doc-", 6)) {
        return base / "documents";
    }
    if (ends("-s.jpg", 7)) {
        return base / "picture-s";
    }
    if (ends(".jpg", 5)) {
        return base / "picture";
    }
    if (ends(".sqlite", 8)) {
        return base / "reserv";
    }
    return base;
}

}  // namespace tilika::core

#pragma once

#include <filesystem>
#include <string_view>

namespace tilika::core {

// A name beside `path` that no file has yet: the path with `suffix`, or, if
// that is taken, with `suffix` and "-2", "-3", ... Used to keep a file aside
// without ever overwriting one kept before.
std::filesystem::path freePath(const std::filesystem::path& path, std::string_view suffix);

// Moves a file, replacing the target. Across file systems it copies first
// and removes the source only once the copy is complete.
bool moveReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace tilika::core

#pragma once

#include <filesystem>
#include <string_view>

namespace tilika::core {

// A name beside `path` that no file has yet: the path with `suffix`, or, if
// that is taken, with `suffix` and "-2", "-3", ... Used to keep a file aside
// without ever overwriting one kept before.
std::filesystem::path freePath(const std::filesystem::path& path, std::string_view suffix);

// True for a name that stays inside the folder it is joined to: not empty,
// no separators, not "." or "..". Guids from other devices end up in file
// names, and must never lead anywhere else.
bool isPlainFileName(std::string_view name);

// Moves a file, replacing the target. Across file systems it copies first
// and removes the source only once the copy is complete.
bool moveReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace tilika::core

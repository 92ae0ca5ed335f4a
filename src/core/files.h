#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>

namespace tilika::core {

// A name beside `path` that no file has yet: the path with `suffix`, or, if
// that is taken, with `suffix` and "-2", "-3", ... Used to keep a file aside
// without ever overwriting one kept before.
std::filesystem::path freePath(const std::filesystem::path& path, std::string_view suffix);

// True for a name that stays inside the folder it is joined to: not empty,
// no separators, not "." or "..". Guids from other devices end up in file
// names, and must never lead anywhere else.
bool isPlainFileName(std::string_view name);

// The names in a folder that start with `prefix` and name something that
// exists (a link only when what it leads to does). Asking for hundreds of
// files one by one costs a look-up each; this lists the folder once, and
// keeps the listing (per thread) for as long as the folder's modification
// time stays the same, so that the next time costs one look-up; a listing
// with links in it is not kept. Empty for a
// folder that isn't there; nullptr when it can't be listed.
std::shared_ptr<const std::unordered_set<std::string>> existingNames(
    const std::filesystem::path& folder, std::string_view prefix);

// Moves a file, replacing the target. Across file systems it copies first
// and removes the source only once the copy is complete.
bool moveReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

// Writes the bytes under a temporary name beside the file first and then puts
// them in its place, so a crash or a full disk never leaves half a file
// under the real name, and the old file stays when the write fails.
bool writeFileReplacing(const std::filesystem::path& file, std::span<const std::uint8_t> bytes);

}  // namespace tilika::core

#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace tilika::platform {
class Folders;
}

namespace tilika::core {

// The folder named by a word: "Document", "Library", "Temp", "Reserv",
// "Root" or "Cloud" (created when missing; the temporary folder when it
// can't be). Any other word names nothing.
std::optional<std::filesystem::path> getSystemFolder(const platform::Folders& folders,
                                                     std::string_view word);

// The folder inside `base` where a file of this name belongs: scans of
// analyses ("a-...") in analizy, document scans ("d-...", "doc-...") in
// documents, thumbnails ("...-s.jpg") in picture-s, photos ("....jpg") in
// picture, databases ("....sqlite") in reserv, anything else in base itself.
std::filesystem::path typeFilePath(const std::filesystem::path& base, std::string_view filename);

}  // namespace tilika::core

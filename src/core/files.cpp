#include "core/files.h"

#include <string>
#include <system_error>

namespace tilika::core {

namespace fs = std::filesystem;

fs::path freePath(const fs::path& path, std::string_view suffix) {
    std::error_code error;
    fs::path candidate = path;
    candidate += std::string(suffix);
    for (int n = 2; fs::exists(candidate, error); ++n) {
        candidate = path;
        candidate += std::string(suffix) + "-" + std::to_string(n);
    }
    return candidate;
}

bool isPlainFileName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of("/\\") == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

bool moveReplacing(const fs::path& from, const fs::path& to) {
    std::error_code error;
    fs::rename(from, to, error);
    if (!error) {
        return true;
    }
    fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
    if (error) {
        return false;
    }
    fs::remove(from, error);
    return true;
}

}  // namespace tilika::core

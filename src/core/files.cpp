#include "core/files.h"

#include <fstream>
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

bool writeFileReplacing(const fs::path& file, std::span<const std::uint8_t> bytes) {
    std::error_code error;
    fs::create_directories(file.parent_path(), error);
    fs::path partial = file;
    partial += ".part";
    {
        std::ofstream out(partial, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
        out.flush();
        if (!out) {
            out.close();
            fs::remove(partial, error);
            return false;
        }
    }
    fs::rename(partial, file, error);
    if (error) {
        fs::remove(partial, error);
        return false;
    }
    return true;
}

}  // namespace tilika::core

#include "core/files.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <dirent.h>
#include <fstream>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unordered_map>

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

namespace {

// A change a folder's time can't show: file times tick in steps of a few
// milliseconds, so a folder changed twice within one step keeps the time of
// the first change. A listing taken that soon after the folder's time is not
// kept.
constexpr auto kSettled = std::chrono::seconds(2);

struct Listing {
    std::string prefix;
    std::int64_t changed = 0;  // the folder's modification time, in nanoseconds
    std::shared_ptr<const std::unordered_set<std::string>> names;
};

// Per thread, so a load on a worker shares nothing with the window's thread.
thread_local std::unordered_map<std::string, Listing> listings;
constexpr std::size_t kListingLimit = 16;

std::optional<std::int64_t> changedAt(const std::string& folder, bool& missing) {
    struct stat info {};
    if (::stat(folder.c_str(), &info) != 0) {
        missing = errno == ENOENT || errno == ENOTDIR;
        return std::nullopt;
    }
    return static_cast<std::int64_t>(info.st_mtim.tv_sec) * 1'000'000'000 + info.st_mtim.tv_nsec;
}

// `links` tells whether any of the names is a link: what a link leads to
// can come and go without the folder changing.
std::optional<std::unordered_set<std::string>> listNames(const std::string& folder,
                                                         std::string_view prefix, bool& links) {
    DIR* dir = ::opendir(folder.c_str());
    if (dir == nullptr) {
        return std::nullopt;
    }
    std::unordered_set<std::string> names;
    errno = 0;
    while (const dirent* entry = ::readdir(dir)) {
        const std::string_view name(entry->d_name);
        if (!name.starts_with(prefix)) {
            continue;
        }
        // The listing tells the kind of each entry without a look-up; only
        // a link (or an entry of a kind the file system doesn't tell) needs
        // one, to see that what it names is there.
        const bool looked = entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN;
        links = links || looked;
        struct stat target {};
        if (!looked || ::fstatat(::dirfd(dir), entry->d_name, &target, 0) == 0) {
            names.emplace(name);
        }
        errno = 0;
    }
    const bool failed = errno != 0;
    ::closedir(dir);
    if (failed) {
        return std::nullopt;
    }
    return names;
}

}  // namespace

std::shared_ptr<const std::unordered_set<std::string>> existingNames(const fs::path& folder,
                                                                     std::string_view prefix) {
    const std::string path = folder.string();
    bool missing = false;
    const std::optional<std::int64_t> changed = changedAt(path, missing);
    if (!changed) {
        return missing ? std::make_shared<const std::unordered_set<std::string>>() : nullptr;
    }
    if (const auto kept = listings.find(path); kept != listings.end() &&
                                               kept->second.changed == *changed &&
                                               kept->second.prefix == prefix) {
        return kept->second.names;
    }
    const auto listedAt = std::chrono::system_clock::now().time_since_epoch();
    bool links = false;
    std::optional<std::unordered_set<std::string>> names = listNames(path, prefix, links);
    if (!names) {
        return nullptr;
    }
    auto shared = std::make_shared<const std::unordered_set<std::string>>(std::move(*names));
    if (!links && listedAt - std::chrono::nanoseconds(*changed) > kSettled) {
        if (listings.size() >= kListingLimit) {
            listings.clear();
        }
        listings[path] = Listing{std::string(prefix), *changed, shared};
    } else {
        listings.erase(path);
    }
    return shared;
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

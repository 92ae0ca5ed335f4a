#include "core/settings_file.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <system_error>
#include <unistd.h>

#include "core/files.h"
#include "platform/log.h"

namespace tilika::core {
namespace {

using Json = nlohmann::json;

// Settings are a few kilobytes; anything this large is not a settings file.
constexpr std::uintmax_t kLargestFile = 16 * 1024 * 1024;

bool writeAll(int fd, const std::string& data) {
    std::size_t written = 0;
    while (written < data.size()) {
        const ssize_t n = ::write(fd, data.data() + written, data.size() - written);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        written += static_cast<std::size_t>(n);
    }
    return true;
}

void syncFolder(const std::filesystem::path& folder) {
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

}  // namespace

JsonSettingsStore::JsonSettingsStore(std::filesystem::path file) : file_(std::move(file)) {
    std::error_code error;
    if (!std::filesystem::exists(file_, error)) {
        return;
    }
    Json parsed;
    if (std::filesystem::file_size(file_, error) <= kLargestFile && !error) {
        std::ifstream in(file_, std::ios::binary);
        std::stringstream buffer;
        buffer << in.rdbuf();
        parsed = Json::parse(buffer.str(), nullptr, false);
    }
    if (parsed.is_object()) {
        values_ = std::move(parsed);
        return;
    }
    const std::filesystem::path damaged = freePath(file_, ".damaged");
    std::filesystem::rename(file_, damaged, error);
    if (error) {
        platform::log("Settings file was damaged and could not be kept aside: " + error.message());
        return;
    }
    platform::log("Settings file was damaged and has been kept as " + damaged.string());
    damagedCopy_ = damaged;
}

JsonSettingsStore::~JsonSettingsStore() {
    if (dirty_) {
        synchronize();
    }
}

std::optional<Json> JsonSettingsStore::value(std::string_view key) const {
    const auto it = values_.find(key);
    if (it == values_.end() || it->is_null()) {
        return std::nullopt;
    }
    return *it;
}

void JsonSettingsStore::setValue(std::string_view key, Json value) {
    values_[std::string(key)] = std::move(value);
    dirty_ = true;
}

void JsonSettingsStore::remove(std::string_view key) {
    if (values_.erase(std::string(key)) > 0) {
        dirty_ = true;
    }
}

bool JsonSettingsStore::synchronize() {
    if (!dirty_ && std::filesystem::exists(file_)) {
        return true;
    }
    std::error_code error;
    std::filesystem::create_directories(file_.parent_path(), error);

    std::filesystem::path temporary = file_;
    temporary += ".tmp";
    // Invalid UTF-8 from a damaged source must not make the whole file
    // unwritable; it is replaced rather than refused.
    const std::string text = values_.dump(4, ' ', false, Json::error_handler_t::replace) + "\n";

    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) {
        platform::log("Could not write settings to " + temporary.string());
        return false;
    }
    const bool written = writeAll(fd, text) && ::fsync(fd) == 0;
    ::close(fd);
    if (!written) {
        std::filesystem::remove(temporary, error);
        platform::log("Could not write settings to " + temporary.string());
        return false;
    }
    std::filesystem::rename(temporary, file_, error);
    if (error) {
        std::filesystem::remove(temporary, error);
        platform::log("Could not replace the settings file " + file_.string());
        return false;
    }
    syncFolder(file_.parent_path());
    dirty_ = false;
    return true;
}

}  // namespace tilika::core

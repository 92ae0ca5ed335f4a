#include "frame/pictures.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <system_error>

#include "core/text.h"

namespace tilika::frame {

namespace {

std::string_view stem(std::string_view name) {
    if (name.ends_with(".png")) {
        name.remove_suffix(4);
    }
    return name;
}

// The value of one attribute of the root element of our own drawings, which
// give their size as plain numbers: width="64" height="64".
double svgAttribute(std::string_view header, std::string_view attribute) {
    std::string key = " ";
    key.append(attribute).append("=\"");
    const auto at = header.find(key);
    if (at == std::string_view::npos) {
        return 0;
    }
    return core::floatValue(header.substr(at + key.size()));
}

platform::Size svgSize(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::string head(2048, '\0');
    in.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(in.gcount()));
    const auto start = head.find("<svg");
    if (start == std::string::npos) {
        return {};
    }
    const auto end = head.find('>', start);
    const std::string_view root = std::string_view(head).substr(start, end - start);
    return {svgAttribute(root, "width"), svgAttribute(root, "height")};
}

platform::Size pngSize(const std::filesystem::path& file) {
    // The width and height are the first fields of the header chunk, big
    // endian, right after the signature and the chunk's length and type.
    std::ifstream in(file, std::ios::binary);
    std::array<unsigned char, 24> head{};
    in.read(reinterpret_cast<char*>(head.data()), head.size());
    if (in.gcount() != static_cast<std::streamsize>(head.size())) {
        return {};
    }
    auto word = [&](std::size_t at) {
        return (std::uint32_t{head[at]} << 24) | (std::uint32_t{head[at + 1]} << 16) |
               (std::uint32_t{head[at + 2]} << 8) | std::uint32_t{head[at + 3]};
    };
    return {static_cast<double>(word(16)), static_cast<double>(word(20))};
}

}  // namespace

Pictures::Pictures(const std::filesystem::path& folder) {
    std::error_code error;
    for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end;
         it.increment(error)) {
        const auto& path = it->path();
        const auto extension = path.extension();
        const std::string name = path.stem().string();
        if (extension == ".svg") {
            entries_[name] = Entry{path, svgSize(path)};
        } else if (extension == ".png" && !entries_.contains(name)) {
            entries_[name] = Entry{path, pngSize(path)};
        }
    }
}

bool Pictures::exists(std::string_view name) const {
    return !name.empty() && entries_.contains(std::string(stem(name)));
}

const Pictures::Entry* Pictures::find(std::string_view name) const {
    if (const auto it = entries_.find(std::string(stem(name))); it != entries_.end()) {
        return &it->second;
    }
    // Pictures drawn in one version only, such as the buttons, stand in for
    // their dark-line and colour names.
    if (name.starts_with("b-") || name.starts_with("c-")) {
        if (const auto it = entries_.find(std::string(stem(name.substr(2))));
            it != entries_.end()) {
            return &it->second;
        }
    }
    return nullptr;
}

std::filesystem::path Pictures::file(std::string_view name) const {
    const Entry* entry = find(name);
    return entry == nullptr ? std::filesystem::path{} : entry->file;
}

platform::Size Pictures::naturalSize(std::string_view name) const {
    const Entry* entry = find(name);
    return entry == nullptr ? platform::Size{} : entry->size;
}

std::string Pictures::withPrefixIfExists(std::string_view prefix, std::string_view name) const {
    std::string variant = std::string(prefix) + std::string(name);
    return exists(variant) ? variant : std::string(name);
}

std::string Pictures::themed(std::string_view name, bool lightTheme) const {
    return lightTheme ? withPrefixIfExists("b-", name) : std::string(name);
}

std::string Pictures::colored(std::string_view name, bool colorIcons) const {
    return colorIcons ? withPrefixIfExists("c-", name) : std::string(name);
}

}  // namespace tilika::frame

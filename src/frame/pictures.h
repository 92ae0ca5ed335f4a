#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/canvas.h"

namespace tilika::frame {

// The program's own pictures. The rest of the program names them as
// "ne-tooth.png"; each is drawn as ne-tooth.svg (a raster ne-tooth.png is
// taken when there is no drawing), in one folder that is read once.
//
// Most pictures come in three variants: the plain name has white lines for
// dark backgrounds, "b-" dark lines for light ones, "c-" colours.
class Pictures {
public:
    Pictures() = default;
    explicit Pictures(const std::filesystem::path& folder);

    // Whether a picture of exactly this name was drawn.
    bool exists(std::string_view name) const;
    // The file of the picture, empty when there is none. A "b-" or "c-" name
    // of a picture drawn in one version only finds that version.
    std::filesystem::path file(std::string_view name) const;
    // The size the picture was drawn at; zero when there is none.
    platform::Size naturalSize(std::string_view name) const;

    // "b-" + name under the light theme when that variant exists.
    std::string themed(std::string_view name, bool lightTheme) const;
    // "c-" + name with colour icons on, when that variant exists.
    std::string colored(std::string_view name, bool colorIcons) const;

private:
    std::string withPrefixIfExists(std::string_view prefix, std::string_view name) const;

    struct Entry {
        std::filesystem::path file;
        platform::Size size;
    };
    const Entry* find(std::string_view name) const;
    // By the picture's name without extension.
    std::unordered_map<std::string, Entry> entries_;
};

}  // namespace tilika::frame

#pragma once

#include <algorithm>
#include <cstdio>
#include <string>

#include "platform/image_codec.h"

namespace tilika::test {

// Pictures as text, so tests can see what was written: "PIC WxH" decodes to
// a blank picture of that size, and encoding writes "JPEG WxH q=Q".
class FakeImageCodec final : public platform::ImageCodec {
public:
    std::optional<platform::Image> decode(std::span<const std::uint8_t> bytes) const override {
        const std::string text(bytes.begin(), bytes.end());
        int width = 0;
        int height = 0;
        if (std::sscanf(text.c_str(), "PIC %dx%d", &width, &height) != 2 || width <= 0 ||
            height <= 0 || width > 4096 || height > 4096) {
            return std::nullopt;
        }
        return blank(width, height);
    }

    platform::Image scaled(const platform::Image& image, int maxWidth,
                           int maxHeight) const override {
        return blank(std::min(image.width, maxWidth), std::min(image.height, maxHeight));
    }

    std::vector<std::uint8_t> encodeJpeg(const platform::Image& image,
                                         double quality) const override {
        const std::string text = "JPEG " + std::to_string(image.width) + "x" +
                                 std::to_string(image.height) +
                                 " q=" + std::to_string(static_cast<int>(quality * 100));
        return {text.begin(), text.end()};
    }

    static platform::Image blank(int width, int height) {
        return {width, height,
                std::vector<std::uint8_t>(static_cast<std::size_t>(width * height * 4), 255)};
    }
};

}  // namespace tilika::test

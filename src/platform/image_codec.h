#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tilika::platform {

// A decoded picture: rows of 8-bit RGBA pixels, top row first.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgba;

    bool empty() const { return width <= 0 || height <= 0; }
    bool operator==(const Image&) const = default;
};

// Pictures in and out of files: photos of the day, portraits, scans.
class ImageCodec {
public:
    virtual ~ImageCodec() = default;

    // Nothing for bytes that are no picture the codec knows.
    virtual std::optional<Image> decode(std::span<const std::uint8_t> bytes) const = 0;
    // The picture fitted into the box, keeping its proportions.
    virtual Image scaled(const Image& image, int maxWidth, int maxHeight) const = 0;
    // JPEG at a quality from 0 to 1; empty when it can't be encoded.
    virtual std::vector<std::uint8_t> encodeJpeg(const Image& image, double quality) const = 0;
};

}  // namespace tilika::platform

#include "platform/pdf_pages.h"

namespace tilika::platform {

std::optional<JpegPicture> jpegPicture(std::vector<std::uint8_t> bytes) {
    if (bytes.size() < 4 || bytes[0] != 0xFF || bytes[1] != 0xD8) {
        return std::nullopt;
    }
    // Segments follow the start marker, each with its length, up to the
    // frame header that holds the size.
    std::size_t at = 2;
    while (at + 9 < bytes.size() && bytes[at] == 0xFF) {
        const std::uint8_t marker = bytes[at + 1];
        const std::size_t length = (std::size_t{bytes[at + 2]} << 8) | bytes[at + 3];
        const bool frame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (frame) {
            JpegPicture picture;
            picture.height = (bytes[at + 5] << 8) | bytes[at + 6];
            picture.width = (bytes[at + 7] << 8) | bytes[at + 8];
            picture.components = bytes[at + 9];
            if (picture.width <= 0 || picture.height <= 0) {
                return std::nullopt;
            }
            picture.bytes = std::move(bytes);
            return picture;
        }
        at += 2 + length;
    }
    return std::nullopt;
}

}  // namespace tilika::platform

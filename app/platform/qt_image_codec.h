#pragma once

#include <QImage>

#include "platform/image_codec.h"

namespace tilika::platform {

// Pictures through QImage: every format Qt's image plugins read, JPEG out.
class QtImageCodec final : public ImageCodec {
public:
    std::optional<Image> decode(std::span<const std::uint8_t> bytes) const override;
    Image scaled(const Image& image, int maxWidth, int maxHeight) const override;
    std::vector<std::uint8_t> encodeJpeg(const Image& image, double quality) const override;

    static Image fromQImage(const QImage& image);
    static QImage toQImage(const Image& image);
};

}  // namespace tilika::platform

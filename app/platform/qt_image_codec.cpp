#include "platform/qt_image_codec.h"

#include <QBuffer>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tilika::platform {

Image QtImageCodec::fromQImage(const QImage& source) {
    if (source.isNull()) {
        return {};
    }
    const QImage rgba = source.convertToFormat(QImage::Format_RGBA8888);
    Image image{rgba.width(), rgba.height(), {}};
    const auto rowBytes = static_cast<std::size_t>(rgba.width()) * 4;
    image.rgba.resize(rowBytes * static_cast<std::size_t>(rgba.height()));
    for (int y = 0; y < rgba.height(); ++y) {
        std::memcpy(image.rgba.data() + rowBytes * static_cast<std::size_t>(y),
                    rgba.constScanLine(y), rowBytes);
    }
    return image;
}

QImage QtImageCodec::toQImage(const Image& image) {
    const auto expected =
        static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height) * 4;
    if (image.empty() || image.rgba.size() != expected) {
        return {};
    }
    // The copy detaches the picture from our buffer.
    return QImage(image.rgba.data(), image.width, image.height, image.width * 4,
                  QImage::Format_RGBA8888)
        .copy();
}

std::optional<Image> QtImageCodec::decode(std::span<const std::uint8_t> bytes) const {
    QImage image;
    if (bytes.empty() || !image.loadFromData(bytes.data(), static_cast<int>(bytes.size()))) {
        return std::nullopt;
    }
    return fromQImage(image);
}

Image QtImageCodec::scaled(const Image& image, int maxWidth, int maxHeight) const {
    const QImage source = toQImage(image);
    if (source.isNull() || maxWidth <= 0 || maxHeight <= 0) {
        return {};
    }
    return fromQImage(
        source.scaled(maxWidth, maxHeight, Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

std::vector<std::uint8_t> QtImageCodec::encodeJpeg(const Image& image, double quality) const {
    const QImage source = toQImage(image);
    if (source.isNull()) {
        return {};
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    const int percent = static_cast<int>(std::lround(std::clamp(quality, 0.0, 1.0) * 100));
    // JPEG has no transparency: clear parts of a picture become white, as on
    // paper, rather than black.
    QImage flat(source.size(), QImage::Format_RGB888);
    flat.fill(Qt::white);
    {
        QPainter painter(&flat);
        painter.drawImage(0, 0, source);
    }
    if (!flat.save(&buffer, "JPG", percent)) {
        return {};
    }
    return {bytes.begin(), bytes.end()};
}

}  // namespace tilika::platform

#include "platform/qt_pictures.h"

#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QSvgRenderer>

#include "frame/pictures.h"

namespace tilika::platform {

namespace {

// Vector output keeps the drawings sharp at any zoom of a printed page.
bool paintsVectors(QPainter& painter) {
    const QPaintEngine* engine = painter.paintEngine();
    return engine != nullptr &&
           (engine->type() == QPaintEngine::Pdf || engine->type() == QPaintEngine::Picture ||
            engine->type() == QPaintEngine::SVG);
}

}  // namespace

QtPictures::QtPictures(const frame::Pictures& pictures) : pictures_(pictures) {}

QtPictures::~QtPictures() = default;

QSvgRenderer* QtPictures::renderer(const QString& file) const {
    auto it = renderers_.find(file);
    if (it == renderers_.end()) {
        auto made = std::make_shared<QSvgRenderer>(file);
        if (!made->isValid()) {
            made.reset();
        }
        it = renderers_.insert(file, made);
    }
    return it->get();
}

QImage QtPictures::image(std::string_view name, QSize pixels) const {
    const auto path = pictures_.file(name);
    if (path.empty() || pixels.isEmpty()) {
        return {};
    }
    const QString file = QString::fromStdString(path.string());
    const QString key = file + QLatin1Char('@') + QString::number(pixels.width()) +
                        QLatin1Char('x') + QString::number(pixels.height());
    if (const QImage* cached = images_.object(key)) {
        return *cached;
    }
    QImage result;
    if (file.endsWith(QLatin1String(".svg"))) {
        QSvgRenderer* svg = renderer(file);
        if (svg == nullptr) {
            return {};
        }
        result = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        painter.setRenderHint(QPainter::Antialiasing);
        svg->render(&painter, QRectF(QPointF(0, 0), QSizeF(pixels)));
    } else {
        QImage raster(file);
        if (raster.isNull()) {
            return {};
        }
        result = raster.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    const qsizetype cost = result.sizeInBytes() / 1024;
    images_.insert(key, new QImage(result), static_cast<int>(std::max<qsizetype>(1, cost)));
    return result;
}

void QtPictures::draw(QPainter& painter, std::string_view name, const QRectF& rect,
                      double opacity) const {
    if (rect.isEmpty() || opacity <= 0) {
        return;
    }
    painter.save();
    painter.setOpacity(painter.opacity() * opacity);
    const auto path = pictures_.file(name);
    const QString file = QString::fromStdString(path.string());
    if (paintsVectors(painter) && file.endsWith(QLatin1String(".svg"))) {
        if (QSvgRenderer* svg = renderer(file)) {
            svg->render(&painter, rect);
        }
    } else {
        // Rendered at the pixels the rectangle covers on the device.
        const QRectF onDevice = painter.transform().mapRect(rect);
        const qreal ratio = painter.device() != nullptr ? painter.device()->devicePixelRatioF() : 1;
        const QSize pixels(qMax(1, qRound(onDevice.width() * ratio)),
                           qMax(1, qRound(onDevice.height() * ratio)));
        const QImage picture = image(name, pixels);
        if (!picture.isNull()) {
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.drawImage(rect, picture);
        }
    }
    painter.restore();
}

void QtPictures::drawVector(QPainter& painter, std::string_view name, const QRectF& rect) const {
    const QString file = QString::fromStdString(pictures_.file(name).string());
    if (file.endsWith(QLatin1String(".svg"))) {
        if (QSvgRenderer* svg = renderer(file)) {
            painter.setRenderHint(QPainter::Antialiasing);
            svg->render(&painter, rect);
        }
    } else if (!file.isEmpty()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(rect, QImage(file));
    }
}

}  // namespace tilika::platform

#include "platform/qt_canvas.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>
#include <QTextLayout>

#include <cmath>

#include "platform/qt_pictures.h"

namespace tilika::platform {

namespace {

QRectF toQRect(const Rect& rect) {
    return QRectF(rect.x, rect.y, rect.width, rect.height);
}

QPen pen(const Color& color, double width) {
    QPen result(toQColor(color), width);
    result.setCapStyle(Qt::RoundCap);
    result.setJoinStyle(Qt::RoundJoin);
    return result;
}

QPainterPath toQPath(const Path& path) {
    QPainterPath result;
    for (const auto& element : path.elements()) {
        const auto& p = element.points;
        switch (element.verb) {
            case Path::Verb::MoveTo:
                result.moveTo(p[0].x, p[0].y);
                break;
            case Path::Verb::LineTo:
                result.lineTo(p[0].x, p[0].y);
                break;
            case Path::Verb::CubicTo:
                result.cubicTo(p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
                break;
            case Path::Verb::ArcTo:
                result.arcTo(QRectF(QPointF(p[0].x, p[0].y), QPointF(p[1].x, p[1].y)), p[2].x,
                             p[2].y);
                break;
            case Path::Verb::Close:
                result.closeSubpath();
                break;
        }
    }
    return result;
}

constexpr double kUnwrapped = 1e7;

// Text is laid out line by line so that measuring and drawing agree, and a
// word wider than the line (an address, say) breaks instead of running off.
struct LaidText {
    std::unique_ptr<QTextLayout> layout;
    QSizeF size;
};

LaidText layText(std::string_view text, const QFont& font, const QPaintDevice* device, double width,
                 TextAlign align) {
    QString string = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    string.replace(QLatin1Char('\n'), QChar::LineSeparator);
    // The font is resolved at the device's own resolution, the one its point
    // size was computed for.
    LaidText laid{std::make_unique<QTextLayout>(string, font, device), {}};
    QTextOption option;
    option.setWrapMode(width > 0 ? QTextOption::WrapAtWordBoundaryOrAnywhere
                                 : QTextOption::ManualWrap);
    if (width <= 0) {
        align = TextAlign::Left;
    }
    option.setAlignment(align == TextAlign::Center  ? Qt::AlignHCenter
                        : align == TextAlign::Right ? Qt::AlignRight
                                                    : Qt::AlignLeft);
    laid.layout->setTextOption(option);
    laid.layout->beginLayout();
    double y = 0;
    double widest = 0;
    for (QTextLine line = laid.layout->createLine(); line.isValid();
         line = laid.layout->createLine()) {
        // Without a width each paragraph is one line, as long as it is.
        line.setLineWidth(width > 0 ? width : kUnwrapped);
        line.setPosition(QPointF(0, y));
        y += line.height();
        widest = std::max(widest, line.naturalTextWidth());
    }
    laid.layout->endLayout();
    laid.size = QSizeF(std::ceil(widest), std::ceil(y));
    return laid;
}

}  // namespace

QColor toQColor(const Color& color) {
    return QColor::fromRgbF(static_cast<float>(color.r), static_cast<float>(color.g),
                            static_cast<float>(color.b), static_cast<float>(color.a));
}

Color fromQColor(const QColor& color) {
    return {color.redF(), color.greenF(), color.blueF(), color.alphaF()};
}

QtCanvas::QtCanvas(QPainter& painter, const QtPictures& pictures, QPagedPaintDevice* pages)
    : painter_(&painter), pictures_(&pictures), pages_(pages), device_(painter.device()) {
    painter_->setRenderHint(QPainter::Antialiasing);
    painter_->setRenderHint(QPainter::TextAntialiasing);
}

QtCanvas::QtCanvas(const QPaintDevice& device, bool remember)
    : device_(&device), remember_(remember) {}

int QtCanvas::dpi() const {
    // Read each time: a window moved to another screen changes it.
    return device_ != nullptr ? device_->logicalDpiY() : 96;
}

QFont QtCanvas::toQFont(const Font& font, int logicalDpi) {
    QFont result = QGuiApplication::font();
    // Point sizes are turned into pixels by the device's resolution; this
    // makes one font unit one unit of the painter.
    result.setPointSizeF(std::max(0.5, font.size * 72.0 / std::max(1, logicalDpi)));
    result.setBold(font.weight == FontWeight::Bold);
    result.setItalic(font.italic);
    return result;
}

Size QtCanvas::measureText(std::string_view text, const Font& font, double width) const {
    if (text.empty()) {
        return {};
    }
    const int resolution = dpi();
    const auto lay = [&] {
        const LaidText laid =
            layText(text, toQFont(font, resolution), device_, width, TextAlign::Left);
        return Size{laid.size.width(), laid.size.height()};
    };
    if (!remember_) {
        return lay();
    }
    MeasureKey key{std::string(text), font.size, static_cast<int>(font.weight),
                   font.italic,       width,     resolution};
    if (const auto known = measured_.find(key); known != measured_.end()) {
        return known->second;
    }
    const Size size = lay();
    measured_.emplace(std::move(key), size);
    return size;
}

void QtCanvas::drawText(std::string_view text, const Rect& box, const Font& font,
                        const Color& color, TextAlign align) {
    if (painter_ == nullptr || text.empty()) {
        return;
    }
    const LaidText laid = layText(text, toQFont(font, dpi()), device_, box.width, align);
    painter_->setPen(toQColor(color));
    laid.layout->draw(painter_, QPointF(box.x, box.y));
}

void QtCanvas::drawLine(Point from, Point to, const Color& color, double width) {
    if (painter_ != nullptr) {
        painter_->setPen(pen(color, width));
        painter_->drawLine(QPointF(from.x, from.y), QPointF(to.x, to.y));
    }
}

void QtCanvas::fillRect(const Rect& rect, const Color& color) {
    if (painter_ != nullptr) {
        painter_->fillRect(toQRect(rect), toQColor(color));
    }
}

void QtCanvas::strokeRect(const Rect& rect, const Color& color, double width) {
    if (painter_ != nullptr) {
        painter_->setPen(pen(color, width));
        painter_->setBrush(Qt::NoBrush);
        painter_->drawRect(toQRect(rect));
    }
}

void QtCanvas::fillRoundedRect(const Rect& rect, double radius, const Color& color) {
    if (painter_ != nullptr) {
        painter_->setPen(Qt::NoPen);
        painter_->setBrush(toQColor(color));
        painter_->drawRoundedRect(toQRect(rect), radius, radius);
    }
}

void QtCanvas::strokeRoundedRect(const Rect& rect, double radius, const Color& color,
                                 double width) {
    if (painter_ != nullptr) {
        painter_->setPen(pen(color, width));
        painter_->setBrush(Qt::NoBrush);
        painter_->drawRoundedRect(toQRect(rect), radius, radius);
    }
}

void QtCanvas::drawArc(const Rect& box, double startAngle, double sweepAngle, const Color& color,
                       double width) {
    if (painter_ != nullptr) {
        painter_->setPen(pen(color, width));
        painter_->setBrush(Qt::NoBrush);
        // QPainter counts arcs in sixteenths of a degree.
        painter_->drawArc(toQRect(box), qRound(startAngle * 16), qRound(sweepAngle * 16));
    }
}

void QtCanvas::strokePath(const Path& path, const Color& color, double width) {
    if (painter_ != nullptr) {
        painter_->strokePath(toQPath(path), pen(color, width));
    }
}

void QtCanvas::fillPath(const Path& path, const Color& color) {
    if (painter_ != nullptr) {
        painter_->fillPath(toQPath(path), toQColor(color));
    }
}

void QtCanvas::drawImage(std::string_view picture, const Rect& rect, double opacity) {
    if (painter_ != nullptr && pictures_ != nullptr) {
        pictures_->draw(*painter_, picture, toQRect(rect), opacity);
    }
}

void QtCanvas::drawImageFile(std::string_view path, const Rect& rect, double opacity) {
    if (painter_ == nullptr) {
        return;
    }
    const QString name = QString::fromUtf8(path.data(), static_cast<qsizetype>(path.size()));
    const QFileInfo info(name);
    if (!info.isFile()) {
        return;
    }
    // A list scrolled back and forth draws the same thumbnails again and
    // again; the file's time in the key lets a replaced photo show at once.
    const QString key = QStringLiteral("file:") + name + QLatin1Char(':') +
                        QString::number(info.lastModified().toMSecsSinceEpoch()) +
                        QLatin1Char(':') + QString::number(info.size());
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        QImageReader reader(name);
        reader.setAutoTransform(true);
        // Only as large as it is drawn: a full photo named here must not be
        // decoded at its own size on every row.
        const QSize full = reader.size();
        const QSize wanted = QSizeF(rect.width * 2, rect.height * 2).toSize();
        if (full.isValid() && (full.width() > wanted.width() || full.height() > wanted.height())) {
            reader.setScaledSize(full.scaled(wanted, Qt::KeepAspectRatio));
        }
        const QImage image = reader.read();
        if (image.isNull()) {
            return;
        }
        pixmap = QPixmap::fromImage(image);
        QPixmapCache::insert(key, pixmap);
    }
    const QSizeF fitted =
        QSizeF(pixmap.size()).scaled(QSizeF(rect.width, rect.height), Qt::KeepAspectRatio);
    const QRectF target(rect.x + (rect.width - fitted.width()) / 2,
                        rect.y + (rect.height - fitted.height()) / 2, fitted.width(),
                        fitted.height());
    painter_->save();
    painter_->setOpacity(painter_->opacity() * opacity);
    painter_->setRenderHint(QPainter::SmoothPixmapTransform);
    painter_->drawPixmap(target, pixmap, QRectF(pixmap.rect()));
    painter_->restore();
}

void QtCanvas::save() {
    if (painter_ != nullptr) {
        painter_->save();
    }
}

void QtCanvas::restore() {
    if (painter_ != nullptr) {
        painter_->restore();
    }
}

void QtCanvas::clip(const Rect& rect) {
    if (painter_ != nullptr) {
        painter_->setClipRect(toQRect(rect), Qt::IntersectClip);
    }
}

void QtCanvas::newPage() {
    if (pages_ != nullptr) {
        pages_->newPage();
    }
}

}  // namespace tilika::platform

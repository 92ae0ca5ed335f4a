#pragma once

#include <QCache>
#include <QHash>
#include <QImage>
#include <QString>

#include <memory>
#include <string_view>

class QPainter;
class QRectF;
class QSvgRenderer;

namespace tilika::frame {
class Pictures;
}

namespace tilika::platform {

// Paints the program's pictures. Drawings are rendered once per size and
// kept, since the same icons are drawn on every row of a list; on a printed
// page they stay vectors. Its caches are not locked: a drawing made off the
// main thread takes a QtPictures of its own.
class QtPictures {
public:
    explicit QtPictures(const frame::Pictures& pictures);
    ~QtPictures();
    QtPictures(const QtPictures&) = delete;
    QtPictures& operator=(const QtPictures&) = delete;

    const frame::Pictures& pictures() const { return pictures_; }

    // Draws the picture stretched into the rectangle; nothing for a name that
    // is no picture of ours.
    void draw(QPainter& painter, std::string_view name, const QRectF& rect,
              double opacity = 1) const;
    // Renders the drawing straight onto the painter, without keeping it; for
    // pictures drawn once, such as a backdrop. Rasters are drawn as they are.
    void drawVector(QPainter& painter, std::string_view name, const QRectF& rect) const;
    // The picture at this size in device pixels; a null image when there is
    // no such picture.
    QImage image(std::string_view name, QSize pixels) const;

private:
    QSvgRenderer* renderer(const QString& file) const;

    const frame::Pictures& pictures_;
    mutable QHash<QString, std::shared_ptr<QSvgRenderer>> renderers_;
    // Rendered pictures by file and size, limited to about 32 MB.
    mutable QCache<QString, QImage> images_{32 * 1024};
};

}  // namespace tilika::platform

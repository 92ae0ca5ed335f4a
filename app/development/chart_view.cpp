#include "development/chart_view.h"

#include <QPainter>

#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::development {

chart::chart(const platform::QtPictures& pictures, QWidget* parent)
    : QWidget(parent), pictures_(pictures) {}

void chart::prepare(GraphDic dic) {
    gtp_ = kGraph;
    gdic_ = std::move(dic);
    update();
}

void chart::prepareChart(int mode, double pos, QColor color, QColor backColor) {
    gtp_ = mode;
    gpos_ = pos;
    gcolor_ = color;
    gbcolor_ = backColor;
    update();
}

void chart::setGrey(bool grey) {
    grey_ = grey;
    update();
}

void chart::drawContext(QPainter& painter, const QRectF& rect) const {
    platform::QtCanvas canvas(painter, pictures_);
    const platform::Rect area{rect.x(), rect.y(), rect.width(), rect.height()};
    if (gtp_ == kGraph) {
        drawNewGraph(canvas, gdic_, area, grey_);
    } else if (gtp_ == kProgress) {
        drawProgressRing(canvas, area, gpos_, platform::fromQColor(gcolor_),
                         platform::fromQColor(gbcolor_));
    }
}

void chart::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    drawContext(painter, rect());
}

QImage chart::getContextImage(QSize size) const {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawContext(painter, QRectF(QPointF(0, 0), QSizeF(size)));
    return image;
}

}  // namespace tilika::development

#include "development/plane_table.h"

#include <QGestureEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPinchGesture>
#include <QScrollArea>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

#include "core/app_state.h"
#include "frame/look.h"
#include "frame/scroll_view.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::development {

namespace {

// One notch of the wheel or one key press zooms by this much.
constexpr double kZoomStep = 1.25;
// A card is drawn with a margin round it, in the card's units.
constexpr double kMargin = 12;

}  // namespace

CardSurface::CardSurface(const VaccinationCard& card, const platform::QtPictures& pictures,
                         QWidget* parent)
    : QWidget(parent), card_(card), pictures_(pictures) {
    setObjectName(QStringLiteral("cardSurface"));
}

void CardSurface::setZoom(double zoom) {
    zoom_ = zoom;
    const platform::Size size = card_.size();
    resize(static_cast<int>(std::ceil((size.width + kMargin * 2) * zoom_)),
           static_cast<int>(std::ceil((size.height + kMargin * 2) * zoom_)));
    update();
}

void CardSurface::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.fillRect(rect(), Qt::white);
    painter.scale(zoom_, zoom_);
    painter.translate(kMargin, kMargin);
    platform::QtCanvas canvas(painter, pictures_);
    card_.draw(canvas);
}

planeTable::planeTable(core::AppState& state, const platform::QtPictures& pictures, QWidget* host)
    : frame::OverlayView(state, pictures, host) {
    setObjectName(QStringLiteral("planeTable"));
    scroll_ = new frame::ScrollView(this);
    scroll_->setObjectName(QStringLiteral("cardScroll"));
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setWidgetResizable(false);
    surface_ = new CardSurface(card_, pictures, scroll_);
    scroll_->setWidget(surface_);
    scroll_->viewport()->installEventFilter(this);
    surface_->installEventFilter(this);
    grabGesture(Qt::PinchGesture);
    scroll_->viewport()->grabGesture(Qt::PinchGesture);
    setBody(scroll_);
    hide();
}

void planeTable::prepare(const std::vector<std::string>& marks) {
    card_.prepare(marks);
    surface_->setZoom(zoom_);
    showOver(frame::translatedText(state(), kCardCaption));
}

void planeTable::setZoom(double zoom, QPointF anchor) {
    zoom = std::clamp(zoom, kMinZoom, kMaxZoom);
    if (zoom == zoom_) {
        return;
    }
    QScrollBar* horizontal = scroll_->horizontalScrollBar();
    QScrollBar* vertical = scroll_->verticalScrollBar();
    const QSize view = scroll_->viewport()->size();
    if (anchor.x() < 0) {
        anchor = QPointF(view.width() / 2.0, view.height() / 2.0);
    }
    // The card's point under the anchor, in the card's own units.
    const QPointF point((horizontal->value() + anchor.x()) / zoom_,
                        (vertical->value() + anchor.y()) / zoom_);
    zoom_ = zoom;
    surface_->setZoom(zoom_);
    horizontal->setValue(static_cast<int>(std::lround(point.x() * zoom_ - anchor.x())));
    vertical->setValue(static_cast<int>(std::lround(point.y() * zoom_ - anchor.y())));
}

bool planeTable::event(QEvent* event) {
    if (event->type() == QEvent::Gesture) {
        return gesture(static_cast<QGestureEvent*>(event));
    }
    return frame::OverlayView::event(event);
}

bool planeTable::gesture(QGestureEvent* event) {
    auto* pinch = static_cast<QPinchGesture*>(event->gesture(Qt::PinchGesture));
    if (pinch == nullptr) {
        return false;
    }
    if (pinch->changeFlags() & QPinchGesture::ScaleFactorChanged) {
        const QPointF center = scroll_->viewport()->mapFromGlobal(pinch->centerPoint());
        setZoom(zoom_ * pinch->scaleFactor(), center);
    }
    event->accept(pinch);
    return true;
}

bool planeTable::eventFilter(QObject* watched, QEvent* event) {
    if (watched == scroll_->viewport() || watched == surface_) {
        auto* widget = static_cast<QWidget*>(watched);
        if (event->type() == QEvent::Wheel) {
            auto* wheel = static_cast<QWheelEvent*>(event);
            if (wheel->modifiers() & Qt::ControlModifier) {
                const int delta = wheel->angleDelta().y();
                if (delta != 0) {
                    const QPointF at =
                        widget->mapTo(scroll_->viewport(), wheel->position().toPoint());
                    setZoom(delta > 0 ? zoom_ * kZoomStep : zoom_ / kZoomStep, at);
                }
                return true;
            }
        } else if (event->type() == QEvent::MouseButtonDblClick) {
            auto* mouse = static_cast<QMouseEvent*>(event);
            const QPointF at = widget->mapTo(scroll_->viewport(), mouse->position().toPoint());
            setZoom(zoom_ < 1.5 ? 2.0 : 1.0, at);
            return true;
        } else if (event->type() == QEvent::Gesture && watched == scroll_->viewport()) {
            return gesture(static_cast<QGestureEvent*>(event));
        }
    }
    return frame::OverlayView::eventFilter(watched, event);
}

void planeTable::keyPressEvent(QKeyEvent* event) {
    if (event->modifiers() & Qt::ControlModifier) {
        if (event->key() == Qt::Key_Equal || event->key() == Qt::Key_Plus) {
            setZoom(zoom_ * kZoomStep);
            return;
        }
        if (event->key() == Qt::Key_Minus) {
            setZoom(zoom_ / kZoomStep);
            return;
        }
        if (event->key() == Qt::Key_0) {
            setZoom(1);
            return;
        }
    }
    frame::OverlayView::keyPressEvent(event);
}

}  // namespace tilika::development

#pragma once

#include <QEvent>
#include <QFrame>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QWidget>

#include <functional>
#include <string>
#include <vector>

#include "frame/look.h"
#include "frame/popups.h"

// The pieces the popups are made of: the dim layer over a window, the panel
// on it and what keeps them in place.
namespace tilika::frame::popup {

// Wider than this, a window is a tablet's and panels keep their own width.
inline constexpr int kPhoneWidth = 600;
inline constexpr int kPanelWidth = 340;

// A phone's window gives a panel its whole width; a tablet's a panel of
// its own width, in the middle.
void placePanel(QWidget* layer, QFrame* panel, int height);
QFrame* makePanel(QWidget* layer);
QLabel* captionLabel(const QString& text, QWidget* parent);
// A list that stands for a picker's wheel.
QListWidget* wheel(const std::vector<std::string>& rows, int selected, QWidget* parent);

// Calls back whenever the watched widget changes size; it lives as long as
// the widget that uses it.
class ResizeWatcher final : public QObject {
public:
    ResizeWatcher(QWidget* watched, QObject* owner, std::function<void()> onResize)
        : QObject(owner), onResize_(std::move(onResize)) {
        watched->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Resize) {
            onResize_();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> onResize_;
};

// The dim layer over a window: a tap on it, outside the panel, closes what
// can be closed that way.
class DimLayer final : public QWidget {
public:
    DimLayer(QWidget* window, std::function<void()> onOutsideTap)
        : QWidget(window), onOutsideTap_(std::move(onOutsideTap)) {
        setTag(this, kDimLayerTag);
        setGeometry(window->rect());
        window->installEventFilter(this);
    }

    // A blurred copy of what lies under the layer, or none.
    void setBlur(bool on);
    bool blurred() const { return !blurred_.isNull(); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        if (!blurred_.isNull()) {
            painter.drawPixmap(rect(), blurred_);
        }
        painter.fillRect(rect(), QColor(0, 0, 0, 110));
    }
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (onOutsideTap_ && childAt(event->position().toPoint()) == nullptr) {
            onOutsideTap_();
        }
    }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == parentWidget() && event->type() == QEvent::Resize) {
            setGeometry(parentWidget()->rect());
            if (auto* panel = qobject_cast<QFrame*>(childWithTag(this, kPopupPanelTag))) {
                placePanel(this, panel, panelHeight);
            }
        }
        return QWidget::eventFilter(watched, event);
    }

public:
    // The height the panel asked for, kept for when the window changes.
    int panelHeight = 0;

private:
    std::function<void()> onOutsideTap_;
    QPixmap blurred_;
};

}  // namespace tilika::frame::popup

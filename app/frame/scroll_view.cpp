#include "frame/scroll_view.h"

#include <QEvent>

namespace tilika::frame {

ScrollView::ScrollView(QWidget* parent) : QScrollArea(parent) {}

bool ScrollView::eventFilter(QObject* watched, QEvent* event) {
    // setWidget watches the content and then shows it, after turning its
    // fill on; the showing is the first thing it tells.
    if (watched == widget() && event->type() == QEvent::ShowToParent) {
        widget()->setAutoFillBackground(false);
    }
    return QScrollArea::eventFilter(watched, event);
}

}  // namespace tilika::frame

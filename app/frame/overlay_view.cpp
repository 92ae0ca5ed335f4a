#include "frame/overlay_view.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/app_state.h"
#include "frame/elided_label.h"
#include "frame/look.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {

OverlayView::OverlayView(core::AppState& state, const platform::QtPictures& pictures, QWidget* host)
    : QWidget(host->window()), state_(state), pictures_(pictures) {
    setAutoFillBackground(true);
    setFocusPolicy(Qt::StrongFocus);
    back_ = headerButton(translatedText(state, "Назад"), this);
    back_->setObjectName(QStringLiteral("back"));
    connect(back_, &QToolButton::clicked, this, &OverlayView::closeView);
    caption_ = new ElidedLabel({}, this, 19, true);
    caption_->setObjectName(QStringLiteral("caption"));
    caption_->setAlignment(Qt::AlignCenter);
    // The caption stays in the middle of the bar.
    auto* balance = new QWidget(this);
    balance->setFixedWidth(44);
    QWidget* bar = captionBar(back_, nullptr, caption_, nullptr, balance, this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 0);
    layout->addWidget(bar);
    // It covers the window whatever size the window takes.
    parentWidget()->installEventFilter(this);
}

OverlayView::~OverlayView() {
    if (open_) {
        --state_.openForms;
    }
}

void OverlayView::setBody(QWidget* body) {
    static_cast<QVBoxLayout*>(layout())->addWidget(body, 1);
}

void OverlayView::showOver(const QString& caption) {
    correctBackground(this, true, state_, pictures_);
    setTextColor(caption_, platform::toQColor(state_.textColor));
    setHeaderButtonPicture(back_, pictures_, "text-back.png", state_);
    caption_->setText(translatedText(state_, caption.toStdString()));
    setGeometry(parentWidget()->rect());
    if (!open_) {
        // The pages under it hold still while it is up.
        open_ = true;
        ++state_.openForms;
    }
    show();
    raise();
    setFocus();
}

bool OverlayView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
    }
    return QWidget::eventFilter(watched, event);
}

void OverlayView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Back) {
        closeView();
        return;
    }
    QWidget::keyPressEvent(event);
}

void OverlayView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::BackButton) {
        closeView();
        return;
    }
    QWidget::mouseReleaseEvent(event);
}

void OverlayView::closeView() {
    if (open_) {
        open_ = false;
        --state_.openForms;
    }
    hide();
    emit closed();
}

}  // namespace tilika::frame

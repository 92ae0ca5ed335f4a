#include "development/plane_page.h"

#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <cmath>

#include "core/app_state.h"
#include "core/context.h"
#include "development/timeline_paint.h"
#include "frame/elided_label.h"
#include "frame/look.h"
#include "frame/popup_panels.h"
#include "frame/scroll_view.h"
#include "frame/subcheck.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"
#include "platform/shell.h"

namespace tilika::development {

namespace {

constexpr int kPageId = 10;
// The old strip fades out over this time, and the new one in.
constexpr int kFadeMs = 500;
// A press that moves less than this is a touch, not a drag.
constexpr int kDragStart = 8;

QString qs(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

// ---- the strip ----

PlaneStrip::PlaneStrip(const Timeline& timeline, core::AppState& state,
                       const platform::QtPictures& pictures, QWidget* parent)
    : QWidget(parent), timeline_(timeline), state_(state), pictures_(pictures) {
    setObjectName(QStringLiteral("planeStrip"));
    setAttribute(Qt::WA_TranslucentBackground);
    // A click gives the strip the keys, so Home works on it at once.
    setFocusPolicy(Qt::ClickFocus);
    relayout();
}

void PlaneStrip::relayout() {
    const platform::Size size = timeline_.stripSize();
    setFixedSize(static_cast<int>(std::ceil(size.width)), static_cast<int>(std::ceil(size.height)));
    update();
}

void PlaneStrip::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    platform::QtCanvas canvas(painter, pictures_);
    const QRect area = event->rect();
    paintPlane(canvas, timeline_, state_,
               {static_cast<double>(area.x()), static_cast<double>(area.y()),
                static_cast<double>(area.width()), static_cast<double>(area.height())});
}

void PlaneStrip::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    pressAt_ = event->globalPosition().toPoint();
    lastAt_ = *pressAt_;
    dragging_ = false;
}

void PlaneStrip::mouseMoveEvent(QMouseEvent* event) {
    if (!pressAt_) {
        return;
    }
    const QPoint at = event->globalPosition().toPoint();
    if (!dragging_ && (at - *pressAt_).manhattanLength() >= kDragStart) {
        dragging_ = true;
    }
    if (dragging_) {
        emit dragged(at - lastAt_);
        lastAt_ = at;
    }
}

void PlaneStrip::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !pressAt_) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    const bool touch = !dragging_;
    pressAt_.reset();
    dragging_ = false;
    if (touch) {
        const QPointF at = event->position();
        if (const auto found = timeline_.eventAt({at.x(), at.y()})) {
            emit touched(*found);
        }
    }
}

// ---- the page ----

plane::plane(PlaneServices services, QWidget* parent)
    : frame::Tab(kPageId, parent),
      services_(std::move(services)),
      timeline_(services_.context, services_.popups.environment().contentFolder, noAppend_) {
    setAutoFillBackground(true);
    core::AppState& state = services_.context.state;

    back_ = frame::menuButton(this, state);
    caption_ = new frame::ElidedLabel({}, this, 19, true);
    caption_->setObjectName(QStringLiteral("caption"));
    caption_->setAlignment(Qt::AlignCenter);
    regim_ = frame::headerButton(frame::translatedText(state, "Режим"), this);
    regim_->setObjectName(QStringLiteral("selRegim"));
    connect(regim_, &QToolButton::clicked, this, &plane::selRegim);
    QWidget* bar = frame::captionBar(back_, nullptr, caption_, nullptr, regim_, this);

    month_ = new QLabel(this);
    month_->setObjectName(QStringLiteral("month"));
    month_->setAlignment(Qt::AlignCenter);

    scroll_ = new frame::ScrollView(this);
    scroll_->setObjectName(QStringLiteral("planeScroll"));
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    scroll_->setFocusPolicy(Qt::StrongFocus);
    strip_ = new PlaneStrip(timeline_, state, services_.pictures, scroll_);
    scroll_->setWidget(strip_);
    frame::showBackdropThrough(scroll_);
    scroll_->viewport()->installEventFilter(this);
    scroll_->installEventFilter(this);
    connect(strip_, &PlaneStrip::touched, this, &plane::clickTag);
    connect(strip_, &PlaneStrip::dragged, this, [this](QPoint delta) {
        QScrollBar* across = scroll_->horizontalScrollBar();
        QScrollBar* down = scroll_->verticalScrollBar();
        across->setValue(across->value() - delta.x());
        down->setValue(down->value() - delta.y());
    });
    connect(scroll_->horizontalScrollBar(), &QScrollBar::valueChanged, this,
            &plane::showScrollCaption);

    fade_ = new QGraphicsOpacityEffect(scroll_);
    fade_->setOpacity(1);
    scroll_->setGraphicsEffect(fade_);
    fadeOut_ = new QPropertyAnimation(fade_, "opacity", this);
    fadeOut_->setDuration(kFadeMs);
    fadeOut_->setEndValue(0.0);
    fadeIn_ = new QPropertyAnimation(fade_, "opacity", this);
    fadeIn_->setDuration(kFadeMs);
    fadeIn_->setEndValue(1.0);
    connect(fadeOut_, &QPropertyAnimation::finished, this, [this] {
        buildPlane();
        fadeIn_->setStartValue(fade_->opacity());
        fadeIn_->start();
    });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(bar);
    layout->addWidget(month_);
    layout->addWidget(scroll_, 1);
}

void plane::applyLook() {
    core::AppState& state = services_.context.state;
    frame::correctBackground(this, false, state, services_.pictures);
    const QColor text = platform::toQColor(state.textColor);
    frame::setTextColor(caption_, text);
    frame::setTextColor(month_, text);
    frame::setHeaderButtonPicture(back_, services_.pictures, "text-back.png", state);
    frame::setHeaderButtonPicture(
        regim_, services_.pictures,
        timeline_.regim() == planeregim::doctor ? "pm-doctor.png" : "pm-plane.png", state);
}

void plane::activateView(const std::string& gid) {
    gid_ = gid;
    buildPlane();
}

void plane::activate() {
    scrollToCurrent();
}

void plane::buildPlane() {
    applyLook();
    timeline_.buildPlane(gid_);
    caption_->setText(QString::fromStdString(timeline_.caption()));
    strip_->relayout();
    scrollToCurrent();
    showScrollCaption();
}

void plane::scrollToCurrent() {
    const int current = timeline_.currentMonth();
    const int target = current > 0 ? static_cast<int>(timeline_.columnX(current)) : 0;
    QScrollBar* across = scroll_->horizontalScrollBar();
    // Before the page is first laid out the view has no room to scroll;
    // it goes there once it has.
    scrollPending_ = across->maximum() < target;
    across->setValue(target);
    showScrollCaption();
}

void plane::showScrollCaption() {
    const int column = timeline_.columnAt(scroll_->horizontalScrollBar()->value() + 1);
    month_->setText(QString::fromStdString(timeline_.scrollCaption(column)));
}

void plane::selRegim() {
    QPointer<plane> self(this);
    services_.popups.popupMenu(
        qs(kPlaneRegimMenu), window(),
        [self](const QString& /*sender*/, const QString& caption) {
            if (self != nullptr) {
                self->changeRegim(caption);
            }
        },
        QStringLiteral("plane"));
}

void plane::changeRegim(const QString& caption) {
    if (timeline_.changeRegim(caption.toStdString())) {
        buildPlane2();
    }
}

void plane::buildPlane2() {
    fadeIn_->stop();
    fadeOut_->stop();
    fadeOut_->setStartValue(fade_->opacity());
    fadeOut_->start();
}

void plane::finishAnimations() {
    if (fadeOut_->state() == QAbstractAnimation::Running) {
        fadeOut_->setCurrentTime(fadeOut_->totalDuration());
    }
    if (fadeIn_->state() == QAbstractAnimation::Running) {
        fadeIn_->setCurrentTime(fadeIn_->totalDuration());
    }
}

void plane::clickTag(std::size_t event) {
    const std::optional<PlaneMessage> message = timeline_.clickTag(event);
    if (!message) {
        return;
    }
    const core::AppState& state = services_.context.state;
    if (!message->more) {
        services_.popups.message(qs(message->text), qs(message->title), 0, window());
        return;
    }
    auto* box = new QMessageBox(QMessageBox::NoIcon, qs(message->title), qs(message->text),
                                QMessageBox::NoButton, window());
    box->setObjectName(QStringLiteral("planeMessage"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->addButton(frame::translatedText(state, "OK"), QMessageBox::AcceptRole);
    QAbstractButton* more =
        box->addButton(frame::translatedText(state, "Подробно"), QMessageBox::ActionRole);
    QPointer<plane> self(this);
    connect(box, &QMessageBox::buttonClicked, box, [self, more](QAbstractButton* clicked) {
        if (self != nullptr && clicked == more) {
            self->openLink();
        }
    });
    tagMessage_ = box;
    box->open();
}

frame::subcheck* plane::guide() const {
    return guide_.data();
}

QMessageBox* plane::tagMessage() const {
    return tagMessage_.data();
}

void plane::openLink() {
    const PlaneLink link = timeline_.openLink();
    if (link.kind == PlaneLink::Kind::web) {
        services_.shell.openUrl(link.url);
    } else if (link.kind == PlaneLink::Kind::guide) {
        core::Context& context = services_.context;
        if (guide_ == nullptr) {
            guide_ = new frame::subcheck(services_.popups.environment(), context.state,
                                         services_.pictures, this);
        }
        guide_->prepare(qs(link.caption), qs(link.file), link.group, 1);
    }
}

void plane::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Home) {
        scrollToCurrent();
        return;
    }
    frame::Tab::keyPressEvent(event);
}

bool plane::eventFilter(QObject* watched, QEvent* event) {
    if (watched == scroll_->viewport() && event->type() == QEvent::Wheel) {
        auto* wheel = static_cast<QWheelEvent*>(event);
        QPoint delta = wheel->pixelDelta().isNull() ? wheel->angleDelta() : wheel->pixelDelta();
        // Shift turns the wheel sideways; so does a strip with nothing to
        // scroll upwards, since sideways is its only way.
        const bool sideways = (wheel->modifiers() & Qt::ShiftModifier) != 0 ||
                              scroll_->verticalScrollBar()->maximum() == 0;
        if (delta.x() == 0 && sideways) {
            delta = {delta.y(), 0};
        }
        if (delta.x() != 0) {
            QScrollBar* across = scroll_->horizontalScrollBar();
            across->setValue(across->value() - delta.x());
            return true;
        }
    }
    if (watched == scroll_->viewport() && event->type() == QEvent::Resize && scrollPending_) {
        scrollPending_ = false;
        QPointer<plane> self(this);
        QTimer::singleShot(0, this, [self] {
            if (self != nullptr) {
                self->scrollToCurrent();
            }
        });
    }
    if (watched == scroll_ && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Home) {
        scrollToCurrent();
        return true;
    }
    return frame::Tab::eventFilter(watched, event);
}

}  // namespace tilika::development

#include "frame/textdata.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>
#include <QVariantAnimation>

#include "frame/scroll_view.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {

namespace {

constexpr int kHighlightMs = 1500;
constexpr int kDimmingMs = 400;
constexpr int kScrollMs = 300;
// A press that moves further than this is a drag, not a tap.
constexpr double kTapSlop = 12;

bool sameTarget(const PageHit& a, const PageHit& b) {
    return a.action == b.action && a.tag == b.tag && a.url == b.url;
}

}  // namespace

textdata::textdata(const TextPageEnvironment& environment, const platform::QtPictures& pictures,
                   QWidget* parent)
    : QWidget(parent),
      scroll_(new ScrollView(this)),
      highlightFade_(new QVariantAnimation(this)),
      dimming_(new QVariantAnimation(this)),
      scrolling_(new QVariantAnimation(this)) {
    surface_ = new TextSurface(*this, pictures);
    metrics_ = std::make_unique<platform::QtCanvas>(*surface_);
    page_ = std::make_unique<TextPage>(environment, *metrics_);

    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->setWidget(surface_);
    scroll_->setWidgetResizable(false);
    scroll_->viewport()->setAutoFillBackground(false);
    scroll_->setAutoFillBackground(false);
    scroll_->setStyleSheet(QStringLiteral("QScrollArea { background: transparent; }"));
    QScroller::grabGesture(scroll_->viewport(), QScroller::TouchGesture);
    // A finger that starts on a link and then scrolls the page is no tap.
    connect(QScroller::scroller(scroll_->viewport()), &QScroller::stateChanged, this,
            [this](QScroller::State state) {
                if (state == QScroller::Dragging || state == QScroller::Scrolling) {
                    surface_->cancelPress();
                }
            });
    // The page is as wide as what shows of it, which changes also when the
    // scroll bar comes or goes.
    scroll_->viewport()->installEventFilter(this);

    highlightFade_->setStartValue(0.0);
    highlightFade_->setEndValue(1.0);
    highlightFade_->setDuration(kHighlightMs);
    connect(highlightFade_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        surface_->highlightOpacity = value.toDouble();
        surface_->update();
    });
    dimming_->setStartValue(0.0);
    dimming_->setEndValue(1.0);
    dimming_->setDuration(kDimmingMs);
    connect(dimming_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        surface_->dimProgress = value.toDouble();
        surface_->update();
    });
    scrolling_->setDuration(kScrollMs);
    scrolling_->setEasingCurve(QEasingCurve::OutCubic);
    connect(scrolling_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        scroll_->verticalScrollBar()->setValue(value.toInt());
    });
}

textdata::~textdata() {
    // The surface draws the page, which goes before QWidget deletes the
    // children; so the surface goes first.
    delete scroll_;
}

void textdata::prepareTextFromFile(const QString& name, bool withscroll,
                                   std::optional<QString> append) {
    fitWidth();
    page_->prepareTextFromFile(name.toStdString(), withscroll,
                               append ? std::optional(append->toStdString()) : std::nullopt);
    pageChanged();
}

void textdata::prepareTextFromString(const QString& markup, bool withscroll) {
    fitWidth();
    page_->prepareTextFromString(markup.toStdString(), withscroll);
    pageChanged();
}

void textdata::prepareTextFromJSONString(const QString& json, bool withscroll,
                                         std::optional<QString> append) {
    fitWidth();
    page_->prepareTextFromJSONString(json.toStdString(), withscroll,
                                     append ? std::optional(append->toStdString()) : std::nullopt);
    pageChanged();
}

void textdata::pageChanged() {
    highlightFade_->stop();
    dimming_->stop();
    surface_->highlightOpacity = 0;
    surface_->dimProgress = 1;
    scroll_->setVerticalScrollBarPolicy(page_->gwithscroll() ? Qt::ScrollBarAsNeeded
                                                             : Qt::ScrollBarAlwaysOff);
    if (page_->gwithscroll()) {
        setMinimumHeight(0);
        setMaximumHeight(QWIDGETSIZE_MAX);
    }
    fitWidth();
    fitHeight();
}

void textdata::fitWidth() {
    // Until it is shown the view has no real width; the page is laid out
    // again once it has. Called before a page is built too, so the first
    // build is already at the width that shows.
    const int width = scroll_->viewport()->width();
    if (isVisible() && width > 0) {
        page_->setWidth(width);
    }
}

void textdata::fitHeight() {
    const int height = static_cast<int>(std::ceil(page_->contentHeight())) + page_->insets();
    if (!page_->gwithscroll()) {
        // A page that doesn't scroll is as high as what it holds.
        setFixedHeight(height);
    }
    surface_->resize(static_cast<int>(page_->width()), height);
    surface_->update();
}

void textdata::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    scroll_->setGeometry(rect());
}

void textdata::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    fitWidth();
    fitHeight();
}

bool textdata::eventFilter(QObject* watched, QEvent* event) {
    if (watched == scroll_->viewport() && event->type() == QEvent::Resize) {
        const int width = scroll_->viewport()->width();
        if (width > 0 && width != static_cast<int>(page_->width())) {
            fitWidth();
            fitHeight();
        }
    }
    return QWidget::eventFilter(watched, event);
}

long long textdata::scrollToGroup(long long position) {
    if (position >= 0 && page_->gwithscroll()) {
        scrolling_->stop();
        scrolling_->setStartValue(scroll_->verticalScrollBar()->value());
        scrolling_->setEndValue(static_cast<int>(position));
        scrolling_->start();
    }
    return position;
}

long long textdata::hiliteGroup(long long group, bool justthis) {
    const long long position = page_->hiliteGroup(group, justthis);
    if (position >= 0) {
        highlightFade_->stop();
        highlightFade_->start();
    }
    return scrollToGroup(position);
}

long long textdata::visibleGroup(long long group, bool justthis) {
    return scrollToGroup(page_->visibleGroup(group, justthis));
}

void textdata::alphaGroup(long long group, bool justthis) {
    page_->alphaGroup(group, justthis);
    dimming_->stop();
    surface_->dimProgress = 0;
    dimming_->start();
}

void textdata::checkClick(long long tag) {
    page_->checkClick(tag);
    surface_->update();
}

void textdata::refresh() {
    surface_->update();
}

QPoint textdata::viewPosition(const platform::Rect& element) const {
    const QPoint inSurface(static_cast<int>(element.x + element.width / 2),
                           static_cast<int>(element.y + element.height / 2));
    return surface_->mapTo(this, inSurface);
}

void textdata::tapped(const PageHit& hit) {
    switch (hit.action) {
        case PageAction::Link:
            emit linkClick(hit.tag);
            break;
        case PageAction::OpenLink:
            emit openLink(QString::fromStdString(hit.url));
            break;
        case PageAction::Check:
            emit checkClicked(hit.tag);
            break;
        case PageAction::Next:
            page_->contClick();
            pageChanged();
            scroll_->verticalScrollBar()->setValue(0);
            break;
        case PageAction::Previous: {
            const long long place = page_->prevClick();
            pageChanged();
            scroll_->verticalScrollBar()->setValue(static_cast<int>(std::max(0LL, place)));
            break;
        }
        case PageAction::None:
            break;
    }
}

// ---- Surface ----

TextSurface::TextSurface(textdata& owner, const platform::QtPictures& pictures)
    : owner_(owner), pictures_(pictures) {
    setMouseTracking(true);
    setAttribute(Qt::WA_TranslucentBackground);
}

void TextSurface::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    platform::QtCanvas canvas(painter, pictures_);
    const QRect dirty = event->rect();
    owner_.page().draw(
        canvas,
        platform::Rect{static_cast<double>(dirty.x()), static_cast<double>(dirty.y()),
                       static_cast<double>(dirty.width()), static_cast<double>(dirty.height())},
        dimProgress, highlightOpacity);
}

void TextSurface::cancelPress() {
    pressed_.reset();
}

void TextSurface::mousePressEvent(QMouseEvent* event) {
    const QPointF at = event->position();
    const PageHit hit = owner_.page().hitTest({at.x(), at.y()});
    if (hit.action != PageAction::None) {
        pressed_ = hit;
        // On the screen, not on the surface: the surface moves with a finger
        // that scrolls it.
        pressPoint_ = event->globalPosition();
    } else {
        pressed_.reset();
    }
    QWidget::mousePressEvent(event);
}

void TextSurface::mouseReleaseEvent(QMouseEvent* event) {
    const QPointF at = event->position();
    if (pressed_ && (event->globalPosition() - pressPoint_).manhattanLength() <= kTapSlop) {
        const PageHit hit = owner_.page().hitTest({at.x(), at.y()});
        if (sameTarget(hit, *pressed_)) {
            const PageHit tapped = *pressed_;
            pressed_.reset();
            owner_.tapped(tapped);
            return;
        }
    }
    pressed_.reset();
    QWidget::mouseReleaseEvent(event);
}

void TextSurface::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = event->position();
    const bool onTarget = owner_.page().hitTest({at.x(), at.y()}).action != PageAction::None;
    setCursor(onTarget ? Qt::PointingHandCursor : Qt::ArrowCursor);
    QWidget::mouseMoveEvent(event);
}

}  // namespace tilika::frame

#include "development/ruler_view.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QScroller>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <cmath>
#include <cstdlib>

#include "frame/scroll_view.h"

namespace tilika::development {

namespace {

constexpr int kSettleMs = 250;
constexpr int kRulerHeight = 44;

QScrollArea* makeScroll(QWidget* parent, QWidget* content) {
    auto* scroll = new frame::ScrollView(parent);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidgetResizable(false);
    scroll->setWidget(content);
    scroll->setFixedHeight(kRulerHeight);
    // Dragging with a finger or the mouse both scroll a ruler.
    QScroller::grabGesture(scroll->viewport(), QScroller::LeftMouseButtonGesture);
    return scroll;
}

}  // namespace

vessliderpaint::vessliderpaint(QWidget* parent) : QWidget(parent) {}

void vessliderpaint::prepare(const Ruler& ruler, double left, double right) {
    ticks_ = ruler.ticks();
    for (auto& tick : ticks_) {
        tick.x += left;
    }
    scale_ = 1;
    temperature_.reset();
    if (ruler.type() == rulertype::temperature) {
        // Where a fever begins and where it is high, for the colour strip.
        const auto at = [&ruler, left](double degrees) {
            return left + (degrees - ruler.min()) * ruler.unitWidth();
        };
        temperature_ = std::array<double, 3>{at(37.0), at(38.0), at(39.0)};
    }
    resize(static_cast<int>(left + ruler.contentWidth() + right), kRulerHeight);
    update();
}

void vessliderpaint::prepareDigits(double scale, double left, double right) {
    // Zero stands where the second ruler reads zero, and a tick is a digit.
    ticks_.clear();
    scale_ = scale;
    const double zero = left + 4 * scale * 50 * scale - 23 * scale;
    for (int digit = 0; digit <= 140; ++digit) {
        RulerTick tick;
        tick.x = zero + digit * 5 * scale;
        tick.whole = digit % 10 == 0;
        if (tick.whole) {
            tick.label = std::to_string(digit % 100 / 10) + "0";
        }
        ticks_.push_back(std::move(tick));
    }
    resize(static_cast<int>(left + Ruler::kSecondWidth * scale + right), kRulerHeight);
    update();
}

void vessliderpaint::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect dirty = event->rect();
    if (temperature_) {
        // The thermometer's scale: calm up to 37, warm to 38, hot beyond.
        const auto [warm, fever, high] = *temperature_;
        QLinearGradient strip(0, 0, width(), 0);
        const auto stop = [&](double x, QColor color) {
            strip.setColorAt(std::clamp(x / std::max(1, width()), 0.0, 1.0), color);
        };
        stop(0, QColor(90, 160, 230));
        stop(warm, QColor(120, 200, 120));
        stop(fever, QColor(245, 190, 60));
        stop(high, QColor(225, 70, 50));
        painter.fillRect(QRectF(0, height() - 6, width(), 6), strip);
    }
    const QColor ink = palette().color(QPalette::WindowText);
    QFont font = painter.font();
    font.setPixelSize(11);
    painter.setFont(font);
    for (const auto& tick : ticks_) {
        if (tick.x < dirty.left() - 30 || tick.x > dirty.right() + 30) {
            continue;
        }
        const double length = tick.whole ? 16 : 8;
        painter.setPen(QPen(ink, tick.whole ? 1.5 : 1));
        painter.drawLine(QPointF(tick.x, 0), QPointF(tick.x, length));
        if (!tick.label.empty()) {
            painter.drawText(QRectF(tick.x - 20, 18, 40, 16), Qt::AlignCenter,
                             QString::fromStdString(tick.label));
        }
    }
}

vesslider::vesslider(QWidget* parent)
    : QWidget(parent),
      value_(new QLabel(this)),
      mainScale_(new vessliderpaint),
      secondScale_(new vessliderpaint) {
    main_ = makeScroll(this, mainScale_);
    second_ = makeScroll(this, secondScale_);
    second_->hide();
    value_->setAlignment(Qt::AlignCenter);
    QFont font = value_->font();
    font.setPixelSize(20);
    font.setBold(true);
    value_->setFont(font);
    value_->setMinimumHeight(28);
    value_->installEventFilter(this);
    value_->setCursor(Qt::PointingHandCursor);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(value_);
    layout->addWidget(main_);
    layout->addWidget(second_);

    for (auto*& pointer : pointers_) {
        pointer = new QWidget(this);
        pointer->setAttribute(Qt::WA_TransparentForMouseEvents);
        pointer->setAutoFillBackground(true);
        QPalette palette = pointer->palette();
        palette.setColor(QPalette::Window, QColor(220, 60, 40));
        pointer->setPalette(palette);
        pointer->hide();
    }

    // The ruler itself takes the arrow keys, a tick at a time; the scroll
    // areas would move by a scroll bar's step, which is no tick.
    setFocusPolicy(Qt::StrongFocus);
    main_->setFocusPolicy(Qt::NoFocus);
    second_->setFocusPolicy(Qt::NoFocus);

    main_->viewport()->installEventFilter(this);
    second_->viewport()->installEventFilter(this);

    settle_.setSingleShot(true);
    settle_.setInterval(kSettleMs);
    connect(&settle_, &QTimer::timeout, this, &vesslider::tell);
    for (QScrollArea* scroll : {main_, second_}) {
        // A new range clamps the scroll bar's value (the scale laid out while
        // hidden, a narrower window), and that move is nobody's choice: the
        // ruler goes back to the value it stands for once the layout is done.
        QScrollBar* bar = scroll->horizontalScrollBar();
        connect(bar, &QScrollBar::rangeChanged, this, [this, bar](int min, int max) {
            // The range is new and the value not yet bound to it.
            clamping_ = bar->value() < min || bar->value() > max;
            if (!replacing_) {
                replacing_ = true;
                QTimer::singleShot(0, this, [this] {
                    replacing_ = false;
                    place(kept_, keptActive_);
                });
            }
        });
        connect(bar, &QScrollBar::valueChanged, this, [this] {
            if (clamping_) {
                clamping_ = false;
                return;
            }
            if (!placing_) {
                marks_ = true;
                setCurOffset();
                kept_ = gposition_;
                keptActive_ = marks_;
                settle_.start();
            }
        });
    }
}

void vesslider::prepareRuller(int min, int max, int type, bool border, bool resize, double scale) {
    ruler_.emplace(min, max, type, resize ? scale : 1);
    border_ = border;
    second_->setVisible(type == rulertype::thousandths);
    layoutRulers();
    setPosition(0, false);
}

void vesslider::layoutRulers() {
    if (!ruler_) {
        return;
    }
    // Room on both sides, so the pointer in the middle reaches both ends.
    const double right = main_->viewport()->width() / 2.0;
    mainScale_->prepare(*ruler_, mainLeft(), right);
    secondScale_->prepareDigits(ruler_->secondContentWidth() / Ruler::kSecondWidth, secondLeft(),
                                right);
}

double vesslider::mainLeft() const {
    return ruler_ ? ruler_->leftPadding(main_->viewport()->width()) : 0;
}

double vesslider::secondLeft() const {
    return ruler_ ? ruler_->leftPadding(second_->viewport()->width()) : 0;
}

void vesslider::setCurOffset() {
    if (!ruler_) {
        return;
    }
    const RulerReading reading = ruler_->read(
        main_->horizontalScrollBar()->value() - mainLeft(), main_->viewport()->width(),
        second_->horizontalScrollBar()->value() - secondLeft(), second_->viewport()->width());
    gposition_ = marks_ ? reading.position : 0;
    value_->setText(marks_ ? QString::fromStdString(reading.text) : QString());
    placePointers();
}

void vesslider::setPosition(double value, bool active) {
    place(value, active);
    tell();
}

void vesslider::place(double value, bool active) {
    if (!ruler_) {
        return;
    }
    kept_ = value;
    keptActive_ = active;
    const RulerPlacement placement =
        ruler_->place(value, active, main_->viewport()->width(), second_->viewport()->width());
    placing_ = true;
    if (value > 0) {
        main_->horizontalScrollBar()->setValue(
            static_cast<int>(std::lround(placement.offset + mainLeft())));
        second_->horizontalScrollBar()->setValue(
            static_cast<int>(std::lround(placement.secondOffset + secondLeft())));
    }
    placing_ = false;
    marks_ = placement.marks;
    // What shows is what the ruler stands at, which a value beyond its ends
    // can't reach.
    setCurOffset();
    if (value > 0 && !isVisible()) {
        // Not laid out yet, so the ruler can't scroll anywhere: the value
        // holds until it is shown and placed again at its real width.
        gposition_ = marks_ ? placement.reading.position : 0;
        value_->setText(marks_ ? QString::fromStdString(placement.reading.text) : QString());
    }
}

void vesslider::step(int ticks) {
    if (ruler_) {
        stepScroll(main_, ruler_->unitWidth() / ruler_->ticksPerUnit(), ticks);
    }
}

void vesslider::stepScroll(QScrollArea* scroll, double tick, int ticks) {
    if (ticks != 0) {
        QScrollBar* bar = scroll->horizontalScrollBar();
        bar->setValue(bar->value() + static_cast<int>(std::lround(ticks * tick)));
    }
}

void vesslider::keyPressEvent(QKeyEvent* event) {
    if (event->modifiers() == Qt::NoModifier || event->modifiers() == Qt::KeypadModifier) {
        if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right) {
            step(event->key() == Qt::Key_Left ? -1 : 1);
            event->accept();
            return;
        }
    }
    QWidget::keyPressEvent(event);
}

void vesslider::tell() {
    if (selector_) {
        selector_(gposition_);
    }
}

void vesslider::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placePointers();
}

void vesslider::rulersResized() {
    placing_ = true;
    layoutRulers();
    placing_ = false;
    // The same value again, without telling anyone: nothing was chosen.
    place(kept_, keptActive_);
}

bool vesslider::eventFilter(QObject* watched, QEvent* event) {
    if (watched == value_ && event->type() == QEvent::MouseButtonRelease) {
        setPosition(0, false);
        return true;
    }
    if ((watched == main_->viewport() || watched == second_->viewport()) &&
        event->type() == QEvent::Wheel) {
        // Either wheel turns the ruler, the way it scrolls a scroll bar.
        const QPoint delta = static_cast<QWheelEvent*>(event)->angleDelta();
        wheelAngle_ += std::abs(delta.x()) > std::abs(delta.y()) ? -delta.x() : -delta.y();
        constexpr int kNotch = 120;
        const int ticks = wheelAngle_ / kNotch;
        wheelAngle_ -= ticks * kNotch;
        if (watched == second_->viewport() && ruler_) {
            // The second ruler's ticks are its digits.
            stepScroll(second_, ruler_->secondContentWidth() / Ruler::kSecondWidth * 5, ticks);
        } else {
            step(ticks);
        }
        return true;
    }
    // The rulers are laid out for the width that shows of them.
    if ((watched == main_->viewport() || watched == second_->viewport()) &&
        event->type() == QEvent::Resize && ruler_) {
        rulersResized();
    }
    return QWidget::eventFilter(watched, event);
}

void vesslider::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (border_) {
        // A bordered ruler is a card of its own: its value reads on any
        // backdrop, a dark one too.
        painter.setBrush(palette().color(QPalette::Base));
        painter.setPen(QPen(palette().color(QPalette::Mid), 1));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
    }
}

void vesslider::placePointers() {
    // The pointer stands in the middle, over the rulers; the value is read
    // where it stands.
    const int x = width() / 2 - 1;
    pointers_[0]->setGeometry(x, main_->y(), 2, kRulerHeight);
    pointers_[1]->setGeometry(x, second_->y(), 2, kRulerHeight);
    pointers_[0]->setVisible(marks_);
    pointers_[1]->setVisible(marks_ && second_->isVisible());
    pointers_[0]->raise();
    pointers_[1]->raise();
}

}  // namespace tilika::development

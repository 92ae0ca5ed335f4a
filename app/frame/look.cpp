#include "frame/look.h"

#include <QAbstractButton>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QToolButton>

#include "core/app_state.h"
#include "frame/backgrounds.h"
#include "frame/pictures.h"
#include "frame/tab.h"
#include "frame/translation.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {

namespace {

constexpr char kTagProperty[] = "tag";

QString translated(const core::AppState& state, const QString& text) {
    return translatedText(state, text.toStdString());
}

}  // namespace

QString translatedText(const core::AppState& state, std::string_view text) {
    return QString::fromStdString(translate(state, text));
}

void setTextColor(QWidget* widget, const QColor& color) {
    QPalette palette = widget->palette();
    palette.setColor(QPalette::WindowText, color);
    palette.setColor(QPalette::Text, color);
    widget->setPalette(palette);
}

void setTag(QWidget* widget, int tag) {
    widget->setProperty(kTagProperty, tag);
}

int tag(const QObject* object) {
    const QVariant value = object->property(kTagProperty);
    return value.isValid() ? value.toInt() : 0;
}

QWidget* childWithTag(const QWidget* parent, int wanted) {
    for (QObject* child : parent->children()) {
        auto* widget = qobject_cast<QWidget*>(child);
        if (widget != nullptr && tag(widget) == wanted) {
            return widget;
        }
    }
    return nullptr;
}

BackdropView::BackdropView(const platform::QtPictures& pictures, QWidget* parent)
    : QWidget(parent), pictures_(pictures) {
    setTag(this, kBackdropTag);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    parent->installEventFilter(this);
    setGeometry(parent->rect());
    lower();
}

void BackdropView::setPicture(std::string picture) {
    if (picture != picture_) {
        picture_ = std::move(picture);
        rendered_ = QPixmap();
        update();
    }
}

bool BackdropView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
    }
    return QWidget::eventFilter(watched, event);
}

void BackdropView::paintEvent(QPaintEvent* /*event*/) {
    // A full-window drawing is too costly to render on every repaint of what
    // lies over it, so it is rendered once for the size and screen.
    const qreal ratio = devicePixelRatioF();
    const QSize pixels = (QSizeF(size()) * ratio).toSize();
    if (rendered_.size() != pixels || rendered_.devicePixelRatio() != ratio) {
        rendered_ = render(pixels, ratio);
    }
    if (!rendered_.isNull()) {
        QPainter(this).drawPixmap(0, 0, rendered_);
    }
}

QPixmap BackdropView::render(QSize pixels, qreal ratio) const {
    const platform::Size natural = pictures_.pictures().naturalSize(picture_);
    if (natural.width <= 0 || natural.height <= 0 || pixels.isEmpty()) {
        return {};
    }
    QPixmap result(pixels);
    result.setDevicePixelRatio(ratio);
    result.fill(Qt::transparent);
    // Cover the whole view, cutting what sticks out on the long side evenly.
    const double scale = std::max(width() / natural.width, height() / natural.height);
    const QSizeF cover(natural.width * scale, natural.height * scale);
    const QRectF target(QPointF((width() - cover.width()) / 2, (height() - cover.height()) / 2),
                        cover);
    QPainter painter(&result);
    pictures_.drawVector(painter, picture_, target);
    return result;
}

void correctBackground(QWidget* view, bool bd, core::AppState& state,
                       const platform::QtPictures& pictures) {
    const Backdrop backdrop = frame::correctBackground(state, bd);
    if (view == nullptr) {
        return;
    }
    auto* backdropView = qobject_cast<BackdropView*>(childWithTag(view, kBackdropTag));
    if (backdropView == nullptr) {
        backdropView = new BackdropView(pictures, view);
    }
    backdropView->setGeometry(view->rect());
    if (backdrop.picture.empty()) {
        // Plain backdrops, and numbers that stand for no picture at all.
        backdropView->hide();
        if (backdrop.plain) {
            QPalette palette = view->palette();
            palette.setColor(QPalette::Window, platform::toQColor(*backdrop.plain));
            view->setPalette(palette);
            view->setAutoFillBackground(true);
        }
    } else {
        backdropView->setPicture(backdrop.picture);
        backdropView->lower();
        backdropView->show();
    }
}

void correctBackgroundText(QWidget* view, const core::AppState& state) {
    const QColor color = state.lightTheme ? QColor(Qt::black) : QColor(Qt::white);
    for (QObject* child : view->children()) {
        auto* widget = qobject_cast<QWidget*>(child);
        if (widget != nullptr &&
            (qobject_cast<QLabel*>(widget) != nullptr || tag(widget) == kBackdropTextTag)) {
            setTextColor(widget, color);
        }
    }
}

void showBackdropThrough(QScrollArea* scroll) {
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->viewport()->setAutoFillBackground(false);
    scroll->setStyleSheet(QStringLiteral("QScrollArea { background: transparent; }"));
}

void paintFocusRing(QPainter& painter, const QWidget* widget, const QRectF& shape, qreal radius) {
    if (!widget->hasFocus() || !widget->window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    const QRectF ring = shape.adjusted(2, 2, -2, -2);
    painter.setPen(QPen(QColor(255, 255, 255, 220), 4));
    painter.drawRoundedRect(ring, radius, radius);
    painter.setPen(QPen(QColor(0x3d, 0x8b, 0xd9), 2));
    painter.drawRoundedRect(ring, radius, radius);
    painter.restore();
}

QToolButton* headerButton(const QString& tip, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    button->setStyleSheet(QStringLiteral("QToolButton { border: none; background: transparent; }"));
    button->setIconSize(QSize(28, 28));
    button->setFixedSize(44, 44);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    return button;
}

QToolButton* textButton(const QString& text, const char* name, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setText(text);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

QToolButton* menuButton(Tab* page, const core::AppState& state) {
    QToolButton* button = headerButton(translatedText(state, "Меню"), page);
    button->setObjectName(QStringLiteral("toMenu"));
    QObject::connect(button, &QToolButton::clicked, page, &Tab::menuRequested);
    return button;
}

QWidget* captionBar(QWidget* back, QWidget* previous, QWidget* caption, QWidget* next,
                    QWidget* action, QWidget* parent) {
    auto* bar = new QWidget(parent);
    bar->setObjectName(QStringLiteral("captionBar"));
    auto* header = new QHBoxLayout(bar);
    header->setContentsMargins(0, 0, 0, 0);
    // A page without steps back and forth leaves them out.
    for (QWidget* widget : {back, previous, caption, next, action}) {
        if (widget != nullptr) {
            header->addWidget(widget, widget == caption ? 1 : 0);
        }
    }
    return bar;
}

void setHeaderButtonPicture(QToolButton* button, const platform::QtPictures& pictures,
                            const std::string& picture, const core::AppState& state) {
    const QImage image =
        pictures.image(pictures.pictures().themed(picture, state.lightTheme), QSize(56, 56));
    button->setIcon(QIcon(QPixmap::fromImage(image)));
}

void translateView(QWidget* view, const core::AppState& state) {
    if (state.langid == language::russian) {
        return;
    }
    for (QLabel* label : view->findChildren<QLabel*>()) {
        label->setText(translated(state, label->text()));
    }
    for (QAbstractButton* button : view->findChildren<QAbstractButton*>()) {
        button->setText(translated(state, button->text()));
    }
}

}  // namespace tilika::frame

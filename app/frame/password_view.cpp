#include "frame/password_view.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>

#include <algorithm>

#include "core/app_state.h"
#include "frame/form_shared.h"
#include "frame/look.h"
#include "frame/pictures.h"
#include "platform/fingerprint_reader.h"
#include "platform/log.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {

namespace {

constexpr int kDeleteTag = 310;
// The caption of a wrong code; what the program uses for warnings on its
// light and dark backgrounds alike.
const QColor kWarning = QColor::fromRgbF(1, 0.8F, 0);

QColor textColor(const core::AppState& state) {
    return state.lightTheme ? QColor(Qt::black) : QColor(Qt::white);
}

}  // namespace

// A round key of the keypad: its picture, and the digit over it.
class PassKey final : public QAbstractButton {
public:
    PassKey(const platform::QtPictures& pictures, QWidget* parent)
        : QAbstractButton(parent), pictures_(pictures) {
        // The keypad itself takes the keyboard's digits; the keys take none.
        setFocusPolicy(Qt::NoFocus);
        setCursor(Qt::PointingHandCursor);
    }
    void setLook(std::string picture, QColor color) {
        picture_ = std::move(picture);
        color_ = color;
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF area = rect();
        pictures_.draw(painter, picture_, area, isDown() ? 0.5 : 1);
        if (!text().isEmpty()) {
            QFont font = painter.font();
            font.setPixelSize(std::max(10, height() * 2 / 5));
            painter.setFont(font);
            painter.setPen(color_);
            painter.drawText(area, Qt::AlignCenter, text());
        }
    }

private:
    const platform::QtPictures& pictures_;
    std::string picture_;
    QColor color_;
};

passwordView::passwordView(Services services, QWidget* parent)
    : QWidget(parent), services_(services), keypad_(services.lock) {
    setObjectName(QStringLiteral("passDialog"));
    setFocusPolicy(Qt::StrongFocus);
    passCaption_ = form::wrappedLabel({}, this, 20, true);
    passCaption_->setObjectName(QStringLiteral("passCaption"));
    passCaption_->setAlignment(Qt::AlignCenter);
    reason_ = form::wrappedLabel(translatedText(services_.state, kTouchReason), this, 14, false);
    reason_->setObjectName(QStringLiteral("touchReason"));
    reason_->setAlignment(Qt::AlignCenter);
    reason_->hide();
    for (std::size_t i = 0; i < marks_.size(); ++i) {
        marks_[i] = new QLabel(this);
        setTag(marks_[i], kFirstMarkTag + static_cast<int>(i));
    }
    for (std::size_t i = 0; i < keys_.size(); ++i) {
        auto* key = new PassKey(services_.pictures, this);
        const int tagNumber = kFirstKeyTag + static_cast<int>(i);
        setTag(key, tagNumber);
        if (tagNumber < kDeleteTag) {
            key->setText(QString::number(i));
        } else if (tagNumber == kDeleteTag) {
            key->setText(QStringLiteral("⌫"));
            key->setToolTip(translatedText(services_.state, "Удалить"));
        }
        connect(key, &QAbstractButton::clicked, this, [this, tagNumber] { pressPass(tagNumber); });
        keys_[i] = key;
    }
    keys_.back()->setToolTip(translatedText(services_.state, "Войти по отпечатку пальца"));
    keys_.back()->hide();
    if (services_.fingerprint != nullptr) {
        connect(services_.fingerprint, &platform::FingerprintReader::evaluated, this,
                &passwordView::onEvaluated);
        connect(services_.fingerprint, &platform::FingerprintReader::verified, this,
                &passwordView::onVerified);
    }
    hide();
}

passwordView::~passwordView() {
    if (services_.fingerprint != nullptr) {
        services_.fingerprint->cancel();
    }
}

void passwordView::showPass(PassKeypad::Mode mode) {
    keypad_.showPass(mode);
    correctBackground(this, false, services_.state, services_.pictures);
    const QColor text = textColor(services_.state);
    const std::string button =
        services_.pictures.pictures().themed("pass-btn.png", services_.state.lightTheme);
    for (PassKey* key : keys_) {
        key->setLook(button, text);
    }
    keys_.back()->setLook(
        services_.pictures.pictures().themed("pass-id.png", services_.state.lightTheme), text);
    setTextColor(reason_, text);
    reason_->hide();
    keys_.back()->setVisible(canTouch_ && keypad_.fingerprintAllowed());

    if (parentWidget() != nullptr) {
        setGeometry(parentWidget()->rect());
    }
    layOut();
    showState();
    show();
    raise();
    setFocus();

    touchWanted_ = mode == PassKeypad::Mode::check;
    if (services_.fingerprint != nullptr && keypad_.fingerprintAllowed()) {
        services_.fingerprint->canEvaluate();
    } else if (touchWanted_) {
        onEvaluated(false);
    }
}

void passwordView::onEvaluated(bool can) {
    canTouch_ = can;
    keys_.back()->setVisible(can && keypad_.fingerprintAllowed() && isVisible());
    if (touchWanted_) {
        touchWanted_ = false;
        touchID();
    }
}

void passwordView::touchID() {
    if (!canTouch_ || services_.fingerprint == nullptr) {
        platform::log("Can not evaluate Touch ID");
        return;
    }
    reason_->show();
    services_.fingerprint->verify();
}

void passwordView::onVerified(bool match, const QString& reason) {
    if (!isVisible()) {
        return;
    }
    // The return from the reader is no return from elsewhere: it must not
    // make the program ask once more.
    services_.lock.markActive();
    reason_->hide();
    if (match) {
        platform::log("User is authenticated successfully");
        close(PassKeypad::Action::unlock);
    } else {
        platform::log(reason.toStdString());
    }
}

void passwordView::pressPass(int tagNumber) {
    const PassKeypad::Action action = keypad_.pressPass(tagNumber - kFirstKeyTag);
    switch (action) {
        case PassKeypad::Action::touchID:
            touchID();
            return;
        case PassKeypad::Action::none:
            break;
        case PassKeypad::Action::repeat:
            // The second entry of a new code has no fingerprint either.
            keys_.back()->hide();
            break;
        case PassKeypad::Action::unlock:
        case PassKeypad::Action::abandoned:
        case PassKeypad::Action::passwordSet:
        case PassKeypad::Action::passwordsDiffer:
            close(action);
            return;
    }
    showState();
}

void passwordView::close(PassKeypad::Action action) {
    if (services_.fingerprint != nullptr) {
        services_.fingerprint->cancel();
    }
    touchWanted_ = false;
    hide();
    emit finished(action);
}

void passwordView::showState() {
    passCaption_->setText(translatedText(services_.state, keypad_.caption()));
    setTextColor(passCaption_, keypad_.warning() ? kWarning : textColor(services_.state));
    const int side = std::max(8, marks_.front()->width());
    const qreal ratio = devicePixelRatioF();
    const frame::Pictures& pictures = services_.pictures.pictures();
    const std::string empty = pictures.themed("pass-e.png", services_.state.lightTheme);
    const std::string filled = pictures.themed("pass-f.png", services_.state.lightTheme);
    for (std::size_t i = 0; i < marks_.size(); ++i) {
        const bool on = static_cast<int>(i) < keypad_.filledMarks();
        QImage image = services_.pictures.image(on ? filled : empty, QSize(side, side) * ratio);
        image.setDevicePixelRatio(ratio);
        marks_[i]->setPixmap(QPixmap::fromImage(image));
    }
}

void passwordView::layOut() {
    const int w = width();
    const int h = height();
    const int key = std::clamp(std::min(w / 5, h / 8), 32, 96);
    const int gap = key / 3;
    const int mark = std::max(12, key / 4);
    const int gridWidth = 3 * key + 2 * gap;
    const int gridHeight = 4 * key + 3 * gap;
    const int captionHeight = 2 * key / 2 + 8;
    const int block = captionHeight + mark + gap * 2 + gridHeight;
    int top = std::max(8, (h - block) / 2);

    passCaption_->setGeometry(8, top, w - 16, captionHeight);
    top += captionHeight;
    const int marksWidth = 4 * mark + 3 * mark;
    for (std::size_t i = 0; i < marks_.size(); ++i) {
        marks_[i]->setGeometry((w - marksWidth) / 2 + static_cast<int>(i) * 2 * mark, top, mark,
                               mark);
    }
    top += mark + gap * 2;
    const int left = (w - gridWidth) / 2;
    const auto place = [&](std::size_t index, int row, int column) {
        keys_[index]->setGeometry(left + column * (key + gap), top + row * (key + gap), key, key);
    };
    for (int digit = 1; digit <= 9; ++digit) {
        place(static_cast<std::size_t>(digit), (digit - 1) / 3, (digit - 1) % 3);
    }
    place(11, 3, 0);
    place(0, 3, 1);
    place(10, 3, 2);
    reason_->setGeometry(8, std::min(h - 48, top + gridHeight + gap), w - 16, 44);
}

void passwordView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layOut();
    showState();
}

void passwordView::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (key >= Qt::Key_0 && key <= Qt::Key_9 && !event->isAutoRepeat()) {
        pressPass(kFirstKeyTag + (key - Qt::Key_0));
        return;
    }
    if (key == Qt::Key_Backspace) {
        pressPass(kDeleteTag);
        return;
    }
    // Nothing else, Escape and Enter included, gets past the keypad.
    event->accept();
}

LockCover::LockCover(core::AppState& state, const platform::QtPictures& pictures, QWidget* parent)
    : QWidget(parent), state_(state), pictures_(pictures), picture_(new QLabel(this)) {
    setObjectName(QStringLiteral("lockView"));
    setTag(this, kTag);
    // Taps and keys meant for what lies under it stop here.
    setAttribute(Qt::WA_NoMousePropagation);
    setFocusPolicy(Qt::StrongFocus);
    correctBackground(this, false, state_, pictures_);
    if (parent != nullptr) {
        setGeometry(parent->rect());
    }
}

void LockCover::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const int side = std::clamp(std::min(width(), height()) / 4, 32, 128);
    const qreal ratio = devicePixelRatioF();
    QImage image = pictures_.image(pictures_.pictures().themed("pass-lock.png", state_.lightTheme),
                                   QSize(side, side) * ratio);
    image.setDevicePixelRatio(ratio);
    picture_->setPixmap(QPixmap::fromImage(image));
    picture_->setGeometry((width() - side) / 2, (height() - side) / 2, side, side);
    picture_->raise();
}

}  // namespace tilika::frame

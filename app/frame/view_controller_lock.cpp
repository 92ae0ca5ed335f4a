// The program's lock: the keypad of its code and the cover of its content.

#include <QAbstractButton>
#include <QFrame>

#include "core/context.h"
#include "frame/app_lock.h"
#include "frame/look.h"
#include "frame/main_menu.h"
#include "frame/navigation.h"
#include "frame/password_view.h"
#include "frame/popup_panels.h"
#include "frame/view_controller.h"
#include "platform/fingerprint_reader.h"

namespace tilika::frame {

namespace {

constexpr int kPasswordRow = 52;
constexpr int kNoAnswerTag = 2;

}  // namespace

passwordView* ViewController::passDialog() const {
    return passDialog_;
}

QWidget* ViewController::lockCover() const {
    return cover_;
}

void ViewController::showPass(int mode) {
    if (passDialog_ == nullptr) {
        if (fingerprint_ == nullptr) {
            fingerprint_ = std::make_unique<platform::FingerprintReader>();
        }
        passDialog_ = new passwordView(
            passwordView::Services{state_, *lock_, services_.pictures, fingerprint_.get()}, this);
        connect(passDialog_, &passwordView::finished, this,
                [this](PassKeypad::Action action) { passwordFinished(static_cast<int>(action)); });
    }
    passDialog_->showPass(static_cast<PassKeypad::Mode>(mode));
}

void ViewController::passwordFinished(int action) {
    setFocus();
    const PassKeypad& keypad = passDialog_->keypad();
    switch (static_cast<PassKeypad::Action>(action)) {
        case PassKeypad::Action::unlock:
            unlockView();
            return;
        case PassKeypad::Action::passwordSet:
            if (saved(keypad.stored(), this)) {
                popups_->message(translatedText(state_, PassKeypad::kSetMessage),
                                 translatedText(state_, PassKeypad::kMessageCaption), kNoAnswerTag,
                                 this);
            }
            break;
        case PassKeypad::Action::passwordsDiffer:
            popups_->message(translatedText(state_, PassKeypad::kDifferMessage),
                             translatedText(state_, PassKeypad::kMessageCaption), kNoAnswerTag,
                             this);
            break;
        default:
            break;
    }
    afterPassword();
}

void ViewController::afterPassword() {
    if (QAbstractButton* toggle = menu_->mainRow(kPasswordRow)) {
        toggle->setChecked(menuSetting(context_.settings, kPasswordRow));
    }
}

void ViewController::onPassTimer() {
    unlockView();
    // Activations that come close together open the keypad once.
    if (passDialog_ == nullptr || passDialog_->isHidden()) {
        showPass(static_cast<int>(PassKeypad::Mode::check));
    }
}

void ViewController::lockView() {
    if (cover_ == nullptr) {
        cover_ = new LockCover(state_, services_.pictures, this);
    }
    cover_->setGeometry(rect());
    cover_->show();
    cover_->raise();
}

void ViewController::unlockView() {
    if (cover_ != nullptr) {
        cover_->deleteLater();
        cover_ = nullptr;
    }
    if (passDialog_ != nullptr && passDialog_->isVisible()) {
        passDialog_->setFocus();
    }
}

}  // namespace tilika::frame

#pragma once

#include <QWidget>

#include <array>

#include "frame/app_lock.h"

class QLabel;

namespace tilika::core {
struct AppState;
}
namespace tilika::platform {
class FingerprintReader;
class QtPictures;
}  // namespace tilika::platform

namespace tilika::frame {

class PassKey;

// The keypad that asks for the program's four-digit code, over the whole
// window: the caption, four marks (tags 201 to 204) and the keys (300 to
// 309 the digits, 310 delete, 311 the fingerprint). The digits and
// Backspace also come from the keyboard.
class passwordView final : public QWidget {
    Q_OBJECT

public:
    struct Services {
        core::AppState& state;
        AppLock& lock;
        const platform::QtPictures& pictures;
        // May be null: without a reader the fingerprint key stays hidden.
        platform::FingerprintReader* fingerprint;
    };

    static constexpr int kFirstMarkTag = 201;
    static constexpr int kFirstKeyTag = 300;
    static constexpr int kFingerprintTag = 311;
    static constexpr std::string_view kTouchReason = "Для авторизации приложите палец к сканеру";

    passwordView(Services services, QWidget* parent);
    ~passwordView() override;

    // Comes up with nothing typed, in the look of the background in use; the
    // check of the code also asks the fingerprint reader at once.
    void showPass(PassKeypad::Mode mode);
    // A key by its tag.
    void pressPass(int tag);
    // Asks the fingerprint reader, where there is one with a finger enrolled.
    void touchID();
    const PassKeypad& keypad() const { return keypad_; }

signals:
    // The keypad has closed itself, for this reason.
    void finished(frame::PassKeypad::Action action);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void onEvaluated(bool can);
    void onVerified(bool match, const QString& reason);
    void showState();
    void layOut();
    void close(PassKeypad::Action action);

    Services services_;
    PassKeypad keypad_;
    QLabel* passCaption_;
    QLabel* reason_;
    std::array<QLabel*, PassKeypad::kDigits> marks_{};
    std::array<PassKey*, 12> keys_{};
    // Whether the reader can be asked: unknown until it answers.
    bool canTouch_ = false;
    bool touchWanted_ = false;
};

// What hides the program's content while the window is elsewhere with the
// lock on: the backdrop in use with the lock's picture in the middle.
class LockCover final : public QWidget {
    Q_OBJECT

public:
    static constexpr int kTag = -9999;
    LockCover(core::AppState& state, const platform::QtPictures& pictures, QWidget* parent);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    core::AppState& state_;
    const platform::QtPictures& pictures_;
    QLabel* picture_;
};

}  // namespace tilika::frame

#pragma once

#include <string>
#include <string_view>

#include "core/write_result.h"

namespace tilika::platform {
class Clock;
class SettingsStore;
}  // namespace tilika::platform

namespace tilika::frame {

// The four-digit code that guards the program, as it is kept: the settings
// hold whether the lock is on and a salted, slow hash of the code, never the
// digits. There is no limit on tries and no way to recover a lost code.
class AppLock {
public:
    AppLock(platform::SettingsStore& settings, const platform::Clock& clock);

    // The lock is on and there is a code to check against. A lock whose code
    // went missing with a damaged settings file would shut the parent out
    // for good, so it counts as off.
    bool pass() const;
    // On the program's return: the lock is on, and either the moment it went
    // away is unknown (as after a launch) or more than 5 whole seconds have
    // passed since.
    bool lockDue() const;

    // Whether the digits are the code. A code kept in plain text by an
    // earlier version is hashed at its first successful check and removed.
    bool checkPassword(std::string_view digits);
    // Keeps the code and turns the lock on.
    core::WriteResult setPassword(std::string_view digits);
    // Turns the lock off and forgets the code.
    core::WriteResult turnOff();
    // The program counts as active from now on: a system dialog it opened
    // itself (the fingerprint reader's) does not make it ask again.
    void markActive();

private:
    platform::SettingsStore& settings_;
    const platform::Clock& clock_;
};

// The keypad's logic, without the drawing: keys in, what to show and what
// to do out.
class PassKeypad {
public:
    enum class Mode { check = 1, set = 2, repeat = 3 };

    // What a key leads to beyond the keypad itself.
    enum class Action {
        none,
        touchID,          // ask the fingerprint reader
        unlock,           // the right code: the keypad closes
        abandoned,        // delete with nothing typed while setting a code
        repeat,           // the first entry of a new code: ask for it again
        passwordSet,      // the code was typed twice alike and is kept
        passwordsDiffer,  // the second entry differed: the lock stays off
    };

    static constexpr int kDigits = 4;
    static constexpr int kDeleteKey = 10;
    static constexpr int kFingerprintKey = 11;

    explicit PassKeypad(AppLock& lock) : lock_(lock) {}

    // Starts a mode with nothing typed.
    void showPass(Mode mode);
    // A key: 0 to 9 the digits, 10 delete, 11 the fingerprint.
    Action pressPass(int key);

    Mode gpassFlag() const { return gpassFlag_; }
    // How many of the four marks show filled.
    int filledMarks() const { return filled_; }
    const std::string& caption() const { return caption_; }
    // The caption speaks of a wrong code, in the warning colour.
    bool warning() const { return warning_; }
    // The fingerprint has no place in setting a code.
    bool fingerprintAllowed() const { return gpassFlag_ != Mode::set; }
    // Whether the last write of the code landed; read after passwordSet.
    const core::WriteResult& stored() const { return stored_; }

    // The captions of the modes, and the answers after setting a code.
    static std::string_view gpassCaption(Mode mode);
    static constexpr std::string_view kWrongCaption = "Пароль указан неправильно";
    static constexpr std::string_view kMessageCaption = "Пароль";
    static constexpr std::string_view kSetMessage = "На вход в программу установлен пароль.";
    static constexpr std::string_view kDifferMessage = "Пароли не совпали! Пароль НЕ установлен!";

private:
    Action complete();

    AppLock& lock_;
    Mode gpassFlag_ = Mode::check;
    std::string passString_;
    // The first entry of a new code; lives only while the keypad is up.
    std::string passString2_;
    std::string caption_;
    bool warning_ = false;
    int filled_ = 0;
    core::WriteResult stored_;
};

}  // namespace tilika::frame

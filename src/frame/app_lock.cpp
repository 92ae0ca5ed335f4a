#include "frame/app_lock.h"

#include <chrono>
#include <sodium.h>

#include "core/settings_keys.h"
#include "platform/clock.h"
#include "platform/settings_store.h"

namespace tilika::frame {
namespace {

// Away for this long or less, the program comes back without the code.
constexpr std::chrono::seconds kGrace{5};

bool sodiumReady() {
    static const bool ready = sodium_init() >= 0;
    return ready;
}

// Argon2id with libsodium's "interactive" limits (2 passes over 64 MiB):
// an unlock costs a fraction of a second, while each guess at a stolen
// settings file costs the same. With only 10,000 codes that buys minutes,
// not years; what it does buy is that no code ever sits in the file.
std::string hashPassword(std::string_view digits) {
    if (!sodiumReady()) {
        return {};
    }
    char out[crypto_pwhash_STRBYTES];
    if (crypto_pwhash_str(out, digits.data(), digits.size(), crypto_pwhash_OPSLIMIT_INTERACTIVE,
                          crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0) {
        return {};
    }
    return out;
}

bool verifyHash(const std::string& hash, std::string_view digits) {
    return sodiumReady() &&
           crypto_pwhash_str_verify(hash.c_str(), digits.data(), digits.size()) == 0;
}

core::WriteResult flushed(platform::SettingsStore& settings) {
    if (!settings.synchronize()) {
        return core::WriteFailure::settings;
    }
    return {};
}

}  // namespace

AppLock::AppLock(platform::SettingsStore& settings, const platform::Clock& clock)
    : settings_(settings), clock_(clock) {}

bool AppLock::pass() const {
    return settings_.boolValue(core::keys::pass) &&
           (!settings_.textValue(core::keys::passwordHash).empty() ||
            !settings_.textValue(core::keys::password).empty());
}

bool AppLock::lockDue() const {
    if (!pass()) {
        return false;
    }
    const auto deactive = settings_.dateValue(core::keys::deactive);
    if (!deactive) {
        return true;
    }
    const auto away = std::chrono::duration_cast<std::chrono::seconds>(clock_.now() - *deactive);
    // A moment in the future means the clock was set back; that must not be
    // a way round the code.
    return away > kGrace || clock_.now() < *deactive;
}

bool AppLock::checkPassword(std::string_view digits) {
    const std::string hash = settings_.textValue(core::keys::passwordHash);
    if (!hash.empty()) {
        return verifyHash(hash, digits);
    }
    const std::string plain = settings_.textValue(core::keys::password);
    if (plain.empty() || plain != digits) {
        return false;
    }
    // The parent is let in even if the file can't take the hash now; the
    // plain code then stays until a later check manages it.
    if (const std::string fresh = hashPassword(digits); !fresh.empty()) {
        settings_.setText(core::keys::passwordHash, fresh);
        settings_.remove(core::keys::password);
        settings_.synchronize();
    }
    return true;
}

core::WriteResult AppLock::setPassword(std::string_view digits) {
    const std::string hash = hashPassword(digits);
    if (hash.empty()) {
        return core::WriteFailure::other;
    }
    settings_.setText(core::keys::passwordHash, hash);
    settings_.remove(core::keys::password);
    settings_.setBool(core::keys::pass, true);
    return flushed(settings_);
}

core::WriteResult AppLock::turnOff() {
    settings_.setBool(core::keys::pass, false);
    settings_.remove(core::keys::passwordHash);
    settings_.remove(core::keys::password);
    return flushed(settings_);
}

void AppLock::markActive() {
    settings_.setDate(core::keys::deactive, clock_.now());
    settings_.synchronize();
}

std::string_view PassKeypad::gpassCaption(Mode mode) {
    switch (mode) {
        case Mode::check:
            break;
        case Mode::set:
            return "Введите новый пароль";
        case Mode::repeat:
            return "Введите пароль еще раз";
    }
    return "Введите пароль";
}

void PassKeypad::showPass(Mode mode) {
    gpassFlag_ = mode;
    passString_.clear();
    if (mode == Mode::set) {
        passString2_.clear();
    }
    caption_ = gpassCaption(mode);
    warning_ = false;
    filled_ = 0;
}

PassKeypad::Action PassKeypad::pressPass(int key) {
    if (key == kFingerprintKey) {
        return Action::touchID;
    }
    if (key < 0 || key > kDeleteKey) {
        return Action::none;
    }
    caption_ = gpassCaption(gpassFlag_);
    warning_ = false;
    if (key == kDeleteKey) {
        if (!passString_.empty()) {
            passString_.pop_back();
        } else if (gpassFlag_ != Mode::check) {
            passString2_.clear();
            stored_ = lock_.turnOff();
            return Action::abandoned;
        }
    } else if (static_cast<int>(passString_.size()) < kDigits) {
        passString_ += static_cast<char>('0' + key);
    }
    filled_ = static_cast<int>(passString_.size());
    return filled_ == kDigits ? complete() : Action::none;
}

PassKeypad::Action PassKeypad::complete() {
    switch (gpassFlag_) {
        case Mode::check:
            if (lock_.checkPassword(passString_)) {
                passString_.clear();
                return Action::unlock;
            }
            // The marks stay filled until the next key, so the parent sees
            // that all four digits were taken.
            passString_.clear();
            caption_ = kWrongCaption;
            warning_ = true;
            return Action::none;
        case Mode::set:
            passString2_ = passString_;
            showPass(Mode::repeat);
            return Action::repeat;
        case Mode::repeat: {
            const bool same = passString_ == passString2_;
            stored_ = same ? lock_.setPassword(passString_) : lock_.turnOff();
            passString_.clear();
            passString2_.clear();
            return same ? Action::passwordSet : Action::passwordsDiffer;
        }
    }
    return Action::none;
}

}  // namespace tilika::frame

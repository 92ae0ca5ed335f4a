#include "frame/app_lock.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "core/settings_file.h"
#include "core/settings_keys.h"
#include "platform/clock.h"
#include "support/temp_dir.h"

namespace tilika::frame {
namespace {

using Action = PassKeypad::Action;
using Mode = PassKeypad::Mode;
using std::chrono::milliseconds;

class AppLockTest : public ::testing::Test {
protected:
    test::TempDir dir_;
    std::filesystem::path file_ = dir_.path() / "settings.json";
    core::JsonSettingsStore settings_{file_};
    platform::ManualClock clock_{platform::Date(milliseconds(1795338000000)), "Europe/Moscow"};
    AppLock lock_{settings_, clock_};
    PassKeypad keypad_{lock_};

    // Types the digits of `code` one by one; what the last key led to.
    Action type(std::string_view code) {
        Action last = Action::none;
        for (const char c : code) {
            last = keypad_.pressPass(c - '0');
        }
        return last;
    }
    void setCode(std::string_view code) {
        keypad_.showPass(Mode::set);
        ASSERT_EQ(type(code), Action::repeat);
        ASSERT_EQ(type(code), Action::passwordSet);
        ASSERT_TRUE(keypad_.stored());
    }
    std::string fileText() const {
        std::ifstream in(file_);
        return {std::istreambuf_iterator<char>(in), {}};
    }
};

TEST_F(AppLockTest, SettingACodeKeepsOnlyItsHashAndTheCodeOpensTheLock) {
    keypad_.showPass(Mode::set);
    EXPECT_FALSE(keypad_.fingerprintAllowed());
    EXPECT_EQ(type("7391"), Action::repeat);
    EXPECT_EQ(keypad_.caption(), "Введите пароль еще раз");
    EXPECT_EQ(keypad_.filledMarks(), 0);
    EXPECT_EQ(type("7391"), Action::passwordSet);
    EXPECT_TRUE(lock_.pass());

    // The file never holds the digits, in any form a grep would find.
    const std::string text = fileText();
    EXPECT_EQ(text.find("7391"), std::string::npos);
    EXPECT_NE(text.find("$argon2id$"), std::string::npos);
    EXPECT_FALSE(settings_.contains(core::keys::password));

    core::JsonSettingsStore reread(file_);
    AppLock later(reread, clock_);
    EXPECT_TRUE(later.pass());
    EXPECT_FALSE(later.checkPassword("7392"));
    EXPECT_TRUE(later.checkPassword("7391"));
}

TEST_F(AppLockTest, AWrongCodeKeepsTheMarksFilledUntilTheNextKeyAndNothingElseOpens) {
    setCode("7391");
    keypad_.showPass(Mode::check);
    EXPECT_EQ(keypad_.caption(), "Введите пароль");
    EXPECT_EQ(type("1234"), Action::none);
    EXPECT_EQ(keypad_.filledMarks(), 4);
    EXPECT_EQ(keypad_.caption(), "Пароль указан неправильно");
    EXPECT_TRUE(keypad_.warning());

    // The next key starts over, with the caption back to normal.
    EXPECT_EQ(keypad_.pressPass(7), Action::none);
    EXPECT_EQ(keypad_.filledMarks(), 1);
    EXPECT_EQ(keypad_.caption(), "Введите пароль");
    EXPECT_FALSE(keypad_.warning());

    // Delete takes a digit back; with nothing typed it leads nowhere, and
    // tries are not counted.
    keypad_.pressPass(PassKeypad::kDeleteKey);
    EXPECT_EQ(keypad_.filledMarks(), 0);
    EXPECT_EQ(keypad_.pressPass(PassKeypad::kDeleteKey), Action::none);
    EXPECT_EQ(type("00000000"), Action::none);
    EXPECT_EQ(type("73"), Action::none);
    EXPECT_EQ(keypad_.pressPass(PassKeypad::kDeleteKey), Action::none);
    EXPECT_EQ(type("391"), Action::unlock);
    EXPECT_TRUE(lock_.pass());
}

TEST_F(AppLockTest, ASetUpThatFailsOrIsAbandonedLeavesTheLockOff) {
    setCode("7391");
    // A second code typed differently: the lock goes off, old code and all.
    keypad_.showPass(Mode::set);
    type("1111");
    EXPECT_EQ(type("2222"), Action::passwordsDiffer);
    EXPECT_FALSE(lock_.pass());
    EXPECT_FALSE(settings_.boolValue(core::keys::pass));
    EXPECT_FALSE(settings_.contains(core::keys::passwordHash));

    // Delete on nothing abandons the set-up, in either entry.
    keypad_.showPass(Mode::set);
    EXPECT_EQ(keypad_.pressPass(PassKeypad::kDeleteKey), Action::abandoned);
    keypad_.showPass(Mode::set);
    type("5");
    keypad_.pressPass(PassKeypad::kDeleteKey);
    EXPECT_EQ(type("5555"), Action::repeat);
    EXPECT_EQ(keypad_.pressPass(PassKeypad::kDeleteKey), Action::abandoned);
    EXPECT_FALSE(lock_.pass());
}

TEST_F(AppLockTest, ThePlainCodeOfAnEarlierVersionIsHashedAtItsFirstCheck) {
    settings_.setBool(core::keys::pass, true);
    settings_.setText(core::keys::password, "4820");
    ASSERT_TRUE(settings_.synchronize());
    EXPECT_TRUE(lock_.pass());
    EXPECT_FALSE(lock_.checkPassword("4821"));
    EXPECT_EQ(settings_.textValue(core::keys::password), "4820");

    EXPECT_TRUE(lock_.checkPassword("4820"));
    EXPECT_EQ(fileText().find("4820"), std::string::npos);
    EXPECT_TRUE(lock_.checkPassword("4820"));
    EXPECT_TRUE(lock_.pass());

    // A lock with no code left to check against would shut the parent out.
    settings_.remove(core::keys::passwordHash);
    EXPECT_FALSE(lock_.pass());
    EXPECT_FALSE(lock_.lockDue());
}

TEST_F(AppLockTest, TheLockAsksAgainOnlyAfterMoreThanFiveWholeSeconds) {
    // Off, it never asks.
    EXPECT_FALSE(lock_.lockDue());
    setCode("7391");
    // After a launch the moment of leaving is gone: it asks at once.
    settings_.remove(core::keys::deactive);
    EXPECT_TRUE(lock_.lockDue());

    settings_.setDate(core::keys::deactive, clock_.now());
    clock_.advance(milliseconds(5999));
    EXPECT_FALSE(lock_.lockDue());
    clock_.advance(milliseconds(1));
    EXPECT_TRUE(lock_.lockDue());

    // The reader's own dialog counts as being here.
    lock_.markActive();
    clock_.advance(milliseconds(5000));
    EXPECT_FALSE(lock_.lockDue());

    // A clock set back is no way round the code.
    clock_.advance(milliseconds(-60000));
    EXPECT_TRUE(lock_.lockDue());
}

}  // namespace
}  // namespace tilika::frame

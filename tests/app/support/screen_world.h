#pragma once

#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <QWidget>
#include <QtTest>

#include <filesystem>
#include <memory>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/ids.h"
#include "core/settings_file.h"
#include "diary/day_rows.h"
#include "diary/profiles.h"
#include "frame/pictures.h"
#include "frame/popup_panels.h"
#include "frame/textdata.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "platform/qt_pictures.h"

namespace tilika::test {

// What a screen stands on, as the program builds it, over a temporary
// folder: a clock pinned at 22 November 2026, 10:00 in Moscow, the pictures
// as built, a fresh settings file, a diary made from the template, the
// process state, the popups, and a window of a phone's size to lay screens
// over. A QtTest class derives from it beside QObject, opens the world in
// init() and closes it in cleanup(), so every test starts afresh.
class ScreenWorld {
protected:
    const std::filesystem::path kResources = TILIKA_TEST_RESOURCE_DIR;
    platform::ManualClock clock_{core::Date{}, "Europe/Moscow"};
    core::Dates dates_{clock_};
    frame::Pictures pictures_{kResources / "pictures"};
    platform::QtPictures qtPictures_{pictures_};
    std::unique_ptr<QTemporaryDir> dir_;
    std::unique_ptr<platform::DataFolders> folders_;
    std::unique_ptr<core::JsonSettingsStore> settings_;
    std::unique_ptr<core::DatabaseStore> database_;
    std::unique_ptr<core::AppState> state_;
    std::unique_ptr<core::Context> context_;
    std::unique_ptr<frame::Popups> popups_;
    std::unique_ptr<QWidget> window_;

    void openWorld() {
        clock_.set(*dates_.dateFromString("2026-11-22 10:00"));
        dir_ = std::make_unique<QTemporaryDir>();
        const std::filesystem::path data = dir_->path().toStdString();
        folders_ = std::make_unique<platform::DataFolders>(data, kResources);
        folders_->createLayout();
        settings_ = std::make_unique<core::JsonSettingsStore>(data / "settings.json");
        database_ = std::make_unique<core::DatabaseStore>(*folders_, dates_);
        database_->fromOldVersionNewRestore();
        state_ = std::make_unique<core::AppState>();
        context_ = std::make_unique<core::Context>(
            core::Context{clock_, *settings_, *folders_, dates_, *database_, *state_});
        popups_ =
            std::make_unique<frame::Popups>(*state_, *settings_, qtPictures_, textEnvironment());
        window_ = std::make_unique<QWidget>();
        window_->resize(360, 640);
        window_->show();
        QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
    }

    // Popups and the window go first: they may still answer into the rest.
    void closeWorld() {
        popups_.reset();
        window_.reset();
        context_.reset();
        database_.reset();
    }

    // A child as the profile form saves one; its guid.
    std::string addChild(const std::string& birth, const std::string& ves = "") {
        const std::string gid = core::newID();
        diary::Profiles profiles(*context_);
        diary::SetupRecord record = profiles.loadSetupData(gid);
        record.name = "Аня";
        record.sbirthdate = birth;
        record.ves = ves;
        if (!profiles.saveSetupData(diary::saveflag::cloud, record, gid)) {
            QTest::qFail("the child could not be saved", __FILE__, __LINE__);
        }
        return gid;
    }

    // A day's value in the diary, put there and read back.
    void putValue(const std::string& gid, const char* day, const char* type, const char* value) {
        diary::DayRows(*database_->connectToBase(), dates_)
            .insertValue(type, value, *dates_.dateFromString(day), gid, true, false);
    }
    std::string storedValue(const std::string& gid, const char* day, const char* type) {
        return diary::DayRows(*database_->connectToBase(), dates_)
            .getDateValue(*dates_.dateFromString(day), type, gid);
    }

    frame::TextPageEnvironment textEnvironment() const {
        return frame::TextPageEnvironment{*state_, pictures_, dates_, kResources / "content"};
    }

    // Pictures of what the tests draw are left in build/screenshots.
    static bool saveScreenshot(const QImage& image, const char* name) {
        QDir().mkpath(QStringLiteral(TILIKA_SCREENSHOT_DIR));
        return image.save(QStringLiteral(TILIKA_SCREENSHOT_DIR "/") + QString::fromLatin1(name));
    }
};

}  // namespace tilika::test

#pragma once

#include <QAbstractButton>
#include <QDir>
#include <QFrame>
#include <QPixmap>
#include <QTemporaryDir>
#include <QtTest>

#include <chrono>
#include <memory>
#include <string>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/ids.h"
#include "diary/day_rows.h"
#include "diary/profiles.h"
#include "frame/session.h"
#include "frame/view_controller.h"
#include "platform/clock.h"

namespace tilika::test {

// The whole program as a user starts it, over a fresh data folder, with the
// clock pinned in Moscow. A QtTest class derives from it beside QObject,
// calls openFolder() in init() and closeSession() in cleanup().
class SessionWorld {
protected:
    platform::ManualClock clock_{core::Date(std::chrono::milliseconds(1795338000000)),
                                 "Europe/Moscow"};
    std::unique_ptr<QTemporaryDir> dir_;
    std::unique_ptr<frame::Session> session_;
    frame::ViewController* root_ = nullptr;

    void openFolder() { dir_ = std::make_unique<QTemporaryDir>(); }
    void closeSession() {
        session_.reset();
        dir_.reset();
    }

    // Starts the program on the folder and waits for its window.
    void launch() {
        session_ = std::make_unique<frame::Session>(clock_, dir_->path().toStdString(),
                                                    TILIKA_TEST_RESOURCE_DIR);
        QCOMPARE(session_->start(), frame::Session::StartResult::Started);
        root_ = qobject_cast<frame::ViewController*>(session_->rootWindow());
        QVERIFY(root_ != nullptr);
        QVERIFY(QTest::qWaitForWindowExposed(root_));
    }

    // Starts the program and closes the welcome page of a first start.
    void launchPastWelcome() {
        launch();
        QFrame* welcome = nullptr;
        QTRY_VERIFY((welcome = root_->findChild<QFrame*>(QStringLiteral("firstStart"))));
        welcome->findChild<QAbstractButton*>(QStringLiteral("start"))->click();
        QTRY_VERIFY(root_->findChild<QFrame*>(QStringLiteral("firstStart")) == nullptr);
    }

    core::Context& context() { return session_->application().context(); }
    SQLite::Database& db() { return *context().database.connectToBase(); }

    // A child saved as a record from another device would be; its guid.
    std::string addChild(const QString& name, const std::string& birth = "2025-03-14") {
        diary::Profiles profiles(context());
        const std::string gid = core::newID();
        diary::SetupRecord record = profiles.loadSetupData(gid);
        record.name = name.toStdString();
        record.sbirthdate = birth;
        QTest::qVerify(profiles.saveSetupData(diary::saveflag::cloud, record, gid).ok(), "saved",
                       "", __FILE__, __LINE__);
        return gid;
    }

    // A diary value of a day ("yyyy-MM-dd") put in as the day editor would.
    void put(const std::string& gid, const char* date, const char* type, const std::string& v) {
        diary::DayRows(db(), context().dates)
            .insertValue(type, v, *context().dates.dateFromString(date), gid, true, false);
    }

    // Pictures of what the tests draw are left in build/screenshots.
    static QString screenshot(const char* name) {
        QDir().mkpath(QStringLiteral(TILIKA_SCREENSHOT_DIR));
        return QStringLiteral(TILIKA_SCREENSHOT_DIR "/") + QString::fromLatin1(name);
    }
    static void save(const QPixmap& shot, const char* name) { shot.save(screenshot(name)); }
};

}  // namespace tilika::test

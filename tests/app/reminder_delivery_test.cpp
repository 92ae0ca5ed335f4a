#include <QAbstractButton>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QMutex>
#include <QMutexLocker>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QUrl>
#include <QtTest>

#include <chrono>
#include <filesystem>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/folder_lock.h"
#include "core/notification_ledger.h"
#include "diary/day_rows.h"
#include "frame/session.h"
#include "platform/clock.h"
#include "platform/desktop_notifier.h"
#include "platform/folders.h"
#include "support/private_bus.h"

using namespace tilika;

namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");

struct NotifyCall {
    QString appName;
    uint replacesId = 0;
    QString icon;
    QString summary;
    QString body;
    QStringList actions;
    QVariantMap hints;
    int expireTimeout = -1;
};

}  // namespace

// A notification service that keeps what it is asked to show. It lives on a
// thread of its own, so that the test's main thread may wait for a call or a
// process while the service answers.
class FakeNotifications : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    void setCapabilities(QStringList capabilities) {
        const QMutexLocker lock(&mutex_);
        capabilities_ = std::move(capabilities);
    }
    QList<NotifyCall> calls() const {
        const QMutexLocker lock(&mutex_);
        return calls_;
    }
    // The service's signal that the user clicked notification `id`.
    void click(uint id) {
        QMetaObject::invokeMethod(this, [this, id] { emit ActionInvoked(id, "default"); });
    }
    void clear() {
        const QMutexLocker lock(&mutex_);
        calls_.clear();
    }

public slots:
    QStringList GetCapabilities() {
        const QMutexLocker lock(&mutex_);
        return capabilities_;
    }
    uint Notify(const QString& appName, uint replacesId, const QString& icon,
                const QString& summary, const QString& body, const QStringList& actions,
                const QVariantMap& hints, int expireTimeout) {
        const QMutexLocker lock(&mutex_);
        calls_.append({appName, replacesId, icon, summary, body, actions, hints, expireTimeout});
        return static_cast<uint>(calls_.size()) + 40;
    }
    void CloseNotification(uint) {}

signals:
    void ActionInvoked(uint id, const QString& actionKey);

private:
    mutable QMutex mutex_;
    QStringList capabilities_;
    QList<NotifyCall> calls_;
};

class ReminderDeliveryTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        if (!test::busDaemonInstalled()) {
            QSKIP("dbus-daemon is not installed");
        }
        address_ = test::startPrivateBus(daemon_);
        QVERIFY2(!address_.isEmpty(), "dbus-daemon printed no address");
        // The program's own notifier talks to the session bus: ours.
        qputenv("DBUS_SESSION_BUS_ADDRESS", address_.toUtf8());

        server_ = std::make_unique<QDBusConnection>(
            QDBusConnection::connectToBus(address_, QStringLiteral("fake-server")));
        QVERIFY(server_->isConnected());
        // Registered before it moves, so that what the bus hangs on it moves
        // along.
        fake_ = new FakeNotifications;
        QObject::connect(&serverThread_, &QThread::finished, fake_, &QObject::deleteLater);
        QVERIFY(server_->registerObject(
            kPath, fake_, QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
        fake_->moveToThread(&serverThread_);
        serverThread_.start();
        QVERIFY(server_->registerService(kService));
    }

    void cleanupTestCase() {
        if (server_) {
            server_->unregisterService(kService);
            server_->unregisterObject(kPath);
            server_.reset();
            QDBusConnection::disconnectFromBus(QStringLiteral("fake-server"));
        }
        serverThread_.quit();
        serverThread_.wait();
        if (daemon_.state() != QProcess::NotRunning) {
            daemon_.terminate();
            QVERIFY(daemon_.waitForFinished(10000));
        }
    }

    void init() { fake_->clear(); }

    void notifyCarriesTheReminderAsTheDesktopExpectsIt() {
        const QDBusConnection client = QDBusConnection::connectToBus(address_, "markup-client");
        const std::filesystem::path icon = "/opt/tilika/pictures/c-ne-alarm128.svg";
        const QString reminder = QStringLiteral("Аня: <b>сироп</b> & \"вода\"");

        fake_->setCapabilities({"body", "body-markup", "actions"});
        platform::DesktopNotifier markup(icon, client);
        QVERIFY(markup.notify(reminder, true));
        QCOMPARE(fake_->calls().size(), 1);
        const NotifyCall call = fake_->calls().front();
        QCOMPARE(call.appName, QStringLiteral("Тилика"));
        QCOMPARE(call.replacesId, 0u);
        QCOMPARE(call.icon, QStringLiteral("file:///opt/tilika/pictures/c-ne-alarm128.svg"));
        QCOMPARE(call.summary, QStringLiteral("Напоминание"));
        QCOMPARE(call.body, QStringLiteral("Аня: &lt;b&gt;сироп&lt;/b&gt; &amp; &quot;вода&quot;"));
        QCOMPARE(call.actions, (QStringList{"default", "Открыть"}));
        QCOMPARE(call.hints.value("urgency").metaType().id(), QMetaType::UChar);
        QCOMPARE(call.hints.value("urgency").toInt(), 1);
        QCOMPARE(call.hints.value("sound-name").toString(), QStringLiteral("alarm-clock-elapsed"));
        QCOMPARE(call.hints.value("desktop-entry").toString(), QStringLiteral("tilika"));
        QCOMPARE(call.expireTimeout, 0);

        // A click on someone else's notification is not ours; one on ours
        // brings the program forward.
        QSignalSpy activated(&markup, &platform::DesktopNotifier::activated);
        fake_->click(7);
        fake_->click(41);
        QVERIFY(activated.wait(5000));
        QTest::qWait(100);
        QCOMPARE(activated.size(), 1);

        // A service that shows plain text gets the text as it is, however
        // long, and the timer's notifications have nothing to click.
        fake_->clear();
        fake_->setCapabilities({"body"});
        const QDBusConnection plainClient = QDBusConnection::connectToBus(address_, "plain-client");
        platform::DesktopNotifier plain(icon, plainClient);
        const QString longText = reminder + QString(5000, QChar(u'я'));
        QVERIFY(plain.notify(longText, false));
        QCOMPARE(fake_->calls().size(), 1);
        QCOMPARE(fake_->calls().front().body, longText);
        QVERIFY(fake_->calls().front().actions.isEmpty());
    }

    void theTimerRunShowsADueReminderOnceAndOnlyWhenNobodyElseDoes() {
        fake_->setCapabilities({"body"});
        QTemporaryDir data;
        const std::filesystem::path library = scheduleDueReminder(data.path());

        // The open program delivers its own reminders.
        {
            core::FolderLock program;
            QCOMPARE(program.acquire(library / "tilika.lock"), core::FolderLock::Result::Acquired);
            QCOMPARE(deliverDue(data.path(), address_), 0);
            QVERIFY(fake_->calls().isEmpty());
        }

        QCOMPARE(deliverDue(data.path(), address_), 0);
        QCOMPARE(deliverDue(data.path(), address_), 0);
        QCOMPARE(fake_->calls().size(), 1);
        QCOMPARE(fake_->calls().front().body, QStringLiteral("Аня: прогулка & сон"));
        QVERIFY(fake_->calls().front().actions.isEmpty());
        QVERIFY(!pending(library));

        // A folder that can't be read.
        QCOMPARE(deliverDue(data.path() + "/nowhere", address_), 1);
    }

    void withoutANotificationServiceTheReminderWaitsForTheProgram() {
        QTemporaryDir data;
        const std::filesystem::path library = scheduleDueReminder(data.path());
        server_->unregisterService(kService);
        const int noServer = deliverDue(data.path(), address_);
        QVERIFY(server_->registerService(kService));
        QCOMPARE(noServer, 75);
        QCOMPARE(deliverDue(data.path(), "unix:path=" + data.path() + "/no-bus"), 75);
        QVERIFY(fake_->calls().isEmpty());
        QVERIFY(pending(library));
    }

    void theOpenProgramShowsADueReminderInItsWindow() {
        fake_->setCapabilities({"body"});
        QTemporaryDir data;
        const std::filesystem::path library = scheduleDueReminder(data.path());
        frame::Session session(clock_, data.path().toStdString(), TILIKA_TEST_RESOURCE_DIR);
        QCOMPARE(session.start(), frame::Session::StartResult::Started);
        QTRY_COMPARE(QGuiApplication::applicationState(), Qt::ApplicationActive);

        QMessageBox* box = nullptr;
        QTRY_VERIFY((box = session.rootWindow()->findChild<QMessageBox*>()) != nullptr);
        QCOMPARE(box->text(), QStringLiteral("Напоминание"));
        QCOMPARE(box->informativeText(), QStringLiteral("Аня: прогулка & сон"));
        QVERIFY(fake_->calls().isEmpty());
        QVERIFY(!pending(library));
    }

    // The first rebuild that has something to remind of offers the timer
    // that reminds while the program is closed, once, and sets it up on yes.
    void theProgramOffersTheTimerOnce() {
        QTemporaryDir tools;
        const QString calls = tools.path() + "/calls";
        QFile script(tools.path() + "/systemctl");
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write(("#!/bin/sh\necho \"$*\" >> '" + calls + "'\n").toUtf8());
        script.close();
        script.setPermissions(script.permissions() | QFile::ExeOwner);
        const QByteArray path = qgetenv("PATH");
        const QByteArray config = qgetenv("XDG_CONFIG_HOME");
        qputenv("PATH", tools.path().toUtf8() + ":" + path);
        qputenv("XDG_CONFIG_HOME", (tools.path() + "/config").toUtf8());
        auto restore = qScopeGuard([&] {
            qputenv("PATH", path);
            config.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", config);
        });
        auto recorded = [&] {
            QFile file(calls);
            return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
        };

        QTemporaryDir data;
        auto offer = [&](const char* answer) {
            frame::Session session(clock_, data.path().toStdString(), TILIKA_TEST_RESOURCE_DIR);
            QCOMPARE(session.start(), frame::Session::StartResult::Started);
            core::Context& context = session.application().context();
            SQLite::Database* db = context.database.connectToBase();
            QVERIFY(db != nullptr);
            diary::DayRows(*db, context.dates)
                .insertValue("alarm", R"([{"time":"10:00","temp":"прогулка"}])",
                             context.dates.addDays(clock_.now(), 1), "child", true, false);
            session.application().rebuildNotifications();
            if (answer == nullptr) {
                QTest::qWait(300);
                QVERIFY(session.rootWindow()->findChild<QMessageBox*>() == nullptr);
                return;
            }
            QMessageBox* box = nullptr;
            QTRY_VERIFY((box = session.rootWindow()->findChild<QMessageBox*>()) != nullptr);
            QVERIFY(box->informativeText().startsWith("Показывать напоминания"));
            for (QAbstractButton* button : box->buttons()) {
                if (button->text() == QString::fromUtf8(answer)) {
                    button->click();
                }
            }
            if (QString::fromUtf8(answer) == "Да") {
                QTRY_VERIFY(
                    session.rootWindow()->findChildren<QMessageBox*>().size() == 1 &&
                    session.rootWindow()->findChild<QMessageBox*>()->informativeText().startsWith(
                        "Готово"));
            }
        };

        offer("Нет");
        QCOMPARE(recorded(), QStringLiteral("--user show-environment\n"));
        offer(nullptr);  // asked once: the same folder is not asked again
        QCOMPARE(recorded().count("show-environment"), 1);

        data.remove();
        QVERIFY(QDir().mkpath(data.path()));
        offer("Да");
        QVERIFY(
            recorded().endsWith("--user show-environment\n--user daemon-reload\n"
                                "--user enable --now tilika-reminders.timer\n"));
        QVERIFY(QFile::exists(tools.path() + "/config/systemd/user/tilika-reminders.timer"));
    }

private:
    // A data folder whose reminder fell due a minute ago; its Library.
    std::filesystem::path scheduleDueReminder(const QString& dataDir) {
        const std::filesystem::path library =
            std::filesystem::path(dataDir.toStdString()) / "Library";
        std::filesystem::create_directories(library);
        core::LedgerNotifier ledger(library, dates_);
        ledger.schedule({clock_.now() - std::chrono::minutes(1), clock_.timeZoneId(), "Открыть",
                         "Аня: прогулка & сон", ""});
        return library;
    }

    bool pending(const std::filesystem::path& library) {
        core::LedgerNotifier ledger(library, dates_);
        return ledger.nextFireDate().has_value();
    }

    // The real program, as the timer starts it: no display, our own bus.
    static int deliverDue(const QString& dataDir, const QString& busAddress) {
        QProcess tilika;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
            environment.remove(name);
        }
        environment.insert("DBUS_SESSION_BUS_ADDRESS", busAddress);
        tilika.setProcessEnvironment(environment);
        tilika.start(TILIKA_EXECUTABLE, {"--deliver-due", "--data-dir", dataDir});
        if (!tilika.waitForFinished(30000) || tilika.exitStatus() != QProcess::NormalExit) {
            return -1;
        }
        return tilika.exitCode();
    }

    platform::SystemClock clock_;
    core::Dates dates_{clock_};
    QProcess daemon_;
    QString address_;
    std::unique_ptr<QDBusConnection> server_;
    QThread serverThread_;
    FakeNotifications* fake_ = nullptr;  // deleted in its own thread
};

QTEST_MAIN(ReminderDeliveryTest)
#include "reminder_delivery_test.moc"

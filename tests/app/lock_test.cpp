#include <QAbstractButton>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QtTest>

#include <algorithm>
#include <string>
#include <vector>

#include "core/settings_file.h"
#include "core/settings_keys.h"
#include "frame/app_lock.h"
#include "frame/look.h"
#include "frame/main_menu.h"
#include "frame/password_view.h"
#include "platform/fingerprint_reader.h"
#include "platform/log.h"
#include "platform/qt_pictures.h"
#include "support/private_bus.h"
#include "support/session_world.h"

using namespace tilika;

namespace {

const QString kDevicePath = QStringLiteral("/net/reactivated/Fprint/Device/0");

}  // namespace

// A fingerprint service with one reader, answering every finger as told.
class FakeManager : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "net.reactivated.Fprint.Manager")

public:
    bool hasDevice = true;

public slots:
    QDBusObjectPath GetDefaultDevice() {
        if (!hasDevice) {
            sendErrorReply(QStringLiteral("net.reactivated.Fprint.Error.NoSuchDevice"),
                           QStringLiteral("No devices available"));
            return {};
        }
        return QDBusObjectPath(kDevicePath);
    }
};

class FakeDevice : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "net.reactivated.Fprint.Device")

public:
    QStringList fingers{QStringLiteral("right-index-finger")};
    // What the reader reports once a finger is asked for, in order.
    QStringList outcome;
    QStringList calls;

public slots:
    QStringList ListEnrolledFingers(const QString& /*user*/) { return fingers; }
    void Claim(const QString& /*user*/) { calls << QStringLiteral("Claim"); }
    void Release() { calls << QStringLiteral("Release"); }
    void VerifyStop() { calls << QStringLiteral("VerifyStop"); }
    void VerifyStart(const QString& finger) {
        calls << QStringLiteral("VerifyStart ") + finger;
        QTimer::singleShot(20, this, [this] {
            for (int i = 0; i < outcome.size(); ++i) {
                emit VerifyStatus(outcome[i], i + 1 == outcome.size());
            }
        });
    }

signals:
    void VerifyStatus(const QString& result, bool done);
};

class LockTest : public QObject, protected test::SessionWorld {
    Q_OBJECT

private slots:
    void initTestCase() {
        platform::setLogSink([this](std::string_view line) { logged_.emplace_back(line); });
        if (!test::busDaemonInstalled()) {
            return;
        }
        address_ = test::startPrivateBus(daemon_);
        QVERIFY2(!address_.isEmpty(), "dbus-daemon printed no address");
        QDBusConnection server = QDBusConnection::connectToBus(address_, QStringLiteral("fprint"));
        QVERIFY(server.isConnected());
        QVERIFY(server.registerObject(QStringLiteral("/net/reactivated/Fprint/Manager"), &manager_,
                                      QDBusConnection::ExportAllSlots));
        QVERIFY(server.registerObject(
            kDevicePath, &device_,
            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
        QVERIFY(server.registerService(QStringLiteral("net.reactivated.Fprint")));
    }

    void cleanupTestCase() {
        platform::setLogSink({});
        QDBusConnection::disconnectFromBus(QStringLiteral("fprint"));
        if (daemon_.state() != QProcess::NotRunning) {
            daemon_.terminate();
            QVERIFY(daemon_.waitForFinished(10000));
        }
    }

    void init() {
        openFolder();
        logged_.clear();
    }
    void cleanup() { closeSession(); }

    void theFingerprintOpensTheLockAndAStrangeOneDoesNot() {
        if (address_.isEmpty()) {
            QSKIP("dbus-daemon is not installed");
        }
        QWidget window;
        window.resize(360, 640);
        core::JsonSettingsStore settings(std::filesystem::path(dir_->path().toStdString()) /
                                         "settings.json");
        frame::AppLock lock(settings, clock_);
        frame::Pictures pictures(std::filesystem::path(TILIKA_TEST_RESOURCE_DIR) / "pictures");
        platform::QtPictures qtPictures(pictures);
        core::AppState state;
        platform::FingerprintReader reader(QDBusConnection::connectToBus(address_, "fp-client"));
        frame::passwordView keypad({state, lock, qtPictures, &reader}, &window);
        QSignalSpy finished(&keypad, &frame::passwordView::finished);
        window.show();

        // A finger that isn't enrolled: the keypad stays and asks for the code.
        manager_.hasDevice = true;
        device_.outcome = {"verify-retry-scan", "verify-no-match"};
        device_.calls.clear();
        keypad.showPass(frame::PassKeypad::Mode::check);
        QTRY_VERIFY(device_.calls.contains("VerifyStart any"));
        auto* touchKey = frame::childWithTag(&keypad, frame::passwordView::kFingerprintTag);
        QVERIFY(touchKey->isVisible());
        auto* reason = keypad.findChild<QLabel*>("touchReason");
        QCOMPARE(reason->text(), QStringLiteral("Для авторизации приложите палец к сканеру"));
        QTRY_VERIFY(device_.calls.contains("Release"));
        QTRY_VERIFY(!reason->isVisible());
        QVERIFY(keypad.isVisible());
        QCOMPARE(finished.size(), 0);
        QVERIFY(settings.contains(core::keys::deactive));
        QVERIFY(logged("verify-no-match"));

        // The right finger, asked for by its key, lets the parent in.
        device_.outcome = {"verify-match"};
        device_.calls.clear();
        settings.remove(core::keys::deactive);
        QTest::mouseClick(static_cast<QAbstractButton*>(touchKey), Qt::LeftButton);
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.front().front().value<frame::PassKeypad::Action>(),
                 frame::PassKeypad::Action::unlock);
        QVERIFY(!keypad.isVisible());
        QCOMPARE(settings.dateValue(core::keys::deactive), clock_.now());
        QVERIFY(logged("User is authenticated successfully"));
        QTRY_COMPARE(device_.calls,
                     (QStringList{"Claim", "VerifyStart any", "VerifyStop", "Release"}));

        // Setting a code has no fingerprint key; a machine without a reader
        // never shows it.
        keypad.showPass(frame::PassKeypad::Mode::set);
        QVERIFY(!touchKey->isVisible());
        manager_.hasDevice = false;
        device_.calls.clear();
        keypad.showPass(frame::PassKeypad::Mode::check);
        QTRY_VERIFY(logged("Can not evaluate Touch ID"));
        QVERIFY(!touchKey->isVisible());
        QVERIFY(device_.calls.isEmpty());
    }

    void theSwitchSetsACodeThatTheLaunchAndALongAbsenceAskFor() {
        launchPastWelcome();
        QAbstractButton* toggle = root_->menuTab()->mainRow(52);
        toggle->click();
        frame::passwordView* keypad = root_->passDialog();
        QVERIFY(keypad != nullptr && keypad->isVisible());
        QCOMPARE(caption(), QStringLiteral("Введите новый пароль"));
        // Digits come from the keyboard as well as the keys.
        QTest::keyClicks(keypad, "7391");
        QCOMPARE(caption(), QStringLiteral("Введите пароль еще раз"));
        for (const int digit : {7, 3, 9, 1}) {
            click(300 + digit);
        }
        QVERIFY(!keypad->isVisible());
        auto* box = root_->findChild<QMessageBox*>();
        QVERIFY(box != nullptr);
        QCOMPARE(box->text(), QStringLiteral("На вход в программу установлен пароль."));
        box->close();
        QVERIFY(toggle->isChecked());

        // A launch asks at once; nothing but the code gets past.
        relaunch();
        root_->activateWindow();
        QTRY_VERIFY(root_->passDialog() != nullptr && root_->passDialog()->isVisible());
        keypad = root_->passDialog();
        QTest::keyClick(keypad, Qt::Key_Escape);
        QTest::keyClick(keypad, Qt::Key_Backspace);
        QVERIFY(keypad->isVisible());
        QTest::keyClicks(keypad, "1234");
        QCOMPARE(caption(), QStringLiteral("Пароль указан неправильно"));
        save(root_->grab(), "lock_keypad.png");
        QTest::keyClicks(keypad, "7391");
        QVERIFY(!keypad->isVisible());

        // Away five seconds: the cover goes and nothing asks. Away six: it asks.
        root_->lockView();
        QVERIFY(root_->lockCover() != nullptr);
        QCOMPARE(frame::tag(root_->lockCover()), -9999);
        save(root_->grab(), "lock_cover.png");
        auto& settings = context().settings;
        settings.setDate(core::keys::deactive, clock_.now());
        clock_.advance(std::chrono::seconds(5));
        root_->becomeActive();
        QTRY_VERIFY(root_->lockCover() == nullptr);
        QTest::qWait(300);
        QVERIFY(!keypad->isVisible());
        root_->lockView();
        clock_.advance(std::chrono::seconds(6));
        root_->becomeActive();
        root_->becomeActive();
        QVERIFY(root_->lockCover() != nullptr);
        QTRY_VERIFY(keypad->isVisible());
        QTRY_VERIFY(root_->lockCover() == nullptr);

        // Off needs no code, and forgets it.
        QTest::keyClicks(keypad, "7391");
        root_->menuTab()->mainRow(52)->click();
        QVERIFY(!settings.boolValue(core::keys::pass));
        QVERIFY(!settings.contains(core::keys::passwordHash));
    }

private:
    QString caption() const {
        return root_->passDialog()->findChild<QLabel*>("passCaption")->text();
    }
    void click(int tagNumber) {
        auto* key =
            static_cast<QAbstractButton*>(frame::childWithTag(root_->passDialog(), tagNumber));
        QTest::mouseClick(key, Qt::LeftButton);
    }
    bool logged(const std::string& line) const {
        return std::find(logged_.begin(), logged_.end(), line) != logged_.end();
    }
    void relaunch() {
        session_.reset();
        launch();
    }

    QProcess daemon_;
    QString address_;
    FakeManager manager_;
    FakeDevice device_;
    std::vector<std::string> logged_;
};

QTEST_MAIN(LockTest)
#include "lock_test.moc"

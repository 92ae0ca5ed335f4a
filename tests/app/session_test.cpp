#include "frame/session.h"

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QListWidget>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QtTest>

#include <fstream>

#include "frame/main_menu.h"
#include "frame/view_controller.h"
#include "platform/clock.h"

using namespace tilika;

class SessionTest : public QObject {
    Q_OBJECT

private slots:
    void init() {
        dir_ = std::make_unique<QTemporaryDir>();
        session_ = std::make_unique<frame::Session>(clock_, dir_->path().toStdString(),
                                                    TILIKA_TEST_RESOURCE_DIR);
        QCOMPARE(session_->start(), frame::Session::StartResult::Started);
    }

    void cleanup() {
        session_.reset();
        dir_.reset();
    }

    void showsTheRootScreenWithTheMenu() {
        auto* root = qobject_cast<frame::ViewController*>(session_->rootWindow());
        QVERIFY(root != nullptr);
        QVERIFY(root->isVisible());
        QCOMPARE(root->windowTitle(), QStringLiteral("Тилика"));
        QCOMPARE(root->gCurTab(), 0);
        QVERIFY(root->menuTab()->isVisible());
    }

    void refusesASecondProgramOnTheSameFolder() {
        frame::Session second(clock_, dir_->path().toStdString(), TILIKA_TEST_RESOURCE_DIR);
        QCOMPARE(second.start(), frame::Session::StartResult::AlreadyRunning);
        QVERIFY(second.rootWindow() == nullptr);
        session_.reset();
        frame::Session third(clock_, dir_->path().toStdString(), TILIKA_TEST_RESOURCE_DIR);
        QCOMPARE(third.start(), frame::Session::StartResult::Started);
    }

    void drawsLegibleText() {
        const QImage image = session_->rootWindow()->grab().toImage();
        QCOMPARE(image.size(), QSize(360, 640));
        // Text means dark pixels on the light background; boxes for missing
        // glyphs would still be dark, so also check the title's glyphs are
        // found in the font.
        int dark = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                dark += qGray(image.pixel(x, y)) < 100 ? 1 : 0;
            }
        }
        QVERIFY(dark > 1000);
        QFontMetrics metrics(session_->rootWindow()->font());
        for (QChar c : QStringLiteral("Тилика Дневник")) {
            QVERIFY2(metrics.inFont(c), qPrintable(QString("no glyph for ") + c));
        }
    }

    void alertReportsTheButtonPressed() {
        int pressed = -1;
        session_->shell().showAlert(
            {"День рождения", "Текст", {"Не сейчас", "Так и быть"}, 13, [&](int button) {
                 pressed = button;
             }});
        QMessageBox* box = nullptr;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* candidate = qobject_cast<QMessageBox*>(widget);
                candidate && candidate->isVisible()) {
                box = candidate;
            }
        }
        QVERIFY(box != nullptr);
        QVERIFY(!session_->shell().rootIsCurrent());
        QAbstractButton* agree = nullptr;
        for (QAbstractButton* button : box->buttons()) {
            if (button->text() == QStringLiteral("Так и быть")) {
                agree = button;
            }
        }
        QVERIFY(agree != nullptr);
        agree->click();
        QCOMPARE(pressed, 1);
        QTRY_VERIFY(session_->shell().rootIsCurrent());
    }

    void tellsOnceThatDamagedSettingsWereReset() {
        session_.reset();
        const std::filesystem::path data = dir_->path().toStdString();
        const auto settings = data / "Library" / "settings.json";
        std::ofstream(settings) << "{\"fon\": 3,";
        const QString told =
            QStringLiteral("Настройки программы были повреждены и сброшены; копия сохранена: ") +
            QString::fromStdString((data / "Library" / "settings.json.damaged").string());

        session_ = std::make_unique<frame::Session>(clock_, data, TILIKA_TEST_RESOURCE_DIR);
        QCOMPARE(session_->start(), frame::Session::StartResult::Started);
        QMessageBox* box = nullptr;
        QTRY_VERIFY((box = shownMessage()) != nullptr);
        QCOMPARE(box->informativeText(), told);
        box->buttons().front()->click();
        QTRY_VERIFY(shownMessage() == nullptr);

        // The settings read well now: the next start has nothing to tell.
        session_.reset();
        session_ = std::make_unique<frame::Session>(clock_, data, TILIKA_TEST_RESOURCE_DIR);
        QCOMPARE(session_->start(), frame::Session::StartResult::Started);
        QTest::qWait(50);
        QVERIFY(shownMessage() == nullptr);
    }

private:
    static QMessageBox* shownMessage() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* box = qobject_cast<QMessageBox*>(widget); box && box->isVisible()) {
                return box;
            }
        }
        return nullptr;
    }

    platform::ManualClock clock_{core::Date(std::chrono::milliseconds(1795338000000)),
                                 "Europe/Moscow"};
    std::unique_ptr<QTemporaryDir> dir_;
    std::unique_ptr<frame::Session> session_;
};

QTEST_MAIN(SessionTest)
#include "session_test.moc"

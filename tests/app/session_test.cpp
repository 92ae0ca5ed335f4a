#include "frame/main_window.h"

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QListWidget>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QtTest>

#include "frame/session.h"
#include "platform/clock.h"

using namespace tilika;

class MainWindowTest : public QObject {
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

    void showsTheMenuRowsBuiltAtLaunch() {
        auto* window = qobject_cast<frame::MainWindow*>(session_->rootWindow());
        QVERIFY(window != nullptr);
        QVERIFY(window->isVisible());
        QCOMPARE(window->windowTitle(), QStringLiteral("Тилика"));

        const auto& rows = session_->application().state().menuItems;
        QListWidget* list = window->menuList();
        QCOMPARE(list->count(), static_cast<int>(rows.size()));
        QCOMPARE(list->item(0)->text(), QStringLiteral("Анкетные данные на сегодня"));
        QCOMPARE(list->item(0)->data(Qt::UserRole).toInt(), 1);
        // Nameless rows show their comment.
        QCOMPARE(list->item(list->count() - 2)->text(),
                 QStringLiteral("Показывать контекстную рекламу"));
        QVERIFY(list->item(list->count() - 1)->text().startsWith(QStringLiteral("Версия ")));
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

private:
    platform::ManualClock clock_{core::Date(std::chrono::milliseconds(1795338000000)),
                                 "Europe/Moscow"};
    std::unique_ptr<QTemporaryDir> dir_;
    std::unique_ptr<frame::Session> session_;
};

QTEST_MAIN(MainWindowTest)
#include "main_window_test.moc"

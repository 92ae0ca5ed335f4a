#include <QCalendarWidget>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QTimeEdit>
#include <QToolButton>
#include <QtTest>

#include "core/app_state.h"
#include "core/dates.h"
#include "core/settings_file.h"
#include "frame/look.h"
#include "frame/pictures.h"
#include "frame/popup_panels.h"
#include "platform/clock.h"
#include "platform/qt_pictures.h"
#include "platform/settings_store.h"
#include "support/screen_world.h"

using namespace tilika;

class PopupsTest : public QObject, protected test::ScreenWorld {
    Q_OBJECT

private slots:
    void init() { openWorld(); }
    void cleanup() { closeWorld(); }

    void answersAQuestion() {
        std::optional<std::pair<int, int>> answer;
        popups_->messageAsk(QStringLiteral("Удалить запись?"), QStringLiteral("Дневник"), 5,
                            window_.get(), [&](int tag, int button) {
                                answer = {tag, button};
                            });
        QMessageBox* box = window_->findChild<QMessageBox*>();
        QVERIFY(box != nullptr);
        QAbstractButton* yes = nullptr;
        for (QAbstractButton* button : box->buttons()) {
            if (button->text() == QStringLiteral("Да")) {
                yes = button;
            }
        }
        QVERIFY(yes != nullptr);
        yes->click();
        QVERIFY(answer.has_value());
        QCOMPARE(answer->first, 5);
        QCOMPARE(answer->second, 1);
    }

    void picksADateAndATime() {
        std::optional<std::pair<int, QDateTime>> picked;
        auto action = [&](int flag, const QVariant& value) { picked = {flag, value.toDateTime()}; };
        const QDateTime old(QDate(2026, 11, 22), QTime(10, 0));
        popups_->popupDetail(frame::popupkind::date, QStringLiteral("Дата замера"), old,
                             window_.get(), 3, action);
        QVERIFY(state_->popupShown);
        QCOMPARE(frame::tag(popups_->panel()), frame::kPopupPanelTag);
        auto* calendar = popups_->panel()->findChild<QCalendarWidget*>();
        QVERIFY(calendar != nullptr);
        QCOMPARE(calendar->selectedDate(), QDate(2026, 11, 22));
        calendar->setSelectedDate(QDate(2026, 11, 25));
        popups_->panel()->findChild<QPushButton*>(QStringLiteral("ok"))->click();
        QVERIFY(picked.has_value());
        QCOMPARE(picked->first, 3);
        QCOMPARE(picked->second.date(), QDate(2026, 11, 25));
        QVERIFY(!state_->popupShown);

        popups_->popupDetail(frame::popupkind::time, QStringLiteral("Время"), old, window_.get(), 4,
                             action);
        QVERIFY(popups_->panel()->findChild<QCalendarWidget*>() == nullptr);
        popups_->panel()->findChild<QTimeEdit*>()->setTime(QTime(8, 30));
        popups_->panel()->findChild<QPushButton*>(QStringLiteral("ok"))->click();
        QCOMPARE(picked->second.time(), QTime(8, 30));
        QCOMPARE(picked->second.date(), QDate(2026, 11, 22));
    }

    void theLengthWheelCorrectsItself() {
        QString value;
        popups_->popupDetail(frame::popupkind::length, QStringLiteral("Длительность"),
                             QStringLiteral("13<td>дни"), window_.get(), 1,
                             [&](int, const QVariant& result) { value = result.toString(); });
        auto* count = popups_->panel()->findChild<QListWidget*>(QStringLiteral("wheel0"));
        auto* word = popups_->panel()->findChild<QListWidget*>(QStringLiteral("wheel1"));
        QCOMPARE(count->currentItem()->text(), QStringLiteral("13"));
        word->setCurrentRow(1);
        QCOMPARE(count->currentItem()->text(), QStringLiteral("12"));
        popups_->panel()->findChild<QPushButton*>(QStringLiteral("ok"))->click();
        QCOMPARE(value, QStringLiteral("12<td>недели"));
    }

    void menuGivesTheCaptionAfterClosing() {
        QString sender;
        QString caption;
        popups_->popupMenu(
            QStringLiteral("Редактировать<td>pm-edit.png<tr>Удалить<td>pm-clear.png"
                           "<tr>Поделиться<tr>Отмена"),
            window_.get(),
            [&](const QString& s, const QString& c) {
                sender = s;
                caption = c;
            },
            QStringLiteral("7"));
        QCOMPARE(popups_->ppFlag(), frame::popupkind::menu);
        // Four items: two rows of a phone-wide panel.
        QVERIFY(popups_->panel()->width() > 300);
        saveScreenshot(window_->grab().toImage(), "popup_menu.png");
        QToolButton* remove = nullptr;
        for (auto* button : popups_->panel()->findChildren<QToolButton*>()) {
            if (button->text() == QStringLiteral("Удалить")) {
                remove = button;
            }
        }
        QVERIFY(remove != nullptr);
        remove->click();
        QVERIFY(!popups_->isOpen());
        QVERIFY(caption.isEmpty());
        QTRY_COMPARE(caption, QStringLiteral("Удалить"));
        QCOMPARE(sender, QStringLiteral("7"));
    }

    void listsPromptsAndTabletPanels() {
        QString row;
        popups_->popupDetailList(QStringLiteral("Фильтр сообщений"), QStringLiteral("4"),
                                 window_.get(), 2,
                                 [&](int, const QVariant& value) { row = value.toString(); },
                                 {{"Все", "0"}, {"Вопросы", "3"}, {"Ответы", "4"}});
        QCOMPARE(popups_->panel()->findChild<QListWidget*>()->currentRow(), 2);
        popups_->panel()->findChild<QPushButton*>(QStringLiteral("ok"))->click();
        QCOMPARE(row, QStringLiteral("2"));

        bool committed = false;
        popups_->askText(QStringLiteral("Заметка"), QStringLiteral("Коротко"), {},
                         QStringLiteral("Сохранить"), window_.get(), [&] { committed = true; });
        QCOMPARE(popups_->askTextGetResult(), QString(""));
        QVERIFY(!popups_->askTextGetResult().isNull());
        auto* field = popups_->panel()->findChild<QTextEdit*>();
        QCOMPARE(frame::tag(field), frame::kAskTextFieldTag);
        field->insertPlainText(QStringLiteral("Первый зуб"));
        popups_->panel()->findChild<QPushButton*>(QStringLiteral("ok"))->click();
        QVERIFY(committed);
        QCOMPARE(popups_->askTextGetResult(), QStringLiteral("Первый зуб"));
        popups_->popupWindowHide();
        QCOMPARE(popups_->askTextGetResult(), QString(""));

        // On a tablet's window the panel keeps its own width, in the middle.
        window_->resize(1024, 768);
        popups_->popupTooltip(QStringLiteral("empty-u"), window_.get());
        QCOMPARE(popups_->panel()->width(), 340);
        QCOMPARE(popups_->panel()->x() + popups_->panel()->width() / 2, 512);
        // A tap beside a tooltip closes it.
        QTest::mouseClick(popups_->dimLayer(), Qt::LeftButton, {}, QPoint(10, 10));
        QVERIFY(!popups_->isOpen());
    }

    void pagesBlurAndAFadingClose() {
        QFrame* panel = popups_->popupWindowCreate(300, window_.get());
        QVERIFY(panel != nullptr);
        QVERIFY(state_->blurShown);
        QStackedWidget* pages = popups_->popupPages();
        pages->addWidget(new QLabel(QStringLiteral("Первая")));
        pages->addWidget(new QLabel(QStringLiteral("Вторая")));
        popups_->popupWindowShow();
        popups_->ppNext();
        QCOMPARE(pages->currentIndex(), 1);
        popups_->ppNext();
        QCOMPARE(pages->currentIndex(), 1);
        popups_->ppBack();
        QCOMPARE(pages->currentIndex(), 0);

        popups_->popupFreeWindowCreate(200, window_.get());
        QVERIFY(!state_->blurShown);
        QPointer<QWidget> layer = popups_->dimLayer();
        popups_->ppCancel();
        QVERIFY(!popups_->isOpen());
        QVERIFY(!state_->popupShown);
        QTRY_VERIFY(layer.isNull());
    }

    void panelsThatCloseOrWhoseParentGoes() {
        // A picker fading away takes no more taps.
        int told = 0;
        popups_->popupDetail(frame::popupkind::length, QStringLiteral("Длительность"), {},
                             window_.get(), 1, [&](int, const QVariant&) { ++told; });
        QPushButton* ok = popups_->panel()->findChild<QPushButton*>(QStringLiteral("ok"));
        popups_->ppCancel();
        ok->click();
        QCOMPARE(told, 0);

        // A menu whose screen is gone by the time it answers answers no one.
        auto screen = std::make_unique<QWidget>(window_.get());
        popups_->popupMenu(QStringLiteral("Удалить<td>pm-clear.png"), screen.get(),
                           [&](const QString&, const QString&) { ++told; }, {});
        popups_->panel()->findChild<QToolButton*>()->click();
        screen.reset();
        QTest::qWait(700);
        QCOMPARE(told, 0);

        // The last line of a choice cancels and tells its position.
        int chosen = -1;
        popups_->selectList(QStringLiteral("Фото"), QStringLiteral("Камера<br>Галерея"),
                            window_.get(), [&](int index) { chosen = index; });
        const auto buttons = popups_->panel()->findChildren<QPushButton*>();
        buttons.back()->click();
        QCOMPARE(chosen, 2);

        // An open panel keeps to the window when it changes.
        popups_->popupTooltip(QStringLiteral("empty-u"), window_.get());
        window_->resize(900, 400);
        QTRY_COMPARE(popups_->panel()->width(), 340);
        QVERIFY(popups_->panel()->geometry().bottom() < 400);
    }

    void welcomePageButtons() {
        int chosen = 0;
        popups_->firstStart(
            window_.get(), [&](int tag) { chosen = tag; }, false);
        QWidget* page = frame::childWithTag(window_.get(), frame::kFirstStartTag);
        QVERIFY(page != nullptr);
        saveScreenshot(window_->grab().toImage(), "first_start.png");
        QPushButton* cloud = nullptr;
        for (auto* button : page->findChildren<QPushButton*>()) {
            if (button->text() == QStringLiteral("Облако")) {
                cloud = button;
            }
        }
        QVERIFY(cloud != nullptr);
        QVERIFY(!frame::firstStartDue(*settings_, state_->versionKey));
        cloud->click();
        QCOMPARE(chosen, 4);
        QTRY_VERIFY(frame::childWithTag(window_.get(), frame::kFirstStartTag) == nullptr);
    }
};

QTEST_MAIN(PopupsTest)
#include "popups_test.moc"

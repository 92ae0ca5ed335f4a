#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QtTest>

#include "core/ids.h"
#include "diary/day_cloud.h"
#include "diary/day_rows.h"
#include "diary/edit_table.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "support/screen_world.h"

using namespace tilika;

class MeasureTableTest : public QObject, protected test::ScreenWorld {
    Q_OBJECT

private slots:
    void init() {
        openWorld();
        lists_ = std::make_unique<diary::ReferenceLists>(*context_);
        gid_ = addChild("2026-01-10", "3.4");
        screen_ = new diary::edittable(
            *context_, frame::FormServices{*state_, dates_, *popups_, qtPictures_, lists_.get()},
            cloud_, window_.get());
    }

    void cleanup() {
        delete screen_;
        closeWorld();
    }

    void addReplaceAndDeleteThroughTheScreen() {
        put("2026-10-01", "ves", "6.100");
        put("2026-11-01", "ves", "6.800");
        put("2026-11-01", "note", "у врача");
        bool closed = false;
        screen_->prepare(diary::MeasureTable::kWeight, gid_, [&] { closed = true; });
        QCOMPARE(screen_->captionLabel()->text(), QStringLiteral("Вес"));
        QCOMPARE(screen_->list()->count(), 2);

        // "+" starts from the last weight and today; OK stores it.
        screen_->findChild<QToolButton*>(QStringLiteral("add"))->click();
        QVERIFY(screen_->form() != nullptr && screen_->form()->isOpen());
        QCOMPARE(screen_->form()->fieldValue("value").value_or(""), std::string("6.800"));
        QCOMPARE(screen_->form()->fieldValue("date").value_or(""), std::string("22.11.2026"));
        screen_->form()->closeOk();
        QCOMPARE(stored("2026-11-22", "ves"), std::string("6.800"));
        QCOMPARE(screen_->list()->count(), 3);
        test::ScreenWorld::saveScreenshot(window_->grab().toImage(), "measure_table.png");

        // A second measure on a day replaces the first.
        screen_->findChild<QToolButton*>(QStringLiteral("add"))->click();
        screen_->form()->changeDetail(1, QStringLiteral("01.11.2026"));
        screen_->form()->closeOk();
        QCOMPARE(screen_->list()->count(), 3);

        // Each road to a delete takes two steps.
        const auto rowView = [&](int row) {
            return screen_->list()->itemWidget(screen_->list()->item(row));
        };
        QWidget* first = rowView(0);
        QTest::mousePress(first, Qt::LeftButton, {}, QPoint(250, 20));
        QTest::mouseMove(first, QPoint(150, 22));
        QTest::mouseRelease(first, Qt::LeftButton, {}, QPoint(150, 22));
        QVERIFY(screen_->deleteButton(0) != nullptr);
        QCOMPARE(stored("2026-10-01", "ves"), std::string("6.100"));
        screen_->deleteButton(0)->click();
        QCOMPARE(stored("2026-10-01", "ves"), std::string());
        QCOMPARE(screen_->list()->count(), 2);

        screen_->list()->setCurrentRow(0);
        screen_->list()->setFocus();
        QTest::keyClick(screen_->list(), Qt::Key_Delete);
        QVERIFY(screen_->deleteButton(0) != nullptr);
        screen_->deleteButton(0)->click();
        QCOMPARE(stored("2026-11-01", "ves"), std::string());
        QCOMPARE(stored("2026-11-01", "note"), std::string("у врача"));
        QCOMPARE(screen_->list()->count(), 1);

        QContextMenuEvent menuEvent(QContextMenuEvent::Mouse, QPoint(20, 20),
                                    rowView(0)->mapToGlobal(QPoint(20, 20)));
        QApplication::sendEvent(rowView(0), &menuEvent);
        QMenu* menu = nullptr;
        QTRY_VERIFY((menu = screen_->findChild<QMenu*>()) != nullptr);
        menu->actions().first()->trigger();
        QVERIFY(screen_->deleteButton(0) != nullptr);
        screen_->deleteButton(0)->click();
        QCOMPARE(screen_->list()->count(), 0);
        QVERIFY(state_->pageDirty[1] && state_->pageDirty[3] && state_->pageDirty[9]);

        screen_->findChild<QToolButton*>(QStringLiteral("back"))->click();
        QVERIFY(closed);
        QCOMPARE(state_->openForms, 0);
    }

private:
    void put(const char* day, const char* type, const char* value) {
        putValue(gid_, day, type, value);
    }
    std::string stored(const char* day, const char* type) { return storedValue(gid_, day, type); }

    std::unique_ptr<diary::ReferenceLists> lists_;
    diary::NoCloud cloud_;
    QPointer<diary::edittable> screen_;
    std::string gid_;
};

QTEST_MAIN(MeasureTableTest)
#include "measure_table_test.moc"

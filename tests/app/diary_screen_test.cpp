#include <QAbstractButton>
#include <QApplication>
#include <QContextMenuEvent>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QtTest>

#include <optional>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/ids.h"
#include "core/settings_keys.h"
#include "diary/day_rows.h"
#include "diary/note.h"
#include "diary/note_edit.h"
#include "diary/profiles.h"
#include "frame/main_menu.h"
#include "frame/menu_views.h"
#include "platform/qt_canvas.h"
#include "platform/settings_store.h"
#include "support/session_world.h"

namespace tilika {

class DiaryScreenTest : public QObject, public test::SessionWorld {
    Q_OBJECT

private slots:
    void init() { openFolder(); }
    void cleanup() { closeSession(); }

    void opensFromTheMenuRowOnTheChildsYear() {
        launchPastWelcome();
        root_->activateWindow();
        frame::menu::ChildBlockView* block = root_->menuTab()->childBlocks().front();
        block->circle()->click();
        QAbstractButton* row = nullptr;
        for (QAbstractButton* view : block->rowViews()) {
            if (view->accessibleName().contains(QStringLiteral("Дневник"))) {
                row = view;
            }
        }
        QVERIFY(row != nullptr);
        row->click();
        QTRY_COMPARE(root_->gCurTab(), 9);
        diary::note* page = diaryPage();
        QCOMPARE(page->objectName(), QStringLiteral("noteTab"));
        QTRY_VERIFY(!page->generating());
        // A child born today is in the first year of life, every day shown.
        QCOMPARE(caption(page), QStringLiteral("1-й год"));
        QCOMPARE(page->year().mainData.size(), 365u);
    }

    void yearButtonsStayWithinChildhoodAndPlusOpensToday() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2012-11-22");
        diary::note* page = open(gid);
        std::optional<diary::DayNote> opened;
        page->setDayOpener([&](const diary::DayNote& day, QRect) { opened = day; });

        // Fourteen today: the fifteenth year of life, and next steps back.
        QCOMPARE(caption(page), QStringLiteral("15-й год"));
        click(page, "yearNext");
        QTRY_VERIFY(!page->generating());
        QCOMPARE(caption(page), QStringLiteral("14-й год"));
        for (int i = 0; i < 11; ++i) {
            click(page, "yearBack");
            QTRY_VERIFY(!page->generating());
        }
        QCOMPARE(caption(page), QStringLiteral("3-й год"));
        click(page, "addNote");
        QVERIFY(opened.has_value());
        QCOMPARE(day(opened->dat), QStringLiteral("2026-11-22"));
        for (int i = 0; i < 3; ++i) {
            click(page, "yearBack");
            QTRY_VERIFY(!page->generating());
        }
        QCOMPARE(caption(page), QStringLiteral("1-й год"));
        // Clicks during a load do nothing.
        page->reload();
        QVERIFY(page->generating());
        opened.reset();
        click(page, "yearNext");
        click(page, "addNote");
        QVERIFY(!opened);
        save(page->grab(), "diary_loading.png");
        QTRY_VERIFY(!page->generating());
        QCOMPARE(caption(page), QStringLiteral("1-й год"));
    }

    void searchesOnTheButtonAndOpensTheDayClicked() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-03-20");
        put(gid, "2026-11-20", "ves", "11.200");
        put(gid, "2026-11-21", "note", "Гуляли в парке");
        put(gid, "2026-11-10", "ves", "11.100");
        put(gid, "2026-11-15", "bolezn", core::newID2(core::idkind::listRow, 66));
        put(gid, "2026-11-22", "temp", R"([{"time":"08:00","temp":"37.9"}])");
        writePhoto(gid, "21-11-2026");
        diary::note* page = open(gid);
        std::optional<diary::DayNote> opened;
        page->setDayOpener([&](const diary::DayNote& day, QRect) { opened = day; });
        const int all = page->table()->model()->rowCount();
        // The month's header above today.
        QScrollBar* scroll = page->table()->verticalScrollBar();
        scroll->setValue(scroll->value() - 140);
        QTest::qWait(50);
        save(page->grab(), "diary_year.png");

        auto* search = page->findChild<QLineEdit*>(QStringLiteral("search"));
        auto* cancel = page->findChild<QAbstractButton*>(QStringLiteral("cancelSearch"));
        QVERIFY(cancel->isHidden());
        search->insert(QStringLiteral("ВЕС"));  // as a keyboard would type it
        QVERIFY(cancel->isVisible());
        // Typing alone doesn't search.
        QCOMPARE(page->table()->model()->rowCount(), all);
        click(page, "searchButton");
        QCOMPARE(page->year().noteData.size(), 2u);
        QTest::qWait(50);
        save(page->grab(), "diary_search.png");

        // A click on a found day opens it.
        const QRect first = page->table()->visualRect(page->table()->model()->index(1, 0));
        QTest::mouseClick(page->table()->viewport(), Qt::LeftButton, {},
                          first.topLeft() + QPoint(20, 20));
        QVERIFY(opened.has_value());
        QCOMPARE(day(opened->dat), QStringLiteral("2026-11-10"));
        QCOMPARE(opened->value("ves"), std::string("11.100"));

        QTest::keyClicks(search, QStringLiteral("x"));
        QTest::keyClick(search, Qt::Key_Return);
        QVERIFY(page->year().noteData.empty());
        QVERIFY(page->findChild<QLabel*>(QStringLiteral("noData"))->isVisible());
        cancel->click();
        QVERIFY(search->text().isEmpty());
        QCOMPARE(page->table()->model()->rowCount(), all);
    }

    void aDayOpenedFromTheListIsEditedAndShownOnReturn() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-03-20");
        put(gid, "2026-11-20", "ves", "11.200");
        diary::note* page = open(gid);
        // The day with the weight is the one the search finds.
        auto* search = page->findChild<QLineEdit*>(QStringLiteral("search"));
        search->insert(QStringLiteral("вес"));
        click(page, "searchButton");
        QCOMPARE(page->year().noteData.size(), 1u);
        const QRect first = page->table()->visualRect(page->table()->model()->index(1, 0));
        QTest::mouseClick(page->table()->viewport(), Qt::LeftButton, {},
                          first.topLeft() + QPoint(20, 20));
        diary::noteEdit* editor = root_->dayEditor();
        QVERIFY(editor != nullptr);
        QTRY_VERIFY(editor->isOpen());
        QCOMPARE(editor->captionLabel()->text(), QStringLiteral("20.11.2026"));

        std::size_t noteRow = 0;
        const auto& data = editor->editor().noteData();
        while (noteRow < data.size() && data[noteRow].field != "note") {
            ++noteRow;
        }
        QVERIFY(noteRow < data.size());
        editor->editor().editData(noteRow, "Первые шаги");
        QTest::keyClick(editor, Qt::Key_Escape);
        QTRY_VERIFY(!editor->isOpen());
        QTRY_VERIFY(!page->generating());
        // The list came back with the note, the search still applied.
        QCOMPARE(page->year().noteData.size(), 1u);
        const diary::DayNote& shown = page->year().mainData[page->year().noteData.front()];
        QCOMPARE(shown.value("note"), std::string("Первые шаги"));
    }

    void daysAreDeletedInTwoSteps() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-03-14");
        put(gid, "2026-11-20", "note", "первый");
        put(gid, "2026-11-21", "note", "второй");
        put(gid, "2026-11-22", "note", "третий");
        settings().setBool(core::keys::emptyNote, true);
        diary::note* page = open(gid);
        diary::NoteListView* table = page->table();
        QCOMPARE(page->year().mainData.size(), 3u);
        auto* confirm = table->findChild<QPushButton*>(QStringLiteral("deleteDay"));

        // A drag to the left reveals the button; the page stays.
        const QRect row = table->visualRect(table->model()->index(1, 0));
        QWidget* viewport = table->viewport();
        QTest::mousePress(viewport, Qt::LeftButton, {}, row.center());
        for (int dx = 10; dx <= 120; dx += 10) {
            QTest::mouseMove(viewport, row.center() - QPoint(dx, 0));
        }
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, row.center() - QPoint(120, 0));
        QCOMPARE(root_->gCurTab(), 9);
        QTRY_VERIFY(confirm->isVisible());
        QCOMPARE(page->year().mainData.size(), 3u);
        confirm->click();
        QTRY_VERIFY(!page->generating());
        QCOMPARE(page->year().mainData.size(), 2u);
        QCOMPARE(value(gid, "2026-11-20"), std::string());

        // A right click, then the button.
        const QPoint at = table->visualRect(table->model()->index(1, 0)).center();
        QContextMenuEvent menu(QContextMenuEvent::Mouse, at, viewport->mapToGlobal(at));
        QApplication::sendEvent(viewport, &menu);
        QVERIFY(confirm->isVisible());
        confirm->click();
        QTRY_VERIFY(!page->generating());
        QCOMPARE(page->year().mainData.size(), 1u);

        // The Delete key on the selected row, then the button.
        table->setFocus();
        table->setCurrentIndex(table->model()->index(1, 0));
        QTest::keyClick(table, Qt::Key_Delete);
        QVERIFY(confirm->isVisible());
        QCOMPARE(page->year().mainData.size(), 1u);
        confirm->click();
        QTRY_VERIFY(!page->generating());
        QVERIFY(page->year().mainData.empty());
        QVERIFY(page->findChild<QLabel*>(QStringLiteral("noData"))->isVisible());
        save(page->grab(), "diary_empty.png");
    }

    void rowsAreAsTallAsWhatTheyDrawAtAnyWidth() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-03-20");
        put(gid, "2026-11-18", "note",
            "Долгая прогулка в парке, потом обед, сон и снова прогулка до самого вечера, "
            "пока не стемнело");
        put(gid, "2026-11-19", "temp",
            R"([{"time":"08:00","temp":"37.9"},{"time":"20:00","temp":"38.4"}])");
        put(gid, "2026-11-20", "ves", "11.200");
        put(gid, "2026-03-21", "ves", "9.800");
        put(gid, "2026-03-22", "note",
            "Первый зуб, капризничал и почти не спал днём, а потом долго гулял");
        writePhoto(gid, "21-11-2026");
        diary::note* page = open(gid);
        diary::NoteListView* table = page->table();
        const auto rowsMatch = [&] {
            const diary::NoteYear& year = page->year();
            int days = 0;
            for (int row = 0; row < table->model()->rowCount(); ++row) {
                const QRect drawn = table->visualRect(table->model()->index(row, 0));
                const auto& position = static_cast<diary::NoteModel*>(table->model())->row(row).day;
                if (!position || !drawn.intersects(table->viewport()->rect())) {
                    continue;
                }
                ++days;
                const int height = diary::NoteDelegate::dayHeight(
                    year.mainData[*position], year.tableDays.rows[*position], drawn.width(),
                    platform::QtCanvas(*table->viewport()));
                if (drawn.height() != height || drawn.width() != table->viewport()->width()) {
                    qWarning() << "row" << row << drawn << "measured" << height;
                    return false;
                }
            }
            return days > 3;
        };
        QVERIFY(rowsMatch());
        root_->resize(root_->width() + 300, root_->height());
        QTRY_VERIFY(rowsMatch());
        root_->resize(root_->width() - 400, root_->height());
        QTRY_VERIFY(rowsMatch());
        // A search the moment the table opens reads the whole year, the
        // days far from today included, which are laid out after it opens.
        std::size_t found = 0;
        connect(
            page, &diary::note::loaded, this,
            [&] {
                page->updateSearch(QStringLiteral("вес"));
                found = page->year().noteData.size();
            },
            Qt::SingleShotConnection);
        page->reload();
        QTRY_VERIFY(!page->generating());
        QCOMPARE(found, 2u);
        QVERIFY(page->laidOut());
        // Those days are as tall as drawn, too.
        page->updateSearch({});
        QVERIFY(rowsMatch());
    }

private:
    platform::SettingsStore& settings() { return context().settings; }

    std::string value(const std::string& gid, const char* date) {
        return diary::DayRows(*context().database.connectToBase(), context().dates)
            .getDateValue(*context().dates.dateFromString(date), "note", gid);
    }

    void writePhoto(const std::string& gid, const char* day) {
        const QString documents = QString::fromStdString(
            context().folders.path(platform::SystemFolder::Document).string());
        QImage photo(400, 300, QImage::Format_RGB32);
        photo.fill(QColor(90, 150, 220));
        const QString stem = QString::fromStdString(gid) + "-" + QLatin1String(day);
        photo.save(documents + "/picture/" + stem + ".jpg");
        photo.scaled(160, 120).save(documents + "/picture-s/" + stem + "-s.jpg");
    }

    diary::note* diaryPage() { return qobject_cast<diary::note*>(root_->tab(9)); }

    diary::note* open(const std::string& gid) {
        root_->activateWindow();
        context().state.pageDirty[9] = true;
        root_->openTab(9, gid);
        diary::note* page = diaryPage();
        [&] { QTRY_VERIFY(!page->generating()); }();
        return page;
    }

    QString day(std::optional<core::Date> date) {
        return QString::fromStdString(context().dates.dateToString(date, core::formats::day));
    }

    static QString caption(QWidget* page) {
        return page->findChild<QLabel*>(QStringLiteral("caption"))->text();
    }

    static void click(QWidget* page, const char* name) {
        page->findChild<QAbstractButton*>(QString::fromLatin1(name))->click();
    }
};

}  // namespace tilika

QTEST_MAIN(tilika::DiaryScreenTest)
#include "diary_screen_test.moc"

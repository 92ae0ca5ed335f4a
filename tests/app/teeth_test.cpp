#include <QAbstractButton>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>
#include <QWheelEvent>
#include <QtTest>

#include "core/context.h"
#include "core/dates.h"
#include "development/ruler_view.h"
#include "development/tooth_page.h"
#include "diary/day_rows.h"
#include "diary/note_edit.h"
#include "support/session_world.h"

namespace tilika {

using development::tooth;

class TeethTest : public QObject, public test::SessionWorld {
    Q_OBJECT

private slots:
    void init() { openFolder(); }
    void cleanup() { closeSession(); }

    void togglesBetweenStatisticsAndTheChild() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-01-10");
        put(gid, "2025-08-01", "15<tr>16");
        put(gid, "2025-10-01", "5<tr>6<tr>14<tr>17");
        put(gid, "2026-03-01", "4<tr>7<tr>12<tr>19");
        tooth* page = open(gid);
        QCOMPARE(page->objectName(), QStringLiteral("toothTab"));

        // The ruler opens on the running month of life.
        QCOMPARE(page->ruler()->getPosition(), 23.0);
        QCOMPARE(label(page, "month"), QStringLiteral("1 год и 11 месяцев"));
        QCOMPARE(label(page, "caption"), QStringLiteral("Молочные зубы (статистика)"));
        page->finishAnimations();
        // By two years the incisors are through and the second molars aren't.
        for (int n : {4, 5, 6, 7, 14, 15, 16, 17}) {
            QCOMPARE(page->jaw()->shown(n), 1.0);
        }
        for (int n : {1, 10, 11, 20}) {
            QCOMPARE(page->jaw()->shown(n), 0.0);
        }
        save(page->grab(), "teeth_stat.png");

        click(page, "stateChange");
        QCOMPARE(label(page, "caption"), QStringLiteral("Молочные зубы ребенка"));
        page->finishAnimations();
        const std::vector<int> own{4, 5, 6, 7, 12, 14, 15, 16, 17, 19};
        for (int n = 1; n <= 20; ++n) {
            QCOMPARE(page->jaw()->shown(n), std::count(own.begin(), own.end(), n) ? 1.0 : 0.0);
        }
        save(page->grab(), "teeth_child.png");

        click(page, "stateChange");
        QCOMPARE(label(page, "caption"), QStringLiteral("Молочные зубы (статистика)"));
        page->finishAnimations();
        QCOMPARE(page->jaw()->shown(1), 0.0);
    }

    void rulerStepsByMonthWithKeysAndWheel() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-01-10");
        put(gid, "2025-09-01", "15");
        tooth* page = open(gid);
        click(page, "stateChange");
        development::vesslider* ruler = page->ruler();

        // The arrows turn the ruler, not the pages.
        ruler->setFocus();
        QTest::keyClick(ruler, Qt::Key_Left);
        QTest::keyClick(ruler, Qt::Key_Left);
        QTRY_COMPARE(label(page, "month"), QStringLiteral("1 год и 9 месяцев"));
        QCOMPARE(root_->gCurTab(), 6);

        QWidget* viewport = ruler->mainScroll()->viewport();
        const QPointF at(viewport->width() / 2.0, viewport->height() / 2.0);
        for (int notch = 0; notch < 14; ++notch) {
            QWheelEvent wheel(at, viewport->mapToGlobal(at), QPoint(), QPoint(0, 120), Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(viewport, &wheel);
        }
        QTRY_COMPARE(label(page, "month"), QStringLiteral("7 месяцев"));
        page->finishAnimations();
        QCOMPARE(page->jaw()->shown(15), 0.0);
        QTest::keyClick(ruler, Qt::Key_Right);
        QTRY_COMPARE(label(page, "month"), QStringLiteral("8 месяцев"));
        page->finishAnimations();
        QCOMPARE(page->jaw()->shown(15), 1.0);
    }

    void editOpensTodayAndShowsWhatWasWritten() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-01-10");
        tooth* page = open(gid);
        click(page, "stateChange");
        page->finishAnimations();
        QCOMPARE(page->jaw()->shown(3), 0.0);

        click(page, "edit");
        diary::noteEdit* editor = root_->dayEditor();
        QTRY_VERIFY(editor != nullptr && editor->isOpen());
        QCOMPARE(editor->captionLabel()->text(), QStringLiteral("22.11.2026"));
        put(gid, "2026-11-22", "3");
        editor->findChild<QToolButton*>(QStringLiteral("back"))->click();
        QTRY_VERIFY(!editor->isOpen());
        QTRY_COMPARE(page->jaw()->target(3), 1.0);
        page->finishAnimations();
        QCOMPARE(page->jaw()->shown(3), 1.0);
    }

    void childWithoutBirthDateShowsNoData() {
        launchPastWelcome();
        tooth* page = open("no-such-child");
        QVERIFY(page->findChild<QLabel*>(QStringLiteral("noData"))->isHidden());
        click(page, "stateChange");
        QVERIFY(!page->findChild<QLabel*>(QStringLiteral("noData"))->isHidden());
        QCOMPARE(label(page, "month"), QStringLiteral("Только что родился"));
    }

private:
    core::Context& context() { return session_->application().context(); }

    void put(const std::string& gid, const char* date, const std::string& value) {
        diary::DayRows(*context().database.connectToBase(), context().dates)
            .insertValue("tooth", value, *context().dates.dateFromString(date), gid, true, false);
    }

    tooth* open(const std::string& gid) {
        root_->activateWindow();
        context().state.pageDirty[6] = true;
        root_->openTab(6, gid);
        auto* page = qobject_cast<tooth*>(root_->tab(6));
        [&] { QTRY_COMPARE(root_->gCurTab(), 6); }();
        // The ruler is laid out at its width once the page shows, and goes
        // to the age it was given then.
        [&] { QTRY_VERIFY(page->ruler()->mainScroll()->horizontalScrollBar()->maximum() > 0); }();
        QCoreApplication::processEvents();
        return page;
    }

    static QString label(QWidget* page, const char* name) {
        return page->findChild<QLabel*>(QString::fromLatin1(name))->text();
    }

    static void click(QWidget* page, const char* name) {
        page->findChild<QAbstractButton*>(QString::fromLatin1(name))->click();
    }
};

}  // namespace tilika

QTEST_MAIN(tilika::TeethTest)
#include "teeth_test.moc"

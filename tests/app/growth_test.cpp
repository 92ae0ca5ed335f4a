#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QToolButton>
#include <QWheelEvent>
#include <QtTest>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/settings_keys.h"
#include "development/chart_view.h"
#include "development/growth_page.h"
#include "diary/day_rows.h"
#include "diary/edit_table.h"
#include "platform/settings_store.h"
#include "support/session_world.h"

namespace tilika {

using development::title;

class GrowthTest : public QObject, public test::SessionWorld {
    Q_OBJECT

private slots:
    void init() { openFolder(); }
    void cleanup() { closeSession(); }

    void yearsStepByButtonsKeysAndWheel() {
        launchPastWelcome();
        const std::string gid = seededChild();
        title* page = open(gid);
        QCOMPARE(page->objectName(), QStringLiteral("titleTab"));
        QCOMPARE(caption(page), QStringLiteral("3-й год"));
        QVERIFY(page->rostChart()->isVisible());
        QVERIFY(!page->findChild<QLabel*>(QStringLiteral("empty"))->isVisible());

        click(page, "yearNext");
        QCOMPARE(caption(page), QStringLiteral("Все данные"));
        page->finishAnimations();
        save(page->grab(), "growth_all.png");
        click(page, "yearNext");
        QCOMPARE(caption(page), QStringLiteral("1-й год"));
        page->finishAnimations();
        // The colour reaches the end of a year that is over, and the marker
        // stands there at full strength.
        development::GrowthChartView* rost = page->rostChart();
        QCOMPARE(page->view().today, 1.0);
        QCOMPARE(rost->fire()->pos(), rost->firePlace());
        QCOMPARE(rost->pbar()->width(), rost->firePlace().x() + rost->fire()->width() / 2);
        save(page->grab(), "growth_year1.png");

        // Page Up goes back a year, Page Down on; the wheel over the
        // caption does the same a notch at a time.
        QTest::keyClick(root_, Qt::Key_PageUp);
        QCOMPARE(caption(page), QStringLiteral("Все данные"));
        QTest::keyClick(root_, Qt::Key_PageDown);
        QCOMPARE(caption(page), QStringLiteral("1-й год"));
        wheel(page, -120);
        QCOMPARE(caption(page), QStringLiteral("2-й год"));
        wheel(page, 60);
        QCOMPARE(caption(page), QStringLiteral("2-й год"));
        wheel(page, 60);
        QCOMPARE(caption(page), QStringLiteral("1-й год"));
    }

    void theCentileSwitchIsKept() {
        launchPastWelcome();
        const std::string gid = seededChild();
        title* page = open(gid);
        QVERIFY(!page->centilesBox()->isChecked());
        QVERIFY(page->view().rost.color.extraCurves.empty());

        page->centilesBox()->click();
        QVERIFY(context().settings.boolValue(core::keys::growthCentiles));
        QCOMPARE(page->view().rost.color.extraCurves.size(), 5u);
        QVERIFY(page->findChild<QLabel*>(QStringLiteral("rostCentile"))->isVisible());
        save(page->grab(), "growth_centiles.png");

        // Loaded again, the page finds the switch as it was left.
        page->centilesBox()->click();
        QVERIFY(!context().settings.boolValue(core::keys::growthCentiles));
        page->centilesBox()->click();
        context().state.pageDirty[3] = true;
        page = open(gid);
        QVERIFY(page->centilesBox()->isChecked());
    }

    void editOpensTheMeasureTableAndRedrawsAfter() {
        launchPastWelcome();
        const std::string gid = seededChild();
        title* page = open(gid);
        const std::size_t before = page->view().rost.color.graph[2].size();
        page->actionEdit(QStringLiteral("Рост"));
        auto* table = root_->findChild<diary::edittable*>(QStringLiteral("edittable"));
        QVERIFY(table != nullptr && table->isVisible());
        QCOMPARE(table->captionLabel()->text(), QStringLiteral("Рост"));
        // The years stay put under the table.
        QTest::keyClick(root_, Qt::Key_PageUp);
        QCOMPARE(caption(page), QStringLiteral("3-й год"));
        put(gid, "2026-11-20", "rost", "92.0");
        table->findChild<QToolButton*>(QStringLiteral("back"))->click();
        QTRY_COMPARE(page->view().rost.color.graph[2].size(), before + 1);
    }

    void aChildWithoutBirthDateShowsNoData() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"));
        context().database.connectToBase()->exec(
            "update child set sbirthdate=null where childguid='" + gid + "'");
        title* page = open(gid);
        QVERIFY(page->findChild<QLabel*>(QStringLiteral("empty"))->isVisible());
        QVERIFY(!page->rostChart()->isVisible());
        click(page, "yearNext");
        QCOMPARE(caption(page), QStringLiteral("1-й год"));
    }

private:
    core::Context& context() { return session_->application().context(); }

    void put(const std::string& gid, const char* date, const char* type, const char* value) {
        diary::DayRows(*context().database.connectToBase(), context().dates)
            .insertValue(type, value, *context().dates.dateFromString(date), gid, true, false);
    }

    // A girl of two years and eight months with her measures from birth.
    std::string seededChild() {
        const std::string gid = addChild(QStringLiteral("Аня"), "2024-03-14");
        diary::Profiles profiles(context());
        diary::SetupRecord record = profiles.loadSetupData(gid);
        record.sex = 1;
        record.rost = "50.5";
        record.ves = "3.3";
        [&] { QVERIFY(profiles.saveSetupData(diary::saveflag::cloud, record, gid).ok()); }();
        const char* rows[][3] = {
            {"2024-04-14", "54.0", "4.2"},  {"2024-06-14", "61.0", "5.9"},
            {"2024-09-14", "67.5", "7.4"},  {"2025-03-14", "75.0", "9.1"},
            {"2025-09-14", "81.0", "10.4"}, {"2026-03-14", "86.5", "11.6"},
            {"2026-10-01", "90.5", "12.7"},
        };
        for (const auto& row : rows) {
            put(gid, row[0], "rost", row[1]);
            put(gid, row[0], "ves", row[2]);
        }
        return gid;
    }

    title* open(const std::string& gid) {
        root_->activateWindow();
        context().state.pageDirty[3] = true;
        root_->openTab(3, gid);
        auto* page = qobject_cast<title*>(root_->tab(3));
        [&] { QTRY_VERIFY(root_->topHolder()->isAncestorOf(page) && !root_->isSliding()); }();
        page->finishAnimations();
        return page;
    }

    static QString caption(QWidget* page) {
        return page->findChild<QLabel*>(QStringLiteral("caption"))->text();
    }

    static void click(QWidget* page, const char* name) {
        page->findChild<QAbstractButton*>(QString::fromLatin1(name))->click();
    }

    static void wheel(QWidget* page, int delta) {
        QLabel* label = page->findChild<QLabel*>(QStringLiteral("caption"));
        const QPointF at(label->width() / 2.0, label->height() / 2.0);
        QWheelEvent event(at, label->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(label, &event);
    }
};

}  // namespace tilika

QTEST_MAIN(tilika::GrowthTest)
#include "growth_test.moc"

#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QtTest>

#include "core/context.h"
#include "development/baby_page.h"
#include "development/chart_view.h"
#include "development/play_page.h"
#include "frame/elided_label.h"
#include "frame/subcheck.h"
#include "frame/textdata.h"
#include "support/session_world.h"

namespace tilika {

using development::baby;
using development::play;

class SkillsTest : public QObject, public test::SessionWorld {
    Q_OBJECT

private slots:
    void init() { openFolder(); }
    void cleanup() { closeSession(); }

    void ringsShowTheAgeAndATapOpensTheSkill() {
        launchPastWelcome();
        // Thirteen weeks to the day before the fixed clock's 22 November.
        const std::string gid = addChild(QStringLiteral("Аня"), "2026-08-23");
        auto* page = qobject_cast<baby*>(open(baby::kPageId, gid));
        QVERIFY(page != nullptr);
        QCOMPARE(page->objectName(), QStringLiteral("babyTab"));
        QCOMPARE(page->gcurweek(), 13);
        QCOMPARE(page->gcurmonth(), 2);
        QCOMPARE(label(page, "weeks"), QStringLiteral("13 недель"));
        QVERIFY(!label(page, "months").isEmpty());

        QTRY_COMPARE(page->step(), development::kRingSteps);
        QCOMPARE(page->row(0)->ring()->toolTip(), QStringLiteral("33%"));
        QCOMPARE(page->row(1)->ring()->toolTip(), QStringLiteral("46%"));
        // The skills told by month have no ring.
        QVERIFY(page->row(8)->ring() == nullptr);
        save(page->grab(), "skills.png");

        // A skill told by week opens at the last group not past the week.
        page->row(4)->click();
        frame::subcheck* guide = page->guide();
        QVERIFY(guide != nullptr && guide->isVisible());
        QCOMPARE(guide->findChild<QLabel*>(QStringLiteral("caption"))->text(),
                 QStringLiteral("Учимся ползать"));
        QTRY_VERIFY(guide->text()->page().highlight().has_value());
        QCOMPARE(guide->text()->page().highlight()->y, groupTop(guide, 12));
        QTest::keyClick(guide, Qt::Key_Escape);
        QTRY_VERIFY(!guide->isVisible());

        // One told by month opens at the whole months of the child.
        page->row(8)->click();
        QTRY_VERIFY(guide->isVisible());
        QTRY_COMPARE(guide->text()->page().highlight()->y, groupTop(guide, 2));
    }

    void toysOpenAtTheRunningMonth() {
        launchPastWelcome();
        // 20 whole months before the clock's day: the 21st month of life,
        // which falls in the span that starts at the 19th.
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-03-14");
        auto* page = qobject_cast<play*>(open(play::kPageId, gid));
        QVERIFY(page != nullptr);
        QCOMPARE(page->objectName(), QStringLiteral("playTab"));
        QCOMPARE(page->month(), 21);
        frame::textdata* text = page->text();
        QVERIFY(text->page().ggroupmax() >= 61);
        QTRY_VERIFY(text->page().highlight().has_value());
        QCOMPARE(text->page().highlight()->y, top(text->page(), 19));
        // The page scrolls there, and the picture waits until it has.
        QScrollBar* bar = text->scrollArea()->verticalScrollBar();
        const long long target = text->page().visibleGroup(page->month(), false);
        QVERIFY(target > 0);
        QTRY_COMPARE(bar->value(), std::min<int>(static_cast<int>(target), bar->maximum()));
        save(page->grab(), "toys.png");

        page->findChild<QAbstractButton*>(QStringLiteral("toMenu"))->click();
        QTRY_COMPARE(root_->gCurTab(), 0);
    }

private:
    frame::Tab* open(int pageId, const std::string& gid) {
        root_->activateWindow();
        session_->application().context().state.pageDirty[static_cast<std::size_t>(pageId)] = true;
        root_->openTab(pageId, gid);
        [&] { QTRY_COMPARE(root_->gCurTab(), pageId); }();
        QCoreApplication::processEvents();
        return root_->tab(pageId);
    }

    static double top(const frame::TextPage& page, long long group) {
        for (const frame::PageGroup& entry : page.groupData()) {
            if (entry.groupid == group) {
                return entry.top;
            }
        }
        return -1;
    }

    static double groupTop(frame::subcheck* guide, long long group) {
        return top(guide->text()->page(), group);
    }

    static QString label(QWidget* page, const char* name) {
        return page->findChild<QLabel*>(QString::fromLatin1(name))->text();
    }
};

}  // namespace tilika

QTEST_MAIN(tilika::SkillsTest)
#include "skills_test.moc"

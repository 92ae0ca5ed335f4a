#include "development/feeding.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QToolButton>
#include <QtTest>

#include <algorithm>

#include "development/korm.h"
#include "development/korm_edit.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "frame/dic.h"
#include "frame/look.h"
#include "frame/popup_panels.h"
#include "frame/subcheck.h"
#include "support/session_world.h"

namespace tilika {

using development::korm;

class FeedingTest : public QObject, public test::SessionWorld {
    Q_OBJECT

private slots:
    void init() { openFolder(); }
    void cleanup() { closeSession(); }

    void aFeedingEnteredThroughTheFormsIsTotalledAgainstTheDayBefore() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2026-03-01");
        const std::string formula = product(diary::cotype::formula);
        feed(gid, "2026-11-21 09:00:00",
             R"({"tp":"2","tip":")" + formula + R"(","volume":"100","measure":"мил."})");
        korm* page = open(gid);
        QCOMPARE(page->objectName(), QStringLiteral("kormTab"));

        click(page, "add");
        frame::dic* form = nullptr;
        QTRY_VERIFY((form = page->editor()->form()) != nullptr);
        page->editor()->actionKorm(QStringLiteral("Смесь/сцеж.молоко"));
        frame::dic* food = nullptr;
        QTRY_VERIFY((food = page->editor()->foodForm()) != nullptr);
        type(food, "volume", "120");
        tick(food, 0);
        ok(food);
        QTRY_VERIFY(page->editor()->foodForm() == nullptr);
        QCOMPARE(page->editor()->entry().foods.size(), 1u);
        QTest::qWait(20);
        save(root_->grab(), "feeding_edit.png");

        ok(form);
        QTRY_VERIFY(page->editor()->form() == nullptr);
        QCOMPARE(page->rows().size(), 4u);
        // The days' headings are lines of the list too.
        const QString totals = shownText(page, 5);
        QVERIFY2(totals.contains(QStringLiteral("Смесь/сцеженное молоко: 120 (+20) мл.")),
                 qPrintable(totals));
        QVERIFY(shownText(page, 4).contains(QStringLiteral(": 120 мил.")));
        save(page->grab(), "feeding_list.png");
    }

    void theBreastTimerGoesOnFromTheTimeInItsField() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2026-03-01");
        korm* page = open(gid);
        click(page, "add");
        QTRY_VERIFY(page->editor()->form() != nullptr);
        page->editor()->actionKorm(QStringLiteral("Грудное кормление"));
        frame::dic* food = nullptr;
        QTRY_VERIFY((food = page->editor()->foodForm()) != nullptr);
        food->changeDetail(food->posByField("left") - 1, QStringLiteral("00:07"));
        food->findChildren<QPushButton*>(QStringLiteral("startButton")).front()->click();
        QTRY_VERIFY(food->stopwatchOverlay() != nullptr);
        clock_.advance(std::chrono::seconds(5 * 60 + 30));
        QTest::qWait(1100);
        save(root_->grab(), "feeding_timer.png");
        food->stopwatchOverlay()->findChild<QPushButton*>(QStringLiteral("stopButton"))->click();
        QCOMPARE(food->fieldValue("left"), std::optional<std::string>("00:12"));
        ok(food);
        QTRY_VERIFY(page->editor()->foodForm() == nullptr);
        ok(page->editor()->form());
        QTRY_VERIFY(page->editor()->form() == nullptr);
        QVERIFY(shownText(page, 1).contains(QStringLiteral("Левая грудь: 12 мин.")));
    }

    void theReactionMakesATickedFoodAnAllergen() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2026-03-01");
        feed(gid, "2026-11-21 12:00:00",
             R"({"tp":"3","tip":"Кефир","volume":"50","measure":"мил."})");
        feed(gid, "2026-11-10 12:00:00",
             R"({"tp":"4","tip":"Творог","volume":"30","measure":"г."})");
        korm* page = open(gid);
        page->actionKorm(QStringLiteral("Реакция"));
        frame::dic* form = nullptr;
        QTRY_VERIFY((form = page->listForm()) != nullptr);
        // Only what was given in the last three days is a suspect.
        QCOMPARE(items(form), QStringList({QStringLiteral("Кефир")}));
        tick(form, 0);
        QTest::qWait(20);
        save(root_->grab(), "feeding_reaction.png");
        ok(form);
        QTRY_VERIFY(page->listForm() == nullptr);

        std::vector<frame::ListRow> allergens;
        diary::ReferenceLists(context()).loadConstList(
            allergens, diary::cotype::allergens,
            diary::Profiles(context()).loadSetupData(gid).allerg);
        QVERIFY(std::any_of(allergens.begin(), allergens.end(), [](const frame::ListRow& row) {
            return row.checked && row.cap == "Кефир";
        }));
    }

    void theGuideOpensAtTheRunningMonth() {
        launchPastWelcome();
        // In the ninth month of life on the tests' day.
        const std::string gid = addChild(QStringLiteral("Аня"), "2026-03-01");
        korm* page = open(gid);
        QVERIFY(page->findChild<QLabel*>(QStringLiteral("empty"))->isVisible());
        page->actionKorm(QStringLiteral("Как вводить прикорм"));
        frame::subcheck* guide = page->guide();
        QVERIFY(guide != nullptr && guide->isVisible());
        QCOMPARE(guide->findChild<QLabel*>(QStringLiteral("caption"))->text(),
                 QStringLiteral("Введение прикорма"));
        QTest::qWait(400);
        save(root_->grab(), "feeding_guide.png");
        QTest::keyClick(guide, Qt::Key_Escape);
        QVERIFY(!guide->isVisible());
    }

private:
    void feed(const std::string& gid, const char* moment, const std::string& value) {
        development::insertKorm(
            db(), context().dates,
            *context().dates.dateFromStringFormat(moment, "yyyy-MM-dd HH:mm:ss"), value, gid);
    }

    // The index of the first product of a list.
    std::string product(int cotype) {
        std::vector<frame::ListRow> rows;
        diary::ReferenceLists(context()).loadConstList(rows, cotype, "");
        return rows.front().index;
    }

    korm* open(const std::string& gid) {
        root_->activateWindow();
        context().state.pageDirty[7] = true;
        root_->openTab(7, gid);
        auto* page = qobject_cast<korm*>(root_->tab(7));
        [&] { QTRY_COMPARE(root_->gCurTab(), 7); }();
        return page;
    }

    // The text of a line of the list, a day's heading counted.
    static QString shownText(korm* page, int line) {
        return page->list()->model()->index(line, 0).data().toString();
    }

    static QStringList items(frame::dic* form) {
        QStringList shown;
        for (auto* item : form->findChildren<QAbstractButton*>(QStringLiteral("listItem"))) {
            for (auto* label : item->findChildren<QLabel*>()) {
                if (!label->text().isEmpty()) {
                    shown << label->text();
                }
            }
        }
        return shown;
    }

    static void tick(frame::dic* form, int item) {
        form->findChildren<QAbstractButton*>(QStringLiteral("listItem")).at(item)->click();
    }

    static void type(frame::dic* form, const char* field, const char* text) {
        const int tag = static_cast<int>(form->posByField(field));
        for (auto* line : form->findChildren<QLineEdit*>()) {
            if (frame::tag(line) == tag) {
                line->clear();
                QTest::keyClicks(line, QString::fromUtf8(text));
                return;
            }
        }
        QFAIL(field);
    }

    static void ok(frame::dic* form) {
        form->findChild<QPushButton*>(QStringLiteral("ok"), Qt::FindDirectChildrenOnly)->click();
    }

    static void click(QWidget* page, const char* name) {
        page->findChild<QAbstractButton*>(QString::fromLatin1(name))->click();
    }
};

}  // namespace tilika

QTEST_MAIN(tilika::FeedingTest)
#include "feeding_test.moc"

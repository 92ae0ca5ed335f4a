#include "medication/inday.h"

#include <QAbstractButton>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QtTest>
#include <SQLiteCpp/Statement.h>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "diary/day_rows.h"
#include "diary/note_edit.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "frame/dic.h"
#include "frame/list_choices.h"
#include "frame/popup_panels.h"
#include "medication/dose_times.h"
#include "support/session_world.h"

namespace tilika {

using medication::InDayRow;

class InDayTest : public QObject, public test::SessionWorld {
    Q_OBJECT

private slots:
    void init() { openFolder(); }
    void cleanup() { closeSession(); }

    void showsTheDayAndMovesByDays() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-03-20");
        put(gid, "2026-11-22", "alarm", R"([{"time":"12:30","temp":"Позвонить педиатру"}])");
        put(gid, "2026-11-22", "pills",
            "[" + course("Парацетамол", "Независимо от еды", "2<td>раз в день", "10:00<td>21:30") +
                "," + course("Нурофен", "После еды", "3<td>раз в день", "") + "]");
        QVERIFY(medication::setObed(db(), medication::kDefaultMeals));
        medication::inday* page = open(gid);
        QCOMPARE(page->objectName(), QStringLiteral("indayTab"));
        QCOMPARE(caption(page), QStringLiteral("22.11.2026"));

        const std::string paracetamol = "23<tr>Парацетамол: 1 штука  (1 день из 7)";
        const std::string nurofen = "23<tr>Нурофен: 1 штука  (1 день из 7)";
        std::vector<std::string> shown;
        for (const InDayRow& row : page->inData()) {
            if (!row.value.empty() || !row.right.empty()) {
                shown.push_back(row.pos + " " + row.right + " " + row.value);
            }
        }
        QCOMPARE(shown, (std::vector<std::string>{
                            "09:03 завтрак ",
                            "09:04 После еды " + nurofen,
                            "10:00 10:00 " + paracetamol,
                            "12:30 12:30 5<tr>Позвонить педиатру",
                            "14:03 обед ",
                            "14:04 После еды " + nurofen,
                            "20:03 ужин ",
                            "20:04 После еды " + nurofen,
                            "21:30 21:30 " + paracetamol,
                        }));
        // The list is as tall as its rows.
        QVERIFY(page->list()->height() >= page->list()->heightForWidth(page->list()->width()));
        save(page->grab(), "inday.png");

        click(page, "dayNext");
        QCOMPARE(caption(page), QStringLiteral("23.11.2026"));
        QCOMPARE(page->inData().size(), 2u);
        QCOMPARE(page->inData()[0].value, std::string("0<tr>В этом дне напоминаний нет"));
        click(page, "dayBack");
        click(page, "dayBack");
        QCOMPARE(caption(page), QStringLiteral("21.11.2026"));
        QCOMPARE(page->inData().size(), 2u);
    }

    void mealTimesRoundTripThroughTheirForm() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-03-20");
        put(gid, "2026-11-22", "pills",
            "[" + course("Нурофен", "Перед едой", "1<td>раз в день", "") + "]");
        QVERIFY(medication::setObed(db(), medication::kDefaultMeals));
        medication::inday* page = open(gid);

        // The edit button offers the meal times and the day editor.
        click(page, "edit");
        QTRY_VERIFY(root_->popups().panel() != nullptr);
        QStringList offered;
        QToolButton* mealTimes = nullptr;
        for (auto* button : root_->popups().panel()->findChildren<QToolButton*>()) {
            offered << button->text();
            if (button->text() == QStringLiteral("Время приема пищи")) {
                mealTimes = button;
            }
        }
        QCOMPARE(offered, QStringList({"Время приема пищи", "Редактировать"}));
        mealTimes->click();
        frame::dic* form = nullptr;
        QTRY_VERIFY((form = page->mealForm()) != nullptr);

        QStringList rows;
        for (const frame::FormRow& row : form->detailAr()) {
            rows << QString::fromStdString(row.field + " " + row.caption + " " + row.source);
        }
        QCOMPARE(rows,
                 QStringList({"time1 Завтрак 09:00", "time4 Второй завтрак 11:00",
                              "time2 Обед 14:00", "time5 Полдник 16:00", "time3 Ужин 20:00"}));
        QTest::qWait(50);
        save(root_->grab(), "inday-meals.png");

        form->changeDetail(0, QStringLiteral("07:45"));
        form->changeDetail(4, QStringLiteral("19:30"));
        form->findChild<QPushButton*>(QStringLiteral("ok"), Qt::FindDirectChildrenOnly)->click();
        QTRY_VERIFY(page->mealForm() == nullptr);
        QCOMPARE(medication::getObed(&db()),
                 std::string("07:45<table>11:00<table>14:00<table>16:00<table>19:30"));
        // Every child has the same meals, and the page shows them at once.
        SQLite::Statement meals(db(), "select count(distinct obed) from child");
        QVERIFY(meals.executeStep());
        QCOMPARE(meals.getColumn(0).getInt(), 1);
        QCOMPARE(page->inData()[2],
                 (InDayRow{3, "Перед едой", "07:47", "23<tr>Нурофен: 1 штука  (1 день из 7)"}));
    }

    void editOpensTheShownDayAndComesBackToIt() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-03-20");
        medication::inday* page = open(gid);
        click(page, "dayNext");
        page->actionEdit(QStringLiteral("Редактировать"));
        diary::noteEdit* editor = root_->dayEditor();
        QTRY_VERIFY(editor != nullptr && editor->isOpen());
        QCOMPARE(editor->captionLabel()->text(), QStringLiteral("23.11.2026"));
        // What the day holds once the editor closes is what the page shows.
        put(gid, "2026-11-23", "alarm", R"([{"time":"18:00","temp":""}])");
        editor->findChild<QToolButton*>(QStringLiteral("back"))->click();
        QTRY_VERIFY(!editor->isOpen());
        QCOMPARE(caption(page), QStringLiteral("23.11.2026"));
        QCOMPARE(page->inData()[1], (InDayRow{1, "18:00", "18:00", "5<tr>"}));
    }

private:
    // A course of a week from today, of one piece a dose.
    std::string course(const char* medicine, const char* meal, const char* inter,
                       const char* times) {
        std::vector<diary::ListRow> lists;
        diary::ReferenceLists(context()).loadConstList(lists, 0, "");
        nlohmann::json record = {
            {"key", core::newID()},
            {"pillname", frame::indexByCaption(lists, diary::cotype::medicines, medicine)},
            {"pilldoza", "1<td>шт."},
            {"pillinter", inter},
            {"pillperiod", frame::indexByCaption(lists, diary::cotype::howOften, "Ежедневно")},
            {"pilleat", frame::indexByCaption(lists, diary::cotype::meals, meal)},
            {"pilllength", "1<td>недели"},
            {"pillsdate", "22.11.2026"}};
        if (*times != '\0') {
            record["pilltime"] = times;
        }
        return record.dump();
    }

    medication::inday* open(const std::string& gid) {
        root_->activateWindow();
        context().state.pageDirty[2] = true;
        root_->openTab(2, gid);
        auto* page = qobject_cast<medication::inday*>(root_->tab(2));
        [&] { QTRY_COMPARE(root_->gCurTab(), 2); }();
        return page;
    }

    static QString caption(QWidget* page) {
        return page->findChild<QLabel*>(QStringLiteral("caption"))->text();
    }

    static void click(QWidget* page, const char* name) {
        page->findChild<QAbstractButton*>(QString::fromLatin1(name))->click();
    }
};

}  // namespace tilika

QTEST_MAIN(tilika::InDayTest)
#include "inday_test.moc"

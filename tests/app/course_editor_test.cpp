#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QTimeEdit>
#include <QToolButton>
#include <QtTest>
#include <SQLiteCpp/Statement.h>

#include <optional>
#include <string>
#include <vector>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "diary/day_rows.h"
#include "diary/note.h"
#include "diary/note_edit.h"
#include "diary/profiles.h"
#include "diary/value_codecs.h"
#include "frame/dic.h"
#include "frame/form_row_views.h"
#include "frame/look.h"
#include "frame/popup_panels.h"
#include "frame/view_controller.h"
#include "support/session_world.h"

namespace tilika {

namespace {

// The rows of the course form, from 1 as the form tags them.
enum CourseRow {
    kName = 1,
    kDose,
    kDosesADay,
    kPeriod,
    kMeals,
    kLength,
    kFirstDay,
    kTimes,
};
constexpr int kRows = 8;

QWidget* withTag(QWidget* root, int tag) {
    for (QWidget* widget : root->findChildren<QWidget*>()) {
        if (frame::tag(widget) == tag) {
            return widget;
        }
    }
    return nullptr;
}

}  // namespace

class CourseEditorTest : public QObject, public test::SessionWorld {
    Q_OBJECT

private slots:
    void init() {
        openFolder();
        launchPastWelcome();
        gid_ = addChild(QStringLiteral("Аня"), "2025-03-20");
    }
    void cleanup() { closeSession(); }

    void aNewCourseFormShowsItsDefaultsAndKeepsItsWheelsInBounds() {
        // Beside a wide window's editor, all of the form at once.
        root_->resize(1024, 768);
        root_->openDayEditor(*dates().dateFromString("2026-11-22"), gid_, {},
                             QRect(40, 300, 300, 60));
        frame::dic* form = openCourseForm();
        QVERIFY(form != nullptr);
        QCOMPARE(form->detailAr().size(), std::size_t{kRows});
        QCOMPARE(valueOf(kName), QString());
        QCOMPARE(valueOf(kDose), QStringLiteral("3 штуки"));
        QCOMPARE(valueOf(kDosesADay), QStringLiteral("3 раза в сутки"));
        QCOMPARE(valueOf(kPeriod), QStringLiteral("Ежедневно"));
        QCOMPARE(valueOf(kMeals), QStringLiteral("Независимо от еды"));
        QCOMPARE(valueOf(kLength), QStringLiteral("1 неделю"));
        QCOMPARE(valueOf(kFirstDay + 1000), QStringLiteral("22.11.2026"));
        QCOMPARE(times(), QStringList({"08:00", "15:00", "22:00"}));
        QTest::qWait(50);
        save(root_->grab(), "course_form_day.png");
        const QRect formArea(form->mapTo(root_, QPoint(0, 0)), form->size());
        QVERIFY(!formArea.intersects(root_->dayEditor()->geometry()));
        // Every row lies whole in the panel, and no value loses a letter.
        auto* scroll = form->findChild<QScrollArea*>(QStringLiteral("formScroll"));
        QStringList cut;
        for (int row = kName; row <= kTimes; ++row) {
            QWidget* control = withTag(form, row);
            QVERIFY(control != nullptr);
            const QRect shown(control->mapTo(scroll->viewport(), QPoint(0, 0)), control->size());
            if (!scroll->viewport()->rect().contains(shown)) {
                cut << QStringLiteral("row %1").arg(row);
            }
            if (auto* tap = qobject_cast<frame::form::TapRow*>(control)) {
                QLabel* value = tap->valueLabel();
                for (const QString& word : value->text().split(QLatin1Char(' '))) {
                    if (value->fontMetrics().horizontalAdvance(word) > value->width()) {
                        cut << word;
                    }
                }
            }
        }
        QCOMPARE(cut, QStringList());

        // A time set by hand stays through a change of the dose.
        timeButton(1)->click();
        popupPanel()->findChild<QTimeEdit*>()->setTime(QTime(12, 30));
        popupOk();
        QCOMPARE(times(), QStringList({"08:00", "12:30", "22:00"}));
        pickOnWheels(kDose, "1/2", {});
        QCOMPARE(valueOf(kDose), QStringLiteral("1/2 штуки"));
        QCOMPARE(times(), QStringList({"08:00", "12:30", "22:00"}));

        // The length wheel keeps a course within 12 weeks or 3 months.
        pickOnWheels(kLength, "15", "недели");
        QCOMPARE(valueOf(kLength), QStringLiteral("12 недель"));
        pickOnWheels(kLength, "5", "месяцы");
        QCOMPARE(valueOf(kLength), QStringLiteral("3 месяца"));
        // The count wheel turned past the months springs back as well.
        pickOnWheels(kLength, "4", {});
        QCOMPARE(valueOf(kLength), QStringLiteral("3 месяца"));
    }

    void theTimesFollowTheDosesADayAndTheMeals() {
        root_->openDayEditor(*dates().dateFromString("2026-11-22"), gid_);
        QVERIFY(openCourseForm() != nullptr);
        // The same count on the wheel still asks for the times: the new
        // course's own ones are not those of three doses round the clock.
        pickOnWheels(kDosesADay, "3", "раз в сутки");
        QCOMPARE(valueOf(kDosesADay), QStringLiteral("3 раза в сутки"));
        QCOMPARE(times(), QStringList({"00:00", "08:00", "16:00"}));
        timeButton(2)->click();
        popupPanel()->findChild<QTimeEdit*>()->setTime(QTime(18, 0));
        popupOk();
        pickOnWheels(kDosesADay, "2", "раз в день");
        QCOMPARE(times(), QStringList({"08:00", "22:00"}));
        // After meals, the doses follow the child's meals.
        pickOnWheels(kDosesADay, "3", "раз в день");
        pickFromList(kMeals, QStringLiteral("После еды"));
        QCOMPARE(times(), QStringList({"08:10", "14:10", "20:10"}));
    }

    void aCourseIsShownOnItsDaysAndEditedFromAnyOfThem() {
        diary::note* page = openDiary();
        // Today, then on to the Wednesday the course starts on.
        click(page, "addNote");
        diary::noteEdit* editor = root_->dayEditor();
        QTRY_VERIFY(editor != nullptr && editor->isOpen());
        for (int i = 0; i < 3; ++i) {
            editor->findChild<QToolButton*>(QStringLiteral("nextDay"))->click();
        }
        QCOMPARE(editor->captionLabel()->text(), QStringLiteral("25.11.2026"));

        frame::dic* form = openCourseForm();
        QVERIFY(form != nullptr);
        QCOMPARE(valueOf(kFirstDay + 1000), QStringLiteral("25.11.2026"));
        pickFromList(kName, QStringLiteral("Нурофен"));
        pickOnWheels(kDose, "1/2", {});
        pickFromList(kPeriod, QStringLiteral("2 раза в неделю"));
        QCOMPARE(valueOf(kPeriod), QStringLiteral("2 раза в неделю"));
        okOf(form)->click();
        QVERIFY(!form->isOpen());
        const QString sentence = QStringLiteral(
            "Нурофен: 1/2 штуки, 2 раза в неделю, 3 раза в сутки, Независимо от еды, 1 неделю");
        QCOMPARE(pillLines(), QStringList({sentence + QStringLiteral(" (1 день из 7)")}));

        closeToDiary(page);
        QCOMPARE(diaryLines(page), onCourseDays(sentence));
        const std::string oldKey = keyOn("2026-11-25");
        QVERIFY(!oldKey.empty());
        QCOMPARE(keyOn("2026-11-30"), oldKey);
        page->table()->scrollTo(page->table()->model()->index(rowOf(page, "2026-11-25"), 0),
                                QAbstractItemView::PositionAtTop);
        QTest::qWait(50);
        save(page->grab(), "course_in_diary.png");

        // From its last day, a course opens as a whole with what it holds.
        const int last = rowOf(page, "2026-11-30");
        page->table()->scrollTo(page->table()->model()->index(last, 0));
        const QRect row = page->table()->visualRect(page->table()->model()->index(last, 0));
        QTest::mouseClick(page->table()->viewport(), Qt::LeftButton, {},
                          row.topLeft() + QPoint(20, 20));
        QTRY_VERIFY(editor->isOpen());
        QCOMPARE(editor->captionLabel()->text(), QStringLiteral("30.11.2026"));
        QCOMPARE(pillLines(), QStringList({sentence + QStringLiteral(" (6 день из 7)")}));
        QCOMPARE(chooseFromElementMenu(0, QStringLiteral("Редактировать")),
                 QStringList({"Редактировать", "Удалить"}));
        QTRY_VERIFY((form = editor->form()) != nullptr && form->isOpen());
        QCOMPARE(valueOf(kName), QStringLiteral("Нурофен"));
        QCOMPARE(valueOf(kDose), QStringLiteral("1/2 штуки"));
        QCOMPARE(valueOf(kPeriod), QStringLiteral("2 раза в неделю"));
        QCOMPARE(valueOf(kFirstDay + 1000), QStringLiteral("25.11.2026"));
        pickOnWheels(kDose, "2", {});
        okOf(form)->click();
        const QString edited = QStringLiteral(
            "Нурофен: 2 штуки, 2 раза в неделю, 3 раза в сутки, Независимо от еды, 1 неделю");
        QCOMPARE(pillLines(), QStringList({edited + QStringLiteral(" (6 день из 7)")}));

        closeToDiary(page);
        QCOMPARE(diaryLines(page), onCourseDays(edited));
        QCOMPARE(rowsHolding(oldKey), 0);
        const std::string newKey = keyOn("2026-11-25");
        QVERIFY(!newKey.empty() && newKey != oldKey);
        QCOMPARE(rowsHolding(newKey), 3);
    }

    void daysWithSeveralCoursesOrAnOldPlainOne() {
        const auto course = [](const char* medicine, const char* dose, const char* key) {
            return std::string(R"({"pillname":"00000000-0000-0000-0004-00000000000)") + medicine +
                   R"(","pilldoza":")" + dose +
                   R"(","pillinter":"3<td>раз в день",)"
                   R"("pillperiod":"00000000-0000-0000-0004-000000000010",)"
                   R"("pilleat":"00000000-0000-0000-0004-000000000018",)"
                   R"("pilllength":"1<td>недели","pillsdate":"19.11.2026",)"
                   R"("pilltime":"08:10<td>14:10<td>20:10","key":")" +
                   key + "\"}";
        };
        put("2026-11-21", "pills",
            "[" + course("8", "1/2<td>шт.", "k1") + "," + course("7", "5<td>мл.", "k2") + "]");
        put("2026-11-20", "pills", "Нурофен 3 раза в день после еды");

        root_->resize(1024, 768);
        root_->openDayEditor(*dates().dateFromString("2026-11-21"), gid_, {},
                             QRect(40, 300, 300, 60));
        QCOMPARE(pillLines(),
                 QStringList({"Нурофен: 1/2 штуки, Ежедневно, 3 раза в день, После еды, 1 неделю "
                              "(3 день из 7)",
                              "Виферон: 5 миллилитров, Ежедневно, 3 раза в день, После еды, "
                              "1 неделю (3 день из 7)"}));
        QTest::qWait(50);
        save(root_->grab(), "course_in_editor.png");

        // A medicine added to the list from the form reads by its name at once.
        frame::dic* form = openCourseForm();
        QVERIFY(form != nullptr);
        qobject_cast<QAbstractButton*>(withTag(form, kName))->click();
        frame::dic* pick = form->subForm();
        QVERIFY(pick != nullptr && pick->isVisible());
        pick->findChild<QAbstractButton*>(QStringLiteral("addItem"))->click();
        frame::dic* added = pick->subForm();
        QVERIFY(added != nullptr && added->isVisible());
        added->findChild<QLineEdit*>()->setText(QStringLiteral("Зиртек"));
        okOf(added)->click();
        QVERIFY(!added->isOpen());
        QAbstractButton* item = listItem(pick, QStringLiteral("Зиртек"));
        QVERIFY(item != nullptr);
        if (!item->isChecked()) {
            item->click();
        }
        okOf(pick)->click();
        QCOMPARE(valueOf(kName), QStringLiteral("Зиртек"));
        okOf(form)->click();
        QCOMPARE(pillLines().size(), 3);
        QVERIFY2(pillLines()[2].startsWith(QStringLiteral("Зиртек: 3 штуки, ")),
                 qPrintable(pillLines()[2]));

        // An old plain value shows as stored, and can only be removed.
        diary::noteEdit* editor = root_->dayEditor();
        editor->findChild<QToolButton*>(QStringLiteral("prevDay"))->click();
        QCOMPARE(editor->captionLabel()->text(), QStringLiteral("20.11.2026"));
        QCOMPARE(pillLines(), QStringList({"Нурофен 3 раза в день после еды"}));
        QCOMPARE(chooseFromElementMenu(0, QStringLiteral("Удалить")), QStringList({"Удалить"}));
        QTRY_COMPARE(pillLines(), QStringList());
    }

private:
    core::Context& context() { return session_->application().context(); }
    const core::Dates& dates() { return context().dates; }
    frame::Popups& popups() { return root_->popups(); }

    void put(const char* day, const char* type, const std::string& value) {
        diary::DayRows(*context().database.connectToBase(), dates())
            .insertValue(type, value, *dates().dateFromString(day), gid_, true, false);
    }

    // The key of the course stored on a day.
    std::string keyOn(const char* day) {
        const std::string stored = diary::DayRows(*context().database.connectToBase(), dates())
                                       .getDateValue(*dates().dateFromString(day), "pills", gid_);
        const auto courses = diary::jsonToArray(stored);
        return courses.size() == 1 ? diary::jsonText(courses[0], "key") : std::string();
    }

    // How many rows of any day or child hold a course with this key.
    int rowsHolding(const std::string& key) {
        SQLite::Statement query(*context().database.connectToBase(),
                                "select value from childdata where type='pills'");
        int found = 0;
        while (query.executeStep()) {
            for (const auto& course : diary::jsonToArray(query.getColumn(0).getString())) {
                found += diary::jsonText(course, "key") == key ? 1 : 0;
            }
        }
        return found;
    }

    diary::note* openDiary() {
        root_->activateWindow();
        context().state.pageDirty[9] = true;
        root_->openTab(9, gid_);
        auto* page = qobject_cast<diary::note*>(root_->tab(9));
        [&] {
            QVERIFY(page != nullptr);
            QTRY_VERIFY(!page->generating());
        }();
        return page;
    }

    static void click(QWidget* screen, const char* name) {
        screen->findChild<QAbstractButton*>(QString::fromLatin1(name))->click();
    }

    // ---- the day editor ----

    std::size_t pillsRow() {
        const auto& rows = root_->dayEditor()->editor().noteData();
        std::size_t index = 0;
        while (index < rows.size() && rows[index].field != "pills") {
            ++index;
        }
        return index;
    }

    // A tap on the caption of the medicines' row; the form it opened.
    frame::dic* openCourseForm() {
        diary::noteEdit* editor = root_->dayEditor();
        if (editor == nullptr || !editor->isOpen()) {
            return nullptr;
        }
        QWidget* row = editor->rowView(pillsRow());
        auto* head = row != nullptr ? row->findChild<frame::form::TapRow*>() : nullptr;
        if (head == nullptr) {
            return nullptr;
        }
        head->click();
        frame::dic* form = editor->form();
        return form != nullptr && form->isOpen() ? form : nullptr;
    }

    // The lines the medicines' row shows, one a course.
    QStringList pillLines() {
        QStringList lines;
        QWidget* row = root_->dayEditor()->rowView(pillsRow());
        for (auto* label : row->findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly)) {
            lines << label->text();
        }
        return lines;
    }

    // Opens the menu of an element of the medicines' row and picks an item;
    // the items it offered.
    QStringList chooseFromElementMenu(int element, const QString& caption) {
        QWidget* row = root_->dayEditor()->rowView(pillsRow());
        row->findChild<QToolButton*>(QStringLiteral("element%1").arg(element))->click();
        QStringList offered;
        QToolButton* chosen = nullptr;
        for (auto* button : popupPanel()->findChildren<QToolButton*>()) {
            offered << button->text();
            if (button->text() == caption) {
                chosen = button;
            }
        }
        if (chosen != nullptr) {
            chosen->click();
        }
        return offered;
    }

    // ---- the course form ----

    frame::dic* form() const { return root_->dayEditor()->form(); }

    QString valueOf(int tag) const {
        QWidget* control = withTag(form(), tag);
        if (auto* tap = qobject_cast<frame::form::TapRow*>(control)) {
            return tap->valueLabel()->text();
        }
        auto* label = qobject_cast<QLabel*>(control);
        return label != nullptr ? label->text() : QStringLiteral("(none)");
    }

    QPushButton* timeButton(int position) const {
        return qobject_cast<QPushButton*>(withTag(form(), kTimes * 1000 + position));
    }

    QStringList times() const {
        QStringList shown;
        for (int position = 0; QPushButton* button = timeButton(position); ++position) {
            shown << button->text();
        }
        return shown;
    }

    static QPushButton* okOf(QWidget* form) {
        return form->findChild<QPushButton*>(QStringLiteral("ok"), Qt::FindDirectChildrenOnly);
    }

    QFrame* popupPanel() {
        QFrame* panel = popups().panel();
        if (panel == nullptr) {
            QTest::qFail("no popup is open", __FILE__, __LINE__);
        }
        return panel;
    }

    void popupOk() { popupPanel()->findChild<QPushButton*>(QStringLiteral("ok"))->click(); }

    // Turns the wheels of a picker row to the texts given (none: as it
    // stands) and confirms.
    void pickOnWheels(int row, const QString& count, const QString& word) {
        qobject_cast<QAbstractButton*>(withTag(form(), row))->click();
        QFrame* panel = popupPanel();
        QVERIFY(panel != nullptr);
        const QString texts[2] = {count, word};
        for (int component = 0; component < 2; ++component) {
            if (texts[component].isEmpty()) {
                continue;
            }
            auto* wheel = panel->findChild<QListWidget*>(QStringLiteral("wheel%1").arg(component));
            const auto items = wheel->findItems(texts[component], Qt::MatchExactly);
            QVERIFY2(items.size() == 1, qPrintable(texts[component]));
            wheel->setCurrentItem(items.front());
        }
        popupOk();
    }

    static QAbstractButton* listItem(frame::dic* pick, const QString& caption) {
        for (auto* button : pick->findChildren<QAbstractButton*>(QStringLiteral("listItem"))) {
            if (button->accessibleName() == caption) {
                return button;
            }
        }
        return nullptr;
    }

    // Picks an item of a list row in the form the row opens, and confirms.
    void pickFromList(int row, const QString& caption) {
        qobject_cast<QAbstractButton*>(withTag(form(), row))->click();
        frame::dic* pick = form()->subForm();
        QVERIFY(pick != nullptr && pick->isVisible());
        QAbstractButton* item = listItem(pick, caption);
        QVERIFY2(item != nullptr, qPrintable(caption));
        item->click();
        okOf(pick)->click();
        QCOMPARE(valueOf(row), caption);
    }

    // ---- the diary page ----

    QString day(const std::optional<core::Date>& date) {
        return QString::fromStdString(dates().dateToString(date, core::formats::day));
    }

    // Leaves the day the way a user does, back to the diary, which reloads.
    void closeToDiary(diary::note* page) {
        root_->dayEditor()->findChild<QToolButton*>(QStringLiteral("back"))->click();
        QVERIFY(!root_->dayEditor()->isOpen());
        QCOMPARE(root_->gCurTab(), 9);
        QTRY_VERIFY(!page->generating());
    }

    // What the diary shows of the course that starts on Wednesday 25.11 for
    // a week, twice a week.
    static std::map<QString, QStringList> onCourseDays(const QString& sentence) {
        return {
            {"2026-11-25", {sentence + " (1 день из 7)"}},
            {"2026-11-26", {sentence + " (2 день из 7)"}},
            {"2026-11-30", {sentence + " (6 день из 7)"}},
        };
    }

    // The course lines each day of the year shows, by day.
    std::map<QString, QStringList> diaryLines(diary::note* page) {
        std::map<QString, QStringList> lines;
        const diary::NoteYear& year = page->year();
        for (std::size_t i = 0; i < year.mainData.size(); ++i) {
            for (const auto& row : year.tableDays.rows[i]) {
                if (row.field != "pills") {
                    continue;
                }
                for (const auto& element : row.multiarray) {
                    lines[day(year.mainData[i].dat)] << QString::fromStdString(element.text);
                }
            }
        }
        return lines;
    }

    int rowOf(diary::note* page, const char* date) {
        auto* model = static_cast<diary::NoteModel*>(page->table()->model());
        for (int row = 0; row < model->rowCount(); ++row) {
            const auto& position = model->row(row).day;
            if (position && day(page->year().mainData[*position].dat) == date) {
                return row;
            }
        }
        return -1;
    }

    std::string gid_;
};

}  // namespace tilika

QTEST_MAIN(tilika::CourseEditorTest)
#include "course_editor_test.moc"

#include <QCalendarWidget>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTimeEdit>
#include <QToolButton>
#include <QtTest>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/settings_file.h"
#include "development/ruler_view.h"
#include "diary/entry_forms.h"
#include "diary/profile_form.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "diary/value_codecs.h"
#include "frame/dic.h"
#include "frame/form_kinds.h"
#include "frame/form_row_views.h"
#include "frame/look.h"
#include "frame/pictures.h"
#include "frame/popup_panels.h"
#include "medication/course_form.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "platform/qt_image_codec.h"
#include "platform/qt_pictures.h"
#include "platform/settings_store.h"
#include "support/screen_world.h"

using namespace tilika;
namespace formkind = frame::formkind;

namespace {

frame::FormRow& addRow(frame::FormRows& rows, int tp, const char* caption, const char* field,
                       bool required = false) {
    diary::addToNoteInit(rows, "", caption, tp, 0, caption, "", field, false, required);
    return rows.back();
}

frame::ListRow item(const char* cap, const char* index) {
    frame::ListRow row;
    row.cap = cap;
    row.index = index;
    return row;
}

}  // namespace

class FormTest : public QObject, protected test::ScreenWorld {
    Q_OBJECT

private slots:
    void init() {
        openWorld();
        lists_ = std::make_unique<diary::ReferenceLists>(*context_);
        // The window owns the form, as a screen's window does.
        form_ = new frame::dic(
            frame::FormServices{*state_, dates_, *popups_, qtPictures_, lists_.get()},
            window_.get());
    }

    void cleanup() {
        closeWorld();
        QVERIFY(form_ == nullptr);
    }

    void mixedFormIsTypedTappedAndHandedBack() {
        frame::FormRows rows;
        addRow(rows, formkind::heading, "Новая запись", "");
        addRow(rows, formkind::textLine, "Имя", "name", true);
        addRow(rows, formkind::number, "Объем", "volume");
        addRow(rows, formkind::longText, "Заметки", "note");
        addRow(rows, formkind::segments, "Мальчик|Девочка", "sex");
        addRow(rows, formkind::toggle, "Напоминать", "remind");
        auto& list = addRow(rows, formkind::list, "Жалобы", "list");
        list.listtype = 2;
        list.list = {item("Кашель", "guid-cough-0001"), item("Насморк", "guid-nose-00002"),
                     item("Сыпь<tr>1", "guid-rash-00003")};
        addRow(rows, formkind::date, "Дата", "date");
        auto& height = addRow(rows, formkind::slider, "Рост", "rost");
        height.scalemin = "40";
        height.scalemax = "120";
        height.scaletype = "1";
        addRow(rows, formkind::teeth, "Зубы", "tooth");
        addRow(rows, formkind::measure, "Единица", "mera");
        addRow(rows, formkind::times, "Время", "times");

        std::optional<std::pair<int, frame::FormRows>> answer;
        form_->prepare(rows, QStringLiteral("Запись"), window_.get(), window_.get(), 42,
                       {{"note", "старое"}, {"oldtooth", "1<tr>2"}},
                       [&](const frame::FormAnswer& given) {
                           answer = {given.parentFlag, given.rows};
                           return true;
                       });
        QVERIFY(form_->isVisible());
        QCOMPARE(state_->openForms, 1);
        QCOMPARE(form_->geometry(), window_->rect());
        // An empty date row starts at today.
        QCOMPARE(labelWithTag(8 + 1000)->text(), QStringLiteral("22.11.2026"));

        // The required name is empty: the form tells so and stays.
        okButton()->click();
        auto* box = form_->findChild<QMessageBox*>();
        QVERIFY(box != nullptr);
        QCOMPARE(box->text(), QStringLiteral("Поле 'Имя' не заполнено!"));
        box->close();
        QVERIFY(!answer);
        QVERIFY(form_->isOpen());

        QTest::keyClicks(control<QLineEdit>(2), QStringLiteral("Masha"));
        // The number pad takes no letters, and a comma is a decimal point.
        QTest::keyClicks(control<QLineEdit>(3), QStringLiteral("12a0,5"));
        control<QPlainTextEdit>(4)->moveCursor(QTextCursor::End);
        QTest::keyClicks(control<QPlainTextEdit>(4), QStringLiteral(" ok"));
        control<QWidget>(5)->findChildren<QPushButton*>().at(1)->click();
        control<QAbstractButton>(6)->click();
        const auto items =
            control<QWidget>(7)->findChildren<QAbstractButton*>(QStringLiteral("listItem"));
        QCOMPARE(items.size(), 3);
        items[0]->click();
        items[2]->click();
        items[0]->click();

        control<QAbstractButton>(8)->click();
        auto* calendar = popups_->panel()->findChild<QCalendarWidget*>();
        QVERIFY(calendar != nullptr);
        QCOMPARE(calendar->selectedDate(), QDate(2026, 11, 22));
        calendar->setSelectedDate(QDate(2026, 11, 25));
        popupOk();
        QCOMPARE(labelWithTag(8 + 1000)->text(), QStringLiteral("25.11.2026"));

        control<development::vesslider>(9)->setPosition(87.3, true);
        // A finger lands between two front teeth, nearer the fifth.
        auto* chart = control<frame::form::TeethChart>(10);
        const QRect fifth = frame::childWithTag(chart, 705)->geometry();
        QTest::mouseClick(chart, Qt::LeftButton, {}, fifth.center() + QPoint(fifth.width() / 3, 0));
        qobject_cast<QAbstractButton*>(frame::childWithTag(chart, 701))->click();

        control<QAbstractButton>(11)->click();
        auto* units = popups_->panel()->findChild<QListWidget*>(QStringLiteral("wheel0"));
        units->setCurrentRow(2);
        popupOk();
        QCOMPARE(form_->fieldValue("mera"), diary::meraToRead(3));

        okButton()->click();
        QVERIFY(answer);
        QCOMPARE(answer->first, 42);
        const frame::FormRows& result = answer->second;
        const auto value = [&](const char* field) {
            return QString::fromStdString(frame::fieldValue(result, field).value_or("<none>"));
        };
        QCOMPARE(value("name"), QStringLiteral("Masha"));
        QCOMPARE(value("volume"), QStringLiteral("120.5"));
        QCOMPARE(value("note"), QStringLiteral("старое ok"));
        QCOMPARE(value("sex"), QStringLiteral("1"));
        QCOMPARE(value("remind"), QStringLiteral("1"));
        QCOMPARE(value("list"), QStringLiteral("guid-rash-00003"));
        QCOMPARE(value("date"), QStringLiteral("25.11.2026"));
        QCOMPARE(value("rost"), QStringLiteral("87.3"));
        QCOMPARE(value("tooth"), QStringLiteral("101<tr>5"));
        // The times a row shows are the times it keeps.
        QCOMPARE(value("times"), QStringLiteral("08:00<td>13:00<td>18:00"));
        QVERIFY(!form_->isVisible());
        QCOMPARE(state_->openForms, 0);
    }

    void stopwatchRunsAgainstTheClock() {
        frame::FormRows rows;
        auto& left = addRow(rows, formkind::time, "Левая грудь", "left", true);
        left.startbutton = true;
        left.startprogress = "Идет кормление левой грудью ...";
        std::optional<frame::FormRows> answer;
        form_->prepare(rows, QStringLiteral("Кормление"), window_.get(), nullptr, 18,
                       {{"left", "00:10"}}, [&](const frame::FormAnswer& given) {
                           answer = given.rows;
                           return true;
                       });

        form_->findChild<QPushButton*>(QStringLiteral("startButton"))->click();
        QWidget* overlay = form_->stopwatchOverlay();
        QVERIFY(overlay != nullptr);
        QCOMPARE(frame::tag(overlay), 213);
        auto* elapsed = overlay->findChild<QLabel*>(QStringLiteral("elapsed"));
        // A count goes on from the minutes already there.
        QCOMPARE(elapsed->text(), QStringLiteral("0:10:00"));

        // The program is held up for an hour: the clock, not the ticks, tells.
        clock_.advance(std::chrono::minutes(65) + std::chrono::seconds(30));
        QTRY_COMPARE_WITH_TIMEOUT(elapsed->text(), QStringLiteral("1:15:30"), 3000);
        overlay->findChild<QPushButton*>(QStringLiteral("stopButton"))->click();
        QCOMPARE(labelWithTag(1 + 1000)->text(), QStringLiteral("01:15"));
        QVERIFY(form_->stopwatchOverlay() == nullptr);

        // OK at once, while the overlay still fades, keeps the time.
        okButton()->click();
        QVERIFY(answer);
        QCOMPARE(QString::fromStdString(frame::fieldValue(*answer, "left").value()),
                 QStringLiteral("01:15"));
    }

    void itemsAreAddedToLists() {
        std::optional<frame::FormRows> answer;
        session::DetailRequest request;
        request.kind = 8;
        request.cap = "Болезнь";
        request.msg = "Укажите болезнь";
        request.cotype = diary::cotype::illnesses;
        request.edit = true;
        form_->detailPrepare(request, window_.get(), nullptr, [&](const frame::FormAnswer& given) {
            answer = given.rows;
            return true;
        });
        auto* list = control<QWidget>(2);
        const auto before = list->findChildren<QAbstractButton*>(QStringLiteral("listItem")).size();

        // An illness kept off the child's card.
        list->findChild<QAbstractButton*>(QStringLiteral("addItem"))->click();
        frame::dic* add = form_->subForm();
        QVERIFY(add != nullptr && add->isVisible());
        QCOMPARE(add->findChild<QLabel*>()->text(), QStringLiteral("Новый тип"));
        add->findChild<QLineEdit*>()->setText(QStringLiteral("  Ветрянка "));
        add->findChild<frame::form::Switch*>()->click();
        add->findChild<QPushButton*>(QStringLiteral("ok"))->click();
        QVERIFY(!add->isOpen());

        list = control<QWidget>(2);
        const auto after = list->findChildren<QAbstractButton*>(QStringLiteral("listItem"));
        QCOMPARE(after.size(), before + 1);
        std::vector<frame::ListRow> stored;
        lists_->loadConstList(stored, diary::cotype::illnesses, "");
        const auto added = std::find_if(stored.begin(), stored.end(), [](const auto& row) {
            return row.cap.starts_with("Ветрянка");
        });
        QVERIFY(added != stored.end());
        QCOMPARE(QString::fromStdString(added->cap), QStringLiteral("Ветрянка<tr>1"));
        QCOMPARE(added->deleted, diary::rowstate::protectedRow);

        // A type that can't be stored keeps its form, name and all, until
        // the database takes it.
        list->findChild<QAbstractButton*>(QStringLiteral("addItem"))->click();
        add = form_->subForm();
        add->findChild<QLineEdit*>()->setText(QStringLiteral("Скарлатина"));
        database_->connectToBase()->exec("PRAGMA query_only = 1");
        add->findChild<QPushButton*>(QStringLiteral("ok"))->click();
        QVERIFY(add->isOpen());
        auto* box = add->findChild<QMessageBox*>();
        QVERIFY(box != nullptr);
        QVERIFY(box->text().startsWith(QStringLiteral("Не удалось сохранить данные: ")));
        box->close();
        QCOMPARE(add->findChild<QLineEdit*>()->text(), QStringLiteral("Скарлатина"));
        database_->connectToBase()->exec("PRAGMA query_only = 0");
        add->findChild<QPushButton*>(QStringLiteral("ok"))->click();
        QVERIFY(!add->isOpen());
        QCOMPARE(
            control<QWidget>(2)->findChildren<QAbstractButton*>(QStringLiteral("listItem")).size(),
            before + 2);

        // A product needs its unit: without one the form stays open.
        frame::FormRows rows;
        auto& food = addRow(rows, formkind::list, "Продукт", "food");
        food.listid = diary::cotype::otherFood;
        food.listtype = 1;
        food.listedittype = 3;
        food.edit = true;
        form_->prepare(rows, QStringLiteral("Прикорм"), window_.get(), nullptr, 1, {},
                       [&](const frame::FormAnswer& given) {
                           answer = given.rows;
                           return true;
                       });
        control<QWidget>(1)->findChild<QAbstractButton*>(QStringLiteral("addItem"))->click();
        add = form_->subForm();
        QCOMPARE(add->findChild<QLabel*>()->text(), QStringLiteral("Новый продукт"));
        add->findChild<QLineEdit*>()->setText(QStringLiteral("Творог"));
        add->findChild<QPushButton*>(QStringLiteral("ok"))->click();
        QVERIFY(add->isOpen());
        add->findChild<QMessageBox*>()->close();
        tagged<QAbstractButton>(add, 2)->click();
        popups_->panel()->findChild<QListWidget*>(QStringLiteral("wheel0"))->setCurrentRow(1);
        popupOk();
        add->findChild<QPushButton*>(QStringLiteral("ok"))->click();
        QVERIFY(!add->isOpen());
        stored.clear();
        lists_->loadConstList(stored, diary::cotype::otherFood, "");
        QVERIFY(std::any_of(stored.begin(), stored.end(), [](const auto& row) {
            return row.cap.starts_with("Творог (") &&
                   diary::foodUnit(diary::cotype::otherFood, row.cap) == 2;
        }));
    }

    void sleepFormKeepsItsSpanTogether() {
        diary::EntryForm sleep = diary::periodForm("sleep", "21:30", std::nullopt);
        std::optional<frame::FormRows> answer;
        form_->prepare(sleep.rows, QString::fromStdString(sleep.caption), window_.get(), nullptr,
                       -1, sleep.defaults, [&](const frame::FormAnswer& given) {
                           answer = given.rows;
                           return true;
                       });
        QCOMPARE(labelWithTag(1001)->text(), QStringLiteral("21:30"));
        // The end starts at the clock's time.
        QCOMPARE(labelWithTag(1002)->text(), QStringLiteral("10:00"));

        pickTime(2, QTime(0, 10));
        QCOMPARE(labelWithTag(1003)->text(), QStringLiteral("02:40"));
        // Only a minute sum above 60 carries, as spans were always stored.
        pickTime(3, QTime(1, 30));
        QCOMPARE(labelWithTag(1002)->text(), QStringLiteral("22:60"));
        pickTime(3, QTime(1, 40));
        QCOMPARE(labelWithTag(1002)->text(), QStringLiteral("23:10"));

        okButton()->click();
        QVERIFY(answer);
        const auto value =
            diary::jsonToArray(diary::jsonFromDic(diary::tp::periods, "sleep", "", *answer, -1));
        QCOMPARE(value.size(), 1u);
        QCOMPARE(QString::fromStdString(value[0]["start"]), QStringLiteral("21:30"));
        QCOMPARE(QString::fromStdString(value[0]["end"]), QStringLiteral("23:10"));
        QCOMPARE(QString::fromStdString(value[0]["interval"]), QStringLiteral("01:40"));
        QCOMPARE(QString::fromStdString(diary::intervalToRead2(value[0].dump())),
                 QStringLiteral("с 21:30 до 23:10 (01:40)"));
    }

    void medicationCourseIsEnteredThroughTheForm() {
        std::vector<frame::ListRow> all;
        lists_->loadConstList(all, diary::cotype::all, "");
        diary::EntryForm course = medication::courseForm(std::nullopt, "22.11.2026", all);
        std::optional<frame::FormRows> answer;
        int asked = 0;
        form_->setFollowRows([&](frame::FormRows& rows, std::string_view changed) {
            medication::followCourseTimes(rows, changed, [&](const auto& fields) {
                ++asked;
                return std::optional<std::string>(
                    fields.at("pillinter") == "2<td>раз в день" ? "09:00<td>21:00" : "12:00");
            });
        });
        form_->prepare(course.rows, QString::fromStdString(course.caption), window_.get(), nullptr,
                       -1, course.defaults, [&](const frame::FormAnswer& given) {
                           answer = given.rows;
                           return true;
                       });
        QCOMPARE(valueOf(3), QStringLiteral("3 раза в сутки"));
        QCOMPARE(valueOf(5), QStringLiteral("Независимо от еды"));

        // The medicine, from its list in a form of its own.
        control<QAbstractButton>(1)->click();
        frame::dic* pick = form_->subForm();
        QVERIFY(pick != nullptr && pick->isVisible());
        const auto medicines =
            tagged<QWidget>(pick, 2)->findChildren<QAbstractButton*>(QStringLiteral("listItem"));
        QVERIFY(medicines.size() >= 3);
        const auto nurofen = std::find_if(medicines.begin(), medicines.end(), [](auto* button) {
            return button->accessibleName() == QStringLiteral("Нурофен");
        });
        QVERIFY(nurofen != medicines.end());
        (*nurofen)->click();
        pick->findChild<QPushButton*>(QStringLiteral("ok"))->click();
        QCOMPARE(valueOf(1), QStringLiteral("Нурофен"));

        // The dose and the doses a day on their wheels; the times follow the
        // doses a day.
        control<QAbstractButton>(2)->click();
        popups_->panel()->findChild<QListWidget*>(QStringLiteral("wheel0"))->setCurrentRow(2);
        popupOk();
        QCOMPARE(valueOf(2), QStringLiteral("1/2 штуки"));
        QCOMPARE(asked, 0);
        control<QAbstractButton>(3)->click();
        popups_->panel()->findChild<QListWidget*>(QStringLiteral("wheel0"))->setCurrentRow(1);
        popups_->panel()->findChild<QListWidget*>(QStringLiteral("wheel1"))->setCurrentRow(0);
        popupOk();
        QCOMPARE(asked, 1);
        QCOMPARE(form_->fieldValue("pilltime"), "09:00<td>21:00");

        // One time set by hand.
        auto* second = control<QPushButton>(8 * 1000 + 1);
        QCOMPARE(second->text(), QStringLiteral("21:00"));
        second->click();
        popups_->panel()->findChild<QTimeEdit*>()->setTime(QTime(20, 30));
        popupOk();
        QCOMPARE(second->text(), QStringLiteral("20:30"));

        okButton()->click();
        QVERIFY(answer);
        const auto stored =
            diary::jsonToArray(diary::jsonFromDic(diary::tp::medication, "pills", "", *answer, -1));
        QCOMPARE(stored.size(), 1u);
        const auto text = [&](const char* key) {
            return QString::fromStdString(diary::jsonText(stored[0], key));
        };
        QCOMPARE(text("pillname"), QString::fromStdString(nurofenGuid()));
        QCOMPARE(text("pilldoza"), QStringLiteral("1/2<td>шт."));
        QCOMPARE(text("pillinter"), QStringLiteral("2<td>раз в день"));
        QCOMPARE(text("pilllength"), QStringLiteral("1<td>недели"));
        QCOMPARE(text("pillsdate"), QStringLiteral("22.11.2026"));
        QCOMPARE(text("pilltime"), QStringLiteral("09:00<td>20:30"));
        QVERIFY(!text("pillperiod").isEmpty());
    }

    void actionRowsAnswerWithTheirRow() {
        frame::FormRows rows;
        addRow(rows, formkind::action, "Редактировать", "edit");
        addRow(rows, formkind::action, "Удалить", "remove");
        std::optional<std::string> sender;
        const auto hear = [&](const frame::FormAnswer& given) {
            sender = given.sender ? given.rows.at(*given.sender).field : "no row";
            return true;
        };
        form_->prepare(rows, QStringLiteral("Запись"), window_.get(), window_.get(), 3, {}, hear);
        QVERIFY(okButton()->isHidden());
        control<QAbstractButton>(2)->click();
        QCOMPARE(sender.value_or(""), std::string("remove"));
        QVERIFY(!form_->isOpen());

        // A caller that is gone hears nothing.
        auto target = std::make_unique<QObject>();
        sender.reset();
        form_->prepare(rows, QStringLiteral("Запись"), window_.get(), target.get(), 3, {}, hear);
        target.reset();
        control<QAbstractButton>(1)->click();
        QVERIFY(!sender);
        QVERIFY(!form_->isOpen());
        QCOMPARE(state_->openForms, 0);
    }

    void aCallerThatCouldNotSaveKeepsTheFormOpen() {
        frame::FormRows rows;
        addRow(rows, formkind::textLine, "Имя", "name");
        bool saves = false;
        int answers = 0;
        std::string name;
        int closings = 0;
        connect(form_.data(), &frame::dic::closed, this, [&] { ++closings; });
        form_->prepare(rows, QStringLiteral("Запись"), window_.get(), window_.get(), 3, {},
                       [&](const frame::FormAnswer& given) {
                           ++answers;
                           name = frame::fieldValue(given.rows, "name").value_or("");
                           return saves;
                       });
        control<QLineEdit>(1)->setText(QStringLiteral("Маша"));
        okButton()->click();
        QCOMPARE(answers, 1);
        QCOMPARE(name, std::string("Маша"));
        QVERIFY(form_->isOpen());
        QCOMPARE(closings, 0);
        QCOMPARE(state_->openForms, 1);
        QCOMPARE(control<QLineEdit>(1)->text(), QStringLiteral("Маша"));

        saves = true;
        okButton()->click();
        QCOMPARE(answers, 2);
        QVERIFY(!form_->isOpen());
        QCOMPARE(closings, 1);
        QCOMPARE(state_->openForms, 0);

        // A caller may open the form again with new rows as it answers;
        // they stay up.
        form_->prepare(rows, QStringLiteral("Запись"), window_.get(), nullptr, 3, {},
                       [&](const frame::FormAnswer&) {
                           frame::FormRows next;
                           addRow(next, formkind::textLine, "Фамилия", "surname");
                           form_->prepare(next, QStringLiteral("Дальше"), window_.get(), nullptr, 4,
                                          {}, {});
                           return true;
                       });
        okButton()->click();
        QVERIFY(form_->isOpen());
        QCOMPARE(form_->posByField("surname"), std::size_t{1});
        QCOMPARE(state_->openForms, 1);
    }

    void photoIsPickedAndCleared() {
        frame::FormRows rows;
        addRow(rows, formkind::photo, "", "photo");
        form_->setPhotoPicker([](QWidget*) {
            QImage image(4000, 3000, QImage::Format_RGB32);
            image.fill(Qt::darkGreen);
            return std::optional<QImage>(image);
        });
        std::optional<frame::FormRows> answer;
        form_->prepare(rows, QStringLiteral("Фото"), window_.get(), nullptr, 1, {},
                       [&](const frame::FormAnswer& given) {
                           answer = given.rows;
                           return true;
                       });
        const auto choose = [&](const QString& caption) {
            form_->findChild<QPushButton*>(QStringLiteral("photo"))->click();
            QToolButton* item = nullptr;
            for (auto* button : popups_->panel()->findChildren<QToolButton*>()) {
                if (button->text() == caption) {
                    item = button;
                }
            }
            QVERIFY(item != nullptr);
            item->click();
        };
        choose(QStringLiteral("Из альбома"));
        // The menu answers once it has gone.
        QTRY_VERIFY(form_->detailAr()[0].image.has_value());
        QCOMPARE(form_->detailAr()[0].save, 1);
        QCOMPARE(form_->detailAr()[0].image->width, 2048);  // no larger than any use of it

        choose(QStringLiteral("Очистить"));
        QTRY_VERIFY(!form_->detailAr()[0].image.has_value());
        QCOMPARE(form_->detailAr()[0].save, 2);
    }

    void profileIsRemovedOnlyWhenAsked() {
        const auto children = diary::Profiles(*context_).loadProfils();
        QVERIFY(!children.empty());
        const platform::QtImageCodec images;
        diary::ProfileFormContent profile =
            diary::ProfileForm(*context_, images).setupDialog(children.front().childguid);
        std::optional<std::pair<int, std::size_t>> answer;
        form_->prepare(profile.rows, QString::fromStdString(profile.caption), window_.get(),
                       nullptr, profile.parentFlag, {}, [&](const frame::FormAnswer& given) {
                           answer = {given.parentFlag, given.rows.size()};
                           return true;
                       });
        QTest::qWait(50);
        save(window_->grab(), "form_profile.png");
        auto* scroll = form_->findChild<QScrollArea*>(QStringLiteral("formScroll"));
        scroll->verticalScrollBar()->setValue(scroll->verticalScrollBar()->maximum());
        QTest::qWait(50);
        save(window_->grab(), "form_profile_end.png");
        // Nothing is wider than the phone: a long caption wraps.
        const int room = form_->findChild<QScrollArea*>()->viewport()->width();
        for (QWidget* card : form_->findChildren<QWidget*>(QStringLiteral("formCard"))) {
            QVERIFY(card->geometry().right() < room);
        }

        auto* remove = form_->findChild<QPushButton*>(QStringLiteral("remove"));
        QVERIFY(remove != nullptr);
        const auto ask = [&](const QString& button) {
            remove->click();
            auto* box = form_->findChild<QMessageBox*>();
            QVERIFY(box != nullptr);
            QCOMPARE(box->text(),
                     QStringLiteral("Вы действительно хотите удалить эту учетную запись?"));
            for (QAbstractButton* choice : box->buttons()) {
                if (choice->text() == button) {
                    choice->click();
                }
            }
            delete box;
        };
        ask(QStringLiteral("Нет"));
        QVERIFY(!answer);
        QVERIFY(form_->isOpen());
        ask(QStringLiteral("Да"));
        QVERIFY(answer);
        QCOMPARE(answer->first, diary::formflag::existingChild);
        QCOMPARE(answer->second, 0u);  // no rows: the child is to be removed
        QVERIFY(!form_->isOpen());
    }

    void longFormOnAPhone() {
        session::DetailRequest request;
        request.kind = 9;
        request.cap = "Размеры";
        request.msg = "Укажите размеры ребенка";
        request.dat = R"({"bio1":"42.5","bio5":"12.0"})";
        form_->detailPrepare(request, window_.get(), nullptr, {});
        QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
        QTest::qWait(50);
        save(window_->grab(), "form_long_top.png");
        auto* scroll = form_->findChild<QScrollArea*>(QStringLiteral("formScroll"));
        scroll->verticalScrollBar()->setValue(scroll->verticalScrollBar()->maximum());
        QTest::qWait(50);
        save(window_->grab(), "form_long_end.png");
        QVERIFY(scroll->verticalScrollBar()->maximum() > 0);

        // Opened again, the form starts at the top.
        form_->detailPrepare(request, window_.get(), nullptr, {});
        QTest::qWait(20);
        QCOMPARE(scroll->verticalScrollBar()->value(), 0);

        diary::EntryForm course = medication::courseForm(std::nullopt, "22.11.2026", {});
        form_->prepare(course.rows, QStringLiteral("Лекарства"), window_.get(), nullptr, -1,
                       course.defaults, {});
        QTest::qWait(50);
        save(window_->grab(), "form_course.png");

        frame::FormRows teeth;
        addRow(teeth, formkind::heading, "Отметьте зубы, которые есть у ребенка", "");
        addRow(teeth, formkind::teeth, "Зубы", "tooth");
        form_->prepare(teeth, QStringLiteral("Зубы"), window_.get(), nullptr, -1,
                       {{"oldtooth", "5<tr>6<tr>15<tr>16<tr>4"}}, {});
        QTest::qWait(50);
        save(window_->grab(), "form_teeth.png");
    }

private:
    template <class T>
    T* control(int tag) const {
        return tagged<T>(form_.data(), tag);
    }
    template <class T>
    static T* tagged(QWidget* root, int tag) {
        for (QWidget* widget : root->findChildren<QWidget*>()) {
            if (frame::tag(widget) == tag) {
                if (auto* typed = qobject_cast<T*>(widget)) {
                    return typed;
                }
            }
        }
        return nullptr;
    }
    QLabel* labelWithTag(int tag) const { return control<QLabel>(tag); }
    QString valueOf(int row) const {
        const QLabel* label = control<frame::form::TapRow>(row)->valueLabel();
        return label->text();
    }
    QPushButton* okButton() const {
        return form_->findChild<QPushButton*>(QStringLiteral("ok"), Qt::FindDirectChildrenOnly);
    }
    void popupOk() const {
        QVERIFY(popups_->panel() != nullptr);
        popups_->panel()->findChild<QPushButton*>(QStringLiteral("ok"))->click();
    }
    void pickTime(int row, QTime time) const {
        control<QAbstractButton>(row)->click();
        popups_->panel()->findChild<QTimeEdit*>()->setTime(time);
        popupOk();
    }
    std::string nurofenGuid() const {
        std::vector<frame::ListRow> medicines;
        lists_->loadConstList(medicines, diary::cotype::medicines, "");
        for (const auto& row : medicines) {
            if (row.cap == "Нурофен") {
                return row.index;
            }
        }
        return {};
    }
    static void save(const QPixmap& shot, const char* name) {
        saveScreenshot(shot.toImage(), name);
    }

    std::unique_ptr<diary::ReferenceLists> lists_;
    QPointer<frame::dic> form_;
};

QTEST_MAIN(FormTest)
#include "form_test.moc"

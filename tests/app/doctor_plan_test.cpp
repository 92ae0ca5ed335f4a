#include <QAbstractButton>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QtTest>

#include <algorithm>

#include "cloud/names.h"
#include "cloud/record.h"
#include "core/ids.h"
#include "development/doctor_page.h"
#include "development/plane_table.h"
#include "frame/dic.h"
#include "frame/subcheck.h"
#include "frame/textdata.h"
#include "frame/view_controller.h"
#include "support/session_world.h"

namespace tilika {

using development::doctor;
using development::planeTable;

class DoctorPlanTest : public QObject, public test::SessionWorld {
    Q_OBJECT

private slots:
    void init() { openFolder(); }
    void cleanup() { closeSession(); }

    void aTickedVaccinationGoesToTheDiaryAndTheCard() {
        launchPastWelcome();
        // Four months old: the running month is the fifth.
        const std::string gid = addChild(QStringLiteral("Аня"), "2026-07-10");
        doctor* page = open(gid);
        QCOMPARE(page->objectName(), QStringLiteral("doctorTab"));
        frame::textdata* text = page->text();
        QTRY_VERIFY(text->page().highlight().has_value());
        // The page slides in and scrolls to the running month.
        QTest::qWait(800);
        save(root_->grab(), "doctor_plan.png");

        // A tap on the box of the first DTP shot.
        tapBox(text, 10);
        QVERIFY(text->page().checkState(mark(10)));
        frame::dic* form = nullptr;
        QTRY_VERIFY((form = page->noteForm()) != nullptr);
        QCOMPARE(QString::fromStdString(form->fieldValue("text").value_or("")),
                 QStringLiteral("Прививка от дифтерии, коклюша и столбняка (первая)"));
        form->findChild<QPushButton*>(QStringLiteral("ok"), Qt::FindDirectChildrenOnly)->click();
        QTRY_VERIFY(page->noteForm() == nullptr);
        QCOMPARE(stored(gid, "2026-11-22"),
                 std::string("Прививка от дифтерии, коклюша и столбняка (первая)"));

        // Unticking leaves the diary as it is and asks nothing.
        tapBox(text, 10);
        QVERIFY(!text->page().checkState(mark(10)));
        QTest::qWait(50);
        QVERIFY(page->noteForm() == nullptr);
        QCOMPARE(stored(gid, "2026-11-22"),
                 std::string("Прививка от дифтерии, коклюша и столбняка (первая)"));
        tapBox(text, 10);
        QTRY_VERIFY(page->noteForm() != nullptr);
        page->noteForm()->closeForm();

        page->findChild<QAbstractButton*>(QStringLiteral("cardButton"))->click();
        planeTable* table = page->table();
        QVERIFY(table != nullptr && table->isVisible());
        QCOMPARE(table->findChild<QLabel*>(QStringLiteral("caption"))->text(),
                 QStringLiteral("Карта прививок"));
        const auto lit = table->card().cellsOf(10);
        QCOMPARE(lit.size(), 3u);
        for (const development::CardCell* cell : lit) {
            QVERIFY(cell->check);
            QCOMPARE(QString::fromStdString(cell->caption), QStringLiteral(" ✅ В1 "));
        }
        // The whole card, as one picture, rather than the corner a phone
        // shows of it.
        save(table->scrollArea()->widget()->grab(), "vaccination_card.png");
    }

    void aTickGoesToThisDevicesMarksWhenTheDiaryIsSynchronised() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2026-07-10");
        context().state.cloudMode = core::cloudmode::icloud;
        doctor* page = open(gid);
        frame::textdata* text = page->text();
        QTRY_VERIFY(text->page().highlight().has_value());
        tapBox(text, 10);
        QTRY_VERIFY(page->noteForm() != nullptr);
        page->noteForm()->closeForm();

        const auto bytes =
            cloud::readRecordFile(context().folders.path(platform::SystemFolder::Cloud) /
                                  cloud::marksRecordName(gid, context().state.appguid));
        QVERIFY(bytes.has_value());
        const cloud::Decoded decoded = cloud::decodeRecord(*bytes);
        QVERIFY(decoded.record.has_value() && decoded.record->marks.has_value());
        const cloud::MarkEntry& entry = decoded.record->marks->at(mark(10));
        QVERIFY(entry.state);
        QCOMPARE(entry.seltypeid, std::optional<int>(1));
    }

    void aLineLeadsToItsHelpAndTicksThereAreThePlans() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2026-07-10");
        doctor* page = open(gid);
        frame::textdata* text = page->text();
        // The arrow of the line of the first DTP shot: how to get ready.
        const frame::PageElement* link = nullptr;
        for (const frame::PageElement& element : text->page().elements()) {
            if (element.action == frame::PageAction::Link && link == nullptr) {
                link = &element;
            }
        }
        QVERIFY(link != nullptr);
        const long long group = link->tag;
        QTest::mouseClick(text->surface(), Qt::LeftButton, {},
                          text->surface()->mapFrom(text, text->viewPosition(link->frame)));
        frame::subcheck* help = page->help();
        QVERIFY(help != nullptr && help->isVisible());
        QCOMPARE(help->findChild<QLabel*>(QStringLiteral("caption"))->text(),
                 QStringLiteral("Анализы"));
        QTRY_VERIFY(help->text()->page().highlight().has_value());
        const auto& groups = help->text()->page().groupData();
        QVERIFY(std::any_of(groups.begin(), groups.end(),
                            [&](const frame::PageGroup& g) { return g.groupid == group; }));
        QTest::keyClick(help, Qt::Key_Escape);
        QVERIFY(!help->isVisible());

        // A text with boxes opened over the plan keeps its ticks as the
        // plan's, and offers the diary as the plan does.
        page->openHelp(QStringLiteral("План"), QStringLiteral("doctor-u"), 5, 1);
        tapBox(help->text(), 12);
        QTRY_VERIFY(page->noteForm() != nullptr);
        page->noteForm()->closeForm();
        QTest::keyClick(help, Qt::Key_Escape);
        QVERIFY(text->page().checkState(mark(12)));
    }

    void theCardZoomsAsOnePicture() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2026-07-10");
        doctor* page = open(gid);
        page->tableClick();
        planeTable* table = page->table();
        QVERIFY(table->isVisible());
        QWidget* surface = table->scrollArea()->widget();
        const QSize plain = surface->size();
        // The card is wider than a phone: it scrolls sideways.
        QVERIFY(table->scrollArea()->horizontalScrollBar()->maximum() > 0);

        QTest::keyClick(table, Qt::Key_Equal, Qt::ControlModifier);
        QCOMPARE(table->zoom(), 1.25);
        QTest::keyClick(table, Qt::Key_Minus, Qt::ControlModifier);
        QCOMPARE(table->zoom(), 1.0);
        QCOMPARE(surface->size(), plain);

        QTest::mouseDClick(surface, Qt::LeftButton, {}, QPoint(40, 40));
        QCOMPARE(table->zoom(), 2.0);
        QVERIFY(surface->width() >= plain.width() * 2 - 2);
        QTest::mouseDClick(surface, Qt::LeftButton, {}, QPoint(40, 40));
        QCOMPARE(table->zoom(), 1.0);

        QWheelEvent wheel(
            QPointF(50, 50), table->scrollArea()->viewport()->mapToGlobal(QPointF(50, 50)),
            QPoint(), QPoint(0, 120), Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(table->scrollArea()->viewport(), &wheel);
        QCOMPARE(table->zoom(), 1.25);
        for (int i = 0; i < 20; ++i) {
            QTest::keyClick(table, Qt::Key_Minus, Qt::ControlModifier);
        }
        QCOMPARE(table->zoom(), planeTable::kMinZoom);

        QTest::keyClick(table, Qt::Key_Escape);
        QVERIFY(!table->isVisible());
    }

private:
    static std::string mark(int number) { return core::newID2(core::idkind::listRow, number); }

    doctor* open(const std::string& gid) {
        root_->activateWindow();
        context().state.pageDirty[8] = true;
        root_->openTab(8, gid);
        auto* page = qobject_cast<doctor*>(root_->tab(8));
        [&] { QTRY_COMPARE(root_->gCurTab(), 8); }();
        return page;
    }

    std::string stored(const std::string& gid, const char* day) {
        return diary::DayRows(db(), context().dates)
            .getDateValue(*context().dates.dateFromString(day), "priv", gid);
    }

    // Taps the box of the line ticked under this number.
    static void tapBox(frame::textdata* text, int number) {
        const frame::TextPage& page = text->page();
        const std::string guid = mark(number);
        long long tag = 0;
        for (std::size_t i = 0; i < page.checkAr().size(); ++i) {
            if (page.checkAr()[i].guid == guid) {
                tag = static_cast<long long>(i) + 1001;
            }
        }
        for (const frame::PageElement& element : page.elements()) {
            if (element.action == frame::PageAction::Check && element.tag == tag) {
                QTest::mouseClick(
                    text->surface(), Qt::LeftButton, {},
                    text->surface()->mapFrom(text, text->viewPosition(element.frame)));
                return;
            }
        }
        QFAIL("no such box");
    }
};

}  // namespace tilika

QTEST_MAIN(tilika::DoctorPlanTest)
#include "doctor_plan_test.moc"

#include <QLabel>
#include <QMessageBox>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>
#include <QWheelEvent>
#include <QtTest>
#include <nlohmann/json.hpp>

#include <fstream>

#include "development/plane_page.h"
#include "frame/popup_panels.h"
#include "frame/subcheck.h"
#include "platform/shell.h"
#include "support/session_world.h"

namespace tilika {

using development::plane;

namespace {

// Remembers the links it is asked to open.
class RecordingShell final : public platform::Shell {
public:
    std::vector<std::string> urls;

    bool isTablet() const override { return false; }
    platform::ScreenSize screenSize() const override { return {}; }
    void registerUserNotifications(int /*types*/) override {}
    void registerForRemoteNotifications() override {}
    void setShortcuts(const std::vector<platform::Shortcut>& /*shortcuts*/) override {}
    void showAlert(platform::Alert /*alert*/) override {}
    void openUrl(const std::string& url) override { urls.push_back(url); }
    void showRootWindow() override {}
    bool rootIsCurrent() const override { return true; }
    void openDayEditor(platform::Date /*day*/) override {}
    void hideKeyboard() override {}
    void coverWithLock() override {}
};

// A small plan of visits and its guide, in place of the shipped ones.
std::string plan() {
    using nlohmann::json;
    auto visit = [](const char* comment, const char* start, const char* length) {
        return json{{"text", comment},
                    {"planeicon", "c-icon-doctor.png"},
                    {"planecomment", comment},
                    {"planestart", start},
                    {"planelength", length}};
    };
    json checkup = visit("Педиатр", "22", "2");
    checkup["planelcomment"] = "Плановый осмотр";
    checkup["sublink"] = "2";
    json vaccines = visit("Прививки", "23", "3");
    vaccines["planelink"] = "https://example.org/vaccines";
    json neurologist = visit("Невролог", "24", "1");
    neurologist["planelcomment"] = "Осмотр невролога";
    return json::array({{{"groupid", "1"}, {"Content", {checkup, vaccines, neurologist}}}}).dump();
}
constexpr const char* kGuide =
    "tp<val>1<tr>groupid<val>1<br>tp<val>4<tr>text<val>Общий анализ крови<br>"
    "tp<val>1<tr>groupid<val>2<br>tp<val>4<tr>text<val>Осмотр педиатра";

}  // namespace

class TimelineTest : public QObject, public test::SessionWorld {
    Q_OBJECT

private slots:
    void init() { openFolder(); }
    void cleanup() { closeSession(); }

    void scrollsByWheelDragAndHomeAndSwitchesRegime() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-01-10");
        put(gid, "2025-07-15", "achive", core::newID2(core::idkind::listRow, 9));
        // One mark and one bar of the child's own in the running month.
        put(gid, "2026-11-20", "achive",
            core::newID2(core::idkind::listRow, 17) + "<tr>" +
                core::newID2(core::idkind::listRow, 25));
        root_->activateWindow();
        context().state.pageDirty[10] = true;
        root_->openTab(10, gid);
        QTRY_COMPARE(root_->gCurTab(), 10);
        QTRY_VERIFY(!root_->isSliding());
        auto* page = qobject_cast<plane*>(root_->tab(10));
        QVERIFY(page != nullptr);
        QCOMPARE(page->objectName(), QStringLiteral("planeTab"));
        QCOMPARE(label(page, "caption"), QStringLiteral("Развитие ребенка"));
        // The child's own marks follow the three stages.
        QCOMPARE(page->timeline().mainData().size(), 6U);
        QCOMPARE(page->timeline().mainData()[3].icon, std::string("1b.png"));

        // It opens on the running month.
        QTRY_COMPARE(label(page, "month"), QStringLiteral("23-й месяц (10.11.2026-10.12.2026)"));
        QScrollBar* across = page->scrollArea()->horizontalScrollBar();
        const int current = across->value();
        save(page->grab(), "timeline.png");

        // Shift and the wheel, a drag, and Home back again; the pager
        // leaves a drag on the strip alone.
        QWidget* viewport = page->scrollArea()->viewport();
        const QPointF at(viewport->width() / 2.0, viewport->height() / 2.0);
        QWheelEvent wheel(at, viewport->mapToGlobal(at), QPoint(), QPoint(0, -240), Qt::NoButton,
                          Qt::ShiftModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(viewport, &wheel);
        QCOMPARE(across->value(), current + 240);
        QVERIFY(label(page, "month").startsWith(QStringLiteral("26-й месяц")));

        // The strip slides under the pointer, so each point is where the
        // same place of the viewport is on the strip by then.
        QWidget* strip = page->strip();
        const QPoint from = at.toPoint();
        auto onStrip = [&](int dx) { return strip->mapFrom(viewport, from + QPoint(dx, 0)); };
        QTest::mousePress(strip, Qt::LeftButton, {}, onStrip(0));
        for (int step = 1; step <= 10; ++step) {
            QTest::mouseMove(strip, onStrip(20 * step));
        }
        QTest::mouseRelease(strip, Qt::LeftButton, {}, onStrip(200));
        QCOMPARE(across->value(), current + 40);
        QCOMPARE(root_->gCurTab(), 10);
        QVERIFY(!root_->isSliding());

        QTest::keyClick(strip, Qt::Key_Home);
        QCOMPARE(across->value(), current);

        // The menu switches to the doctor's plan behind a fade.
        page->findChild<QAbstractButton*>(QStringLiteral("selRegim"))->click();
        QTRY_VERIFY(root_->popups().isOpen());
        QToolButton* doctor = nullptr;
        for (QToolButton* button : root_->popups().panel()->findChildren<QToolButton*>()) {
            if (button->text().contains(QStringLiteral("К доктору"))) {
                doctor = button;
            }
        }
        QVERIFY(doctor != nullptr);
        doctor->click();
        QTRY_COMPARE(label(page, "caption"), QStringLiteral("К доктору"));
        QCOMPARE(page->timeline().regim(), development::planeregim::doctor);
    }

    void touchOnAnEventShowsItsTextAndFollowsItsLink() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-01-10");
        QTemporaryDir content;
        std::ofstream(content.filePath(QStringLiteral("doctor-u.jsn")).toStdString()) << plan();
        std::ofstream(content.filePath(QStringLiteral("doctorhelp-u.txt")).toStdString()) << kGuide;
        core::Context& ctx = context();
        frame::Popups popups(ctx.state, ctx.settings, session_->pictures(),
                             frame::TextPageEnvironment{ctx.state, session_->pictures().pictures(),
                                                        ctx.dates, content.path().toStdString()});
        RecordingShell shell;
        plane page(development::PlaneServices{ctx, session_->pictures(), popups, shell}, nullptr);
        page.resize(360, 600);
        page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&page));
        page.activateView(gid);
        page.changeRegim(QStringLiteral("К доктору"));
        page.finishAnimations();
        page.finishAnimations();
        QTRY_COMPARE(label(&page, "caption"), QStringLiteral("К доктору"));
        QCOMPARE(page.timeline().mainData().size(), 3U);
        page.finishAnimations();
        QTRY_COMPARE(label(&page, "month"), QStringLiteral("23-й месяц (10.11.2026-10.12.2026)"));
        save(page.grab(), "timeline_doctor.png");

        // The visit leads to its group of the guide.
        touch(page, 0);
        QTRY_VERIFY(page.tagMessage() != nullptr && page.tagMessage()->isVisible());
        QCOMPARE(page.tagMessage()->windowTitle(), QStringLiteral("Педиатр"));
        QCOMPARE(page.tagMessage()->text(), QStringLiteral("Плановый осмотр"));
        QStringList buttons;
        for (QAbstractButton* button : page.tagMessage()->buttons()) {
            buttons << button->text();
        }
        buttons.sort();
        QCOMPARE(buttons, (QStringList{QStringLiteral("OK"), QStringLiteral("Подробно")}));
        press(page.tagMessage(), "Подробно");
        QTRY_VERIFY(page.guide() != nullptr && page.guide()->isVisible());
        QCOMPARE(label(page.guide(), "caption"), QStringLiteral("Анализы"));
        QVERIFY(shell.urls.empty());
        QTest::keyClick(page.guide(), Qt::Key_Escape);
        QTRY_VERIFY(!page.guide()->isVisible());

        // The vaccinations lead to their page.
        touch(page, 1);
        QTRY_VERIFY(page.tagMessage() != nullptr && page.tagMessage()->isVisible());
        press(page.tagMessage(), "Подробно");
        QCOMPARE(shell.urls, (std::vector<std::string>{"https://example.org/vaccines"}));

        // A text alone is a plain message; "OK" leads nowhere.
        touch(page, 2);
        QMessageBox* plain = nullptr;
        QTRY_VERIFY((plain = visibleBox(QStringLiteral("Осмотр невролога"))) != nullptr);
        QCOMPARE(plain->buttons().size(), 1);
        plain->buttons().first()->click();
        touch(page, 1);
        QTRY_VERIFY(page.tagMessage() != nullptr && page.tagMessage()->isVisible());
        press(page.tagMessage(), "OK");
        QCOMPARE(shell.urls.size(), 1U);
    }

private:
    static QString label(QWidget* page, const char* name) {
        return page->findChild<QLabel*>(QString::fromLatin1(name))->text();
    }

    // A press in the middle of the event, where the strip is scrolled to it.
    static void touch(plane& page, std::size_t event) {
        const platform::Rect box = page.timeline().eventRect(event);
        page.scrollArea()->ensureVisible(static_cast<int>(box.x + box.width / 2),
                                         static_cast<int>(box.y + box.height / 2));
        const QPoint at(static_cast<int>(box.x + box.width / 2),
                        static_cast<int>(box.y + box.height / 2));
        QTest::mouseClick(page.strip(), Qt::LeftButton, {}, at);
    }

    static void press(QMessageBox* box, const char* text) {
        for (QAbstractButton* button : box->buttons()) {
            if (button->text() == QString::fromUtf8(text)) {
                button->click();
                return;
            }
        }
        QFAIL("no such button");
    }

    static QMessageBox* visibleBox(const QString& text) {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* box = qobject_cast<QMessageBox*>(widget);
            if (box != nullptr && box->isVisible() && box->text() == text) {
                return box;
            }
        }
        return nullptr;
    }
};

}  // namespace tilika

QTEST_MAIN(tilika::TimelineTest)
#include "timeline_test.moc"

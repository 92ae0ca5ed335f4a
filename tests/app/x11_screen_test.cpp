// The program on a real X server. Offscreen, every picture is drawn afresh;
// on a server, Qt moves pixels that are already on the screen when a view
// scrolls, and fonts come from the system. What the server shows must be
// what the widgets draw.

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QMessageBox>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QWheelEvent>
#include <QtTest>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/ids.h"
#include "diary/day_rows.h"
#include "diary/profiles.h"
#include "frame/background_screen.h"
#include "frame/main_menu.h"
#include "frame/menu_views.h"
#include "frame/session.h"
#include "frame/tab.h"
#include "frame/view_controller.h"
#include "platform/clock.h"
#include "session/application.h"
#include "session/menu_blocks.h"
#include "support/session_world.h"

using namespace tilika;

namespace {

// Pixels that differ by more than antialiasing would make them.
double differingShare(const QImage& shown, const QImage& drawn) {
    if (shown.size() != drawn.size()) {
        return 1.0;
    }
    const QImage a = shown.convertToFormat(QImage::Format_RGB32);
    const QImage b = drawn.convertToFormat(QImage::Format_RGB32);
    qint64 differing = 0;
    for (int y = 0; y < a.height(); ++y) {
        const auto* lineA = reinterpret_cast<const QRgb*>(a.constScanLine(y));
        const auto* lineB = reinterpret_cast<const QRgb*>(b.constScanLine(y));
        for (int x = 0; x < a.width(); ++x) {
            const int d = std::max({std::abs(qRed(lineA[x]) - qRed(lineB[x])),
                                    std::abs(qGreen(lineA[x]) - qGreen(lineB[x])),
                                    std::abs(qBlue(lineA[x]) - qBlue(lineB[x]))});
            differing += d > 24 ? 1 : 0;
        }
    }
    return static_cast<double>(differing) / (static_cast<double>(a.width()) * a.height());
}

// Pixels of a strong colour, as no text or grey of a dialog has.
int colourfulPixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            count += c.hsvSaturation() > 120 && c.value() > 120 ? 1 : 0;
        }
    }
    return count;
}

}  // namespace

class X11ScreenTest : public QObject, protected test::SessionWorld {
    Q_OBJECT

private slots:
    void initTestCase() { QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb")); }

    void init() { openFolder(); }
    void cleanup() { closeSession(); }

    void scrolledViewsShowWhatTheyDraw() {
        launchPastWelcome();
        for (const char* name : {"Аня", "Боря", "Вера", "Гоша"}) {
            addChild(name, "2025-03-14");
        }
        state().menuDirty = true;
        menu()->updateMenu();
        frame::menu::ChildBlockView* open = menu()->childBlocks().front();
        open->circle()->click();
        QTRY_COMPARE(open->height(), session::blockHeight(true, open->rowViews().size()));
        settle();
        auto* scroll = menu()->findChild<QScrollArea*>(QStringLiteral("menuScroll"));
        QVERIFY2(sameAsDrawn(scroll), "the menu as first shown");
        QScrollBar* bar = scroll->verticalScrollBar();
        QVERIFY(bar->maximum() > 3 * scroll->viewport()->height());
        for (int step = 0; step < 5; ++step) {
            const int before = bar->value();
            wheel(scroll, QPoint(0, -120));
            QVERIFY(bar->value() > before);
            QVERIFY2(sameAsDrawn(scroll), qPrintable(QStringLiteral("wheel step %1").arg(step)));
        }
        shownOnScreen().save(screenshot("x11_menu_scrolled.png"));
        for (int step = 0; step < 5; ++step) {
            // Steps of odd sizes, both ways, as a dragged scroll bar makes.
            bar->setValue(bar->value() + (step % 2 == 0 ? 97 : -41));
            QVERIFY2(sameAsDrawn(scroll),
                     qPrintable(QStringLiteral("scroll bar step %1").arg(step)));
        }

        bar->setValue(bar->maximum());
        settle();
        menu()->mainRow(42)->click();
        frame::background* chooser = root_->backgroundScreen();
        QVERIFY(chooser != nullptr);
        settle();
        auto* strip = chooser->findChild<QScrollArea*>();
        QVERIFY2(sameAsDrawn(strip), "the chooser as first shown");
        QScrollBar* across = strip->horizontalScrollBar();
        QVERIFY(across->maximum() > strip->viewport()->width());
        for (int step = 0; step < 4; ++step) {
            const int before = across->value();
            wheel(strip, QPoint(-120, 0));
            QVERIFY(across->value() > before);
            QVERIFY2(sameAsDrawn(strip), qPrintable(QStringLiteral("chooser wheel %1").arg(step)));
        }
        for (int step = 0; step < 4; ++step) {
            across->setValue(across->value() + (step % 2 == 0 ? 83 : -29));
            QVERIFY2(sameAsDrawn(strip), qPrintable(QStringLiteral("chooser drag %1").arg(step)));
        }
        shownOnScreen().save(screenshot("x11_chooser_scrolled.png"));
    }

    void theDaysScheduleScrollsAsItDraws() {
        launchPastWelcome();
        const std::string gid = addChild("Аня", "2025-03-14");
        nlohmann::json reminders = nlohmann::json::array();
        for (int hour = 6; hour < 23; ++hour) {
            const std::string clock = (hour < 10 ? "0" : "") + std::to_string(hour);
            for (const char* minutes : {":15", ":45"}) {
                reminders.push_back(
                    {{"time", clock + minutes}, {"temp", "Напоминание на " + clock + minutes}});
            }
        }
        core::Context& context = session_->application().context();
        diary::DayRows(*context.database.connectToBase(), context.dates)
            .insertValue("alarm", reminders.dump(), context.dates.now(), gid, true, false);
        state().pageDirty[2] = true;
        root_->openTab(2, gid);
        QTRY_COMPARE(root_->gCurTab(), 2);
        settle();
        scrollsAsDrawn(root_->tab(2)->findChild<QScrollArea*>(), 300);
        shownOnScreen().save(screenshot("x11_inday_scrolled.png"));
    }

    void thePassportScrollsAsItDraws() {
        launchPastWelcome();
        const std::string gid = addChild("Аня", "2026-02-15");
        put(gid, "2026-11-20", "rost", "74");
        put(gid, "2026-10-01", "ves", "8.9");
        state().pageDirty[1] = true;
        root_->openTab(1, gid);
        QTRY_COMPARE(root_->gCurTab(), 1);
        settle();
        scrollsAsDrawn(root_->tab(1)->findChild<QScrollArea*>(), 200);
        shownOnScreen().save(screenshot("x11_passport_scrolled.png"));
    }

    void theBirthdayGreetingShowsItsCake() {
        launchPastWelcome();
        const core::Dates& dates = session_->application().context().dates;
        const std::string birth =
            dates.dateToString(dates.addYears(dates.noTime(dates.now()), -1), "yyyy-MM-dd");
        addChild("Маша", birth);
        session_->application().checkAppStoreAlert();
        QMessageBox* box = nullptr;
        QTRY_VERIFY((box = root_->findChild<QMessageBox*>()) != nullptr);
        QVERIFY(QTest::qWaitForWindowExposed(box));
        settle();
        auto* text = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"));
        QVERIFY(text != nullptr && text->text().contains(QStringLiteral("🎂")));
        const QPoint at = text->mapTo(box, QPoint(0, 0));
        const QImage shown =
            box->screen()
                ->grabWindow(box->winId(), at.x(), at.y(), text->width(), text->height())
                .toImage();
        shown.save(screenshot("x11_birthday_greeting.png"));
        // A missing glyph is an empty box in the text's own colour; the cake
        // is the only colour there is.
        QVERIFY(colourfulPixels(shown) > 8);
        box->close();
    }

private:
    core::AppState& state() { return session_->application().state(); }
    frame::mainMenu* menu() { return root_->menuTab(); }

    // Lets the posted paints run and their pixels reach the server; reading
    // the window back waits for the server to have drawn them.
    static void settle() {
        for (int i = 0; i < 4; ++i) {
            QCoreApplication::processEvents();
            QTest::qWait(25);
        }
    }

    static void wheel(QAbstractScrollArea* area, QPoint angle) {
        QWidget* viewport = area->viewport();
        const QPointF at = QRectF(viewport->rect()).center();
        QWheelEvent event(at, viewport->mapToGlobal(at), QPoint(), angle, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(viewport, &event);
    }

    // Wheels the area down and drags its bar back and forth; after each
    // step the server shows what the widgets draw.
    void scrollsAsDrawn(QScrollArea* scroll, int atLeast) {
        QVERIFY(scroll != nullptr);
        QVERIFY2(sameAsDrawn(scroll), "as first shown");
        QScrollBar* bar = scroll->verticalScrollBar();
        QVERIFY2(bar->maximum() > atLeast, qPrintable(QString::number(bar->maximum())));
        for (int step = 0; step < 4; ++step) {
            const int before = bar->value();
            wheel(scroll, QPoint(0, -120));
            QVERIFY(bar->value() > before);
            QVERIFY2(sameAsDrawn(scroll), qPrintable(QStringLiteral("wheel step %1").arg(step)));
        }
        for (int step = 0; step < 4; ++step) {
            bar->setValue(bar->value() + (step % 2 == 0 ? 71 : -37));
            QVERIFY2(sameAsDrawn(scroll),
                     qPrintable(QStringLiteral("scroll bar step %1").arg(step)));
        }
    }

    QImage shownOnScreen() const { return root_->screen()->grabWindow(root_->winId()).toImage(); }

    // What shows of the area on the server against a fresh drawing of the
    // window.
    bool sameAsDrawn(const QAbstractScrollArea* area) const {
        settle();
        const QImage shown = shownOnScreen();
        const QImage drawn = root_->grab().toImage();
        const QRect seen(area->viewport()->mapTo(root_, QPoint(0, 0)), area->viewport()->size());
        const double share = differingShare(shown.copy(seen), drawn.copy(seen));
        if (share > 0.001) {
            qWarning("%.2f%% of the scrolled view differs from its drawing", share * 100);
            shown.save(screenshot("x11_failed_shown.png"));
            drawn.save(screenshot("x11_failed_drawn.png"));
            return false;
        }
        return true;
    }
};

QTEST_MAIN(X11ScreenTest)
#include "x11_screen_test.moc"

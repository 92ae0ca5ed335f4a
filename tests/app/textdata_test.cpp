#include "frame/textdata.h"

#include <QDir>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPdfWriter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "core/app_state.h"
#include "core/dates.h"
#include "frame/backgrounds.h"
#include "frame/look.h"
#include "frame/pictures.h"
#include "platform/clock.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"
#include "support/screen_world.h"

using namespace tilika;

namespace {

const char* const kSamplePage =
    "tp<val>2<tr>text<val>Первый месяц малыша"
    "<br>tp<val>1<tr>groupid<val>1"
    "<br>tp<val>4<tr>text<val>В первые недели малыш много спит и ест каждые два-три часа. "
    "Записывайте вес и рост, чтобы видеть, как он растёт."
    "<br>tp<val>7<tr>text<val>Статья о сне<tr>linkid<val>42<tr>pic<val>ne-sleep.png"
    "<br>tp<val>1<tr>groupid<val>2"
    "<br>tp<val>3<tr>text<val>Что сделать"
    "<br>tp<val>4<tr>text<val>Показать малыша педиатру<tr>checkid<val>3"
    "<tr>hiddentext<val>Осмотр педиатра"
    "<br>tp<val>4<tr>text<val>Сделать первые прививки<tr>checkid<val>4";

// Moc reads this file too, and loses its way in raw string literals.
const char* const kWebPage =
    "[{\"groupid\": 1, \"Content\": [{\"tp\": 7, \"text\": \"Памятка в картинке\", "
    "\"weblink\": \"https://example.org/pamyatka.png\"}]}]";

}  // namespace

class TextdataTest : public QObject, protected test::ScreenWorld {
    Q_OBJECT

private slots:
    void init() {
        state_ = std::make_unique<core::AppState>();
        state_->backgroundId = 8;  // a light one: dark text and dark pictures
        frame::correctBackground(*state_, false);
    }

    void tellsTheOwnerOfLinksAndBoxes() {
        frame::textdata view(environment(), qtPictures_);
        view.resize(360, 640);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.prepareTextFromString(QString::fromUtf8(kSamplePage), true);

        QSignalSpy links(&view, &frame::textdata::linkClick);
        QSignalSpy boxes(&view, &frame::textdata::checkClicked);
        QSignalSpy web(&view, &frame::textdata::openLink);

        const auto* linkText = find("Статья о сне");
        QVERIFY(linkText != nullptr);
        QTest::mouseClick(view.surface(), Qt::LeftButton, {},
                          view.surface()->mapFrom(&view, view.viewPosition(linkText->frame)));
        QCOMPARE(links.count(), 1);
        QCOMPARE(links.at(0).at(0).toLongLong(), 42LL);

        const auto* box = find("checkempty.png");
        QVERIFY(box != nullptr);
        QTest::mouseClick(view.surface(), Qt::LeftButton, {},
                          view.surface()->mapFrom(&view, view.viewPosition(box->frame)));
        QCOMPARE(boxes.count(), 1);
        const qlonglong tag = boxes.at(0).at(0).toLongLong();
        QCOMPARE(tag, 1001LL);
        // The owner decides: here it ticks the box and reads its ready text.
        view.checkClick(tag);
        const auto guid = view.page().tagguid(tag);
        QVERIFY(guid.has_value());
        QVERIFY(view.page().checkState(*guid));
        QCOMPARE(view.page().getHiddenText(*guid), std::string("Осмотр педиатра"));

        // A press that turns into a drag is no tap.
        const QPoint start = view.surface()->mapFrom(&view, view.viewPosition(linkText->frame));
        QTest::mousePress(view.surface(), Qt::LeftButton, {}, start);
        QTest::mouseRelease(view.surface(), Qt::LeftButton, {}, start + QPoint(0, 60));
        QCOMPARE(links.count(), 1);

        view.prepareTextFromJSONString(QString::fromUtf8(kWebPage), true);
        const auto* webText = find("Памятка в картинке");
        QVERIFY(webText != nullptr);
        QTest::mouseClick(view.surface(), Qt::LeftButton, {},
                          view.surface()->mapFrom(&view, view.viewPosition(webText->frame)));
        QCOMPARE(web.count(), 1);
        QCOMPARE(web.at(0).at(0).toString(), QStringLiteral("https://example.org/pamyatka.png"));
        QCOMPARE(links.count(), 1);
    }

    void drawsALegiblePageWithOurPictures() {
        frame::textdata view(environment(), qtPictures_);
        view.resize(360, 640);
        frame::correctBackground(&view, true, *state_, qtPictures_);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.prepareTextFromString(QString::fromUtf8(kSamplePage), true);
        view.page().setCheckData({"4"});
        view.refresh();

        const QImage image = view.grab().toImage();
        QVERIFY(saveScreenshot(image, "rich_text_page.png"));

        // The heading is dark brown text on the light backdrop.
        const auto* heading = find("Первый месяц малыша");
        QVERIFY(heading != nullptr);
        QVERIFY(darkPixels(image, heading->frame) > 40);
        // The ticked box is our green picture.
        const auto* ticked = find("checkgreen.png");
        QVERIFY(ticked != nullptr);
        const QColor middle = image.pixelColor(view.viewPosition(ticked->frame) + QPoint(-8, -8));
        QVERIFY2(middle.green() > 120 && middle.red() < 140, qPrintable(middle.name()));
        // The sleep picture of the link row is drawn, in its dark variant.
        const auto* sleep = find("b-ne-sleep.png");
        QVERIFY(sleep != nullptr);
        QVERIFY(darkPixels(image, sleep->frame) > 20);
    }

    void highlightsScrollsAndLoadsWindows() {
        frame::textdata view(environment(), qtPictures_);
        view.resize(360, 300);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QString markup;
        for (int i = 1; i <= 20; ++i) {
            markup += QStringLiteral(
                          "tp<val>1<tr>groupid<val>%1<br>tp<val>4<tr>text<val>Глава %1. "
                          "Длинный абзац, чтобы страница прокручивалась.<br>")
                          .arg(i);
        }
        view.prepareTextFromString(markup, true);
        const long long position = view.hiliteGroup(12, true);
        QVERIFY(position > 0);
        QScrollBar* bar = view.scrollArea()->verticalScrollBar();
        QVERIFY(bar->maximum() > position);
        QTRY_COMPARE(bar->value(), static_cast<int>(position));
        QVERIFY(view.page().highlight().has_value());

        // A page that doesn't scroll is as high as its content.
        view.prepareTextFromString(QStringLiteral("tp<val>4<tr>text<val>Коротко"), false);
        QCOMPARE(view.height(),
                 static_cast<int>(std::ceil(view.page().contentHeight())) + view.page().insets());

        // The forward button of a window loads the next one.
        view.page().specialPartial(3);
        view.setMaximumHeight(QWIDGETSIZE_MAX);
        view.setMinimumHeight(0);
        view.resize(360, 2000);
        view.prepareTextFromString(markup, true);
        const auto* next = findAction(frame::PageAction::Next);
        QVERIFY(next != nullptr);
        QTest::mouseClick(view.surface(), Qt::LeftButton, {},
                          view.surface()->mapFrom(&view, view.viewPosition(next->frame)));
        QCOMPARE(view.page().partialstart(), 5LL);
    }

    void themesAndTranslationsOfWidgets() {
        QWidget screen;
        screen.resize(200, 300);
        auto* label = new QLabel(QStringLiteral("Дневник"), &screen);
        auto* button = new QPushButton(QStringLiteral("Настройки"), &screen);
        state_->trandic = {{"Дневник", "Tagebuch"}, {"Настройки", "Einstellungen"}};
        frame::translateView(&screen, *state_);
        QCOMPARE(label->text(), QStringLiteral("Дневник"));

        state_->langid = 2;
        frame::translateView(&screen, *state_);
        QCOMPARE(label->text(), QStringLiteral("Tagebuch"));
        QCOMPARE(button->text(), QStringLiteral("Einstellungen"));

        state_->backgroundId = 3;
        frame::correctBackground(&screen, false, *state_, qtPictures_);
        auto* backdrop =
            qobject_cast<frame::BackdropView*>(frame::childWithTag(&screen, frame::kBackdropTag));
        QVERIFY(backdrop != nullptr);
        QCOMPARE(backdrop->picture(), std::string("bg640-3.png"));
        QCOMPARE(backdrop->size(), screen.size());
        frame::correctBackgroundText(&screen, *state_);
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(Qt::white));

        state_->backgroundId = -2;
        frame::correctBackground(&screen, false, *state_, qtPictures_);
        QVERIFY(backdrop->isHidden());
        QCOMPARE(screen.palette().color(QPalette::Window).redF(), 0.93f);
        frame::correctBackgroundText(&screen, *state_);
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(Qt::black));

        // A number that stands for no picture hides the backdrop too.
        state_->backgroundId = 5;
        frame::correctBackground(&screen, false, *state_, qtPictures_);
        QVERIFY(!backdrop->isHidden());
        state_->backgroundId = 0;
        frame::correctBackground(&screen, false, *state_, qtPictures_);
        QVERIFY(backdrop->isHidden());
    }

    void canvasMeasuresAsItDrawsOnImagesAndPdf() {
        QImage image(300, 200, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        platform::QtCanvas measuring(image);
        const platform::Font font{14};
        const std::string text = "Очень длинное слово: https://example.org/очень/длинный/адрес";
        const auto size = measuring.measureText(text, font, 120);
        QVERIFY(size.width <= 120);
        QVERIFY(size.height > measuring.measureText("Слово", font, 120).height * 2);
        // Without a width each paragraph is one line.
        const auto lines = measuring.measureText("Раз\nДва три", font, 0);
        QVERIFY(lines.width > measuring.measureText("Два", font, 0).width);
        QVERIFY(lines.height > measuring.measureText("Раз", font, 0).height * 1.5);
        {
            QPainter painter(&image);
            platform::QtCanvas canvas(painter, qtPictures_);
            canvas.drawText(text, {10, 10, 120, size.height}, font, {0, 0, 0});
            canvas.drawText("Раз\nДва три", {150, 120, 0, 0}, font, {0, 0, 0});
            canvas.drawImage("c-ne-tooth.png", {200, 10, 64, 64}, 1);
        }
        QVERIFY(darkPixels(image, {10, 10, 120, size.height}) > 50);
        QCOMPARE(darkPixels(image, {10, 10 + size.height + 4, 120, 40}), 0);
        // The second line of the unwrapped text is drawn below the first.
        QVERIFY(darkPixels(image, {150, 120 + lines.height / 2 + 1, 100, lines.height / 2}) > 20);

        // On a PDF page, whose resolution is far from the screen's, text is
        // as high in the page's units as it was measured.
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("pages.pdf"));
        QImage page;
        {
            QPdfWriter writer(file);
            writer.setResolution(1200);
            QPainter painter(&writer);
            platform::QtCanvas canvas(painter, qtPictures_, &writer);
            const auto measured = canvas.measureText("Страница", platform::Font{200}, 0);
            QVERIFY2(measured.height > 200 && measured.height < 300,
                     qPrintable(QString::number(measured.height)));
            canvas.drawText("Страница 1", {100, 100, 2000, 400}, platform::Font{200}, {0, 0, 0});
            canvas.newPage();
            canvas.drawImage("ne-tooth.png", {100, 100, 1000, 1000}, 1);
        }
        QFile pdf(file);
        QVERIFY(pdf.open(QIODevice::ReadOnly));
        QCOMPARE(pdf.readAll().count("/Type /Page\n") + 0, 2);
    }

    void pageFollowsTheWidthThatShows() {
        frame::textdata view(environment(), qtPictures_);
        view.resize(360, 200);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QString markup;
        for (int i = 1; i <= 30; ++i) {
            markup += QStringLiteral("<br>tp<val>4<tr>text<val>Строка %1").arg(i);
        }
        view.prepareTextFromString(markup, true);
        QTRY_VERIFY(view.scrollArea()->verticalScrollBar()->isVisible());
        const int viewport = view.scrollArea()->viewport()->width();
        QVERIFY(viewport < 360);
        QTRY_COMPARE(static_cast<int>(view.page().width()), viewport);

        view.prepareTextFromString(QStringLiteral("tp<val>4<tr>text<val>Коротко"), true);
        QTRY_COMPARE(static_cast<int>(view.page().width()), 360);
    }

private:
    frame::TextPageEnvironment environment() { return textEnvironment(); }

    // The first element of the shown page that fits.
    template <typename Fits>
    const frame::PageElement* findElement(Fits fits) {
        for (const auto* view : QApplication::topLevelWidgets()) {
            if (const auto* page = qobject_cast<const frame::textdata*>(view)) {
                for (const auto& element : page->page().elements()) {
                    if (fits(element)) {
                        return &element;
                    }
                }
            }
        }
        return nullptr;
    }

    // By its text or the name of its picture.
    const frame::PageElement* find(const std::string& text) {
        return findElement([&](const frame::PageElement& e) { return e.text == text; });
    }

    const frame::PageElement* findAction(frame::PageAction action) {
        return findElement([&](const frame::PageElement& e) { return e.action == action; });
    }

    static int darkPixels(const QImage& image, const platform::Rect& rect) {
        int count = 0;
        for (int y = static_cast<int>(rect.y); y < static_cast<int>(rect.bottom()); ++y) {
            for (int x = static_cast<int>(rect.x); x < static_cast<int>(rect.right()); ++x) {
                if (image.valid(x, y) && qGray(image.pixel(x, y)) < 110) {
                    ++count;
                }
            }
        }
        return count;
    }
};

QTEST_MAIN(TextdataTest)
#include "textdata_test.moc"

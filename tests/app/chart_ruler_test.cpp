#include <QDir>
#include <QImage>
#include <QScrollBar>
#include <QtTest>

#include "core/text.h"
#include "development/chart_view.h"
#include "development/ruler_view.h"
#include "frame/pictures.h"
#include "platform/qt_pictures.h"
#include "support/screen_world.h"

using namespace tilika;

class ChartRulerTest : public QObject, protected test::ScreenWorld {
    Q_OBJECT

private slots:
    void drawsAGrowthChartWithNormsAndOwnPoints() {
        development::GraphDic dic = development::initGraphDic();
        dic.xAxisMax = 12;
        dic.yAxisMin = 2;
        dic.yAxisMax = 12;
        dic.setka = true;
        dic.bottomLine = 1;
        dic.isBorders = true;
        dic.caption = "Вес, кг";
        dic.bottomCaption = "Возраст, месяцы";
        dic.backgroundColor = platform::Color{1, 1, 1};
        for (int month = 0; month <= 12; ++month) {
            if (month % 2 == 0) {
                dic.xAxisValue.push_back({static_cast<double>(month), std::to_string(month)});
            }
            development::addPoint(dic.graph[0], month, 3 + month * 0.45);
            development::addPoint(dic.graph[1], month, 4.2 + month * 0.62);
        }
        dic.graphType = {development::linestyle::shadeAbove, development::linestyle::shadeBelow,
                         development::linestyle::thin};
        dic.graphColor[0] = platform::Color{0.2, 0.6, 0.3};
        dic.graphColor[1] = platform::Color{0.2, 0.6, 0.3};
        dic.graphColor[2] = platform::Color{0.85, 0.3, 0.1};
        for (auto [month, weight] : {std::pair{0.0, 3.4}, {1.0, 4.3}, {3.0, 6.1}, {6.0, 7.9}}) {
            development::addPoint(dic.graph[2], month, weight, core::formatFixed(weight, 1));
        }
        development::addToLegenda(dic, "Норма", 1, true);
        development::addToLegenda(dic, "Малыш", 3, true);

        development::chart view(qtPictures_);
        view.resize(360, 300);
        view.prepare(dic);
        const QImage image = view.grab().toImage();
        QVERIFY(saveScreenshot(image, "growth_chart.png"));
        QCOMPARE(view.getContextImage(QSize(360, 300)).size(), QSize(360, 300));

        // The child's curve is there in its orange, and the band in green.
        int orange = 0;
        int green = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor c = image.pixelColor(x, y);
                orange += c.red() > 180 && c.green() < 120 && c.blue() < 80 ? 1 : 0;
                green += c.green() > c.red() + 15 && c.green() > c.blue() ? 1 : 0;
            }
        }
        QVERIFY2(orange > 100, qPrintable(QString::number(orange)));
        QVERIFY2(green > 2000, qPrintable(QString::number(green)));
    }

    void rulerReadsWhatIsScrolledUnderThePointer() {
        development::vesslider slider;
        slider.resize(320, 120);
        slider.show();
        QVERIFY(QTest::qWaitForWindowExposed(&slider));
        std::vector<double> told;
        slider.setSelector([&](double value) { told.push_back(value); });

        slider.prepareRuller(20, 180, development::rulertype::tenths, true, false);
        QCOMPARE(slider.getPosition(), 0.0);
        QCOMPARE(slider.text(), QString());

        slider.setPosition(80.5, true);
        QCOMPARE(slider.getPosition(), 80.5);
        QCOMPARE(slider.text(), QStringLiteral("80.5"));
        QCOMPARE(told.back(), 80.5);

        // Scrolled ten ticks on, and told once it settles.
        QScrollBar* bar = slider.mainScroll()->horizontalScrollBar();
        bar->setValue(bar->value() + 50);
        QCOMPARE(slider.text(), QStringLiteral("81.5"));
        QTRY_COMPARE(told.back(), 81.5);

        // A thousandths ruler keeps the grams.
        slider.prepareRuller(-1, 80, development::rulertype::thousandths, false, false);
        slider.setPosition(3.456, true);
        QCOMPARE(slider.text(), QStringLiteral("3.456"));
        QCOMPARE(slider.getPosition(), 3.456);

        // A month ruler at the far left reads the month of birth.
        slider.prepareRuller(-3, 15, development::rulertype::months, false, false);
        slider.setPosition(18, true);
        QCOMPARE(slider.text(), QStringLiteral("18 мес."));
        slider.mainScroll()->horizontalScrollBar()->setValue(0);
        QCOMPARE(slider.getPosition(), 0.0);
        QCOMPARE(slider.text(), QStringLiteral("0 мес."));

        // Inactive: no marks and no value.
        slider.setPosition(12, false);
        QCOMPARE(slider.getPosition(), 0.0);

        // On a wide window the lowest values are still in reach, and a
        // change of size tells no one.
        slider.resize(600, 120);
        slider.prepareRuller(-1, 12, development::rulertype::thousandths, false, false);
        QTRY_COMPARE(slider.mainScroll()->viewport()->width(), 600);
        slider.setPosition(0.25, true);
        QCOMPARE(slider.text(), QStringLiteral("0.250"));
        const auto toldBefore = told.size();
        slider.resize(700, 120);
        QTRY_COMPARE(slider.mainScroll()->viewport()->width(), 700);
        QCOMPARE(slider.text(), QStringLiteral("0.250"));
        QCOMPARE(told.size(), toldBefore);
        slider.mainScroll()->horizontalScrollBar()->setValue(0);
        QCOMPARE(slider.text(), QString());
    }
};

QTEST_MAIN(ChartRulerTest)
#include "chart_ruler_test.moc"

#include "platform/qt_image_codec.h"

#include <QBuffer>
#include <QtTest>

using tilika::platform::QtImageCodec;

class QtImageCodecTest : public QObject {
    Q_OBJECT

private slots:
    void roundTripsThroughJpeg() {
        QImage picture(64, 32, QImage::Format_RGB32);
        picture.fill(QColor(200, 40, 40));
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        QVERIFY(picture.save(&buffer, "PNG"));

        const QtImageCodec codec;
        const auto decoded = codec.decode({reinterpret_cast<const std::uint8_t*>(png.constData()),
                                           static_cast<std::size_t>(png.size())});
        QVERIFY(decoded.has_value());
        QCOMPARE(decoded->width, 64);
        QCOMPARE(decoded->height, 32);

        const auto small = codec.scaled(*decoded, 16, 16);
        QCOMPARE(small.width, 16);
        QCOMPARE(small.height, 8);

        const auto jpeg = codec.encodeJpeg(*decoded, 1.0);
        QVERIFY(jpeg.size() > 2);
        QCOMPARE(jpeg[0], std::uint8_t{0xFF});
        QCOMPARE(jpeg[1], std::uint8_t{0xD8});
        const auto again = codec.decode(jpeg);
        QVERIFY(again.has_value());
        const QColor pixel = QtImageCodec::toQImage(*again).pixelColor(10, 10);
        QVERIFY(qAbs(pixel.red() - 200) < 8 && pixel.green() < 50);
    }

    void refusesWhatIsNoPicture() {
        const QtImageCodec codec;
        const std::string junk = "not a picture at all";
        QVERIFY(!codec.decode({reinterpret_cast<const std::uint8_t*>(junk.data()), junk.size()}));
        QVERIFY(!codec.decode({}));
        QVERIFY(codec.encodeJpeg({}, 0.9).empty());
        QVERIFY(codec.encodeJpeg({3, 3, {1, 2, 3}}, 0.9).empty());  // too few bytes
        QVERIFY(codec.scaled({2, 2, std::vector<std::uint8_t>(16, 0)}, 0, 5).empty());
    }
};

QTEST_GUILESS_MAIN(QtImageCodecTest)
#include "qt_image_codec_test.moc"

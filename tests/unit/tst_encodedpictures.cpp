// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "encodedpictures.h"

#include <support/customsite.h>
#include <support/testmain.h>

#include <QColorSpace>
#include <QImage>

#include <thread>

using namespace ProjectFileCfg::Internal;
using namespace TestSupport;

class TstEncodedPictures : public QObject
{
    Q_OBJECT

private slots:
    void picture_is_encoded_like_qimage_save_data();
    void picture_is_encoded_like_qimage_save();
    void an_unchanged_picture_is_encoded_once();
    void every_row_counts();
    void any_visible_difference_makes_another_picture_data();
    void any_visible_difference_makes_another_picture();
    void evicts_the_least_recently_used_picture();
    void picture_above_the_capacity_is_never_cached();
    void an_empty_picture_cannot_be_encoded();
    void several_threads_get_the_same_bytes();
    void the_encoder_is_asked_once_for_each_picture();
    void failed_encoding_is_tried_again();
};

namespace {

QImage sample(QImage::Format format = QImage::Format_RGB32)
{
    return noisePicture({40, 30}, 7, QImage::Format_ARGB32).convertToFormat(format);
}

} // namespace

void TstEncodedPictures::picture_is_encoded_like_qimage_save_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::newRow("opaque") << sample();
    QTest::newRow("with alpha") << sample(QImage::Format_ARGB32);
    QTest::newRow("premultiplied") << sample(QImage::Format_ARGB32_Premultiplied);
    QTest::newRow("colour table") << sample(QImage::Format_Indexed8);
    QTest::newRow("grey") << sample(QImage::Format_Grayscale8);
    QTest::newRow("rows with padding") << sample(QImage::Format_RGB888).copy(0, 0, 13, 11);
    QTest::newRow("black and white") << sample(QImage::Format_Mono);
    QTest::newRow("one pixel") << sample().copy(3, 3, 1, 1);
    QImage described = sample();
    described.setText(QStringLiteral("Author"), QStringLiteral("Stage"));
    described.setDotsPerMeterX(1234);
    described.setOffset({5, 6});
    QTest::newRow("with texts, resolution and offset") << described;
}

void TstEncodedPictures::picture_is_encoded_like_qimage_save()
{
    QFETCH(QImage, picture);
    EncodedPictures pictures;
    const QByteArray expected = pngOf(picture);
    QVERIFY(!expected.isEmpty());
    QCOMPARE(pictures.png(picture), expected);
    QCOMPARE(pictures.png(picture), expected);
}

void TstEncodedPictures::an_unchanged_picture_is_encoded_once()
{
    EncodedPictures pictures;
    pictures.png(sample());
    const QByteArray again = pictures.png(sample());
    QCOMPARE(pictures.encodedCount(), 1);
    QCOMPARE(again, pngOf(sample()));
}

void TstEncodedPictures::every_row_counts()
{
    const QImage picture = noisePicture({8, 5}, 1);
    EncodedPictures pictures(1000000);
    const QByteArray before = pictures.png(picture);
    for (int row = 0; row < picture.height(); ++row) {
        QImage other = picture;
        other.setPixel(3, row, ~other.pixel(3, row));
        QVERIFY(pictures.png(other) != before);
    }
    QCOMPARE(pictures.encodedCount(), 1 + picture.height());
}

void TstEncodedPictures::any_visible_difference_makes_another_picture_data()
{
    QTest::addColumn<QImage>("before");
    QTest::addColumn<QImage>("after");
    const auto row = [](const char *name, const QImage &before, const std::function<void(QImage &)> &change) {
        QImage after = before;
        change(after);
        QTest::newRow(name) << before << after;
    };
    row("first pixel", sample(), [](QImage &image) { image.setPixel(0, 0, image.pixel(0, 0) ^ 1); });
    row("last pixel", sample(), [](QImage &image) { image.setPixel(39, 29, image.pixel(39, 29) ^ 0x010000); });
    row("transparency", sample(QImage::Format_ARGB32),
        [](QImage &image) { image.setPixel(5, 5, image.pixel(5, 5) ^ 0x01000000); });
    row("two rows exchanged", sample(), [](QImage &image) { image = image.mirrored(); });
    row("format", sample(), [](QImage &image) { image.reinterpretAsFormat(QImage::Format_ARGB32); });
    QImage blank(40, 30, QImage::Format_RGB32);
    blank.fill(Qt::black);
    row("shape of the same area", blank, [](QImage &image) {
        image = QImage(30, 40, QImage::Format_RGB32);
        image.fill(Qt::black);
    });
    row("colour table", sample(QImage::Format_Indexed8), [](QImage &image) { image.setColor(0, image.color(0) ^ 1); });
    row("resolution", sample(), [](QImage &image) { image.setDotsPerMeterY(image.dotsPerMeterY() + 1); });
    row("text", sample(), [](QImage &image) { image.setText(QStringLiteral("Title"), QStringLiteral("Finale")); });
    row("offset", sample(), [](QImage &image) { image.setOffset({1, 0}); });
    row("colour space", sample(), [](QImage &image) { image.setColorSpace(QColorSpace(QColorSpace::DisplayP3)); });
}

void TstEncodedPictures::any_visible_difference_makes_another_picture()
{
    QFETCH(QImage, before);
    QFETCH(QImage, after);
    QVERIFY(pngOf(before) != pngOf(after));
    EncodedPictures pictures;
    pictures.png(before);
    QCOMPARE(pictures.png(after), pngOf(after));
    QCOMPARE(pictures.png(before), pngOf(before));
    QCOMPARE(pictures.encodedCount(), 2);
}

void TstEncodedPictures::evicts_the_least_recently_used_picture()
{
    const QImage first = noisePicture({40, 30}, 1);
    const QImage second = noisePicture({40, 30}, 2);
    const QImage third = noisePicture({40, 30}, 3);
    EncodedPictures pictures(pngOf(first).size() + pngOf(second).size() + 100);
    pictures.png(first);
    pictures.png(second);
    pictures.png(first);
    QCOMPARE(pictures.encodedCount(), 2);
    pictures.png(third);
    pictures.png(first);
    QCOMPARE(pictures.encodedCount(), 3);
    QCOMPARE(pictures.png(second), pngOf(second));
    QCOMPARE(pictures.encodedCount(), 4);
}

void TstEncodedPictures::picture_above_the_capacity_is_never_cached()
{
    EncodedPictures pictures(100);
    QCOMPARE(pictures.png(sample()), pngOf(sample()));
    QCOMPARE(pictures.png(sample()), pngOf(sample()));
    QCOMPARE(pictures.encodedCount(), 2);
}

void TstEncodedPictures::an_empty_picture_cannot_be_encoded()
{
    EncodedPictures pictures;
    QCOMPARE(pictures.png(QImage()), QByteArray());
    QCOMPARE(pictures.encodedCount(), 0);
}

void TstEncodedPictures::several_threads_get_the_same_bytes()
{
    EncodedPictures pictures(3 * pngOf(sample()).size());
    std::vector<std::thread> threads;
    std::vector<int> wrong(8, 0);
    for (std::size_t number = 0; number < wrong.size(); ++number) {
        threads.emplace_back([&pictures, &count = wrong[number]] {
            for (int round = 0; round < 40; ++round) {
                const QImage picture = noisePicture({40, 30}, quint32(round % 5));
                count += pictures.png(picture) == pngOf(picture) ? 0 : 1;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(wrong, std::vector<int>(8, 0));
}

void TstEncodedPictures::the_encoder_is_asked_once_for_each_picture()
{
    QVector<QImage> asked;
    EncodedPictures pictures(1000, [&asked](const QImage &picture) {
        asked.append(picture);
        return QByteArray("encoded");
    });
    for (int round = 0; round < 2; ++round)
        QCOMPARE(pictures.png(sample()), QByteArray("encoded"));
    QCOMPARE(asked, QVector<QImage>{sample()});
}

void TstEncodedPictures::failed_encoding_is_tried_again()
{
    int asked = 0;
    EncodedPictures pictures(1000, [&asked](const QImage &) { return QByteArray(++asked == 1 ? "" : "encoded"); });
    QCOMPARE(pictures.png(sample()), QByteArray());
    QCOMPARE(pictures.png(sample()), QByteArray("encoded"));
}

TEST_MAIN_GUI(TstEncodedPictures)
#include "tst_encodedpictures.moc"

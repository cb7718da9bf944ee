// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "picturereader.h"

#include "packagetesting.h"

#include <data/pngmaker.h>
#include <support/customsite.h>
#include <support/testmain.h>

using namespace PackageTesting;
using namespace TestSupport;
using ProjectFileCfg::Internal::PictureReader;
using TestData::PngMaker;

/// Which pictures are read; tests/data has the malicious ones.
class TstPictureReader : public QObject
{
    Q_OBJECT

private slots:
    void a_picture_is_read_as_it_was_saved_data();
    void a_picture_is_read_as_it_was_saved();
    void a_picture_of_8k_is_read();
    void a_reduced_picture_keeps_its_proportions_data();
    void a_reduced_picture_keeps_its_proportions();
    void a_reduced_picture_must_be_whole();
    void pixels_above_the_limit_are_not_read_data();
    void pixels_above_the_limit_are_not_read();
    void texts_are_counted_data();
    void texts_are_counted();
    void file_above_256_mib_is_not_read();
    void non_png_has_no_size_data();
    void non_png_has_no_size();
    void a_missing_picture_has_no_size();

private:
    QString write(const QByteArray &bytes) const;

    QTemporaryDir m_dir;
};

QString TstPictureReader::write(const QByteArray &bytes) const
{
    QString path = m_dir.filePath(QStringLiteral("picture.png"));
    if (!writeFile(path, bytes))
        qFatal("The picture could not be written");
    return path;
}

void TstPictureReader::a_picture_is_read_as_it_was_saved_data()
{
    QTest::addColumn<QImage>("image");
    const QImage noise = noisePicture({31, 17}, 1, QImage::Format_ARGB32);
    for (const QImage::Format format :
         {QImage::Format_ARGB32, QImage::Format_RGB32, QImage::Format_Indexed8, QImage::Format_Grayscale8,
          QImage::Format_Mono, QImage::Format_RGBA64, QImage::Format_RGB888})
        QTest::addRow("format %d", format) << noise.convertToFormat(format);
}

void TstPictureReader::a_picture_is_read_as_it_was_saved()
{
    QFETCH(QImage, image);
    PictureReader reader(write(pngOf(image)));
    QCOMPARE(reader.size(), image.size());
    const QImage read = reader.read();
    QCOMPARE(read.format(), QImage::Format_ARGB32);
    QCOMPARE(read, image.convertToFormat(QImage::Format_ARGB32));
}

void TstPictureReader::a_picture_of_8k_is_read()
{
    PictureReader reader(write(PngMaker::blank(7680, 4320)));
    QCOMPARE(reader.size(), QSize(7680, 4320));
    QCOMPARE(reader.read().size(), QSize(7680, 4320));
}

void TstPictureReader::a_reduced_picture_keeps_its_proportions_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("bounds");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("wide") << QSize(160, 90) << QSize(80, 80) << QSize(80, 45);
    QTest::newRow("high") << QSize(90, 160) << QSize(80, 80) << QSize(45, 80);
    QTest::newRow("smaller than the bounds") << QSize(16, 9) << QSize(80, 80) << QSize(16, 9);
    QTest::newRow("a thin line") << QSize(900, 1) << QSize(80, 80) << QSize(80, 1);
    QTest::newRow("a wide stripe") << QSize(900, 3) << QSize(80, 80) << QSize(80, 1);
    QTest::newRow("a high stripe") << QSize(3, 900) << QSize(80, 80) << QSize(1, 80);
}

void TstPictureReader::a_reduced_picture_keeps_its_proportions()
{
    QFETCH(QSize, size);
    QFETCH(QSize, bounds);
    QFETCH(QSize, expected);
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::green);
    for (const QImage::Format format : {QImage::Format_ARGB32, QImage::Format_Grayscale8, QImage::Format_RGBA64}) {
        PictureReader reader(write(pngOf(image.convertToFormat(format))));
        reader.fitInto(bounds);
        QCOMPARE(reader.size(), size);
        const QImage read = reader.read();
        QCOMPARE(read.size(), expected);
        QCOMPARE(read.format(), QImage::Format_ARGB32);
    }
}

void TstPictureReader::a_reduced_picture_must_be_whole()
{
    const QByteArray png = pngOf(noisePicture({160, 90}, 1));
    PictureReader reader(write(png.left(png.size() - 100)));
    reader.fitInto({80, 80});
    QString reason;
    QVERIFY(reader.read(&reason).isNull());
    QVERIFY(!reason.isEmpty());
}

void TstPictureReader::pixels_above_the_limit_are_not_read_data()
{
    QTest::addColumn<int>("depth");
    QTest::addColumn<int>("height");
    QTest::addColumn<bool>("isRead");
    // 192 MiB: each pixel takes the bits it is read with plus the 32 it is converted to.
    QTest::newRow("8 bits, at the limit") << 8 << 39321 << true;
    QTest::newRow("8 bits, above") << 8 << 39322 << false;
    QTest::newRow("16 bits, at the limit") << 16 << 32768 << true;
    QTest::newRow("16 bits, above") << 16 << 32769 << false;
    QTest::newRow("1 bit, at the limit") << 1 << 47662 << true;
    QTest::newRow("1 bit, above") << 1 << 47663 << false;
}

void TstPictureReader::pixels_above_the_limit_are_not_read()
{
    QFETCH(int, depth);
    QFETCH(int, height);
    QFETCH(bool, isRead);
    const int width = 1024;
    PictureReader reader(write(PngMaker::blank(width, quint32(height), depth, PngMaker::Grey)));
    QCOMPARE(reader.size(), QSize(width, height));
    QCOMPARE(reader.read().isNull(), !isRead);
}

void TstPictureReader::texts_are_counted_data()
{
    QTest::addColumn<QByteArray>("chunks");
    QTest::addColumn<bool>("isRead");
    const auto text = [](int size) {
        return PngMaker::chunk("tEXt", QByteArray("Title\0", 6) + QByteArray(size - 12 - 6, 'x'));
    };
    const QByteArray packed =
        PngMaker::chunk("zTXt", QByteArray("Title\0\0", 7) + PngMaker::deflated(QByteArray(100, 'x')));
    const int limit = 4 * 1024 * 1024;
    QTest::newRow("none") << QByteArray() << true;
    QTest::newRow("4 MiB") << text(limit) << true;
    QTest::newRow("above 4 MiB") << text(limit + 1) << false;
    QTest::newRow("above 4 MiB together") << text(limit / 2) + text(limit / 2 + 1) << false;
    QTest::newRow("a packed one above 4 MiB")
        << PngMaker::chunk("zTXt", QByteArray("Title\0\0", 7) + QByteArray(limit, 'x')) << false;
    QTest::newRow("four packed ones") << packed.repeated(4) << true;
    QTest::newRow("five packed ones") << packed.repeated(5) << false;
}

void TstPictureReader::texts_are_counted()
{
    QFETCH(QByteArray, chunks);
    QFETCH(bool, isRead);
    const QByteArray png = PngMaker::blank(16, 9);
    const int behindHeader = PngMaker::signature().size() + 25;
    const int beforeEnd = png.size() - 12;
    for (const int at : {behindHeader, beforeEnd}) {
        PictureReader reader(write(QByteArray(png).insert(at, chunks)));
        QCOMPARE(reader.size(), isRead ? QSize(16, 9) : QSize());
        QCOMPARE(reader.read().isNull(), !isRead);
    }
    // Data after the end of a picture is not part of it.
    QCOMPARE(PictureReader(write(png + chunks)).size(), QSize(16, 9));
}

void TstPictureReader::file_above_256_mib_is_not_read()
{
    const QString path = write(PngMaker::blank(16, 9));
    const qint64 most = 256 * MiB;
    QVERIFY(QFile::resize(path, most));
    QCOMPARE(PictureReader(path).size(), QSize(16, 9));
    QVERIFY(QFile::resize(path, most + 1));
    QCOMPARE(PictureReader(path).size(), QSize());
}

void TstPictureReader::non_png_has_no_size_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("no picture");
    for (const char *format : {"JPG", "BMP", "XPM", "PPM"}) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        QVERIFY(noisePicture({16, 9}, 1).save(&buffer, format));
        QTest::newRow(format) << bytes;
    }
}

void TstPictureReader::non_png_has_no_size()
{
    QFETCH(QByteArray, bytes);
    PictureReader reader(write(bytes));
    QCOMPARE(reader.size(), QSize());
    QVERIFY(reader.read().isNull());
}

void TstPictureReader::a_missing_picture_has_no_size()
{
    PictureReader reader(m_dir.filePath(QStringLiteral("missing.png")));
    QCOMPARE(reader.size(), QSize());
    QVERIFY(reader.read().isNull());
}

TEST_MAIN_GUI(TstPictureReader)
#include "tst_picturereader.moc"

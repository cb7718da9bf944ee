// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "contentscan.h"

#include <data/pngmaker.h>
#include <support/testmain.h>

#include <QBuffer>
#include <QRandomGenerator>
#include <QtTest>

#include <limits>

using namespace ProjectFileCfg::Internal;
using TestData::PngMaker;

namespace {

/// Fed in portions of at most that many bytes.
PictureScan scanned(const QByteArray &png, int largestPortion)
{
    QRandomGenerator random(4);
    PictureScan scan;
    for (int at = 0; at < png.size();) {
        const int size = qMin(png.size() - at, random.bounded(1, largestPortion + 1));
        scan.feed(png.constData() + at, size);
        at += size;
    }
    return scan;
}

qint64 partsOf(const QByteArray &json, int portion = 1000)
{
    DescriptionScan scan;
    for (int at = 0; at < json.size(); at += portion)
        scan.feed(json.constData() + at, qMin(portion, json.size() - at));
    return scan.parts();
}

} // namespace

class TstContentScan : public QObject
{
    Q_OBJECT

private slots:
    void picture_reports_pixels_and_memory_data();
    void picture_reports_pixels_and_memory();
    void non_picture_reports_nothing_data();
    void non_picture_reports_nothing();
    void sides_are_compared_with_their_limit_data();
    void sides_are_compared_with_their_limit();
    void senseless_sides_are_reported_as_stated();
    void texts_are_counted_to_their_limit_data();
    void texts_are_counted_to_their_limit();
    void a_file_is_left_at_its_beginning();
    void only_structure_counts_as_a_part_data();
    void only_structure_counts_as_a_part();
};

void TstContentScan::picture_reports_pixels_and_memory_data()
{
    QTest::addColumn<QByteArray>("png");
    QTest::addColumn<qint64>("bits");
    QTest::newRow("8 bits with alpha") << PngMaker::blank(10, 8, 8, PngMaker::Rgba) << qint64(32);
    QTest::newRow("8 bits") << PngMaker::blank(10, 8, 8, PngMaker::Rgb) << qint64(32);
    QTest::newRow("16 bits") << PngMaker::blank(10, 8, 16, PngMaker::Rgb) << qint64(32 + 64);
    QTest::newRow("black and white") << PngMaker::blank(10, 8, 1, PngMaker::Grey) << qint64(32 + 1);
    QTest::newRow("grey") << PngMaker::blank(10, 8, 8, PngMaker::Grey) << qint64(32 + 8);
    QTest::newRow("grey of 16 bits") << PngMaker::blank(10, 8, 16, PngMaker::Grey) << qint64(32 + 16);
    QTest::newRow("grey of 16 bits with a transparent one")
        << PngMaker::signature() + PngMaker::header(10, 8, 16, PngMaker::Grey) +
               PngMaker::chunk("tRNS", QByteArray(2, '\0'))
        << qint64(32 + 64);
    QTest::newRow("palette") << PngMaker::blank(10, 8, 4, PngMaker::Palette) << qint64(32 + 8);
}

void TstContentScan::picture_reports_pixels_and_memory()
{
    QFETCH(QByteArray, png);
    QFETCH(qint64, bits);
    for (int portion : {1, 2, 7, 8, 9, 100000}) {
        const PictureScan scan = scanned(png, portion);
        QVERIFY(scan.isPng() && !scan.isBeyondLimits());
        QCOMPARE(scan.size(), QSize(10, 8));
        QCOMPARE(scan.pixels(), 80);
        QCOMPARE(scan.memory(), 80 * bits / 8);
    }
    QBuffer file(&png);
    QVERIFY(file.open(QIODevice::ReadOnly));
    PictureScan scan;
    QVERIFY(scan.feed(file));
    QCOMPARE(scan.memory(), 80 * bits / 8);
}

void TstContentScan::non_picture_reports_nothing_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isPng");
    QTest::newRow("nothing") << QByteArray() << false;
    QTest::newRow("text") << QByteArray("this is a text, and no picture at all") << false;
    QTest::newRow("another signature before a header")
        << PngMaker::blank(10, 8).replace(0, 8, "\x89PNG\r\n\x1a\r") << false;
    QTest::newRow("cut in the signature") << PngMaker::signature().left(7) << false;
    QTest::newRow("cut in the header") << PngMaker::blank(10, 8).left(30 - 8) << true;
    QTest::newRow("header too late") << PngMaker::signature() + PngMaker::chunk("tEXt", "x") + PngMaker::header(10, 8)
                                     << true;
    QTest::newRow("header of another length")
        << PngMaker::signature() + PngMaker::chunk("IHDR", QByteArray(14, '\1')) << true;
}

void TstContentScan::non_picture_reports_nothing()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isPng);
    const PictureScan scan = scanned(bytes, 5);
    QCOMPARE(scan.isPng(), isPng);
    QCOMPARE(scan.pixels(), 0);
    QCOMPARE(scan.memory(), 0);
}

void TstContentScan::sides_are_compared_with_their_limit_data()
{
    QTest::addColumn<uint>("width");
    QTest::addColumn<uint>("height");
    QTest::addColumn<bool>("isTooMuch");
    QTest::newRow("both at the limit") << 1000000u << 1000000u << false;
    QTest::newRow("too wide") << 1000001u << 1u << true;
    QTest::newRow("too high") << 1u << 1000001u << true;
    QTest::newRow("the largest numbers") << 0xFFFFFFFFu << 0xFFFFFFFFu << true;
}

void TstContentScan::sides_are_compared_with_their_limit()
{
    QFETCH(uint, width);
    QFETCH(uint, height);
    QFETCH(bool, isTooMuch);
    const PictureScan scan =
        scanned(PngMaker::signature() + PngMaker::header(width, height, 16) + PngMaker::end(), 100);
    QVERIFY(scan.isPng());
    QCOMPARE(scan.isBeyondLimits(), isTooMuch);
    QCOMPARE(scan.pixels(), isTooMuch ? 0 : qint64(width) * height);
    QCOMPARE(scan.memory(), 12 * scan.pixels());
}

void TstContentScan::senseless_sides_are_reported_as_stated()
{
    QCOMPARE(PictureScan().size(), QSize(0, 0));
    const QByteArray png = PngMaker::signature() + PngMaker::header(0xFFFFFFFF, 60000);
    QCOMPARE(scanned(png, 100).size(), QSize(std::numeric_limits<int>::max(), 60000));
}

void TstContentScan::texts_are_counted_to_their_limit_data()
{
    QTest::addColumn<QByteArray>("chunks");
    QTest::addColumn<bool>("isTooMuch");
    const int most = 4 * 1024 * 1024 - 12;
    QTest::newRow("text of 4 MiB") << PngMaker::chunk("tEXt", QByteArray(most, 'x')) << false;
    QTest::newRow("text above 4 MiB") << PngMaker::chunk("tEXt", QByteArray(most + 1, 'x')) << true;
    QTest::newRow("a first letter") << PngMaker::chunk("aaAa", QByteArray(most + 1, 'x')) << true;
    QTest::newRow("a last letter") << PngMaker::chunk("zzZz", QByteArray(most + 1, 'x')) << true;
    QTest::newRow("four packed texts") << PngMaker::chunk("zTXt", "x").repeated(4) << false;
    QTest::newRow("five packed texts") << PngMaker::chunk("zTXt", "x").repeated(5) << true;
    QTest::newRow("five international texts") << PngMaker::chunk("iTXt", "x").repeated(5) << true;
    QTest::newRow("five profiles") << PngMaker::chunk("iCCP", "x").repeated(5) << true;
    QTest::newRow("texts behind the end") << PngMaker::end() + PngMaker::chunk("iCCP", "x").repeated(5) << false;
    QTest::newRow("pixels") << PngMaker::chunk("IDAT", QByteArray(most + 1, 'x')) << false;
}

void TstContentScan::texts_are_counted_to_their_limit()
{
    QFETCH(QByteArray, chunks);
    QFETCH(bool, isTooMuch);
    QByteArray png = PngMaker::signature() + PngMaker::header(1, 1) + chunks;
    QCOMPARE(scanned(png, 70000).isBeyondLimits(), isTooMuch);
    QBuffer file(&png);
    QVERIFY(file.open(QIODevice::ReadOnly));
    PictureScan scan;
    QVERIFY(scan.feed(file));
    QCOMPARE(scan.isBeyondLimits(), isTooMuch);
}

void TstContentScan::a_file_is_left_at_its_beginning()
{
    QByteArray png = PngMaker::blank(10, 8);
    for (const QByteArray &bytes : {png, png.left(40), QByteArray("text"), QByteArray()}) {
        QBuffer file;
        file.setData(bytes);
        QVERIFY(file.open(QIODevice::ReadOnly));
        PictureScan scan;
        QVERIFY(scan.feed(file));
        QCOMPARE(file.pos(), 0);
    }
}

void TstContentScan::only_structure_counts_as_a_part_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<qint64>("parts");
    QTest::newRow("nothing") << QByteArray() << qint64(0);
    QTest::newRow("object") << QByteArray(R"({"a":1,"b":[1,{}]})") << qint64(7);
    QTest::newRow("in a string") << QByteArray(R"(["a,b:c[{",1])") << qint64(2);
    QTest::newRow("behind an escaped quote") << QByteArray(R"(["a\",b,c",1])") << qint64(2);
    QTest::newRow("behind an escaped backslash") << QByteArray(R"(["a\\",1,1])") << qint64(3);
    QTest::newRow("in a string that does not end") << QByteArray(R"(["a,,,,)") << qint64(1);
}

void TstContentScan::only_structure_counts_as_a_part()
{
    QFETCH(QByteArray, json);
    QFETCH(qint64, parts);
    for (int portion : {1, 2, 3, 1000})
        QCOMPARE(partsOf(json, portion), parts);
}

TEST_MAIN_CORE(TstContentScan)
#include "tst_contentscan.moc"

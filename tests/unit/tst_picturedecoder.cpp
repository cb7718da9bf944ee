// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "picturedecoder.h"

#include <support/customsite.h>
#include <support/testmain.h>

using namespace ProjectFileCfg::Internal;
using namespace TestSupport;

class TstPictureDecoder : public QObject
{
    Q_OBJECT

private slots:
    void started_picture_is_taken_once();
    void pictures_are_taken_in_any_order();
    void unstarted_picture_is_null();
    void undecodable_picture_is_null_data();
    void undecodable_picture_is_null();
    void destruction_does_not_need_the_pictures();
};

namespace {

const QString one = QStringLiteral("one");
const QString two = QStringLiteral("two");

std::shared_ptr<QIODevice> contentOf(const QByteArray &bytes)
{
    auto content = std::make_shared<QBuffer>();
    content->setData(bytes);
    content->open(QIODevice::ReadOnly);
    return content;
}

} // namespace

void TstPictureDecoder::started_picture_is_taken_once()
{
    const QImage picture = noisePicture({60, 40}, 1);
    PictureDecoder decoder(1);
    decoder.begin(one, contentOf(pngOf(picture)), picture.size());
    const QImage taken = decoder.take(one);
    QCOMPARE(taken.format(), QImage::Format_ARGB32);
    QCOMPARE(taken, picture.convertToFormat(QImage::Format_ARGB32));
    QVERIFY(decoder.take(one).isNull());
}

void TstPictureDecoder::pictures_are_taken_in_any_order()
{
    const QImage opaque = noisePicture({60, 40}, 1);
    const QImage logo = noisePicture({30, 20}, 2, QImage::Format_ARGB32);
    PictureDecoder decoder(1);
    decoder.begin(one, contentOf(pngOf(opaque)), opaque.size());
    decoder.begin(two, contentOf(pngOf(logo)), logo.size());
    QCOMPARE(decoder.take(two), logo);
    QCOMPARE(decoder.take(one), opaque.convertToFormat(QImage::Format_ARGB32));
}

void TstPictureDecoder::unstarted_picture_is_null()
{
    PictureDecoder decoder(1);
    QVERIFY(decoder.take(one).isNull());
}

void TstPictureDecoder::undecodable_picture_is_null_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QSize>("size");
    const QByteArray good = pngOf(noisePicture({60, 40}, 1));
    QTest::addColumn<QString>("cause");
    const QString otherSize = QStringLiteral("its size is not the expected one");
    QTest::newRow("nothing") << QByteArray() << QSize(60, 40) << otherSize;
    QTest::newRow("no picture") << QByteArray("no picture at all") << QSize(60, 40) << otherSize;
    QTest::newRow("another size") << good << QSize(40, 60) << otherSize;
    QTest::newRow("cut off") << good.left(good.size() / 2) << QSize(60, 40) << "Unable to read image data";
}

void TstPictureDecoder::undecodable_picture_is_null()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QSize, size);
    QFETCH(QString, cause);
    const ExpectMessage libraryNoise(QtWarningMsg, QRegularExpression(QStringLiteral("^libpng ")),
                                     ExpectMessage::AnyNumber);
    PictureDecoder decoder(1);
    decoder.begin(one, contentOf(bytes), size);
    QString reason;
    QVERIFY(decoder.take(one, &reason).isNull());
    QCOMPARE(reason, QStringLiteral("cannot decode one: ") + cause);
}

void TstPictureDecoder::destruction_does_not_need_the_pictures()
{
    const QImage picture = noisePicture({400, 300}, 1);
    const QByteArray bytes = pngOf(picture);
    PictureDecoder decoder(1);
    for (int number = 0; number < 20; ++number)
        decoder.begin(QString::number(number), contentOf(bytes), picture.size());
}

TEST_MAIN_GUI(TstPictureDecoder)
#include "tst_picturedecoder.moc"

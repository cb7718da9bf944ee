// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "encodedpictures.h"
#include "packagetesting.h"
#include "picturewriter.h"

#include <support/customsite.h>
#include <support/testmain.h>

#include <QSemaphore>
#include <QTemporaryDir>
#include <QThread>

#include <atomic>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;

class TstPictureWriter : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void every_picture_is_written_like_qimage_save();
    void unwritable_picture_is_logged_and_stops_no_other_data();
    void unwritable_picture_is_logged_and_stops_no_other();
    void later_picture_for_one_path_wins();
    void at_most_cores_plus_two_pictures_are_held();
    void pictures_under_way_stay_within_the_budget_data();
    void pictures_under_way_stay_within_the_budget();
    void written_files_are_reported_with_their_size();
    void a_picture_without_room_is_reported();
    void encoder_exception_reaches_the_caller();
    void destruction_leaves_only_complete_pictures();

private:
    QString path(int number) const { return m_dir->filePath(QStringLiteral("%1.png").arg(number)); }

    QScopedPointer<QTemporaryDir> m_dir;
    const std::shared_ptr<EncodedPictures> m_encoded = std::make_shared<EncodedPictures>();
};

void TstPictureWriter::init()
{
    m_dir.reset(new QTemporaryDir);
    WarningGuard::clear();
}

void TstPictureWriter::every_picture_is_written_like_qimage_save()
{
    PictureWriter writer(m_encoded);
    for (int number = 0; number < 30; ++number)
        writer.write(noisePicture({50, 40}, quint32(number)), path(number));
    writer.waitForDone();
    for (int number = 0; number < 30; ++number)
        QCOMPARE(readFile(path(number)), pngOf(noisePicture({50, 40}, quint32(number))));
}

void TstPictureWriter::unwritable_picture_is_logged_and_stops_no_other_data()
{
    QTest::addColumn<bool>("isEmpty");
    QTest::addColumn<QString>("place");
    QTest::newRow("no picture") << true << "bad.png";
    QTest::newRow("no such folder") << false << "missing/bad.png";
}

void TstPictureWriter::unwritable_picture_is_logged_and_stops_no_other()
{
    QFETCH(bool, isEmpty);
    QFETCH(QString, place);
    const QString bad = m_dir->filePath(place);
    PictureWriter writer(m_encoded);
    writer.write(noisePicture({50, 40}, 1), path(1));
    writer.write(isEmpty ? QImage() : noisePicture({50, 40}, 2), bad);
    writer.write(noisePicture({50, 40}, 3), path(3));
    writer.waitForDone();
    QVERIFY(QFile::exists(path(1)));
    QVERIFY(!QFile::exists(bad));
    QVERIFY(QFile::exists(path(3)));
    const QStringList logged = WarningGuard::texts(QtDebugMsg);
    QCOMPARE(logged.size(), 1);
    QVERIFY2(logged.first().startsWith(QStringLiteral("Save picture failed: \"%1\" ").arg(bad)),
             qPrintable(logged.first()));
    QVERIFY2(logged.first().contains(isEmpty ? "cannot be encoded" : "No such file or directory"),
             qPrintable(logged.first()));
}

void TstPictureWriter::later_picture_for_one_path_wins()
{
    PictureWriter writer(m_encoded);
    for (quint32 seed = 0; seed < 20; ++seed) {
        writer.write(noisePicture({300, 200}, seed), path(1));
        writer.write(noisePicture({3, 2}, seed), path(1));
    }
    writer.waitForDone();
    QCOMPARE(readFile(path(1)), pngOf(noisePicture({3, 2}, 19)));
}

void TstPictureWriter::at_most_cores_plus_two_pictures_are_held()
{
    // Each picture is counted while its pixels are in memory.
    static std::atomic<int> held;
    held = 0;
    int most = 0;
    QVector<quint32> pixels(200 * 100, 0xFF123456);
    PictureWriter writer(m_encoded);
    for (int number = 0; number < 100; ++number) {
        ++held;
        QImage picture(reinterpret_cast<const uchar *>(pixels.constData()), 200, 100, QImage::Format_RGB32,
                       [](void *) { --held; });
        most = qMax(most, held.load());
        writer.write(std::move(picture), path(number));
    }
    writer.waitForDone();
    QVERIFY2(most <= QThread::idealThreadCount() + 2, qPrintable(QString::number(most)));
    QCOMPARE(held.load(), 0);
}

void TstPictureWriter::pictures_under_way_stay_within_the_budget_data()
{
    // In pictures of 4,000 bytes; the number then in progress.
    QTest::addColumn<double>("budget");
    QTest::addColumn<int>("expected");
    QTest::newRow("less than one picture") << 0.5 << 1;
    QTest::newRow("one picture") << 1.0 << 1;
    QTest::newRow("three pictures") << 3.0 << 3;
    QTest::newRow("not quite four pictures") << 3.9 << 3;
    QTest::newRow("more pictures than threads") << 100.0 << 9;
}

void TstPictureWriter::pictures_under_way_stay_within_the_budget()
{
    QFETCH(double, budget);
    QFETCH(int, expected);
    constexpr int threads = 8;
    constexpr int count = 60;
    constexpr qint64 pictureBytes = 4000;
    // Each picture's bytes are counted while its pixels are in memory.
    static std::atomic<qint64> held;
    held = 0;
    qint64 most = 0;
    // No picture is finished before its owner has fetched as many as may be in memory at the same time.
    QSemaphore mayEnd[count];
    std::atomic<int> encoded{0};
    const auto pictures = std::make_shared<EncodedPictures>(0, [&](const QImage &picture) {
        ++encoded;
        mayEnd[qBlue(picture.pixel(0, 0))].acquire();
        return QByteArray("encoded");
    });
    QVector<quint32> pixels(50 * 20 * count, 0xFF123400);
    PictureWriter writer(pictures, qint64(budget * pictureBytes), threads);
    for (int number = 0; number < count; ++number) {
        held += pictureBytes;
        quint32 *const first = pixels.data() + 50 * 20 * number;
        *first += quint32(number);
        QImage picture(reinterpret_cast<const uchar *>(first), 50, 20, QImage::Format_RGB32,
                       [](void *) { held -= pictureBytes; });
        most = qMax(most, held.load());
        if (number >= expected)
            mayEnd[number - expected].release();
        writer.write(std::move(picture), path(number));
    }
    for (int number = count - expected; number < count; ++number)
        mayEnd[number].release();
    QVERIFY(writer.waitForDone());
    QCOMPARE(encoded.load(), count);
    QCOMPARE(most, (expected + 1) * pictureBytes);
    QCOMPARE(held.load(), qint64(0));
}

void TstPictureWriter::written_files_are_reported_with_their_size()
{
    PictureWriter writer(m_encoded);
    writer.write(noisePicture({50, 40}, 1), path(1));
    writer.write(noisePicture({50, 40}, 2), m_dir->filePath("missing/2.png"));
    writer.write(QImage(), path(3));
    writer.write(noisePicture({20, 10}, 4), path(1));
    QVERIFY(writer.hasPictures());
    QVERIFY(writer.waitForDone());
    QVERIFY(!writer.hasPictures());
    QCOMPARE(writer.written(), (QHash<QString, qint64>{{path(1), QFileInfo(path(1)).size()}}));
    QCOMPARE(writer.written().value(path(1)), qint64(pngOf(noisePicture({20, 10}, 4)).size()));
}

void TstPictureWriter::a_picture_without_room_is_reported()
{
    PictureWriter writer(m_encoded);
    QString reason;
    bool isWhole = true;
    {
        const FullDisk disk(1000);
        writer.write(noisePicture({3, 2}, 1), path(1));
        writer.write(noisePicture({60, 40}, 2), path(2));
        writer.write(noisePicture({60, 40}, 3), path(3));
        isWhole = writer.waitForDone(&reason);
    }
    QVERIFY(!isWhole);
    // The first one that is incomplete.
    QCOMPARE(reason, QStringLiteral("cannot write %1: only part of it was written, the disk may be full").arg(path(2)));
    QCOMPARE(writer.written().keys(), QStringList{path(1)});
}

void TstPictureWriter::encoder_exception_reaches_the_caller()
{
    const auto failing =
        std::make_shared<EncodedPictures>(0, [](const QImage &) -> QByteArray { throw std::bad_alloc(); });
    PictureWriter writer(failing);
    writer.write(noisePicture({5, 4}, 1), path(1));
    QVERIFY_EXCEPTION_THROWN(writer.waitForDone(), std::exception);
    QVERIFY(!QFile::exists(path(1)));
}

void TstPictureWriter::destruction_leaves_only_complete_pictures()
{
    constexpr int count = 12;
    QVector<QByteArray> expected;
    QVector<QImage> pictures;
    for (int number = 0; number < count; ++number) {
        pictures.append(noisePicture({300, 200}, quint32(number)));
        expected.append(pngOf(pictures.last()));
    }
    {
        PictureWriter writer(m_encoded);
        for (int number = 0; number < count; ++number)
            writer.write(pictures.at(number), path(number));
    }
    for (int number = 0; number < count; ++number)
        QVERIFY(!QFile::exists(path(number)) || readFile(path(number)) == expected.at(number));
}

TEST_MAIN_GUI(TstPictureWriter)
#include "tst_picturewriter.moc"

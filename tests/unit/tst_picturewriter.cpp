#include "encodedpictures.h"
#include "packagetesting.h"
#include "picturewriter.h"

#include <support/customsite.h>
#include <support/testmain.h>

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

    void every_picture_is_written_as_its_own_save_does();
    void a_picture_that_cannot_be_written_is_logged_and_stops_no_other_data();
    void a_picture_that_cannot_be_written_is_logged_and_stops_no_other();
    void of_two_pictures_for_one_path_the_later_one_stays();
    void never_more_pictures_are_held_than_cores_and_two();
    void its_end_leaves_whole_pictures_only();

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

void TstPictureWriter::every_picture_is_written_as_its_own_save_does()
{
    PictureWriter writer(m_encoded);
    for (int number = 0; number < 30; ++number)
        writer.write(noisePicture({50, 40}, quint32(number)), path(number));
    writer.waitForDone();
    for (int number = 0; number < 30; ++number)
        QCOMPARE(readFile(path(number)), pngOf(noisePicture({50, 40}, quint32(number))));
}

void TstPictureWriter::a_picture_that_cannot_be_written_is_logged_and_stops_no_other_data()
{
    QTest::addColumn<bool>("isEmpty");
    QTest::addColumn<QString>("place");
    QTest::newRow("no picture") << true << "bad.png";
    QTest::newRow("no such folder") << false << "missing/bad.png";
}

void TstPictureWriter::a_picture_that_cannot_be_written_is_logged_and_stops_no_other()
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
    QCOMPARE(WarningGuard::texts(QtDebugMsg), QStringList(QStringLiteral("Save picture failed: \"%1\"").arg(bad)));
}

void TstPictureWriter::of_two_pictures_for_one_path_the_later_one_stays()
{
    PictureWriter writer(m_encoded);
    for (quint32 seed = 0; seed < 20; ++seed) {
        writer.write(noisePicture({300, 200}, seed), path(1));
        writer.write(noisePicture({3, 2}, seed), path(1));
    }
    writer.waitForDone();
    QCOMPARE(readFile(path(1)), pngOf(noisePicture({3, 2}, 19)));
}

void TstPictureWriter::never_more_pictures_are_held_than_cores_and_two()
{
    // Each picture counts itself while its pixels are held.
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

void TstPictureWriter::its_end_leaves_whole_pictures_only()
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

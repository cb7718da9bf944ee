// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagereader.h"
#include "packagetesting.h"
#include "readinesscheck.h"

#include <data/pngmaker.h>
#include <support/testmain.h>

#include <model/deviceeditor.h>

#include <QTemporaryDir>
#include <QThread>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using Model::Materail;
using TestData::PngMaker;
using TestSupport::PackageBuilder;

/// How much is looked at ahead, and how many pixels may be in one package.
class TstReadinessCheck : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void pictures_at_the_pixel_limit_pass_data();
    void pictures_at_the_pixel_limit_pass();
    void as_many_pictures_as_cores_and_two_wait();
    void pixels_of_256_mib_wait_data();
    void pixels_of_256_mib_wait();
    void the_first_failing_picture_gives_the_code_data();
    void the_first_failing_picture_gives_the_code();

private:
    /// Each in a folder of its own, which stays when the picture has been extracted and removed. The numbers in their
    /// names are none, so that all have the place of number 0.
    void add(const QByteArray &gallery, const QByteArray &png, int count = 1);
    int foldersLeft() const
    {
        return QDir(m_temp->filePath("out/BKG")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
    }
    LoadResultCode run(const QSize &background, const QSize &logo = {1, 1}, bool offline = false);

    QScopedPointer<QTemporaryDir> m_temp;
    PackageBuilder m_package;
    int m_pictures = 0;
    QString m_reason;
};

namespace {

/// A picture that ends behind its header: it has a size, and cannot be decoded.
QByteArray undecodable(const QSize &size)
{
    return PngMaker::signature() + PngMaker::header(quint32(size.width()), quint32(size.height())) +
           PngMaker::chunk("IDAT", "no stream at all") + PngMaker::end();
}

} // namespace

void TstReadinessCheck::init()
{
    m_temp.reset(new QTemporaryDir);
    m_package = PackageBuilder();
    m_pictures = 0;
    m_reason.clear();
}

void TstReadinessCheck::add(const QByteArray &gallery, const QByteArray &png, int count)
{
    for (; count > 0; --count)
        m_package.file(gallery + '/' + QByteArray::number(++m_pictures) + "/x.png", png, PackageBuilder::Stored);
}

LoadResultCode TstReadinessCheck::run(const QSize &background, const QSize &logo, bool offline)
{
    Model::Device device(1);
    Model::DeviceEditor editor(device);
    Model::DeviceData data = editor.data();
    data.backgrounds = {std::make_shared<Materail>(Materail::Background, 0, QString(), background, QString())};
    data.logos = {std::make_shared<Materail>(Materail::Logo, 0, QString(), logo, QString())};
    editor.replace(data);
    if (!m_package.write(m_temp->filePath("show.corvelpro")) || !QDir().mkpath(m_temp->filePath("out")))
        qFatal("No package");
    PackageReader package(m_temp->filePath("show.corvelpro"));
    ReadinessCheck check(package, device, m_temp->filePath("out"));
    return offline ? check.runOffline(&m_reason) : check.run(&m_reason);
}

void TstReadinessCheck::pictures_at_the_pixel_limit_pass_data()
{
    QTest::addColumn<QSize>("background");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("logos");
    QTest::addColumn<bool>("fits");
    QTest::newRow("exactly") << QSize(8192, 4096) << 128 << 0 << true;
    QTest::newRow("one more") << QSize(8192, 4096) << 128 << 1 << false;
    QTest::newRow("as large as can be decoded") << QSize(8192, 6144) << 86 << 0 << false;
    QTest::newRow("larger ones are refused at their turn") << QSize(8192, 6145) << 86 << 0 << true;
}

void TstReadinessCheck::pictures_at_the_pixel_limit_pass()
{
    QFETCH(QSize, background);
    QFETCH(int, count);
    QFETCH(int, logos);
    QFETCH(bool, fits);
    m_package.file("BKG/not a picture.txt", "x");
    add("BKG", "x", count);
    add("LOGO", "x", logos);
    // None of these counts.
    add("LOGO in another place", "x", 100);
    QCOMPARE(int(run(background, {1, 1}, true)), int(fits ? LoadSuccess : LoadGalleryFileError));
    QCOMPARE(m_reason.endsWith("pixels in total"), !fits);
    // Online nothing is extracted before.
    QCOMPARE(int(run(background)), int(fits ? LoadImageContentError : LoadGalleryFileError));
    QCOMPARE(foldersLeft(), fits ? 1 : 0);
}

void TstReadinessCheck::as_many_pictures_as_cores_and_two_wait()
{
    const int most = QThread::idealThreadCount() + 2;
    const QSize size(2, 2);
    add("BKG", undecodable(size));
    add("BKG", PngMaker::blank(2, 2), most + 5);
    QCOMPARE(run(size), LoadGalleryFileError);
    // The next one is begun when the oldest has been decoded, which fails here.
    QCOMPARE(foldersLeft(), most + 1);
}

void TstReadinessCheck::pixels_of_256_mib_wait_data()
{
    QTest::addColumn<QSize>("second");
    QTest::addColumn<int>("begun");
    const int cores = QThread::idealThreadCount();
    // Two of 128 MiB each, and the first one besides.
    QTest::newRow("256 MiB") << QSize(8192, 4096) << 3;
    QTest::newRow("above 256 MiB") << QSize(8192, 4097) << 2;
    QTest::newRow("less") << QSize(8192, 4095) << std::min(3, cores + 2);
}

void TstReadinessCheck::pixels_of_256_mib_wait()
{
    QFETCH(QSize, second);
    QFETCH(int, begun);
    add("BKG", undecodable(second), 5);
    QCOMPARE(run(second), LoadGalleryFileError);
    QCOMPARE(foldersLeft(), begun + 1);
}

void TstReadinessCheck::the_first_failing_picture_gives_the_code_data()
{
    QTest::addColumn<int>("undecodable");
    QTest::addColumn<int>("code");
    QTest::newRow("before") << 0 << int(LoadGalleryFileError);
    QTest::newRow("behind") << 2 << int(LoadImageContentError);
    QTest::newRow("none") << -1 << int(LoadImageContentError);
}

void TstReadinessCheck::the_first_failing_picture_gives_the_code()
{
    QFETCH(int, undecodable);
    QFETCH(int, code);
    for (int number = 0; number < 3; ++number) {
        const QByteArray good = PngMaker::blank(2, 2);
        add("BKG", number == undecodable ? ::undecodable({2, 2}) : number == 1 ? QByteArray("no picture") : good);
    }
    QCOMPARE(int(run({2, 2})), code);
    QVERIFY(!m_reason.isEmpty());
    QCOMPARE(contents(m_temp->filePath("out")).filter(".png"), QStringList());
}

TEST_MAIN_GUI(TstReadinessCheck)
#include "tst_readinesscheck.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagedpicture.h"
#include "packagereader.h"
#include "packagetesting.h"

#include <data/pngmaker.h>
#include <support/testmain.h>

#include <model/deviceeditor.h>

#include <QBuffer>
#include <QTemporaryDir>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using Model::Materail;
using TestData::PngMaker;
using TestSupport::PackageBuilder;

class TstPackagedPicture : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void each_picture_has_its_place_in_the_gallery_data();
    void each_picture_has_its_place_in_the_gallery();
    void extracting_returns_the_path();
    void opening_checks_size_and_place_data();
    void opening_checks_size_and_place();
    void opened_content_is_at_its_beginning_data();
    void opened_content_is_at_its_beginning();
    void without_a_file_256_mib_go_to_memory_data();
    void without_a_file_256_mib_go_to_memory();

private:
    QString packageOf(const QByteArray &entry, const QByteArray &bytes) const;

    QTemporaryDir m_temp;
    Model::Device m_device{1};
};

void TstPackagedPicture::initTestCase()
{
    Model::DeviceEditor editor(m_device);
    Model::DeviceData data = editor.data();
    const auto materail = [](Materail::MaterailType type, quint8 keyNo, const QString &name, const QSize &size) {
        return std::make_shared<Materail>(type, keyNo, name, size, QString());
    };
    data.backgrounds = {
        materail(Materail::Background, 0, "number 0", {16, 9}), materail(Materail::Background, 1, "first", {16, 9}),
        materail(Materail::Background, 1, "second", {16, 9}), materail(Materail::Background, 2, "tall", {1, 9}),
        materail(Materail::Background, 3, "wide", {16, 1})};
    data.logos = {materail(Materail::Logo, 1, "logo", {8, 8})};
    editor.replace(data);
}

QString TstPackagedPicture::packageOf(const QByteArray &entry, const QByteArray &bytes) const
{
    const QString path = m_temp.filePath("show.corvelpro");
    if (!PackageBuilder().file(entry, bytes, PackageBuilder::Stored).write(path))
        qFatal("No package");
    return path;
}

void TstPackagedPicture::each_picture_has_its_place_in_the_gallery_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("materail");
    QTest::addColumn<QString>("name");
    QTest::newRow("background") << "BKG/BKG_1.png"
                                << "first"
                                << "BKG_1";
    QTest::newRow("logo") << "LOGO/LOGO_1.png"
                          << "logo"
                          << "LOGO_1";
    QTest::newRow("another way to write it") << "./BKG//BKG_2.png"
                                             << "tall"
                                             << "BKG_2";
    QTest::newRow("key numbers have 8 bits") << "BKG/BKG_257.png"
                                             << "first"
                                             << "BKG_257";
    QTest::newRow("no such number") << "LOGO/LOGO_2.png" << QString() << "LOGO_2";
    QTest::newRow("outside") << "other/BKG_1.png" << QString() << "BKG_0";
}

void TstPackagedPicture::each_picture_has_its_place_in_the_gallery()
{
    QFETCH(QString, entry);
    QFETCH(QString, materail);
    QFETCH(QString, name);
    const PackagedPicture picture(entry, m_device);
    QCOMPARE(picture.materail() ? picture.materail()->getName() : QString(), materail);
    QCOMPARE(picture.name(), name);
    QCOMPARE(picture.entry(), entry);
}

void TstPackagedPicture::extracting_returns_the_path()
{
    PackageReader package(packageOf("BKG/BKG_1.png", "x"));
    const QString folder = m_temp.filePath("out");
    QCOMPARE(PackagedPicture("BKG/BKG_1.png", m_device).extract(package, folder), folder + "/BKG/BKG_1.png");
    QCOMPARE(readFile(folder + "/BKG/BKG_1.png"), QByteArray("x"));
    QCOMPARE(PackagedPicture("BKG/BKG_2.png", m_device).extract(package, folder), QString());
    QCOMPARE(contents(folder), (QStringList{"BKG", "BKG/BKG_1.png"}));
    const QStringList logged = TestSupport::WarningGuard::texts(QtDebugMsg).filter("Extract file failed:");
    QCOMPARE(logged.size(), 1);
    QVERIFY(QDir(folder).removeRecursively());
}

void TstPackagedPicture::opening_checks_size_and_place_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<QByteArray>("png");
    QTest::addColumn<int>("code");
    const QByteArray right = PngMaker::blank(16, 9);
    QTest::newRow("right") << QByteArray("BKG/BKG_1.png") << right << int(LoadSuccess);
    QTest::newRow("one pixel wide") << QByteArray("BKG/BKG_2.png") << PngMaker::blank(1, 9) << int(LoadSuccess);
    QTest::newRow("one pixel high") << QByteArray("BKG/BKG_3.png") << PngMaker::blank(16, 1) << int(LoadSuccess);
    QTest::newRow("another size") << QByteArray("BKG/BKG_2.png") << right << int(LoadGalleryFileError);
    QTest::newRow("no place") << QByteArray("BKG/BKG_9.png") << right << int(LoadGalleryFileError);
    QTest::newRow("outside the gallery") << QByteArray("other.png") << right << int(LoadSuccess);
    QTest::newRow("no picture") << QByteArray("BKG/BKG_1.png") << QByteArray("x") << int(LoadImageContentError);
}

void TstPackagedPicture::opening_checks_size_and_place()
{
    QFETCH(QByteArray, entry);
    QFETCH(QByteArray, png);
    QFETCH(int, code);
    PackageReader package(packageOf(entry, png));
    PackagedPicture picture(entry, m_device);
    QString reason;
    QCOMPARE(int(picture.open(package, m_temp.path(), &reason)), code);
    QCOMPARE(reason.isEmpty(), code == LoadSuccess);
    PackagedPicture missing("BKG/BKG_3.png~", m_device);
    QCOMPARE(missing.open(package, m_temp.path()), LoadDecompressFailed);
}

void TstPackagedPicture::opened_content_is_at_its_beginning_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("isInMemory");
    QTest::newRow("small") << 1000 << true;
    QTest::newRow("32 MiB") << 32 * int(MiB) << true;
    QTest::newRow("above 32 MiB") << 32 * int(MiB) + 1 << false;
}

void TstPackagedPicture::opened_content_is_at_its_beginning()
{
    QFETCH(int, size);
    QFETCH(bool, isInMemory);
    // What follows the end of a picture is not looked at.
    const QByteArray png = PngMaker::blank(16, 9).leftJustified(size, 'x');
    PackageReader package(packageOf("BKG/BKG_1.png", png));
    PackagedPicture picture("BKG/BKG_1.png", m_device);
    QCOMPARE(picture.open(package, m_temp.path()), LoadSuccess);
    QCOMPARE(picture.size(), QSize(16, 9));
    QCOMPARE(qobject_cast<QBuffer *>(picture.content().get()) != nullptr, isInMemory);
    QCOMPARE(picture.content()->pos(), qint64(0));
    QVERIFY(picture.content()->readAll() == png);
    // The file of a large one has no name.
    QCOMPARE(contents(m_temp.path()), QStringList{"show.corvelpro"});
}

void TstPackagedPicture::without_a_file_256_mib_go_to_memory_data()
{
    QTest::addColumn<quint32>("size");
    QTest::addColumn<bool>("isRead");
    QTest::newRow("256 MiB") << quint32(256 * MiB) << true;
    QTest::newRow("above 256 MiB") << quint32(256 * MiB + 1) << false;
}

void TstPackagedPicture::without_a_file_256_mib_go_to_memory()
{
    QFETCH(quint32, size);
    QFETCH(bool, isRead);
    // It has not as many bytes as it says. Whether that is found out tells whether it was read.
    const QString path = m_temp.filePath("show.corvelpro");
    QVERIFY(PackageBuilder().file("BKG/BKG_1.png", "x", PackageBuilder::Stored).claimSize(size).write(path));
    PackageReader package(path);
    PackagedPicture picture("BKG/BKG_1.png", m_device);
    QString reason;
    QCOMPARE(picture.open(package, m_temp.filePath("missing"), &reason), LoadDecompressFailed);
    QCOMPARE(reason.startsWith("cannot read BKG/BKG_1.png"), isRead);
    QCOMPARE(reason.startsWith("cannot create a file in"), !isRead);
}

TEST_MAIN_GUI(TstPackagedPicture)
#include "tst_packagedpicture.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "offlineroom.h"
#include "packagereader.h"
#include "packagetesting.h"

#include <support/packagebuilder.h>
#include <support/testmain.h>

#include <QTemporaryDir>
#include <QtTest>

#include <functional>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using TestSupport::PackageBuilder;

/// Each limit, met exactly and exceeded by one. That an apply heeds them is the subject of TstOfflineApply.
class TstOfflineRoom : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_temp.reset(); }

    void contents_of_4_gib_fit_and_no_more_data();
    void contents_of_4_gib_fit_and_no_more();
    void an_archive_of_4_gib_less_2_fits();
    void names_of_16_mib_fit_and_no_more();
    void entries_of_65534_fit_and_no_more();

private:
    QString inDevice(const QString &name) const { return m_temp->filePath("device/" + name); }
    /// Of zeros that take no room.
    bool hasFile(const QString &name, qint64 size = 0) const;
    bool fits(const PackageBuilder &package) const;

    QScopedPointer<QTemporaryDir> m_temp;
};

void TstOfflineRoom::init()
{
    m_temp.reset(new QTemporaryDir);
    QVERIFY(QDir().mkpath(m_temp->filePath("device")));
}

bool TstOfflineRoom::hasFile(const QString &name, qint64 size) const
{
    QFile file(inDevice(name));
    return QDir().mkpath(QFileInfo(file).absolutePath()) && file.open(QIODevice::ReadWrite) && file.resize(size);
}

bool TstOfflineRoom::fits(const PackageBuilder &package) const
{
    if (!package.write(m_temp->filePath("show.corvelpro")))
        qFatal("No package");
    const PackageReader reader(m_temp->filePath("show.corvelpro"));
    if (reader.entries().isEmpty())
        qFatal("The package is not read");
    return fitsPackageAfterwards(reader, inDevice(QString()));
}

void TstOfflineRoom::contents_of_4_gib_fit_and_no_more_data()
{
    QTest::addColumn<qint64>("inPackage");
    QTest::addColumn<QString>("inDevice");
    QTest::addColumn<qint64>("sizeInDevice");
    QTest::addColumn<bool>("isCounted");
    const qint64 half = 2048 * MiB;
    QTest::newRow("in the device alone") << qint64(0) << "b" << 2 * half << true;
    QTest::newRow("in both") << half << "b" << half << true;
    QTest::newRow("in a folder") << half << "folder/b" << half << true;
    QTest::newRow("hidden") << half << ".b" << half << true;
    QTest::newRow("description of the device") << half << "b.json" << half << true;
    QTest::newRow("replaced") << half << "a" << 2 * half << false;
    QTest::newRow("nearly all in the package") << 2 * half - 1000 << "b" << qint64(1000) << true;
    QTest::newRow("fragment of a killed process")
        << half << ".01234567-89ab-cdef-0123-456789abcdef.part" << 2 * half << false;
}

void TstOfflineRoom::contents_of_4_gib_fit_and_no_more()
{
    QFETCH(qint64, inPackage);
    QFETCH(QString, inDevice);
    QFETCH(qint64, sizeInDevice);
    QFETCH(bool, isCounted);
    const PackageBuilder package = PackageBuilder()
                                       .file("a", QByteArray())
                                       .claimSize(quint32(inPackage))
                                       .file("x.json", "{}")
                                       .claimSize(900)
                                       .file("empty/empty", QByteArray());
    QVERIFY(hasFile(inDevice, sizeInDevice));
    QVERIFY(fits(package));
    QVERIFY(hasFile(inDevice, sizeInDevice + 1));
    QCOMPARE(fits(package), !isCounted);
}

void TstOfflineRoom::an_archive_of_4_gib_less_2_fits()
{
    // Pictures are stored as they are; of the rest only the headers are certain.
    const qint64 headers = 76;
    const auto room = [&](const QStringList &names) {
        qint64 left = 0xFFFFFFFE - 22;
        for (const QString &name : names)
            left -= headers + 2 * name.size();
        return left;
    };
    const PackageBuilder package = PackageBuilder().file("LOGO/a.png", QByteArray()).claimSize(1000);
    // The description, which is named like the folder, is still to come.
    const qint64 most = room({"device.json", "LOGO/", "LOGO/a.png", "b.png", "c"}) - 1000;
    QVERIFY(hasFile("c", 100));
    QVERIFY(hasFile("b.png", most));
    QVERIFY(fits(package));
    QVERIFY(hasFile("b.png", most + 1));
    QVERIFY(!fits(package));
}

void TstOfflineRoom::names_of_16_mib_fit_and_no_more()
{
    PackageBuilder package;
    for (int number = 0; number < 256; ++number)
        package.file(QByteArray::number(number).rightJustified(65535, 'x'), QByteArray());
    // 256 bytes are left: 11 for "device.json", and two for each of these letters.
    const QString name = QString(122, QChar(0xE4));
    QVERIFY(hasFile(name));
    QVERIFY(hasFile("b"));
    QVERIFY(fits(package));
    QVERIFY(hasFile("c"));
    QVERIFY(!fits(package));
}

void TstOfflineRoom::entries_of_65534_fit_and_no_more()
{
    PackageBuilder package;
    const QByteArray tooDeep = QByteArray("d/").repeated(64) + "x";
    package.file("a", QByteArray()).file("f/g/h", QByteArray()).file(tooDeep, QByteArray()).file("y.json", "{}");
    // Two folders above "h", none above what is too deep, none for the description.
    for (int number = 0; number < 65534 - 5 - 4; ++number)
        package.file(QByteArray::number(number), QByteArray());
    QVERIFY(package.write(m_temp->filePath("show.corvelpro")));
    const PackageReader reader(m_temp->filePath("show.corvelpro"));
    QCOMPARE(reader.entries().size(), 65534 - 5 - 4 + 4);
    const auto fitsNow = [&] { return fitsPackageAfterwards(reader, inDevice(QString())); };
    // Four are left. Replaced ones need none, and the description is still to come.
    QVERIFY(hasFile("a") && hasFile("f/g/h") && hasFile("1"));
    QVERIFY(hasFile("n/o") && hasFile("p"));
    QVERIFY(fitsNow());
    QVERIFY(hasFile("q"));
    QVERIFY(!fitsNow());
    // A description of its own takes the place of the one to come.
    QVERIFY(QFile::remove(inDevice("q")));
    QVERIFY(hasFile("z.json"));
    QVERIFY(fitsNow());
    QVERIFY(QDir().mkdir(inDevice("empty")));
    QVERIFY(!fitsNow());
}

TEST_MAIN_CORE(TstOfflineRoom)
#include "tst_offlineroom.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagechecksum.h"
#include "packagetesting.h"

#include <support/packagebuilder.h>
#include <support/testmain.h>

#include <QTemporaryDir>

using namespace PackageTesting;
using TestSupport::PackageBuilder;
namespace PackageChecksum = ProjectFileCfg::Internal::PackageChecksum;

namespace {

QString checksumOf(const QString &path, qint64 length)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? PackageChecksum::ofLeadingBytes(file, length) : QString();
}

} // namespace

class TstPackageChecksum : public QObject
{
    Q_OBJECT

private slots:
    void a_chunk_is_10_mebibytes();
    void every_length_gives_the_checksum_step_by_step_data();
    void every_length_gives_the_checksum_step_by_step();
    void bytes_after_the_length_do_not_count();
    void shorter_file_is_read_to_its_end();
    void empty_file_has_the_digest_of_nothing();

private:
    QTemporaryDir m_temp;
};

void TstPackageChecksum::a_chunk_is_10_mebibytes()
{
    // Existing packages were made this way.
    QCOMPARE(PackageChecksum::chunkSize, Q_INT64_C(10485760));
}

void TstPackageChecksum::every_length_gives_the_checksum_step_by_step_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("zeroAt");
    const int chunk = int(PackageChecksum::chunkSize);
    // Around powers of two, where a reader's blocks may end, and around a chunk.
    for (int base : {1, 4096, 8192, 16384, 65536, 262144, 1048576, chunk, chunk + 4096}) {
        for (int length : {base - 1, base, base + 1}) {
            QTest::addRow("%d without a zero byte", length) << length << -1;
            if (length > 0) {
                QTest::addRow("%d, the first is zero", length) << length << 0;
                QTest::addRow("%d, the last is zero", length) << length << length - 1;
            }
        }
    }
}

void TstPackageChecksum::every_length_gives_the_checksum_step_by_step()
{
    QFETCH(int, length);
    QFETCH(int, zeroAt);
    QByteArray bytes(length, 'x');
    for (int i = 0; i < length; i += 1000)
        bytes[i] = char('a' + i / 1000 % 26);
    if (zeroAt >= 0)
        bytes[zeroAt] = '\0';
    const QString path = m_temp.path() + "/file";
    QVERIFY(writeFile(path, bytes));
    QCOMPARE(checksumOf(path, length), QString::fromLatin1(PackageBuilder::checksum(bytes, 0)));
}

void TstPackageChecksum::bytes_after_the_length_do_not_count()
{
    const QString path = m_temp.path() + "/file";
    QVERIFY(writeFile(path, QByteArray(5000, 'x') + "comment"));
    QCOMPARE(checksumOf(path, 5000), QString::fromLatin1(PackageBuilder::checksum(QByteArray(5000, 'x'), 0)));
}

void TstPackageChecksum::shorter_file_is_read_to_its_end()
{
    // As if truncated while it is read.
    const QString path = m_temp.path() + "/file";
    QVERIFY(writeFile(path, QByteArray(int(PackageChecksum::chunkSize), 'x')));
    QCOMPARE(checksumOf(path, 2 * PackageChecksum::chunkSize),
             QString::fromLatin1(PackageBuilder::checksum(readFile(path), 0)));
}

void TstPackageChecksum::empty_file_has_the_digest_of_nothing()
{
    const QString path = m_temp.path() + "/file";
    QVERIFY(writeFile(path, "x"));
    QCOMPARE(checksumOf(path, 0), QString("d41d8cd98f00b204e9800998ecf8427e"));
}

TEST_MAIN_CORE(TstPackageChecksum)
#include "tst_packagechecksum.moc"

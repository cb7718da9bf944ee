// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "filesystem.h"
#include "packagechecksum.h"
#include "packedpackage.h"

#include <support/packagebuilder.h>
#include <support/testmain.h>

#include <QCryptographicHash>
#include <QScopeGuard>
#include <QTextCodec>

#include <JlCompress.h>

#include <cstring>
#include <sys/mount.h>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using TestSupport::PackageBuilder;

namespace {

/// The checksum step by step, as it was always computed for packages: whole chunks are read, each taken as a string
/// that ends at its first zero byte.
QString literalChecksum(const QString &path, qint64 commentBytes)
{
    constexpr qint64 chunkSize = 0xA00000;
    // One byte longer than a chunk: a terminator for a chunk without a zero byte.
    std::unique_ptr<char[]> buffer(new char[chunkSize + 1]);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    qint64 remaining = file.size() - commentBytes;
    QByteArray accumulator;
    while (qMin(remaining, chunkSize) > 0) {
        const qint64 count = file.read(buffer.get(), qMin(remaining, chunkSize));
        if (count <= 0)
            break;
        remaining -= count;
        buffer[count] = '\0';
        accumulator +=
            QCryptographicHash::hash(QByteArray(buffer.get(), int(std::strlen(buffer.get()))), QCryptographicHash::Md5)
                .toHex();
    }
    return QString::fromLatin1(QCryptographicHash::hash(accumulator, QCryptographicHash::Md5).toHex());
}

} // namespace

/// Packing a directory, and the checksum of what was packed.
class TstZipPackageHandle : public QObject, protected PackedPackage
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // Packing
    void a_record_starts_empty();
    void a_packed_directory_carries_its_record();
    void the_record_has_three_sorted_keys();
    void names_and_comments_in_every_script_survive_data();
    void names_and_comments_in_every_script_survive();
    void any_operation_makes_utf8_the_locale_codec();
    void other_unpackers_accept_packages();
    void packing_replaces_an_older_package();
    void packing_a_missing_directory_creates_nothing();
    void packing_an_empty_directory_creates_nothing();
    void packing_onto_a_directory_fails();
    void packing_makes_the_folder_of_the_package();
    void save_commits_only_with_every_demanded_entry_data();
    void save_commits_only_with_every_demanded_entry();
    void save_keeps_a_concurrently_created_package();
    void save_creates_no_other_folder();
    void packing_onto_a_full_disk_changes_nothing();
    void a_full_disk_anywhere_keeps_the_old_package_data();
    void a_full_disk_anywhere_keeps_the_old_package();
    void packing_an_outward_link_keeps_the_old_package();
    void an_unreadable_comment_keeps_the_old_package();
    void packages_around_a_chunks_multiple_are_valid_data();
    void packages_around_a_chunks_multiple_are_valid();

    // Checksum
    void the_checksum_is_the_literal_one_data();
    void the_checksum_is_the_literal_one();
    void foreign_packages_have_the_literal_checksum();
    void two_small_packages_have_the_same_checksum();
    void an_unopenable_file_has_no_checksum();

    // What hosts call
    void compress_dir_keeps_its_results();
    void extract_dir_keeps_its_results();
    void extract_dir_writes_nothing_outside();
    void write_text_checksum_stores_a_digest_as_comment();
};

// ---------------------------------------------------------------------------------------------------------------------
// Packing

void TstZipPackageHandle::a_record_starts_empty()
{
    const EngineerPacketInfo info;
    QVERIFY(info.strFilePath.isEmpty() && info.strProjectName.isEmpty());
    QVERIFY(info.strComment.isEmpty() && info.strChecksum.isEmpty());
}

void TstZipPackageHandle::a_packed_directory_carries_its_record()
{
    const EngineerPacketInfo written = packed("Show", "opening night");
    QVERIFY(QRegularExpression("^[0-9a-f]{32}$").match(written.strChecksum).hasMatch());
    verifyNoFragment();

    EngineerPacketInfo read;
    read.strFilePath = m_package;
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(read));
    QCOMPARE(read.strProjectName, QString("Show"));
    QCOMPARE(read.strComment, QString("opening night"));
    QCOMPARE(read.strChecksum, written.strChecksum);
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(m_package));
    QVERIFY(ZipPackageHandle::checkPacketChecksum(m_package));
    QVERIFY(ZipPackageHandle::getFileList(m_package).contains("BKG/BKG_0.png"));
}

void TstZipPackageHandle::the_record_has_three_sorted_keys()
{
    const EngineerPacketInfo info = packed("Name", "Text");
    QCOMPARE(rawComment(m_package), "{\n    \"Checksum\": \"" + info.strChecksum.toLatin1() +
                                        "\",\n    \"comment\": \"Text\",\n    \"projectName\": \"Name\"\n}\n");
}

void TstZipPackageHandle::names_and_comments_in_every_script_survive_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("Chinese") << QString::fromUtf8("项目文件 备注");
    QTest::newRow("emoji") << QString::fromUtf8("🎬🎉👩‍👩‍👧");
    QTest::newRow("quotes and lines") << QString("\"a\\b\"\n\t{}");
    QTest::newRow("signature of the end record") << QString("PK\x05\x06");
    QTest::newRow("empty") << QString("");
}

void TstZipPackageHandle::names_and_comments_in_every_script_survive()
{
    QFETCH(QString, text);
    packed(text, text);
    EngineerPacketInfo info;
    info.strFilePath = m_package;
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, text);
    QCOMPARE(info.strComment, text);
    QCOMPARE(QString::fromUtf8(rawComment(m_package)), ZipPackageHandle::getZipComment(m_package));
    QVERIFY(ZipPackageHandle::getFileList(m_package).contains(QString::fromUtf8("设备/图片.txt")));
}

void TstZipPackageHandle::any_operation_makes_utf8_the_locale_codec()
{
    packed();
    EngineerPacketInfo info;
    info.strFilePath = m_package;
    const QVector<std::function<void()>> operations{
        [&] { ZipPackageHandle::getZipComment(m_package); },
        [&] { ZipPackageHandle::getZipComment("missing"); },
        [&] { ZipPackageHandle::setZipComment("missing", "x"); },
        [&] { ZipPackageHandle::writeTextChecksum("missing"); },
        [&] { ZipPackageHandle::setZipComment(m_package, "x"); },
        [&] { ZipPackageHandle::parseEngineerInfo(info, "{}"); },
        [&] { ZipPackageHandle::checkPacketChecksum("missing"); },
        [&] { ZipPackageHandle::compressEngineerPacket("missing", info); },
        [&] { ZipPackageHandle::calcPacketChecksum(m_package); },
    };
    const auto restore = qScopeGuard([] { QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8")); });
    for (const auto &operation : operations) {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
        operation();
        QCOMPARE(QTextCodec::codecForLocale()->name(), QByteArray("UTF-8"));
    }
}

void TstZipPackageHandle::other_unpackers_accept_packages()
{
    packed(QString::fromUtf8("项目 🎬"), "x");
    QCOMPARE(complaints(m_package), QString());
}

void TstZipPackageHandle::packing_replaces_an_older_package()
{
    packed("old", "a long comment that is longer than the new one");
    QVERIFY(QDir(m_device).removeRecursively());
    QVERIFY(writeFile(m_device + "/only.json", "{}"));
    packed("new", "short");
    QCOMPARE(ZipPackageHandle::getFileList(m_package), QStringList{"only.json"});
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(m_package));
    verifyNoFragment();
}

void TstZipPackageHandle::packing_a_missing_directory_creates_nothing()
{
    EngineerPacketInfo info;
    info.strFilePath = m_temp->path() + "/new/Project1.corvelpro";
    QVERIFY(!ZipPackageHandle::compressEngineerPacket(m_temp->path() + "/missing", info));
    QVERIFY(!QFileInfo::exists(m_temp->path() + "/new"));
}

void TstZipPackageHandle::packing_an_empty_directory_creates_nothing()
{
    EngineerPacketInfo info;
    info.strFilePath = m_package;
    QVERIFY(QDir().mkpath(m_temp->path() + "/empty"));
    QVERIFY(!ZipPackageHandle::compressEngineerPacket(m_temp->path() + "/empty", info));
    QCOMPARE(contents(m_folder), QStringList());
}

void TstZipPackageHandle::packing_onto_a_directory_fails()
{
    QVERIFY(writeFile(m_package + "/Project1.corvelpro", "kept"));
    EngineerPacketInfo info;
    info.strFilePath = m_package;
    QVERIFY(!ZipPackageHandle::compressEngineerPacket(m_device, info));
    QCOMPARE(contents(m_folder), (QStringList{"Project1.corvelpro", "Project1.corvelpro/Project1.corvelpro"}));
}

void TstZipPackageHandle::packing_makes_the_folder_of_the_package()
{
    m_package = m_folder + "/with/separators.corvelpro";
    packed();
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(m_package));
}

void TstZipPackageHandle::save_commits_only_with_every_demanded_entry_data()
{
    using Entries = QHash<QString, qint64>;
    QTest::addColumn<Entries>("entries");
    QTest::addColumn<QString>("missing");
    QTest::newRow("nothing") << Entries() << QString();
    QTest::newRow("present, of that size")
        << Entries{{"BKG/BKG_0.png", 5000}, {"Preset/10.RPst", 0}, {"Preset/1.RPst", 64}} << QString();
    QTest::newRow("missing") << Entries{{"BKG/BKG_0.png", 5000}, {"LOGO/LOGO_0.png", 10}} << "LOGO/LOGO_0.png";
    QTest::newRow("smaller") << Entries{{"BKG/BKG_0.png", 5001}} << "BKG/BKG_0.png";
    QTest::newRow("larger") << Entries{{"Preset/1.RPst", 63}} << "Preset/1.RPst";
}

void TstZipPackageHandle::save_commits_only_with_every_demanded_entry()
{
    using Entries = QHash<QString, qint64>;
    QFETCH(Entries, entries);
    QFETCH(QString, missing);
    QVERIFY(writeFile(m_package, "old"));
    const FileSystem::FileIdentity previous(m_package);
    EngineerPacketInfo info;
    info.strFilePath = m_package;
    QString reason;
    QCOMPARE(ZipPackageHandle::compressEngineerPacket(m_device, info, {entries, previous}, &reason), missing.isEmpty());
    QCOMPARE(ZipPackageHandle::isValidEngineerPacket(m_package), missing.isEmpty());
    QVERIFY(missing.isEmpty() || readFile(m_package) == "old");
    QVERIFY2(missing.isEmpty() ? reason.isEmpty() : reason.startsWith(missing + ' '), qPrintable(reason));
    QCOMPARE(contents(QFileInfo(m_package).absolutePath()).filter(".part"), QStringList());
}

void TstZipPackageHandle::save_keeps_a_concurrently_created_package()
{
    const FileSystem::FileIdentity nothing(m_package);
    QVERIFY(writeFile(m_package, "came meanwhile"));
    EngineerPacketInfo info;
    info.strFilePath = m_package;
    QString reason;
    QVERIFY(!ZipPackageHandle::compressEngineerPacket(m_device, info, {{}, nothing}, &reason));
    QCOMPARE(readFile(m_package), QByteArray("came meanwhile"));
    QVERIFY2(reason.contains("another file is at"), qPrintable(reason));
    QCOMPARE(contents(QFileInfo(m_package).absolutePath()).filter(".part"), QStringList());
}

void TstZipPackageHandle::save_creates_no_other_folder()
{
    EngineerPacketInfo info;
    info.strFilePath = m_temp->path() + "/missing/show.corvelpro";
    const FileSystem::FileIdentity nothing(info.strFilePath);
    QString reason;
    QVERIFY(!ZipPackageHandle::compressEngineerPacket(m_device, info, {{}, nothing}, &reason));
    QVERIFY(!QFile::exists(m_temp->path() + "/missing"));
    QVERIFY2(reason.contains("show.corvelpro: No such file or directory"), qPrintable(reason));
}

void TstZipPackageHandle::packing_onto_a_full_disk_changes_nothing()
{
    packed();
    const QByteArray old = readFile(m_package);
    EngineerPacketInfo info;
    info.strFilePath = m_package;
    info.strComment = QString(200, 'x');
    // From nothing to one byte less than needed: in the entries, the directory, the record.
    const qint64 needed = old.size() - QString("20240229_101530Project1").size() + 200;
    for (qint64 limit : {qint64(0), qint64(1000), needed - 300, needed - 250, needed - 1}) {
        {
            const FullDisk disk(limit);
            QVERIFY2(!ZipPackageHandle::compressEngineerPacket(m_device, info), qPrintable(QString::number(limit)));
        }
        QVERIFY(readFile(m_package) == old);
        verifyNoFragment();
    }
    const FullDisk disk(needed);
    QVERIFY(ZipPackageHandle::compressEngineerPacket(m_device, info));
}

void TstZipPackageHandle::a_full_disk_anywhere_keeps_the_old_package_data()
{
    QTest::addColumn<bool>("isMounted");
    QTest::newRow("files may not become larger") << false;
    QTest::newRow("a file system of that size") << true;
}

void TstZipPackageHandle::a_full_disk_anywhere_keeps_the_old_package()
{
    QFETCH(bool, isMounted);
    constexpr int blockSize = 4096;
    packed();
    const QByteArray old = readFile(m_package);
    // More than are in progress at once.
    QVERIFY(writeFile(m_device + "/BKG/BKG_5.png", noise(5 * MiB / 4)));
    QVERIFY(writeFile(m_device + "/deflated.bin", noise(MiB / 4)));
    m_folder = m_temp->path() + "/small";
    QVERIFY(QDir().mkpath(m_folder));
    const auto sizeOption = [](int blocks) { return "size=" + QByteArray::number(blocks * blockSize); };
    const int oldBlocks = old.size() / blockSize + 2;
    if (isMounted && mount("tmpfs", QFile::encodeName(m_folder), "tmpfs", 0, sizeOption(oldBlocks)) != 0)
        QSKIP("Only an administrator may mount a file system.");
    const auto unmount = qScopeGuard([&] {
        if (isMounted)
            umount(QFile::encodeName(m_folder));
    });
    m_package = m_folder + "/Project1.corvelpro";
    QVERIFY(writeFile(m_package, old));
    bool isSaved = false;
    int blocks = 0;
    for (; !isSaved; ++blocks) {
        EngineerPacketInfo info;
        info.strFilePath = m_package;
        {
            const FullDisk limited(isMounted ? 100 * MiB : qint64(blocks) * blockSize);
            if (isMounted)
                QCOMPARE(
                    mount("tmpfs", QFile::encodeName(m_folder), "tmpfs", MS_REMOUNT, sizeOption(oldBlocks + blocks)),
                    0);
            isSaved = ZipPackageHandle::compressEngineerPacket(m_device, info);
        }
        QVERIFY(isSaved || readFile(m_package) == old);
        verifyNoFragment();
    }
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(m_package));
    const qint64 neededBlocks = QFileInfo(m_package).size() / blockSize;
    QVERIFY2(blocks > neededBlocks && blocks < neededBlocks + 4, qPrintable(QString::number(blocks)));
}

void TstZipPackageHandle::packing_an_outward_link_keeps_the_old_package()
{
    packed();
    const QByteArray old = readFile(m_package);
    QVERIFY(QFile::link("/etc/passwd", m_device + "/link"));
    EngineerPacketInfo info;
    info.strFilePath = m_package;
    QVERIFY(!ZipPackageHandle::compressEngineerPacket(m_device, info));
    QVERIFY(readFile(m_package) == old);
    verifyNoFragment();
}

void TstZipPackageHandle::an_unreadable_comment_keeps_the_old_package()
{
    packed();
    const QByteArray old = readFile(m_package);
    EngineerPacketInfo info;
    info.strFilePath = m_package;
    info.strComment = QString(70000, 'x');
    QVERIFY(!ZipPackageHandle::compressEngineerPacket(m_device, info));
    QVERIFY(readFile(m_package) == old);
    verifyNoFragment();
}

void TstZipPackageHandle::packages_around_a_chunks_multiple_are_valid_data()
{
    QTest::addColumn<int>("chunks");
    QTest::addColumn<int>("excess");
    for (int excess = -1; excess <= 7; ++excess)
        QTest::addRow("1 chunk %+d", excess) << 1 << excess;
    QTest::addRow("2 chunks +2") << 2 << 2;
}

void TstZipPackageHandle::packages_around_a_chunks_multiple_are_valid()
{
    QFETCH(int, chunks);
    QFETCH(int, excess);
    QVERIFY(QDir(m_device).removeRecursively());
    QVERIFY(writeFile(m_device + "/a.png", noise(1000)));
    QCOMPARE(ZipPackageHandle().compressDir(m_device, m_package, true), 0);
    const qint64 overhead = QFileInfo(m_package).size() - 1000;
    QVERIFY(writeFile(m_device + "/a.png", noise(chunks * PackageChecksum::chunkSize + excess - overhead)));

    packed("Project1", QString(300, 'x'));
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(m_package));
    // Its comment may take any length later.
    for (const QString &comment : {QString(), QString(1, 'x'), QString(0xFF, 'x'), QString(5000, 'x')}) {
        EngineerPacketInfo info;
        info.strFilePath = m_package;
        QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
        QVERIFY(ZipPackageHandle::setZipComment(
            m_package, jsonRecord({{"Checksum", info.strChecksum}, {"projectName", "n"}, {"comment", comment}})));
        QVERIFY(ZipPackageHandle::isValidEngineerPacket(m_package));
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Checksum

void TstZipPackageHandle::the_checksum_is_the_literal_one_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QString>("content");
    const qint64 chunk = PackageChecksum::chunkSize;
    for (qint64 size : {qint64(100), chunk - 200, chunk, chunk + 1, 2 * chunk, 3 * chunk + 12345}) {
        QTest::addRow("noise %lld", size) << size << "noise";
        QTest::addRow("without zero bytes %lld", size) << size << "nonzero";
        QTest::addRow("zeros %lld", size) << size << "zeros";
        QTest::addRow("late zero bytes %lld", size) << size << "late";
    }
}

void TstZipPackageHandle::the_checksum_is_the_literal_one()
{
    QFETCH(qint64, size);
    QFETCH(QString, content);
    QByteArray bytes(int(size), content == "zeros" ? '\0' : 'x');
    if (content == "noise") {
        bytes = noise(size);
    } else if (content == "late") {
        // After the first, the small and the large reading steps, and as a chunk's last byte.
        for (qint64 at : {qint64(4095), PackageChecksum::chunkSize + 4096, 2 * PackageChecksum::chunkSize - 1,
                          2 * PackageChecksum::chunkSize + 3000000}) {
            if (at < size)
                bytes[int(at)] = '\0';
        }
    }
    const QByteArray record = "{\"comment\": \"\xE9\xA1\xB9\"}";
    QVERIFY(PackageBuilder().file("a.png", bytes, PackageBuilder::Stored).archiveComment(record).write(m_package));
    const QString expected = literalChecksum(m_package, record.size());
    QCOMPARE(ZipPackageHandle::calcPacketChecksum(m_package), expected);
    QCOMPARE(QString::fromLatin1(PackageBuilder::checksum(readFile(m_package), record.size())), expected);

    // The same bytes in a file that is no zip: here the first chunk, too, may lack a zero byte.
    const QString raw = m_temp->path() + "/raw";
    QVERIFY(writeFile(raw, bytes));
    QFile file(raw);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(PackageChecksum::ofLeadingBytes(file, size), literalChecksum(raw, 0));
    QCOMPARE(PackageChecksum::ofLeadingBytes(file, size - 50), literalChecksum(raw, 50));
}

void TstZipPackageHandle::foreign_packages_have_the_literal_checksum()
{
    QVERIFY(writeFile(m_device + "/large.png", noise(12 * MiB)));
    const QString withPython = m_folder + "/python.corvelpro";
    const Run python = runPython("import sys, zipfile, os\n"
                                 "with zipfile.ZipFile(sys.argv[1], 'w', zipfile.ZIP_STORED) as z:\n"
                                 "    z.write(sys.argv[2] + '/large.png', 'BKG/BKG_1.png')\n"
                                 "    z.writestr('device.json', '{}')\n",
                                 {withPython, m_device});
    QVERIFY2(python.exitCode == 0, python.errors);
    const QString withZip = m_folder + "/infozip.corvelpro";
    QCOMPARE(run("zip", {"-q", "-r", withZip + ".zip", "."}, m_device).exitCode, 0);
    QVERIFY(QFile::rename(withZip + ".zip", withZip));

    for (const QString &path : {withPython, withZip}) {
        const QString checksum = ZipPackageHandle::calcPacketChecksum(path);
        QCOMPARE(checksum, literalChecksum(path, 0));
        QVERIFY(ZipPackageHandle::setZipComment(
            path, jsonRecord({{"Checksum", checksum}, {"projectName", "n"}, {"comment", "c"}})));
        QVERIFY(ZipPackageHandle::isValidEngineerPacket(path));
        QVERIFY(ZipPackageHandle::checkPacketChecksum(path));
        QCOMPARE(complaints(path), QString());
    }
}

void TstZipPackageHandle::two_small_packages_have_the_same_checksum()
{
    const QString first = packed().strChecksum;
    QVERIFY(writeFile(m_device + "/more.bin", noise(100000)));
    QCOMPARE(packed().strChecksum, first);
}

void TstZipPackageHandle::an_unopenable_file_has_no_checksum()
{
    QVERIFY(writeFile(m_package, "text"));
    QCOMPARE(ZipPackageHandle::calcPacketChecksum(m_package), QString());
    QCOMPARE(ZipPackageHandle::calcPacketChecksum(m_folder + "/missing.corvelpro"), QString());
}

// ---------------------------------------------------------------------------------------------------------------------
// What hosts call

void TstZipPackageHandle::compress_dir_keeps_its_results()
{
    ZipPackageHandle handle;
    QCOMPARE(handle.compressDir(m_temp->path() + "/missing", m_package, true), 2);
    QCOMPARE(handle.compressDir(m_device, m_package, false), 1);
    QCOMPARE(contents(m_folder), QStringList());
    QVERIFY(writeFile(m_package, "old"));
    QCOMPARE(handle.compressDir(m_device, m_package, false), 1);
    QCOMPARE(readFile(m_package), QByteArray("old"));
    QCOMPARE(handle.compressDir(m_device, m_package, true), 0);
    QVERIFY(ZipPackageHandle::getFileList(m_package).contains("BKG/BKG_0.png"));
    QCOMPARE(handle.compressDir(m_device, m_device, true), 1);
}

void TstZipPackageHandle::extract_dir_keeps_its_results()
{
    ZipPackageHandle handle;
    const QString out = m_temp->path() + "/out";
    QCOMPARE(handle.extractDir(m_package, out, true), 2);
    packed();
    QCOMPARE(handle.extractDir(m_package, out, false), 0);
    QCOMPARE(contents(out), contents(m_device));
    QCOMPARE(handle.extractDir(m_package, out, false), 1);
    QCOMPARE(handle.extractDir(m_package, out, true), 0);
    QVERIFY(QFileInfo::exists(m_package));
    QVERIFY(writeFile(m_package, "text"));
    QCOMPARE(handle.extractDir(m_package, out, true), 3);
}

void TstZipPackageHandle::extract_dir_writes_nothing_outside()
{
    QVERIFY(PackageBuilder().file("good.txt", "x").file("../bad.txt", "x").write(m_package));
    QCOMPARE(ZipPackageHandle().extractDir(m_package, m_temp->path() + "/out", true), 3);
    QVERIFY(!QFileInfo::exists(m_temp->path() + "/bad.txt"));
    QVERIFY(!QFileInfo::exists(m_temp->path() + "/out/good.txt"));
}

void TstZipPackageHandle::write_text_checksum_stores_a_digest_as_comment()
{
    const QByteArray bytes = PackageBuilder().file("a.txt", "plain text", PackageBuilder::Stored).build();
    QVERIFY(writeFile(m_package, bytes));
    QVERIFY(ZipPackageHandle::writeTextChecksum(m_package));
    const QByteArray text = QString::fromUtf8(bytes.constData(), bytes.size()).toLatin1();
    QCOMPARE(ZipPackageHandle::getZipComment(m_package),
             QString::fromLatin1(QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex()));
    QVERIFY(!ZipPackageHandle::writeTextChecksum(m_folder + "/missing.corvelpro"));
    QVERIFY(!ZipPackageHandle::writeTextChecksum(m_folder + "/missing.zip"));
    QVERIFY(writeFile(m_package, "text"));
    QVERIFY(!ZipPackageHandle::writeTextChecksum(m_package));
}

TEST_MAIN_CORE(TstZipPackageHandle)
#include "tst_zippackagehandle.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagereader.h"
#include "packagetesting.h"
#include "zippackagehandle.h"

#include <data/ziparchive.h>
#include <support/freespace.h>
#include <support/packagebuilder.h>
#include <support/testmain.h>

#include <QScopeGuard>
#include <QTemporaryDir>

#include <JlCompress.h>

#include <algorithm>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;

Q_DECLARE_METATYPE(TestSupport::PackageBuilder)

class TstPackageReader : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void non_archive_is_not_opened();
    void a_comment_ends_at_its_first_zero_byte_data();
    void a_comment_ends_at_its_first_zero_byte();
    void impossible_archives_are_not_listed_data();
    void impossible_archives_are_not_listed();
    void damaged_directory_cannot_be_listed();
    void the_list_is_that_of_the_archiver();
    void every_entry_comes_out_whole_in_any_order();
    void paths_are_returned_as_the_archiver_returns_them();
    void contents_larger_than_the_archive_are_not_listed();
    void a_link_before_the_destination_is_followed();
    void missing_entry_reads_as_null();
    void reading_an_entry_gives_what_extracting_it_writes();
    void reading_refuses_what_extracting_refuses();
    void packed_content_lies_where_the_archive_says();
    void packed_content_needs_a_readable_entry();
    void a_name_longer_than_256_bytes_is_extracted();
    void first_of_two_equal_entry_names_counts();
    void first_of_two_aliased_entries_counts();
    void extracting_keeps_non_utf8_names_distinct();
    void the_longest_name_is_listed_whole();
    void entry_list_broken_halfway_counts_as_empty();
    void entry_without_destination_keeps_its_name();
    void files_around_the_block_size_are_extracted_whole();

    void json_entries_match_in_any_case();
    void json_extraction_needs_an_existing_corvelpro_file();
    void unextractable_json_entry_yields_an_empty_path();

    void a_name_that_could_lead_outside_is_refused_data();
    void a_name_that_could_lead_outside_is_refused();
    void backslash_in_a_name_is_an_ordinary_character();
    void a_name_that_only_looks_odd_is_extracted_data();
    void a_name_that_only_looks_odd_is_extracted();
    void foreign_entry_attributes_are_ignored_data();
    void foreign_entry_attributes_are_ignored();
    void non_file_entry_is_refused_data();
    void non_file_entry_is_refused();
    void a_destination_through_a_link_is_refused();
    void the_callers_own_folder_may_be_a_link();
    void callers_folder_is_rechecked_for_archive_entries();
    void a_destination_that_is_a_link_is_refused();
    void packaged_link_is_never_followed();

    void a_damaged_entry_leaves_the_previous_file_data();
    void a_damaged_entry_leaves_the_previous_file();
    void a_full_disk_leaves_the_previous_file();
    void read_only_previous_file_is_replaced();
    void files_get_the_default_permissions();
    void a_description_above_its_limit_is_refused();
    void content_above_the_claimed_size_is_refused();
    void oversized_entry_does_not_create_its_folder();
    void descriptions_have_64_mib_together();
    void content_above_the_free_space_is_refused();
    void small_content_is_written_regardless_of_free_space();

private:
    void write(const PackageBuilder &builder) { QVERIFY(builder.write(m_package)); }
    QString destination(const QString &name) const { return m_out + '/' + name; }

    QScopedPointer<QTemporaryDir> m_temp;
    QString m_package;
    QString m_out;
};

void TstPackageReader::init()
{
    m_temp.reset(new QTemporaryDir);
    QVERIFY(m_temp->isValid());
    m_package = m_temp->path() + "/package.corvelpro";
    m_out = m_temp->path() + "/out/deep";
    QVERIFY(QDir().mkpath(m_out));
}

void TstPackageReader::cleanup()
{
    m_temp.reset();
}

void TstPackageReader::non_archive_is_not_opened()
{
    for (const QByteArray &bytes : {QByteArray(), QByteArray("text"), QByteArray(70000, '\0')}) {
        QVERIFY(writeFile(m_package, bytes));
        PackageReader reader(m_package);
        QVERIFY(!reader.isOpen());
        QCOMPARE(reader.fileList(), QStringList());
        QCOMPARE(reader.archiveComment(), QString());
        QCOMPARE(reader.extractFile("a.txt", destination("a.txt")), QString());
        QCOMPARE(reader.extractJsonFiles(m_out), QStringList());
    }
    QVERIFY(!PackageReader(m_temp->path() + "/missing").isOpen());
    QVERIFY(!QFileInfo::exists(m_temp->path() + "/missing"));
}

void TstPackageReader::a_comment_ends_at_its_first_zero_byte_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<bool>("isReadable");
    constexpr int utf8Names = 0x800;
    QTest::newRow("names of any encoding") << 0 << true;
    QTest::newRow("names in UTF-8") << utf8Names << true;
    QTest::newRow("no first entry") << 0 << false;
}

void TstPackageReader::a_comment_ends_at_its_first_zero_byte()
{
    QFETCH(int, flags);
    QFETCH(bool, isReadable);
    QByteArray archive = PackageBuilder()
                             .file("x.txt", "content")
                             .claimFlags(quint16(flags))
                             .archiveComment(QByteArray("first\0second", 12))
                             .build();
    if (!isReadable)
        archive.replace("PK\1\2", "none");
    QVERIFY(writeFile(m_package, archive));
    // If the choice is left to chance, it varies from run to run.
    for (int time = 0; time < 10; ++time)
        QCOMPARE(PackageReader(m_package).archiveComment(), QStringLiteral("first"));
}

void TstPackageReader::impossible_archives_are_not_listed_data()
{
    QTest::addColumn<PackageBuilder>("archive");
    QTest::addColumn<int>("listed");
    const auto withNames = [](int length) {
        PackageBuilder builder;
        for (int number = 0; length > 0; ++number, length -= 65535)
            builder.file(QByteArray::number(number).rightJustified(qMin(length, 65535), 'x'), QByteArray());
        return builder;
    };
    QTest::newRow("names of 16 MiB") << withNames(int(16 * MiB)) << 257;
    QTest::newRow("names above 16 MiB") << withNames(int(16 * MiB) + 1) << 0;

    constexpr quint32 GiB = 1024 * MiB;
    PackageBuilder builder;
    for (const char *name : {"1", "2", "3", "4"})
        builder.file(name, "content").claimSize(GiB);
    QTest::newRow("contents of 4 GiB") << builder << 4;
    QTest::newRow("contents above 4 GiB") << builder.file("5", "content").claimSize(1) << 0;
}

void TstPackageReader::impossible_archives_are_not_listed()
{
    QFETCH(PackageBuilder, archive);
    QFETCH(int, listed);
    write(archive);
    QCOMPARE(PackageReader(m_package).fileList().size(), listed);
    QCOMPARE(PackageReader(m_package).isListable(), listed > 0);
}

void TstPackageReader::damaged_directory_cannot_be_listed()
{
    QString reason;
    QByteArray archive = PackageBuilder().file("x.txt", "content").record("x", "").build();
    archive.replace("PK\1\2", "none");
    QVERIFY(writeFile(m_package, archive));
    QVERIFY(!PackageReader(m_package).isListable(&reason));
    QCOMPARE(reason, m_package + ": its directory is damaged");
    QVERIFY(writeFile(m_package, "text"));
    QVERIFY(!PackageReader(m_package).isListable(&reason));
    QVERIFY2(reason.contains("not a zip archive"), qPrintable(reason));
}

void TstPackageReader::the_list_is_that_of_the_archiver()
{
    QVERIFY(makeDeviceTree(m_temp->path() + "/device"));
    QCOMPARE(run("zip", {"-q", "-r", m_package, "."}, m_temp->path() + "/device").exitCode, 0);
    const QStringList names = PackageReader(m_package).fileList();
    QVERIFY(names.size() > 10);
    QCOMPARE(names, JlCompress::getFileList(m_package));
}

void TstPackageReader::every_entry_comes_out_whole_in_any_order()
{
    const QString device = m_temp->path() + "/device";
    QVERIFY(makeDeviceTree(device) && writeFile(device + "/large.bin", noise(3 * MiB)));
    QCOMPARE(ZipPackageHandle().compressDir(device, m_package, true), 0);
    PackageReader reader(m_package);
    QStringList names = reader.fileList();
    for (int turn = 0; turn < 2; ++turn) {
        for (const QString &name : qAsConst(names))
            QVERIFY2(!reader.extractFile(name, destination(name)).isEmpty(), qPrintable(name));
        QCOMPARE(contents(m_out), contents(device));
        for (const QString &name : qAsConst(names))
            QVERIFY(readFile(destination(name)) == readFile(device + '/' + name));
        std::reverse(names.begin(), names.end());
        QVERIFY(QDir(m_out).removeRecursively());
    }
}

void TstPackageReader::paths_are_returned_as_the_archiver_returns_them()
{
    write(PackageBuilder().folder("A").file("A/b.txt", "b"));
    for (const QString &name : {QString("A/"), QString("A/b.txt")}) {
        const QString expected = JlCompress::extractFile(m_package, name, m_temp->path() + "//plain/" + name);
        QVERIFY(!expected.isEmpty());
        QCOMPARE(ZipPackageHandle::extractFile(m_package, name, m_temp->path() + "//ours/" + name),
                 QString(expected).replace("plain", "ours"));
    }
    const QString current = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_out));
    QCOMPARE(PackageReader(m_package).extractFile("A/b.txt", QString()), destination("A/b.txt"));
    QVERIFY(QDir::setCurrent(current));
}

void TstPackageReader::contents_larger_than_the_archive_are_not_listed()
{
    TestData::ZipArchive archive(PackageBuilder().file("a", noise(100)).file("b", noise(100)).build());
    // The packed sizes, as if both entries had the same content.
    const int packedSize = 20;
    const quint32 rest = quint32(archive.bytes.size()) - archive.get32(archive.central(1) + packedSize);
    archive.set32(archive.central(0) + packedSize, rest);
    QVERIFY(writeFile(m_package, archive.bytes));
    QCOMPARE(PackageReader(m_package).fileList(), QStringList({"a", "b"}));
    archive.set32(archive.central(0) + packedSize, rest + 1);
    QVERIFY(writeFile(m_package, archive.bytes));
    QCOMPARE(PackageReader(m_package).fileList(), QStringList());
}

void TstPackageReader::a_link_before_the_destination_is_followed()
{
    QVERIFY(PackageBuilder().file("a/b/c/file", "content").write(m_package));
    const QString folder = QFileInfo(m_package).absolutePath();
    QVERIFY(QDir().mkpath(folder + "/behind") && QFile::link(folder + "/behind", folder + "/link"));
    PackageReader package(m_package);
    QVERIFY(!package.extractFile("a/b/c/file", folder + "/link/x").isEmpty());
    QCOMPARE(readFile(folder + "/behind/x"), QByteArray("content"));
}

void TstPackageReader::missing_entry_reads_as_null()
{
    write(PackageBuilder().file("a.txt", "a"));
    PackageReader reader(m_package);
    QCOMPARE(reader.extractFile("b.txt", destination("b.txt")), QString());
    QCOMPARE(reader.extractFile("A.TXT", destination("A.TXT")), QString());
    QCOMPARE(reader.entrySize("a.txt"), qint64(1));
    QCOMPARE(reader.entrySize("b.txt"), qint64(-1));
    QCOMPARE(reader.extractFile("", destination("x")), QString());
    QCOMPARE(reader.extractFile("a.txt", destination("folder/")), QString());
    QCOMPARE(contents(m_out), QStringList());
}

void TstPackageReader::reading_an_entry_gives_what_extracting_it_writes()
{
    const QByteArray large = noise(3 * MiB);
    write(PackageBuilder().file("a.txt", large).file("b.txt", large, PackageBuilder::Stored).file("c.txt", "c"));
    PackageReader reader(m_package);
    for (const QString &name : {QStringLiteral("c.txt"), QStringLiteral("b.txt"), QStringLiteral("a.txt")}) {
        const QByteArray content = reader.read(name, 3 * MiB);
        QVERIFY(!reader.extractFile(name, destination(name)).isEmpty());
        QCOMPARE(content, readFile(destination(name)));
    }
    QCOMPARE(reader.read("a.txt", 3 * MiB - 1), QByteArray());
}

void TstPackageReader::reading_refuses_what_extracting_refuses()
{
    write(PackageBuilder()
              .file("../up.txt", "bad")
              .file("damaged.txt", "bad")
              .claimCrc(1)
              .file("longer.txt", "bad", PackageBuilder::Stored)
              .claimSize(2)
              .symbolicLink("link.txt", "bad")
              .file("good.txt", "good"));
    PackageReader reader(m_package);
    QCOMPARE(reader.fileList().size(), 5);
    for (const char *name : {"../up.txt", "damaged.txt", "longer.txt", "link.txt", "missing.txt", ""})
        QCOMPARE(reader.read(name, MiB), QByteArray());
    QCOMPARE(reader.read("good.txt", MiB), QByteArray("good"));
    QCOMPARE(PackageReader(m_out).read("good.txt", MiB), QByteArray());
}

void TstPackageReader::packed_content_lies_where_the_archive_says()
{
    const QByteArray packed = "packed ";
    const TestData::ZipArchive archive(
        PackageBuilder().file("a.txt", packed.repeated(100)).file("b.txt", "stored", PackageBuilder::Stored).build());
    // Bytes in front count as well.
    const QByteArray front = "front";
    QVERIFY(writeFile(m_package, front + archive.bytes));
    PackageReader reader(m_package);
    const auto stored = reader.packedContent("b.txt");
    QVERIFY(stored.has_value());
    QCOMPARE(stored->nOffset, qint64(front.size() + archive.lastContent()));
    QCOMPARE(int(stored->nMethod), int(PackageBuilder::Stored));
    QCOMPARE(stored->nCrc, PackageBuilder::crc32("stored"));
    QCOMPARE(stored->nPackedSize, 6);
    QCOMPARE(stored->nSize, 6);
    QVERIFY(reader.file().seek(stored->nOffset));
    QCOMPARE(reader.file().read(6), QByteArray("stored"));
    const auto deflated = reader.packedContent("a.txt");
    QVERIFY(deflated.has_value());
    QCOMPARE(int(deflated->nMethod), int(PackageBuilder::Deflated));
    QCOMPARE(deflated->nPackedSize, qint64(archive.get32(archive.central(0) + 20)));
    QCOMPARE(deflated->nSize, 700);
    // The position of the file does not matter.
    QCOMPARE(reader.read("a.txt", MiB), packed.repeated(100));
}

void TstPackageReader::packed_content_needs_a_readable_entry()
{
    TestData::ZipArchive archive(PackageBuilder()
                                     .file("../up.txt", "bad")
                                     .symbolicLink("link.txt", "bad")
                                     .file("hidden.txt", "bad")
                                     .claimFlags(1)
                                     .file("good.txt", "good")
                                     .file("headless.txt", "bad")
                                     .build());
    archive.set16(archive.lastLocal(), 0);
    QVERIFY(writeFile(m_package, archive.bytes));
    PackageReader reader(m_package);
    QCOMPARE(reader.fileList().size(), 5);
    for (const char *name : {"../up.txt", "link.txt", "hidden.txt", "headless.txt", "missing.txt"})
        QVERIFY2(!reader.packedContent(name), name);
    QVERIFY(reader.packedContent("good.txt").has_value());
    QVERIFY(!PackageReader(m_out).packedContent("good.txt"));
    QVERIFY(!PackageReader(m_out).file().isOpen());
}

void TstPackageReader::a_name_longer_than_256_bytes_is_extracted()
{
    const QByteArray name = QByteArray("long").repeated(30) + '/' + QByteArray("name").repeated(30) + '/' +
                            QByteArray("path").repeated(30) + ".txt";
    write(PackageBuilder().file("before.txt", "x").file(name, "deep"));
    QVERIFY(!PackageReader(m_package).extractFile(name, destination(name)).isEmpty());
    QCOMPARE(readFile(destination(name)), QByteArray("deep"));
}

void TstPackageReader::first_of_two_equal_entry_names_counts()
{
    write(PackageBuilder().file("a.txt", "first").file("a.txt", "second"));
    QVERIFY(!PackageReader(m_package).extractFile("a.txt", destination("a.txt")).isEmpty());
    QCOMPARE(readFile(destination("a.txt")), QByteArray("first"));
}

void TstPackageReader::first_of_two_aliased_entries_counts()
{
    write(PackageBuilder()
              .folder("BKG")
              .file("BKG/./x.png", "first")
              .file("BKG//x.png", "second")
              .file("BKG/x.png", "third")
              .folder("./BKG/")
              .file("BKG/X.png", "another")
              .file("a.json", "1")
              .file("./a.json", "2")
              .file("a.json", "3"));
    PackageReader reader(m_package);
    QCOMPARE(reader.fileList().size(), 9);
    QCOMPARE(reader.entries(), (QStringList{"BKG/", "BKG/./x.png", "BKG/X.png", "a.json"}));
    QCOMPARE(reader.extractJsonFiles(m_out), QStringList{destination("a.json")});
    QCOMPARE(readFile(destination("a.json")), QByteArray("1"));
    QCOMPARE(ZipPackageHandle().extractDir(m_package, m_out, true), 0);
    QCOMPARE(readFile(destination("BKG/x.png")), QByteArray("first"));
}

void TstPackageReader::extracting_keeps_non_utf8_names_distinct()
{
    write(PackageBuilder()
              .file("Preset/\xFF.RPst", "1")
              .file("Preset/\xFE.RPst", "2")
              .file("Preset/\xEF\xBF\xBD.RPst", "3")
              .folder("\xC3"));
    PackageReader reader(m_package);
    QCOMPARE(reader.fileList(),
             (QStringList{"Preset/%FF.RPst", "Preset/%FE.RPst", QString::fromUtf8("Preset/\uFFFD.RPst"), "%C3/"}));
    QCOMPARE(reader.entries(), reader.fileList());
    for (const QString &name : reader.fileList())
        QCOMPARE(reader.extractFile(name, destination(name)).isEmpty(), false);
    QCOMPARE(readFile(destination("Preset/%FF.RPst")), QByteArray("1"));
    QCOMPARE(readFile(destination("Preset/%FE.RPst")), QByteArray("2"));
    QCOMPARE(readFile(destination(QString::fromUtf8("Preset/\uFFFD.RPst"))), QByteArray("3"));
    QCOMPARE(contents(m_out).size(), 5);
}

void TstPackageReader::the_longest_name_is_listed_whole()
{
    const QByteArray name = QByteArray("0123456789abcde/").repeated(4096).left(65535);
    write(PackageBuilder().file(name, "x").file("after.txt", "y"));
    QCOMPARE(PackageReader(m_package).fileList(), (QStringList{QString::fromLatin1(name), "after.txt"}));
}

void TstPackageReader::entry_list_broken_halfway_counts_as_empty()
{
    QByteArray package = PackageBuilder().file("a.txt", "a").file("b.txt", "b").file("c.txt", "c").build();
    // The signature of the second of three central directory headers.
    const QByteArray signature("PK\x01\x02");
    package[package.indexOf(signature, package.indexOf(signature) + 1)] = 'X';
    QVERIFY(writeFile(m_package, package));
    PackageReader reader(m_package);
    QVERIFY(reader.isOpen());
    QCOMPARE(reader.fileList(), QStringList());
    QCOMPARE(reader.extractFile("a.txt", destination("a.txt")), QString());
    QCOMPARE(contents(m_out), QStringList());
}

void TstPackageReader::entry_without_destination_keeps_its_name()
{
    write(PackageBuilder().file("folder/a.txt", "a"));
    const QString before = QDir::currentPath();
    const auto restore = qScopeGuard([before] { QDir::setCurrent(before); });
    QVERIFY(QDir::setCurrent(m_out));
    QCOMPARE(PackageReader(m_package).extractFile("folder/a.txt", QString()), destination("folder/a.txt"));
    QCOMPARE(readFile(destination("folder/a.txt")), QByteArray("a"));
}

void TstPackageReader::files_around_the_block_size_are_extracted_whole()
{
    for (int block : {4096, 65536, 262144, 524288, 1048576}) {
        for (int size : {block - 1, block, block + 1}) {
            write(PackageBuilder().file("x.bin", noise(size).left(size)));
            QVERIFY(!PackageReader(m_package).extractFile("x.bin", destination("x.bin")).isEmpty());
            QVERIFY(readFile(destination("x.bin")) == noise(size).left(size));
        }
    }
}

void TstPackageReader::json_entries_match_in_any_case()
{
    write(PackageBuilder()
              .file("device.json", "1")
              .file("A/B.Json", "2")
              .file("BKG/BKG_0.png", "3")
              .file("json.txt", "4")
              .file("X.JSON", "5"));
    QCOMPARE(ZipPackageHandle::extractJsonFiles(m_package, m_out),
             (QStringList{destination("device.json"), destination("A/B.Json"), destination("X.JSON")}));
    QCOMPARE(contents(m_out), (QStringList{"A", "A/B.Json", "X.JSON", "device.json"}));
    QCOMPARE(readFile(destination("A/B.Json")), QByteArray("2"));
}

void TstPackageReader::json_extraction_needs_an_existing_corvelpro_file()
{
    write(PackageBuilder().file("device.json", "1"));
    const QString odd = m_temp->path() + "/PACKAGE.CorvelPro";
    const QString other = m_temp->path() + "/package.zip";
    QVERIFY(QFile::copy(m_package, odd) && QFile::copy(m_package, other));
    QCOMPARE(ZipPackageHandle::extractJsonFiles(odd, m_out).size(), 1);
    QCOMPARE(ZipPackageHandle::extractJsonFiles(other, m_out), QStringList());
    QCOMPARE(ZipPackageHandle::extractJsonFiles(m_temp->path() + "/missing.corvelpro", m_out), QStringList());
}

void TstPackageReader::unextractable_json_entry_yields_an_empty_path()
{
    write(PackageBuilder().file("../up.json", "1").file("good.json", "2").file("bad.json", "3").claimCrc(1));
    QCOMPARE(ZipPackageHandle::extractJsonFiles(m_package, m_out), (QStringList{"", destination("good.json"), ""}));
    QCOMPARE(contents(m_temp->path()), (QStringList{"out", "out/deep", "out/deep/good.json", "package.corvelpro"}));
}

void TstPackageReader::a_name_that_could_lead_outside_is_refused_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("climbs out") << QByteArray("../x.txt");
    QTest::newRow("climbs out further") << QByteArray("../../../x.txt");
    QTest::newRow("climbs out behind a prefix") << QByteArray("BKG/../../x.txt");
    QTest::newRow("climbs and comes back") << QByteArray("BKG/../x.txt");
    QTest::newRow("ends in a climb") << QByteArray("BKG/..");
    QTest::newRow("folder that climbs out") << QByteArray("../up/");
    QTest::newRow("climbs out with spaces") << QByteArray(".. /x.txt");
    QTest::newRow("absolute") << QByteArray("/tmp/zip-reader-absolute.txt");
    QTest::newRow("absolute with two slashes") << QByteArray("//tmp/zip-reader-absolute.txt");
    QTest::newRow("backslash climb") << QByteArray("..\\x.txt");
    QTest::newRow("backslash climb behind a prefix") << QByteArray("BKG\\..\\..\\x.txt");
    QTest::newRow("absolute with a backslash") << QByteArray("\\x.txt");
    QTest::newRow("drive letter") << QByteArray("C:x.txt");
    QTest::newRow("drive letter and path") << QByteArray("c:/x.txt");
    QTest::newRow("drive letter alone") << QByteArray("C:");
    QTest::newRow("drive letter as a folder") << QByteArray("C:/");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("drive letter behind a prefix") << QByteArray("BKG/C:/x.txt");
    QTest::newRow("NUL") << QByteArray("x.txt\0.png", 10);
}

void TstPackageReader::a_name_that_could_lead_outside_is_refused()
{
    QFETCH(QByteArray, name);
    write(PackageBuilder().file(name, "bad").file("good.txt", "good"));
    const QStringList before = contents(m_temp->path());
    PackageReader reader(m_package);
    QCOMPARE(reader.fileList().size(), 2);
    const QString listed = reader.fileList().first();
    QCOMPARE(listed.toUtf8(), name);
    QCOMPARE(reader.extractFile(listed, destination(listed)), QString());
    QCOMPARE(reader.extractFile(listed, destination("harmless.txt")), QString());
    QCOMPARE(contents(m_temp->path()), before);
    QVERIFY(!QFileInfo::exists("/tmp/zip-reader-absolute.txt"));
    QVERIFY(!reader.extractFile("good.txt", destination("good.txt")).isEmpty());
}

void TstPackageReader::backslash_in_a_name_is_an_ordinary_character()
{
    write(PackageBuilder().file("a\\b.txt", "x"));
    QCOMPARE(PackageReader(m_package).extractFile("a\\b.txt", destination("a\\b.txt")), destination("a\\b.txt"));
    QCOMPARE(contents(m_out), QStringList{"a\\b.txt"});
}

void TstPackageReader::a_name_that_only_looks_odd_is_extracted_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name :
         {"x", "1:2.txt", "ab:c.txt", ":x", "..x", "x..", "...", "a/..b/c", ".hidden", "a//b", "l/i/n/k", " "})
        QTest::newRow(name) << QByteArray(name);
}

void TstPackageReader::a_name_that_only_looks_odd_is_extracted()
{
    QFETCH(QByteArray, name);
    write(PackageBuilder().file(name, "content"));
    QVERIFY(!PackageReader(m_package).extractFile(name, destination(name)).isEmpty());
    QCOMPARE(readFile(destination(name)), QByteArray("content"));
}

void TstPackageReader::foreign_entry_attributes_are_ignored_data()
{
    QTest::addColumn<quint32>("mode");
    QTest::addColumn<quint16>("flags");
    QTest::newRow("no type") << 0u << quint16(0);
    QTest::newRow("permissions without a type") << 0777u << quint16(0);
    QTest::newRow("every permission") << 0107777u << quint16(0);
    QTest::newRow("best compression") << 0100644u << quint16(2);
    QTest::newRow("fastest compression") << 0100644u << quint16(6);
    QTest::newRow("UTF-8") << 0100644u << quint16(0x800);
}

void TstPackageReader::foreign_entry_attributes_are_ignored()
{
    QFETCH(quint32, mode);
    QFETCH(quint16, flags);
    write(PackageBuilder().file("x.txt", "content", PackageBuilder::Deflated, mode).claimFlags(flags));
    QVERIFY(!PackageReader(m_package).extractFile("x.txt", destination("x.txt")).isEmpty());
    QCOMPARE(readFile(destination("x.txt")), QByteArray("content"));
}

void TstPackageReader::non_file_entry_is_refused_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<quint32>("mode");
    QTest::newRow("link") << QByteArray("x") << quint32(PackageBuilder::SymbolicLink);
    QTest::newRow("link in a folder's name") << QByteArray("x/") << quint32(PackageBuilder::SymbolicLink);
    QTest::newRow("pipe") << QByteArray("x") << quint32(PackageBuilder::Fifo);
    QTest::newRow("character device") << QByteArray("x") << quint32(0020644);
    QTest::newRow("block device") << QByteArray("x") << quint32(0060644);
    QTest::newRow("socket") << QByteArray("x") << quint32(0140644);
    QTest::newRow("folder in a file's name") << QByteArray("x") << quint32(PackageBuilder::Directory);
}

void TstPackageReader::non_file_entry_is_refused()
{
    QFETCH(QByteArray, name);
    QFETCH(quint32, mode);
    write(PackageBuilder().file(name, "/etc/passwd", PackageBuilder::Stored, mode));
    QCOMPARE(PackageReader(m_package).extractFile(name, destination(name)), QString());
    QCOMPARE(contents(m_out), QStringList());
}

void TstPackageReader::a_destination_through_a_link_is_refused()
{
    write(PackageBuilder().file("BKG/sub/x.png", "x").folder("BKG/new"));
    const QString outside = m_temp->path() + "/outside";
    QVERIFY(QDir().mkpath(outside + "/sub"));
    QVERIFY(QFile::link(outside, destination("BKG")));
    PackageReader reader(m_package);
    QCOMPARE(reader.extractFile("BKG/sub/x.png", destination("BKG/sub/x.png")), QString());
    QCOMPARE(reader.extractFile("BKG/new/", destination("BKG/new/")), QString());
    QCOMPARE(contents(outside), QStringList{"sub"});

    // The same one level deeper.
    QVERIFY(QFile::remove(destination("BKG")));
    QVERIFY(QDir().mkpath(destination("BKG")));
    QVERIFY(QFile::link(outside, destination("BKG/sub")));
    QCOMPARE(reader.extractFile("BKG/sub/x.png", destination("BKG/sub/x.png")), QString());
    QCOMPARE(contents(outside), QStringList{"sub"});
}

void TstPackageReader::the_callers_own_folder_may_be_a_link()
{
    write(PackageBuilder().file("BKG/x.png", "x"));
    const QString link = m_temp->path() + "/link";
    QVERIFY(QFile::link(m_out, link));
    QCOMPARE(PackageReader(m_package).extractFile("BKG/x.png", link + "/BKG/x.png"), link + "/BKG/x.png");
    QCOMPARE(readFile(destination("BKG/x.png")), QByteArray("x"));
}

void TstPackageReader::callers_folder_is_rechecked_for_archive_entries()
{
    write(PackageBuilder().file("x.png", "x").file("BKG/y.png", "y").file("BKG/z.png", "z"));
    const QString outside = m_temp->path() + "/outside";
    QVERIFY(QDir().mkpath(outside));
    QVERIFY(QFile::link(outside, destination("BKG")));
    PackageReader reader(m_package);
    QCOMPARE(reader.extractFile("x.png", destination("BKG/x.png")), destination("BKG/x.png"));
    QCOMPARE(reader.extractFile("BKG/y.png", destination("BKG/y.png")), QString());
    QCOMPARE(reader.extractFile("BKG/z.png", destination("BKG/z.png")), QString());
    QCOMPARE(contents(outside), QStringList{"x.png"});
}

void TstPackageReader::a_destination_that_is_a_link_is_refused()
{
    write(PackageBuilder().file("x.png", "new"));
    const QString outside = m_temp->path() + "/outside.png";
    QVERIFY(writeFile(outside, "old"));
    QVERIFY(QFile::link(outside, destination("x.png")));
    QVERIFY(QFile::link(outside, destination("other.png")));
    QVERIFY(QFile::link(m_temp->path() + "/nowhere", destination("broken.png")));
    PackageReader reader(m_package);
    QCOMPARE(reader.extractFile("x.png", destination("x.png")), QString());
    QCOMPARE(reader.extractFile("x.png", destination("other.png")), QString());
    QCOMPARE(reader.extractFile("x.png", destination("broken.png")), QString());
    QCOMPARE(readFile(outside), QByteArray("old"));
    QVERIFY(!QFileInfo::exists(m_temp->path() + "/nowhere"));
}

void TstPackageReader::packaged_link_is_never_followed()
{
    const QString outside = m_temp->path() + "/outside";
    QVERIFY(QDir().mkpath(outside));
    write(PackageBuilder().symbolicLink("BKG", QFile::encodeName(outside)).file("BKG/x.png", "x"));
    PackageReader reader(m_package);
    for (const QString &name : reader.fileList())
        reader.extractFile(name, destination(name));
    QCOMPARE(contents(outside), QStringList());
}

void TstPackageReader::a_damaged_entry_leaves_the_previous_file_data()
{
    QTest::addColumn<QByteArray>("package");
    const QByteArray bytes = noise(500000);
    QTest::newRow("wrong checksum") << PackageBuilder().file("x.png", bytes).claimCrc(7).build();
    QTest::newRow("wrong checksum, stored")
        << PackageBuilder().file("x.png", bytes, PackageBuilder::Stored).claimCrc(7).build();
    QTest::newRow("claims more than it has") << PackageBuilder().file("x.png", bytes).claimSize(600000).build();
    QTest::newRow("claims less than it has") << PackageBuilder().file("x.png", bytes).claimSize(400000).build();
    QTest::newRow("unknown method") << PackageBuilder().file("x.png", bytes).claimMethod(99).build();
    QTest::newRow("encrypted") << PackageBuilder().file("x.png", bytes).claimFlags(1).build();
    QTest::newRow("overwritten")
        << PackageBuilder().file("x.png", QByteArray(500000, 'x')).build().replace(60, 40, noise(40));
}

void TstPackageReader::a_damaged_entry_leaves_the_previous_file()
{
    QFETCH(QByteArray, package);
    QVERIFY(writeFile(m_package, package));
    QVERIFY(writeFile(destination("x.png"), "previous"));
    QCOMPARE(PackageReader(m_package).extractFile("x.png", destination("x.png")), QString());
    QCOMPARE(readFile(destination("x.png")), QByteArray("previous"));
    QCOMPARE(contents(m_out), QStringList{"x.png"});
}

void TstPackageReader::a_full_disk_leaves_the_previous_file()
{
    write(PackageBuilder().file("x.png", noise(500000)));
    QVERIFY(writeFile(destination("x.png"), "previous"));
    PackageReader reader(m_package);
    for (int limit : {0, 1, 300000, 499999}) {
        const FullDisk disk(limit);
        QCOMPARE(reader.extractFile("x.png", destination("x.png")), QString());
        QCOMPARE(readFile(destination("x.png")), QByteArray("previous"));
        QCOMPARE(contents(m_out), QStringList{"x.png"});
    }
    // The archive is still usable for the next attempt.
    QVERIFY(!reader.extractFile("x.png", destination("x.png")).isEmpty());
    QCOMPARE(QFileInfo(destination("x.png")).size(), 500000);
}

void TstPackageReader::read_only_previous_file_is_replaced()
{
    write(PackageBuilder().file("x.png", "new", PackageBuilder::Stored, 0100444));
    QVERIFY(writeFile(destination("x.png"), "previous"));
    QCOMPARE(run("chmod", {"444", destination("x.png")}).exitCode, 0);
    QCOMPARE(run("chmod", {"-R", "a+rX", m_temp->path()}).exitCode, 0);
    QCOMPARE(run("chmod", {"777", m_out}).exitCode, 0);
    const OrdinaryUser user;
    for (int turn = 0; turn < 2; ++turn) {
        QCOMPARE(PackageReader(m_package).extractFile("x.png", destination("x.png")), destination("x.png"));
        QCOMPARE(readFile(destination("x.png")), QByteArray("new"));
    }
}

void TstPackageReader::files_get_the_default_permissions()
{
    const mode_t oldMask = umask(027);
    write(PackageBuilder()
              .file("set-uid", "x", PackageBuilder::Stored, 0104777)
              .file("locked", "x", PackageBuilder::Stored, 0100000));
    PackageReader reader(m_package);
    for (const QString &name : reader.fileList())
        reader.extractFile(name, destination(name));
    umask(oldMask);
    for (const QString &name : {QString("set-uid"), QString("locked")}) {
        struct stat status;
        QCOMPARE(stat(QFile::encodeName(destination(name)).constData(), &status), 0);
        QCOMPARE(int(status.st_mode), 0100640);
    }
}

void TstPackageReader::a_description_above_its_limit_is_refused()
{
    const QByteArray atLimit(int(64 * MiB), ' ');
    write(PackageBuilder().file("a.json", atLimit).file("b.Json", atLimit + ' ').file("c.bin", atLimit + ' '));
    PackageReader reader(m_package);
    QVERIFY(!reader.extractFile("a.json", destination("a.json")).isEmpty());
    QCOMPARE(reader.extractFile("b.Json", destination("b.Json")), QString());
    QVERIFY(!reader.extractFile("c.bin", destination("c.bin")).isEmpty());
    QCOMPARE(contents(m_out), (QStringList{"a.json", "c.bin"}));
}

void TstPackageReader::content_above_the_claimed_size_is_refused()
{
    // The actual size counts, not the one in the archive.
    write(PackageBuilder().file("b.json", QByteArray(int(64 * MiB) + 1, ' ')).claimSize(10));
    QCOMPARE(PackageReader(m_package).extractFile("b.json", destination("b.json")), QString());
    QCOMPARE(contents(m_out), QStringList());
    write(PackageBuilder().file("x.png", "x").claimSize(quint32(1024 * MiB) + 1));
    QCOMPARE(PackageReader(m_package).extractFile("x.png", destination("x.png")), QString());
}

void TstPackageReader::oversized_entry_does_not_create_its_folder()
{
    write(PackageBuilder().file("folder/x.png", "x").claimSize(quint32(1024 * MiB) + 1));
    QCOMPARE(PackageReader(m_package).extractFile("folder/x.png", destination("folder/x.png")), QString());
    QCOMPARE(contents(m_out), QStringList());
    // What might fit is begun.
    write(PackageBuilder().file("folder/x.png", "x").claimSize(quint32(1024 * MiB)));
    QCOMPARE(PackageReader(m_package).extractFile("folder/x.png", destination("folder/x.png")), QString());
    QCOMPARE(contents(m_out), QStringList{"folder"});
}

void TstPackageReader::descriptions_have_64_mib_together()
{
    // The first one has not as many bytes as it says, and counts all the same.
    write(
        PackageBuilder().file("a.json", "x").claimSize(quint32(64 * MiB) - 2).file("b.json", "{}").file("c.json", "{"));
    QCOMPARE(PackageReader(m_package).extractJsonFiles(m_out),
             (QStringList{QString(), destination("b.json"), QString()}));
}

void TstPackageReader::content_above_the_free_space_is_refused()
{
    const QByteArray large = noise(70000);
    write(PackageBuilder().file("x.png", large));
    QVERIFY(writeFile(destination("x.png"), "previous"));
    PackageReader reader(m_package);
    {
        const FreeSpace free(large.size() - 1);
        QCOMPARE(reader.extractFile("x.png", destination("x.png")), QString());
        QCOMPARE(readFile(destination("x.png")), QByteArray("previous"));
        QCOMPARE(contents(m_out), QStringList{"x.png"});
    }
    const FreeSpace free(large.size());
    QCOMPARE(reader.extractFile("x.png", destination("x.png")), destination("x.png"));
    QCOMPARE(readFile(destination("x.png")), large);
}

void TstPackageReader::small_content_is_written_regardless_of_free_space()
{
    write(PackageBuilder().file("small.png", noise(64 * 1024)).file("large.png", noise(64 * 1024 + 1)));
    PackageReader reader(m_package);
    const FreeSpace none(0);
    QCOMPARE(reader.extractFile("small.png", destination("small.png")), destination("small.png"));
    QCOMPARE(reader.extractFile("large.png", destination("large.png")), QString());
}

TEST_MAIN_CORE(TstPackageReader)
#include "tst_packagereader.moc"

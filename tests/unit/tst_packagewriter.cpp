// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagechecksum.h"
#include "packagereader.h"
#include "packagetesting.h"
#include "packagewriter.h"
#include "zippackagehandle.h"

#include <data/pngmaker.h>
#include <support/costs.h>
#include <support/testmain.h>

#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QtTest>

#include <JlCompress.h>

using namespace PackageTesting;
using ProjectFileCfg::Internal::PackageReader;
using ProjectFileCfg::Internal::PackageWriter;
using ProjectFileCfg::Internal::ZipPackageHandle;
using TestData::PngMaker;
namespace PackageChecksum = ProjectFileCfg::Internal::PackageChecksum;

class TstPackageWriter : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void names_and_order_match_compress_dir();
    void leading_bytes_are_those_of_compressing_the_directory();
    void pictures_are_stored_and_the_rest_is_deflated();
    void packed_bytes_come_out_again_with_another_unpacker();
    void other_unpackers_take_the_archive_without_a_warning();
    void an_archive_without_entries_counts_as_unreadable();
    void a_name_longer_than_256_bytes_is_packed();
    void only_non_ascii_names_are_flagged_as_utf8();
    void names_are_utf8_whatever_the_locale_codec_is();
    void a_time_before_1980_is_stored_as_1980();
    void times_after_2107_are_clamped_to_2107();
    void previous_content_is_replaced();
    void scanning_again_lists_nothing_twice();
    void files_around_the_block_size_are_packed_whole();
    void package_in_its_own_directory_is_skipped();

    void inner_file_link_is_packed_as_file();
    void inner_folder_link_is_packed_as_folder();
    void incomplete_packing_is_refused_data();
    void incomplete_packing_is_refused();
    void tree_at_the_readers_limits_is_packed();
    void unreadable_files_are_refused_data();
    void unreadable_files_are_refused();
    void more_than_65534_entries_are_refused();
    void pictures_above_4_gib_together_are_refused_early();
    void contents_above_4_gib_are_refused();
    void descriptions_above_64_mib_together_are_refused();
    void excess_descriptions_are_refused();
    void excess_pixels_are_refused();
    void pictures_at_the_pixel_limit_are_packed();
    void a_description_of_a_million_parts_is_packed();
    void a_description_that_grows_too_large_is_refused();
    void leftovers_of_killed_processes_are_not_packed();
    void overlong_names_are_refused();
    void a_full_disk_makes_writing_fail();
    void missing_source_fails_the_write();
    void replaced_archive_is_not_mistaken_for_ours();

    void the_end_record_never_begins_a_chunk_data();
    void the_end_record_never_begins_a_chunk();
    void padding_is_an_ignored_extra_field();
    void an_archive_that_needs_no_padding_has_none_data();
    void an_archive_that_needs_no_padding_has_none();
    void memory_stays_bounded();

private:
    bool pack();
    /// Why the directory is not packed, without its path.
    QString refusal() const;
    /// The archive under a package's name.
    QString renamedAsPackage() const;
    /// Packs such that without padding the archive would exceed a chunk by that much.
    void packWithExcess(qint64 excess);

    QScopedPointer<QTemporaryDir> m_temp;
    QString m_dir;
    QString m_archive;
};

void TstPackageWriter::init()
{
    m_temp.reset(new QTemporaryDir);
    QVERIFY(m_temp->isValid());
    m_dir = m_temp->path() + "/device";
    m_archive = m_temp->path() + "/archive.zip";
    QVERIFY(QDir().mkpath(m_dir));
}

void TstPackageWriter::cleanup()
{
    m_temp.reset();
}

bool TstPackageWriter::pack()
{
    PackageWriter writer(m_dir, m_archive);
    QFile archive(m_archive);
    return writer.scan() && archive.open(QIODevice::ReadWrite | QIODevice::Truncate) && writer.write(archive) &&
           writer.isListedIn(PackageReader(m_archive));
}

QString TstPackageWriter::refusal() const
{
    QString reason;
    PackageWriter(m_dir, m_archive).scan(&reason);
    return reason.remove(m_dir);
}

QString TstPackageWriter::renamedAsPackage() const
{
    QString path = m_temp->path() + "/package.corvelpro";
    return QFile::rename(m_archive, path) ? path : QString();
}

void TstPackageWriter::packWithExcess(qint64 excess)
{
    // Pictures are stored, so each byte of the picture is a byte of the archive.
    QVERIFY(writeFile(m_dir + "/first.txt", "the entry that takes the padding"));
    QVERIFY(writeFile(m_dir + "/picture.png", noise(1000)));
    QVERIFY(pack());
    const qint64 overhead = QFileInfo(m_archive).size() - QFileInfo(m_dir + "/picture.png").size();
    const qint64 size = PackageChecksum::chunkSize + excess - overhead;
    QVERIFY(writeFile(m_dir + "/picture.png", noise(size).left(int(size))));
    QVERIFY(pack());
}

void TstPackageWriter::names_and_order_match_compress_dir()
{
    QVERIFY(makeDeviceTree(m_dir));
    for (const char *name : {"b.txt", "A.txt", "a_1.txt", "C/x.txt", "c2/D/y.txt", "c2/e.txt", "_.txt", "Z", "0"})
        QVERIFY(writeFile(m_dir + "/order/" + name, "x"));
    QVERIFY(pack());
    const QString plain = m_temp->path() + "/plain.zip";
    QVERIFY(JlCompress::compressDir(plain, m_dir, true, QDir::Hidden));
    QCOMPARE(JlCompress::getFileList(m_archive), JlCompress::getFileList(plain));
    QVERIFY(JlCompress::getFileList(m_archive).contains(".hidden/.secret"));
    QVERIFY(JlCompress::getFileList(m_archive).contains("Empty/"));
}

void TstPackageWriter::leading_bytes_are_those_of_compressing_the_directory()
{
    // The first entry matters: a folder, a stored picture, a deflated file.
    for (const char *first : {"folder/a.txt", "a.png", "a.txt"}) {
        QVERIFY(QDir(m_dir).removeRecursively());
        QVERIFY(writeFile(m_dir + '/' + first, noise(1000)));
        QVERIFY(pack());
        const QString plain = m_temp->path() + "/plain.zip";
        QVERIFY(JlCompress::compressDir(plain, m_dir, true));
        QCOMPARE(readFile(m_archive).left(6), readFile(plain).left(6));
        QCOMPARE(readFile(m_archive).left(6), QByteArray("PK\x03\x04\x14\0", 6));
    }
}

void TstPackageWriter::pictures_are_stored_and_the_rest_is_deflated()
{
    QVERIFY(makeDeviceTree(m_dir));
    QVERIFY(pack());
    const Run listing = runPython("import sys, zipfile\n"
                                  "for i in zipfile.ZipFile(sys.argv[1]).infolist():\n"
                                  "    print(i.compress_type, i.filename)\n",
                                  {m_archive});
    QVERIFY2(listing.output.contains("0 BKG/BKG_0.png\n"), listing.output);
    QVERIFY2(listing.output.contains("0 BKG/BKG_12.PNG\n"), listing.output);
    QVERIFY2(listing.output.contains("8 192.168.0.10.json\n"), listing.output);
    QVERIFY2(listing.output.contains("8 Preset/1.RPst\n"), listing.output);
}

void TstPackageWriter::packed_bytes_come_out_again_with_another_unpacker()
{
    QVERIFY(makeDeviceTree(m_dir));
    QVERIFY(pack());
    const QString out = m_temp->path() + "/out";
    const Run unpacked = runPython("import sys, zipfile\n"
                                   "zipfile.ZipFile(sys.argv[1]).extractall(sys.argv[2])\n",
                                   {m_archive, out});
    QVERIFY2(unpacked.exitCode == 0, unpacked.errors);
    QCOMPARE(contents(out), contents(m_dir));
    for (const QString &name : contents(m_dir))
        QCOMPARE(readFile(out + '/' + name), readFile(m_dir + '/' + name));
}

void TstPackageWriter::other_unpackers_take_the_archive_without_a_warning()
{
    QVERIFY(makeDeviceTree(m_dir));
    QVERIFY(pack());
    QCOMPARE(complaints(m_archive), QString());
}

void TstPackageWriter::an_archive_without_entries_counts_as_unreadable()
{
    QVERIFY(!pack());
    QCOMPARE(QFileInfo(m_archive).size(), 22);
}

void TstPackageWriter::a_name_longer_than_256_bytes_is_packed()
{
    const QString part = QString::fromUtf8("很长的文件夹名字").repeated(8);
    const QString name = part + '/' + part + '/' + part + "/x.txt";
    QVERIFY(writeFile(m_dir + '/' + name, "deep"));
    QVERIFY(pack());
    QVERIFY(JlCompress::getFileList(m_archive).contains(name));
    QCOMPARE(complaints(m_archive), QString());
}

void TstPackageWriter::a_time_before_1980_is_stored_as_1980()
{
    QVERIFY(writeFile(m_dir + "/old.txt", "old"));
    QCOMPARE(run("touch", {"-d", "1979-12-31 23:59:58", m_dir + "/old.txt"}).exitCode, 0);
    QVERIFY(writeFile(m_dir + "/first.txt", "first"));
    QCOMPARE(run("touch", {"-d", "1980-06-01 12:00:00", m_dir + "/first.txt"}).exitCode, 0);
    QVERIFY(pack());
    const Run time = runPython("import sys, zipfile\n"
                               "print(*(i.date_time for i in zipfile.ZipFile(sys.argv[1]).infolist()), sep='\\n')\n",
                               {m_archive});
    QCOMPARE(time.output, QByteArray("(1980, 6, 1, 12, 0, 0)\n(1980, 1, 1, 0, 0, 0)\n"));
}

void TstPackageWriter::times_after_2107_are_clamped_to_2107()
{
    QVERIFY(writeFile(m_dir + "/last.txt", "last"));
    QCOMPARE(run("touch", {"-d", "2107-06-01 12:00:00", m_dir + "/last.txt"}).exitCode, 0);
    QVERIFY(writeFile(m_dir + "/new.txt", "new"));
    QCOMPARE(run("touch", {"-d", "2108-06-01 12:00:00", m_dir + "/new.txt"}).exitCode, 0);
    if (QFileInfo(m_dir + "/new.txt").lastModified().date().year() != 2108)
        QSKIP("This file system cannot store a time so late.");
    QVERIFY(pack());
    const Run time = runPython("import sys, zipfile\n"
                               "print(*(i.date_time for i in zipfile.ZipFile(sys.argv[1]).infolist()), sep='\\n')\n",
                               {m_archive});
    QCOMPARE(time.output, QByteArray("(2107, 6, 1, 12, 0, 0)\n(2107, 12, 31, 23, 59, 58)\n"));
}

void TstPackageWriter::only_non_ascii_names_are_flagged_as_utf8()
{
    // On either side of the end of the ASCII range.
    for (const QString &name : {QString("plain~\x7F.txt"), QString("first\u0080.txt"), QString("\u00E4.txt")})
        QVERIFY(writeFile(m_dir + '/' + name, "x"));
    QVERIFY(pack());
    const Run listing = runPython("import sys, zipfile\n"
                                  "for i in zipfile.ZipFile(sys.argv[1]).infolist():\n"
                                  "    print(ascii(i.filename), i.flag_bits & 0x800)\n",
                                  {m_archive});
    QStringList lines = QString::fromLatin1(listing.output).split('\n', Qt::SkipEmptyParts);
    lines.sort();
    QCOMPARE(lines, (QStringList{"'\\xe4.txt' 2048", "'first\\x80.txt' 2048", "'plain~\\x7f.txt' 0"}));
}

void TstPackageWriter::names_are_utf8_whatever_the_locale_codec_is()
{
    const auto restore = qScopeGuard([] { QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8")); });
    const QString name = QString::fromUtf8("图片.txt");
    QVERIFY(writeFile(m_dir + '/' + name, "x"));
    PackageWriter writer(m_dir, m_archive);
    QFile archive(m_archive);
    QVERIFY(archive.open(QIODevice::ReadWrite));
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    QVERIFY(writer.scan());
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    QVERIFY(writer.write(archive));
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    QVERIFY(writer.isListedIn(PackageReader(m_archive)));
    QVERIFY(readFile(m_archive).contains(name.toUtf8()));
}

void TstPackageWriter::previous_content_is_replaced()
{
    QVERIFY(makeDeviceTree(m_dir));
    QVERIFY(pack());
    const QByteArray fresh = readFile(m_archive);
    QFile archive(m_archive);
    QVERIFY(archive.open(QIODevice::ReadWrite | QIODevice::Truncate));
    QVERIFY(archive.write(noise(2 * fresh.size())) > 0);
    PackageWriter writer(m_dir, m_archive);
    QVERIFY(writer.scan() && writer.write(archive));
    QVERIFY(readFile(m_archive) == fresh);
}

void TstPackageWriter::scanning_again_lists_nothing_twice()
{
    QVERIFY(makeDeviceTree(m_dir));
    PackageWriter writer(m_dir, m_archive);
    QFile archive(m_archive);
    QVERIFY(writer.scan() && writer.scan() && archive.open(QIODevice::ReadWrite) && writer.write(archive));
    QStringList names = JlCompress::getFileList(m_archive);
    QVERIFY(!names.isEmpty());
    QCOMPARE(names.removeDuplicates(), 0);
}

void TstPackageWriter::files_around_the_block_size_are_packed_whole()
{
    for (int block : {1, 4096, 65536, 262144, 524288, 1048576}) {
        for (int size : {block - 1, block, block + 1})
            QVERIFY(writeFile(m_dir + QString("/%1.bin").arg(size), noise(size).left(size)));
    }
    QVERIFY(pack());
    const QString out = m_temp->path() + "/out";
    QCOMPARE(run("unzip", {"-q", m_archive, "-d", out}).exitCode, 0);
    QCOMPARE(contents(out), contents(m_dir));
    for (const QString &name : contents(m_dir))
        QVERIFY2(readFile(out + '/' + name) == readFile(m_dir + '/' + name), qPrintable(name));
}

void TstPackageWriter::package_in_its_own_directory_is_skipped()
{
    m_archive = m_dir + "/project.corvelpro";
    QVERIFY(writeFile(m_dir + "/a.txt", "a"));
    QVERIFY(pack());
    QVERIFY(pack());
    QCOMPARE(JlCompress::getFileList(m_archive), QStringList{"a.txt"});
}

void TstPackageWriter::inner_file_link_is_packed_as_file()
{
    QVERIFY(writeFile(m_dir + "/data/real.txt", "content"));
    QVERIFY(QFile::link("data/real.txt", m_dir + "/link.txt"));
    QVERIFY(pack());
    const Run content = run("unzip", {"-p", m_archive, "link.txt"});
    QCOMPARE(content.output, QByteArray("content"));
    const QString out = m_temp->path() + "/out";
    QCOMPARE(run("unzip", {"-q", m_archive, "-d", out}).exitCode, 0);
    QVERIFY(!QFileInfo(out + "/link.txt").isSymLink());
}

void TstPackageWriter::inner_folder_link_is_packed_as_folder()
{
    QVERIFY(writeFile(m_dir + "/data/real.txt", "content"));
    QVERIFY(QFile::link("data", m_dir + "/more"));
    QVERIFY(pack());
    QCOMPARE(JlCompress::getFileList(m_archive), (QStringList{"data/", "data/real.txt", "more/", "more/real.txt"}));
}

void TstPackageWriter::incomplete_packing_is_refused_data()
{
    QTest::addColumn<QStringList>("recipe");
    QTest::newRow("link to a file outside") << QStringList{"ln", "-s", "/etc/passwd", "%1/link"};
    QTest::newRow("link to a folder outside") << QStringList{"ln", "-s", "/usr", "%1/link"};
    QTest::newRow("link to a folder whose name begins alike") << QStringList{"ln", "-s", "../device2", "%1/link"};
    QTest::newRow("link that climbs out") << QStringList{"ln", "-s", "../outside.txt", "%1/link"};
    QTest::newRow("broken link") << QStringList{"ln", "-s", "nowhere", "%1/link"};
    QTest::newRow("link to itself") << QStringList{"ln", "-s", "link", "%1/link"};
    QTest::newRow("link to the packed folder") << QStringList{"ln", "-s", ".", "%1/link"};
    QTest::newRow("link to an enclosing folder") << QStringList{"ln", "-s", "..", "%1/sub/link"};
    QTest::newRow("pipe") << QStringList{"mkfifo", "%1/pipe"};
    QTest::newRow("device") << QStringList{"ln", "-s", "/dev/null", "%1/device"};
    QTest::newRow("descriptions that are not read above 64 MiB")
        << QStringList{"truncate", "-s", "67108865", "%1/sub/other.json"};
    QTest::newRow("description that is read above 16 MiB")
        << QStringList{"truncate", "-s", "16777217", "%1/device.json"};
    QTest::newRow("descriptions above 64 MiB")
        << QStringList{"truncate", "-s", "16M", "%1/1.json", "%1/2.json", "%1/3.json", "%1/4.json", "%1/5.json"};
    QTest::newRow("picture above 256 MiB") << QStringList{"truncate", "-s", "268435457", "%1/x.png"};
    QTest::newRow("file above 1 GiB") << QStringList{"truncate", "-s", "1073741825", "%1/data"};
    QTest::newRow("files above 4 GiB") << QStringList{"truncate", "-s", "1G", "%1/1", "%1/2", "%1/3", "%1/4"};
}

void TstPackageWriter::tree_at_the_readers_limits_is_packed()
{
    QCOMPARE(run("truncate", {"-s", "16777216", m_dir + "/device.json"}).exitCode, 0);
    QCOMPARE(run("truncate", {"-s", "50331648", m_dir + "/other.json"}).exitCode, 0);
    QCOMPARE(run("truncate", {"-s", "268435456", m_dir + "/picture.png"}).exitCode, 0);
    QCOMPARE(run("truncate", {"-s", "1073741824", m_dir + "/1", m_dir + "/2", m_dir + "/3"}).exitCode, 0);
    QCOMPARE(run("truncate", {"-s", "738197504", m_dir + "/4"}).exitCode, 0);
    QVERIFY(PackageWriter(m_dir, m_archive).scan());
    QVERIFY(writeFile(m_dir + "/5", "x"));
    QVERIFY(!PackageWriter(m_dir, m_archive).scan());
}

void TstPackageWriter::incomplete_packing_is_refused()
{
    QFETCH(QStringList, recipe);
    QVERIFY(writeFile(m_dir + "/sub/good.txt", "good"));
    QVERIFY(writeFile(m_temp->path() + "/outside.txt", "outside"));
    QVERIFY(QDir().mkpath(m_temp->path() + "/device2"));
    QVERIFY(PackageWriter(m_dir, m_archive).scan());
    recipe.replaceInStrings("%1", m_dir);
    QCOMPARE(run(recipe.takeFirst(), recipe).exitCode, 0);
    QVERIFY(!PackageWriter(m_dir, m_archive).scan());
}

void TstPackageWriter::unreadable_files_are_refused_data()
{
    QTest::addColumn<QString>("locked");
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("cause");
    const QString folder = "the folder cannot be read";
    QTest::newRow("file") << "/sub/file.txt"
                          << "a-rwx"
                          << "it is not a plain file, or cannot be read";
    QTest::newRow("folder") << "/sub"
                            << "a-rwx" << folder;
    QTest::newRow("folder that may not be listed") << "/sub"
                                                   << "a-r" << folder;
    QTest::newRow("folder that may not be entered") << "/sub"
                                                    << "a-x" << folder;
}

void TstPackageWriter::unreadable_files_are_refused()
{
    QFETCH(QString, locked);
    QFETCH(QString, mode);
    QFETCH(QString, cause);
    QVERIFY(writeFile(m_dir + "/sub/file.txt", "x"));
    QCOMPARE(run("chmod", {"-R", "a+rX", m_temp->path()}).exitCode, 0);
    {
        const OrdinaryUser user;
        QVERIFY(PackageWriter(m_dir, m_archive).scan());
    }
    QCOMPARE(run("chmod", {mode, m_dir + locked}).exitCode, 0);
    {
        const OrdinaryUser user;
        QCOMPARE(refusal(), QStringLiteral("cannot pack %1: %2").arg(locked, cause));
    }
    QCOMPARE(run("chmod", {"u+rwx", m_dir + locked}).exitCode, 0);
}

void TstPackageWriter::more_than_65534_entries_are_refused()
{
    SKIP_WHERE_COSTS_DO_NOT_COUNT();
    const auto add = [this](int number) {
        QFile file(m_dir + "/files/" + QString::number(number));
        return file.open(QIODevice::WriteOnly);
    };
    QVERIFY(QDir().mkpath(m_dir + "/files"));
    // The folder is an entry, too.
    for (int i = 0; i < 65533; ++i)
        QVERIFY(add(i));
    QVERIFY(PackageWriter(m_dir, m_archive).scan());
    QVERIFY(add(65533));
    QCOMPARE(refusal(), QString("cannot pack /files: a package cannot hold that many entries"));
}

void TstPackageWriter::pictures_above_4_gib_together_are_refused_early()
{
    // Headers, twice the names, and the end record.
    constexpr qint64 besides = 22 + 16 * (76 + 2 * 8);
    constexpr qint64 largest = 256 * MiB;
    constexpr qint64 last = 0xFFFFFFFELL - besides - 15 * largest;
    QVector<QFile *> pictures;
    for (int number = 0; number < 16; ++number) {
        auto *file = new QFile(m_dir + QStringLiteral("/%1_0.PNG").arg(number, 2, 10, QLatin1Char('0')), this);
        QVERIFY(file->open(QIODevice::WriteOnly));
        QVERIFY(file->resize(number < 15 ? largest : last));
        pictures.append(file);
    }
    QVERIFY(PackageWriter(m_dir, m_archive).scan());
    QVERIFY(pictures.last()->resize(pictures.last()->size() + 1));
    QCOMPARE(refusal(), QString(" has 4294967295 bytes when packed, the limit is 4294967294"));
    // Deflating may make it small enough.
    QVERIFY(pictures.last()->rename(m_dir + "/15_0.bin"));
    QVERIFY(PackageWriter(m_dir, m_archive).scan());
    qDeleteAll(pictures);
}

void TstPackageWriter::contents_above_4_gib_are_refused()
{
    for (int number = 0; number < 4; ++number) {
        const QString path = m_dir + '/' + QString::number(number);
        QVERIFY(writeFile(path, QByteArray()) && QFile::resize(path, 1024 * MiB));
    }
    QCOMPARE(refusal(), QString());
    QVERIFY(writeFile(m_dir + "/one", "x"));
    QCOMPARE(refusal(), QString(" has 4294967297 bytes, the limit is 4294967296"));
}

void TstPackageWriter::descriptions_above_64_mib_together_are_refused()
{
    for (const char *name : {"/a.json", "/b.json", "/c.json", "/d.json"})
        QVERIFY(writeFile(m_dir + name, QByteArray()) && QFile::resize(m_dir + name, 16 * MiB));
    QCOMPARE(refusal(), QString());
    QVERIFY(QFile::resize(m_dir + "/d.json", 16 * MiB + 1));
    QCOMPARE(refusal(), QString(" has 67108865 bytes of descriptions, the limit is 67108864"));
}

void TstPackageWriter::excess_descriptions_are_refused()
{
    for (int number = 0; number < 1000; ++number)
        QVERIFY(writeFile(m_dir + QStringLiteral("/%1.json").arg(number), "{}"));
    QVERIFY(pack());
    QCOMPARE(ZipPackageHandle::extractJsonFiles(renamedAsPackage(), m_temp->path() + "/out").count(QString()), 0);
    QVERIFY(writeFile(m_dir + "/sub/more.Json", "{}"));
    QCOMPARE(refusal(), QString(" has 1001 descriptions, the limit is 1000"));
}

void TstPackageWriter::excess_pixels_are_refused()
{
    // Only their headers: 50,331,648 pixels each.
    const QByteArray png = PngMaker::signature() + PngMaker::header(8192, 6144);
    for (int number = 0; number < 85; ++number)
        QVERIFY(writeFile(m_dir + (number % 2 ? "/BKG/" : "/LOGO/") + QString::number(number) + ".png", png));
    QVERIFY(pack());
    QVERIFY(writeFile(m_dir + "/not in the gallery.png", png));
    QVERIFY(pack());
    // Each write counts anew: a second one moves the end record.
    PackageWriter writer(m_dir, m_archive);
    QFile archive(m_archive);
    QVERIFY(writer.scan() && archive.open(QIODevice::ReadWrite));
    QVERIFY(writer.write(archive) && writer.write(archive));
    QVERIFY(writeFile(m_dir + "/BKG/85.png", png));
    QVERIFY(!pack());
}

void TstPackageWriter::pictures_at_the_pixel_limit_are_packed()
{
    for (int number = 0; number < 128; ++number)
        QVERIFY(writeFile(m_dir + QStringLiteral("/BKG/%1.png").arg(number),
                          PngMaker::signature() + PngMaker::header(8192, 4096)));
    QVERIFY(pack());
    QVERIFY(writeFile(m_dir + "/LOGO/0.png", PngMaker::signature() + PngMaker::header(1, 1)));
    QVERIFY(!pack());
}

void TstPackageWriter::a_description_of_a_million_parts_is_packed()
{
    const int most = 1024 * 1024;
    QVERIFY(writeFile(m_dir + "/a.json", "[1" + QByteArray(",1").repeated(most - 1) + "]"));
    QVERIFY(pack());
    QVERIFY(writeFile(m_dir + "/a.json", "[1" + QByteArray(",1").repeated(most) + "]"));
    QVERIFY(!pack());
}

void TstPackageWriter::a_description_that_grows_too_large_is_refused()
{
    QVERIFY(writeFile(m_dir + "/a.json", "{}"));
    PackageWriter writer(m_dir, m_archive);
    QFile archive(m_archive);
    QVERIFY(writer.scan() && archive.open(QIODevice::ReadWrite));
    QVERIFY(QFile::resize(m_dir + "/a.json", 16 * MiB));
    QVERIFY(writer.write(archive));
    QVERIFY(QFile::resize(m_dir + "/a.json", 16 * MiB + 1));
    QString reason;
    QVERIFY(!writer.write(archive, &reason));
    QCOMPARE(reason, "cannot pack " + m_dir + "/a.json: there are more than 16777216 bytes");
}

void TstPackageWriter::leftovers_of_killed_processes_are_not_packed()
{
    const QString id = "01234567-89ab-cdef-0123-456789abcdef";
    for (const QString &name : {QString("a.txt"), '.' + id + ".part", '.' + id + ".undo", id + ".part", id + ".undo"})
        QVERIFY(writeFile(m_dir + '/' + name, "x"));
    QVERIFY(pack());
    QCOMPARE(JlCompress::getFileList(m_archive), (QStringList{id + ".part", id + ".undo", "a.txt"}));
}

void TstPackageWriter::overlong_names_are_refused()
{
    SKIP_WHERE_COSTS_DO_NOT_COUNT();
    // The names of a long branch, repeated for each of its leaves.
    QString branch = m_dir;
    for (int level = 0; level < 12; ++level)
        branch += '/' + QString(250, 'd');
    QVERIFY(QDir().mkpath(branch));
    const qint64 folders = 251 * (12 * 13 / 2);
    const qint64 leaf = 251 * 12 + 100;
    const auto most = int((16 * MiB - folders) / leaf);
    for (int number = 0; number < most; ++number) {
        QFile file(branch + '/' + QString::number(number).rightJustified(100, '0'));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    // Exactly the limit.
    for (qint64 left = 16 * MiB - folders - most * leaf; left > 0; left -= 200)
        QVERIFY(writeFile(m_dir + '/' + QString::number(left).leftJustified(int(qMin<qint64>(left, 200)), 'x'), {}));
    QVERIFY(pack());
    QVERIFY(writeFile(m_dir + "/y", QByteArray()));
    QVERIFY2(refusal().endsWith(" bytes of names, the limit is 16777216"), qPrintable(refusal()));
}

void TstPackageWriter::a_full_disk_makes_writing_fail()
{
    QVERIFY(makeDeviceTree(m_dir));
    QVERIFY(writeFile(m_dir + "/BKG/BKG_2.png", noise(1500000)));
    QVERIFY(pack());
    const qint64 size = QFileInfo(m_archive).size();
    // Wherever in the archive the disk becomes full: in a small entry, in one written in several blocks, in the central
    // directory, at the last byte.
    for (qint64 limit : {qint64(0), qint64(100), qint64(300000), size / 2, size - 300, size - 23, size - 1}) {
        const FullDisk disk(limit);
        QVERIFY2(!pack(), qPrintable(QString::number(limit)));
    }
    const FullDisk disk(size);
    QVERIFY(pack());
}

void TstPackageWriter::missing_source_fails_the_write()
{
    QVERIFY(makeDeviceTree(m_dir));
    PackageWriter writer(m_dir, m_archive);
    QVERIFY(writer.scan());
    QVERIFY(QFile::remove(m_dir + "/LOGO/LOGO_3.png"));
    QFile archive(m_archive);
    QVERIFY(archive.open(QIODevice::ReadWrite));
    QVERIFY(!writer.write(archive));
}

void TstPackageWriter::replaced_archive_is_not_mistaken_for_ours()
{
    QVERIFY(makeDeviceTree(m_dir));
    PackageWriter writer(m_dir, m_archive);
    QFile archive(m_archive);
    QVERIFY(writer.scan());
    QVERIFY(archive.open(QIODevice::ReadWrite));
    QVERIFY(writer.write(archive));
    QVERIFY(writer.isListedIn(PackageReader(m_archive)));

    QVERIFY(writeFile(m_dir + "/LOGO/LOGO_3.png", noise(101)));
    QVERIFY(pack());
    QString reason;
    QVERIFY(!writer.isListedIn(PackageReader(m_archive), &reason));
    QCOMPARE(reason, QString("its entries differ"));
    QVERIFY(QFile::remove(m_dir + "/LOGO/LOGO_3.png"));
    QVERIFY(pack());
    QVERIFY(!writer.isListedIn(PackageReader(m_archive)));
}

void TstPackageWriter::the_end_record_never_begins_a_chunk_data()
{
    QTest::addColumn<qint64>("excess");
    for (int excess : {1, 2, 3, 4, 5, 6, 7, 21})
        QTest::newRow(qPrintable(QString::number(excess))) << qint64(excess);
}

void TstPackageWriter::the_end_record_never_begins_a_chunk()
{
    QFETCH(qint64, excess);
    packWithExcess(excess);
    const qint64 size = QFileInfo(m_archive).size();
    QVERIFY2(size % PackageChecksum::chunkSize >= 22, qPrintable(QString::number(size)));
    QCOMPARE(size, PackageChecksum::chunkSize + excess + 32);
    QCOMPARE(complaints(m_archive), QString());
}

void TstPackageWriter::padding_is_an_ignored_extra_field()
{
    packWithExcess(1);
    // The first entry's local header: fixed part, name, extra field, content.
    const QByteArray archive = readFile(m_archive).left(200);
    const int nameSize = int(strlen("first.txt"));
    QCOMPARE(archive.mid(26, 2), QByteArray("\x09\0", 2));
    QCOMPARE(archive.mid(28, 2), QByteArray("\x20\0", 2));
    // The growth hint of the Open Packaging Conventions: ID, length of the rest, signature, no reserve, padding.
    QCOMPARE(archive.mid(30 + nameSize, 32), QByteArray("\x20\xA2\x1C\0\x28\xA0\0\0", 8) + QByteArray(24, '\0'));
    const Run content = run("unzip", {"-p", m_archive, "first.txt"});
    QCOMPARE(content.output, QByteArray("the entry that takes the padding"));
    // The other entries have none.
    const QByteArray rest = readFile(m_archive).mid(readFile(m_archive).indexOf("picture.png") - 30);
    QCOMPARE(rest.mid(28, 2), QByteArray("\0\0", 2));
}

void TstPackageWriter::an_archive_that_needs_no_padding_has_none_data()
{
    QTest::addColumn<qint64>("excess");
    for (int excess : {-1, 0, 22, 23})
        QTest::newRow(qPrintable(QString::number(excess))) << qint64(excess);
}

void TstPackageWriter::an_archive_that_needs_no_padding_has_none()
{
    QFETCH(qint64, excess);
    packWithExcess(excess);
    QCOMPARE(QFileInfo(m_archive).size(), PackageChecksum::chunkSize + excess);
}

void TstPackageWriter::memory_stays_bounded()
{
    const auto peak = [] {
        const QByteArray status = readFile("/proc/self/status");
        return status.mid(status.indexOf("VmHWM:") + 6, 20).simplified().split(' ').first().toLongLong() * 1024;
    };
    for (const char *name : {"/stored.png", "/deflated.bin"}) {
        QFile file(m_dir + name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.resize(150 * MiB));
    }
    QFile reset("/proc/self/clear_refs");
    QVERIFY(reset.open(QIODevice::WriteOnly));
    QVERIFY(reset.write("5") == 1 && reset.flush());
    const qint64 before = peak();
    QVERIFY(pack());
    QVERIFY2(peak() - before < 16 * MiB, qPrintable(QString::number((peak() - before) / MiB)));
}

TEST_MAIN_CORE(TstPackageWriter)
#include "tst_packagewriter.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "filesystem.h"
#include "packagereader.h"
#include "packagesnapshot.h"
#include "packagetesting.h"
#include "picturereader.h"
#include "projectlist.h"
#include "replacingfile.h"
#include "zippackagehandle.h"

#include <data/pngmaker.h>
#include <support/customsite.h>
#include <support/packagebuilder.h>
#include <support/testmain.h>
#include <support/warningguard.h>

#include <QBuffer>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <utility>

#include <sys/stat.h>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using TestData::PngMaker;
using TestSupport::noisePicture;
using TestSupport::PackageBuilder;
using TestSupport::pngOf;
using TestSupport::WarningGuard;

/// Sets up a failure in the test's folder.
using Preparation = std::function<void(const QString &folder)>;
Q_DECLARE_METATYPE(Preparation)

/// Every failure reports its path and cause.
class TstReasons : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void a_failed_save_says_why_data();
    void a_failed_save_says_why();
    void a_save_without_room_says_so();
    void save_with_overlong_record_says_so();
    void an_invalid_package_says_why_data();
    void an_invalid_package_says_why();
    void a_failed_edit_says_why_data();
    void a_failed_edit_says_why();
    void an_edit_of_a_locked_package_says_so();
    void a_failed_copy_says_why_data();
    void a_failed_copy_says_why();
    void unreadable_source_is_a_reason();
    void an_entry_that_is_not_extracted_says_why_data();
    void an_entry_that_is_not_extracted_says_why();
    void a_missing_description_is_a_reason();
    void a_package_that_is_not_copied_says_why();
    void a_picture_that_is_not_read_says_why_data();
    void a_picture_that_is_not_read_says_why();
    void success_does_not_change_the_reason();
    void a_missing_package_is_a_reason();
    void nothing_is_logged_below_the_jobs();
    void scan_logs_each_skipped_file_once();

private:
    QString path(const QString &name) const { return m_temp->filePath(name); }
    /// Saves the folder "device" as "projects/show.corvelpro".
    bool save(const FileSystem::FileIdentity &previous, QString *reason);
    /// Returns a complaint unless the text contains the path and ends with the cause, in which "%1" is the test's
    /// folder.
    QString missingIn(const QString &reason, const QString &path, const QString &cause) const;

    QScopedPointer<QTemporaryDir> m_temp;
};

void TstReasons::init()
{
    WarningGuard::clear();
    m_temp.reset(new QTemporaryDir);
    QVERIFY(m_temp->isValid());
}

QString TstReasons::missingIn(const QString &reason, const QString &path, const QString &cause) const
{
    const QString end = QString(cause).replace("%1", m_temp->path());
    return reason.contains(path) && reason.endsWith(end)
               ? QString()
               : QStringLiteral("\"%1\" lacks \"%2\", or does not end with \"%3\"").arg(reason, path, end);
}

bool TstReasons::save(const FileSystem::FileIdentity &previous, QString *reason)
{
    EngineerPacketInfo info;
    info.strFilePath = path("projects/show.corvelpro");
    info.strProjectName = "show";
    return ZipPackageHandle::compressEngineerPacket(path("device"), info, {{{"Preset/1.RPst", 64}}, previous}, reason);
}

void TstReasons::a_failed_save_says_why_data()
{
    QTest::addColumn<Preparation>("prepare");
    QTest::addColumn<QString>("where");
    QTest::addColumn<QString>("cause");

    const auto row = [](const char *name, const QString &where, const QString &cause, const Preparation &prepare) {
        QTest::newRow(name) << prepare << where << cause;
    };
    row("no device folder", "there is no folder", "%1/device",
        [](const QString &folder) { QDir(folder + "/device").removeRecursively(); });
    row("no project folder", "cannot create a file beside", "/projects/show.corvelpro: No such file or directory",
        [](const QString &folder) { QDir(folder + "/projects").removeRecursively(); });
    row("a link that leads outside", "/device/link", "leads out of the device's folder",
        [](const QString &folder) { QFile::link("/etc/hostname", folder + "/device/link"); });
    row("a link that leads back", "/device/BKG/back", "leads back to an enclosing folder",
        [](const QString &folder) { QFile::link(folder + "/device", folder + "/device/BKG/back"); });
    row("a pipe", "/device/pipe", "it is not a plain file, or cannot be read",
        [](const QString &folder) { ::mkfifo(QFile::encodeName(folder + "/device/pipe").constData(), 0600); });
    row("a folder named like a picture", "/device/x.png", "no reader accepts a folder of this name",
        [](const QString &folder) { QDir().mkpath(folder + "/device/x.png"); });
    row("a file named like a folder", "/device/bkg", "no reader accepts a file of this name",
        [](const QString &folder) { writeFile(folder + "/device/bkg", "x"); });
    row("a name that is not UTF-8", "/device", "not UTF-8", [](const QString &folder) {
        QVERIFY(::mkdir((QFile::encodeName(folder) + "/device/\xFF").constData(), 0700) == 0);
    });
    row("a picture's file that is too large", "/device/BKG/BKG_1.png", "no reader accepts a file of this size",
        [](const QString &folder) {
            QFile large(folder + "/device/BKG/BKG_1.png");
            QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(257 * MiB));
        });
    row("a picture with too many pixels", "/device/BKG/BKG_1.png",
        "no reader accepts a picture of this size or with such texts", [](const QString &folder) {
            QVERIFY(writeFile(folder + "/device/BKG/BKG_1.png",
                              PngMaker::signature() + PngMaker::header(900000, 900000) + PngMaker::end()));
        });
    row("a description with too many parts", "/device/192.168.0.10.json",
        "no reader accepts a description with so many parts", [](const QString &folder) {
            QVERIFY(writeFile(folder + "/device/192.168.0.10.json", QByteArray(2000000, '[')));
        });
    row("a description that is too large", "/device",
        "bytes in the description 192.168.0.10.json, the limit is 16777216",
        [](const QString &folder) { QVERIFY(QFile::resize(folder + "/device/192.168.0.10.json", 17 * MiB)); });
    row("a preset that was taken away", "Preset/1.RPst", "was removed from %1/device or changed before it was packed",
        [](const QString &folder) { QFile::remove(folder + "/device/Preset/1.RPst"); });
    row("another file in its place", "", "another file is at %1/projects/show.corvelpro now",
        [](const QString &folder) {
            QFile::remove(folder + "/projects/show.corvelpro");
            writeFile(folder + "/projects/show.corvelpro", "came meanwhile");
        });
}

void TstReasons::a_failed_save_says_why()
{
    QFETCH(Preparation, prepare);
    QFETCH(QString, where);
    QFETCH(QString, cause);
    QVERIFY(makeDeviceTree(path("device")));
    QVERIFY(QDir().mkpath(path("projects")));
    QVERIFY(writeFile(path("projects/show.corvelpro"), "old"));
    const FileSystem::FileIdentity previous(path("projects/show.corvelpro"));
    prepare(m_temp->path());
    QString reason;
    QVERIFY(!save(previous, &reason));
    QCOMPARE(missingIn(reason, where, cause), QString());
    // Qt cannot remove it.
    ::rmdir((QFile::encodeName(m_temp->path()) + "/device/\xFF").constData());
}

void TstReasons::a_save_without_room_says_so()
{
    QVERIFY(makeDeviceTree(path("device")));
    QVERIFY(QDir().mkpath(path("projects")));
    const FileSystem::FileIdentity previous(path("projects/show.corvelpro"));
    QString reason;
    bool isSaved = false;
    {
        const FullDisk fullDisk(4000);
        isSaved = save(previous, &reason);
    }
    QVERIFY(!isSaved);
    QCOMPARE(missingIn(reason, path("projects/show.corvelpro"), "only part of it was written, the disk may be full"),
             QString());
}

void TstReasons::save_with_overlong_record_says_so()
{
    QVERIFY(makeDeviceTree(path("device")));
    EngineerPacketInfo info;
    info.strFilePath = path("show.corvelpro");
    info.strComment = QString(70000, 'x');
    QString reason;
    QVERIFY(!ZipPackageHandle::compressEngineerPacket(path("device"), info, {{}, FileSystem::FileIdentity(path("x"))},
                                                      &reason));
    QCOMPARE(missingIn(reason, "cannot write the record of " + info.strFilePath,
                       "the record has more than 65513 bytes, or contains an end-of-archive signature"),
             QString());
}

void TstReasons::an_invalid_package_says_why_data()
{
    QTest::addColumn<Preparation>("prepare");
    QTest::addColumn<QString>("cause");

    const auto row = [](const char *name, const QString &cause, const std::function<void(const QString &)> &make) {
        QTest::newRow(name) << Preparation([make](const QString &folder) { make(folder + "/show.corvelpro"); })
                            << cause;
    };
    const PackageBuilder good = PackageBuilder().file("a.json", "{}");
    row("a text", "is not a zip archive, or is incomplete",
        [](const QString &file) { QVERIFY(writeFile(file, "text")); });
    row("an empty file", "is not a zip archive, or is incomplete",
        [](const QString &file) { QVERIFY(writeFile(file, "")); });
    row("a cut archive", "is not a zip archive, or is incomplete", [good](const QString &file) {
        const QByteArray whole = PackageBuilder(good).record("show", "x").build();
        QVERIFY(writeFile(file, whole.left(whole.size() / 3)));
    });
    row("a folder", "not a plain file", [](const QString &file) { QVERIFY(QDir().mkpath(file)); });
    row("a pipe", "not a plain file",
        [](const QString &file) { QVERIFY(::mkfifo(QFile::encodeName(file).constData(), 0600) == 0); });
    row("no comment", "not an info record", [good](const QString &file) { QVERIFY(good.write(file)); });
    row("two keys", "not an info record", [good](const QString &file) {
        QVERIFY(PackageBuilder(good).archiveComment(R"({"Checksum": "x", "comment": "y"})").write(file));
    });
    row("another checksum", "its record says \"0123\"", [good](const QString &file) {
        QVERIFY(PackageBuilder(good).recordWithChecksum("0123", "show", "x").write(file));
    });
}

void TstReasons::an_invalid_package_says_why()
{
    QFETCH(Preparation, prepare);
    QFETCH(QString, cause);
    prepare(m_temp->path());
    const QString package = path("show.corvelpro");
    EngineerPacketInfo info;
    info.strFilePath = package;
    QString listing;
    QString importing;
    QString applying;
    QVERIFY(!ZipPackageHandle::getZipFileEngineerInfo(info, &listing));
    QVERIFY(!ZipPackageHandle::isValidEngineerPacket(package, &importing));
    QVERIFY(!ZipPackageHandle::checkPacketChecksum(package, &applying));
    for (const QString &reason : {listing, importing, applying})
        QCOMPARE(missingIn(reason, package, cause), QString());
}

void TstReasons::a_failed_edit_says_why_data()
{
    QTest::addColumn<Preparation>("prepare");
    QTest::addColumn<QString>("cause");

    const auto row = [](const char *name, const QString &cause, const std::function<void(const QString &)> &make) {
        QTest::newRow(name) << Preparation([make](const QString &folder) { make(folder + "/show.corvelpro"); })
                            << cause;
    };
    row("gone", "No such file or directory", [](const QString &file) { QVERIFY(QFile::remove(file)); });
    row("a pipe", "not a plain file", [](const QString &file) {
        QVERIFY(QFile::remove(file) && ::mkfifo(QFile::encodeName(file).constData(), 0600) == 0);
    });
    row("no archive", "is not a zip archive, or is incomplete",
        [](const QString &file) { QVERIFY(writeFile(file, "text")); });
    row("bytes behind the comment",
        "cannot replace the comment of %1/show.corvelpro: the archive is zip64 or spans several disks, or something "
        "follows its comment",
        [](const QString &file) {
            QVERIFY(PackageBuilder().file("a.json", "{}").record("show", "x").trailingBytes("more").write(file));
        });
    row("a record that is too long", "the record has more than 65513 bytes, or contains an end-of-archive signature",
        [](const QString &file) { QVERIFY(PackageBuilder().file("b.json", "{}").record("show", "x").write(file)); });
}

void TstReasons::a_failed_edit_says_why()
{
    QFETCH(Preparation, prepare);
    QFETCH(QString, cause);
    EngineerPacketInfo info;
    info.strFilePath = path("show.corvelpro");
    QVERIFY(PackageBuilder().file("a.json", "{}").record("show", "before").write(info.strFilePath));
    prepare(m_temp->path());
    info.strComment = QString(cause.contains("65513") ? 70000 : 10, 'x');
    QString reason;
    QVERIFY(!ZipPackageHandle::setEngineerInfo(info, &reason));
    QCOMPARE(missingIn(reason, info.strFilePath, cause), QString());
}

void TstReasons::an_edit_of_a_locked_package_says_so()
{
    EngineerPacketInfo info;
    info.strFilePath = path("show.corvelpro");
    QVERIFY(PackageBuilder().file("a.json", "{}").record("show", "before").write(info.strFilePath));
    QFile other(info.strFilePath);
    QVERIFY(other.open(QIODevice::ReadWrite));
    QVERIFY(FileSystem::lock(other.handle()));
    QString reason;
    QVERIFY(!ZipPackageHandle::setEngineerInfo(info, &reason));
    QCOMPARE(missingIn(reason, QString(), "another program keeps %1/show.corvelpro locked"), QString());
}

void TstReasons::a_failed_copy_says_why_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("where");
    QTest::addColumn<QString>("cause");

    QTest::newRow("no source") << "missing"
                               << "copy"
                               << "missing"
                               << "No such file or directory";
    QTest::newRow("a folder") << "folder"
                              << "copy"
                              << "folder"
                              << "not a plain file";
    QTest::newRow("the name is taken") << "source"
                                       << "taken"
                                       << "taken"
                                       << "already exists";
    QTest::newRow("the stick is gone") << "source"
                                       << "stick/copy"
                                       << "stick/copy"
                                       << "No such file or directory";
    QTest::newRow("a file in the folder's place") << "source"
                                                  << "taken/copy"
                                                  << "taken/copy"
                                                  << "Not a directory";
    QTest::newRow("disk full") << "source"
                               << "copy"
                               << "copy"
                               << "only part of it was written, the disk may be full";
}

void TstReasons::a_failed_copy_says_why()
{
    QFETCH(QString, source);
    QFETCH(QString, target);
    QFETCH(QString, where);
    QFETCH(QString, cause);
    QVERIFY(writeFile(path("source"), noise(MiB)));
    QVERIFY(writeFile(path("taken"), "taken"));
    QVERIFY(QDir().mkpath(path("folder")));
    QString reason;
    bool isCopied = false;
    {
        // Not longer: the test's own log may be a file.
        const FullDisk disk(cause.startsWith("only part") ? 1000 : 10 * MiB);
        isCopied = copyToFreeName(path(source), path(target), &reason);
    }
    QVERIFY(!isCopied);
    QCOMPARE(missingIn(reason, path(where), cause), QString());
}

void TstReasons::unreadable_source_is_a_reason()
{
    // A plain file whose first byte cannot be read.
    QString reason;
    QVERIFY(!copyToFreeName("/proc/self/mem", path("copy"), &reason));
    QCOMPARE(missingIn(reason, path("copy"), ": cannot read: Input/output error"), QString());
    QCOMPARE(contents(m_temp->path()), QStringList());
}

void TstReasons::an_entry_that_is_not_extracted_says_why_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("cause");

    QTest::newRow("not there") << "missing"
                               << "there is no such entry, or the archive's directory is damaged";
    QTest::newRow("a link") << "link"
                            << "it is a link, a special file or encrypted";
    QTest::newRow("leads out") << "../out"
                               << "its name could lead out of the folder";
    QTest::newRow("in the way") << "bkg"
                                << "it would block later packages";
    QTest::newRow("wrong CRC") << "damaged"
                               << "its CRC is wrong";
    QTest::newRow("shorter than it says") << "short"
                                          << "it has 100 of 200 bytes";
    QTest::newRow("too large") << "large.json"
                               << "it has 73400320 bytes, and there is room for 67108864";
    QTest::newRow("through a link") << "linked/file"
                                    << "a symbolic link is in the way";
    QTest::newRow("onto a folder") << "folder"
                                   << "Is a directory";
    QTest::newRow("below a file") << "file/below"
                                  << "File exists";
}

void TstReasons::an_entry_that_is_not_extracted_says_why()
{
    QFETCH(QString, entry);
    QFETCH(QString, cause);
    const QByteArray content = noise(100);
    QVERIFY(PackageBuilder()
                .symbolicLink("link", "/etc/hostname")
                .file("../out", content)
                .file("bkg", content)
                .file("damaged", content)
                .claimCrc(1)
                .file("short", content, PackageBuilder::Stored)
                .claimSize(200)
                .file("large.json", content)
                .claimSize(70 * MiB)
                .file("linked/file", content)
                .file("folder", content)
                .file("file/below", content)
                .write(path("show.corvelpro")));
    QVERIFY(QDir().mkpath(path("out/folder")));
    QVERIFY(writeFile(path("out/file"), "file"));
    QVERIFY(QFile::link(m_temp->path(), path("out/linked")));
    PackageReader package(path("show.corvelpro"));
    QString extracting;
    QCOMPARE(package.extractFile(entry, path("out/") + entry, &extracting), QString());
    QCOMPARE(missingIn(extracting, path("out/") + entry, cause), QString());
    QByteArray headless = PackageBuilder().file("a", content).build();
    QVERIFY(writeFile(path("headless.corvelpro"), headless.replace(0, 2, "XX")));
    PackageReader damaged(path("headless.corvelpro"));
    QCOMPARE(damaged.extractFile("a", path("out/a"), &extracting), QString());
    QCOMPARE(missingIn(extracting, path("out/a"), "its header is damaged"), QString());
    QString reading;
    QCOMPARE(package.read("damaged", 100, &reading), QByteArray());
    QCOMPARE(reading, QString("cannot read damaged: its CRC is wrong"));
    QCOMPARE(package.extractFile("file/below", path("out/"), &extracting), QString());
    QCOMPARE(missingIn(extracting, path("out/"), ": the destination is a folder"), QString());
}

void TstReasons::a_missing_description_is_a_reason()
{
    QVERIFY(PackageBuilder().file("a.txt", "x").record("show", "x").write(path("show.corvelpro")));
    QString reason;
    QVERIFY(PackageReader(path("show.corvelpro")).extractJsonFiles(path("out"), &reason).isEmpty());
    QCOMPARE(reason, QString("there is no device description, or the archive's directory is damaged"));

    QVERIFY(PackageBuilder().file("../a.json", "{}").file("b.json", "{}").write(path("show.corvelpro")));
    QCOMPARE(PackageReader(path("show.corvelpro")).extractJsonFiles(path("out"), &reason).size(), 2);
    QCOMPARE(missingIn(reason, "../a.json", "its name could lead out of the folder"), QString());

    QVERIFY(
        PackageBuilder().file("a.json", "{}").file("b.json", "{}").claimSize(64 * MiB).write(path("show.corvelpro")));
    QCOMPARE(PackageReader(path("show.corvelpro")).extractJsonFiles(path("out"), &reason).size(), 2);
    QCOMPARE(reason, QString("b.json exceeds the limits for descriptions"));
}

void TstReasons::a_package_that_is_not_copied_says_why()
{
    PackageSnapshot snapshot;
    QString reason;
    QCOMPARE(snapshot.take(path("missing"), {m_temp->path()}, &reason), PackageSnapshot::Outcome::Unreadable);
    QCOMPARE(missingIn(reason, path("missing"), "No such file or directory"), QString());
    // A plain file whose first byte cannot be read.
    QCOMPARE(snapshot.take("/proc/self/mem", {m_temp->path()}, &reason), PackageSnapshot::Outcome::Unreadable);
    QCOMPARE(reason, QString("cannot read /proc/self/mem: Input/output error"));
    QVERIFY(writeFile(path("show.corvelpro"), noise(MiB)));
    QCOMPARE(snapshot.take(path("show.corvelpro"), {path("no/folder")}, &reason), PackageSnapshot::Outcome::NoRoom);
    QCOMPARE(missingIn(reason, path("show.corvelpro"), "No such file or directory"), QString());
    PackageSnapshot::Outcome outcome = PackageSnapshot::Outcome::Taken;
    {
        const FullDisk disk(1000);
        outcome = snapshot.take(path("show.corvelpro"), {m_temp->path()}, &reason);
    }
    QCOMPARE(outcome, PackageSnapshot::Outcome::NoRoom);
    QCOMPARE(missingIn(reason, "no room for a copy of " + path("show.corvelpro"),
                       ": cannot copy it to %1: cannot write: only part of it was written, the disk may be full"),
             QString());
}

void TstReasons::a_picture_that_is_not_read_says_why_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("cause");

    const QByteArray whole = pngOf(noisePicture({40, 40}, 1));
    const QByteArray pixels = PngMaker::pixels(QByteArray(100, '\0'));
    QTest::newRow("a text") << QByteArray("text")
                            << "it cannot be read, is not a PNG, or is larger than 268435456 bytes";
    QTest::newRow("too wide") << PngMaker::signature() + PngMaker::header(1000001, 1)
                              << "it is too wide or too high, or has too many texts and profiles";
    QTest::newRow("too many pixels") << PngMaker::signature() + PngMaker::header(900000, 900000) + pixels
                                     << "too much memory";
    QTest::newRow("as many pixels as there may be")
        << PngMaker::signature() + PngMaker::header(8192, 6144) + pixels << "Unable to read image data";
    QTest::newRow("no more than a header") << PngMaker::signature() + PngMaker::header(4, 4) << "header is damaged";
    QTest::newRow("cut") << whole.left(whole.size() / 2) << "Unable to read image data";
}

void TstReasons::a_picture_that_is_not_read_says_why()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, cause);
    QBuffer buffer(&file);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    QString reason;
    QVERIFY(PictureReader(&buffer).read(&reason).isNull());
    QVERIFY(!reason.isEmpty());
    QVERIFY2(reason.endsWith(cause), qPrintable(reason));
}

void TstReasons::success_does_not_change_the_reason()
{
    QVERIFY(makeDeviceTree(path("device")));
    QVERIFY(QDir().mkpath(path("projects")));
    const FileSystem::FileIdentity previous(path("projects/show.corvelpro"));
    QString reason;
    QVERIFY2(save(previous, &reason), qPrintable(reason));
    EngineerPacketInfo info;
    info.strFilePath = path("projects/show.corvelpro");
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info, &reason));
    QVERIFY(ZipPackageHandle::setEngineerInfo(info, &reason));
    QVERIFY(copyToFreeName(info.strFilePath, path("copy"), &reason));
    PackageReader package(info.strFilePath);
    QVERIFY(!package.extractFile("Preset/1.RPst", path("out"), &reason).isEmpty());
    QVERIFY(package.read("Preset/1.RPst", 100, &reason).size() == 64);
    QCOMPARE(package.extractJsonFiles(path("json"), &reason).size(), 1);
    QCOMPARE(reason, QString());
}

void TstReasons::a_missing_package_is_a_reason()
{
    EngineerPacketInfo info;
    info.strFilePath = path("missing.zip");
    const QString expected = info.strFilePath + " does not exist";
    QString reason;
    QVERIFY(!ZipPackageHandle::getZipFileEngineerInfo(info, &reason));
    QCOMPARE(std::exchange(reason, QString()), expected);
    QVERIFY(!ZipPackageHandle::isValidEngineerPacket(info.strFilePath, &reason));
    QCOMPARE(std::exchange(reason, QString()), expected);
    QVERIFY(!ZipPackageHandle::setEngineerInfo(info, &reason));
    QCOMPARE(reason, expected);
}

void TstReasons::nothing_is_logged_below_the_jobs()
{
    QString reason;
    QVERIFY(!ZipPackageHandle::isValidEngineerPacket(path("missing.corvelpro"), &reason));
    QVERIFY(!ZipPackageHandle::checkPacketChecksum(path("missing.corvelpro"), &reason));
    EngineerPacketInfo info;
    info.strFilePath = path("missing.corvelpro");
    QVERIFY(!ZipPackageHandle::setEngineerInfo(info, &reason));
    QVERIFY(!copyToFreeName(path("missing"), path("copy"), &reason));
    QVERIFY(!save(FileSystem::FileIdentity(path("x")), &reason));
    QCOMPARE(WarningGuard::texts(QtDebugMsg), QStringList());
}

void TstReasons::scan_logs_each_skipped_file_once()
{
    const QString broken = path("broken.corvelpro");
    QVERIFY(writeFile(broken, "text"));
    QVERIFY(PackageBuilder().file("a.json", "{}").record("show", "x").write(path("good.corvelpro")));
    ProjectList list;
    const auto logged = [&] {
        WarningGuard::clear();
        list.scanProjectFiles(m_temp->path() + '/', list.beginScan());
        return WarningGuard::texts(QtDebugMsg);
    };
    QCOMPARE(logged(), QStringList{"Not listed: " + broken + " is not a zip archive, or is incomplete"});
    QCOMPARE(logged(), QStringList());
    QVERIFY(PackageBuilder().file("a.json", "{}").write(broken));
    QCOMPARE(logged(), QStringList{"Not listed: " + broken + ": the archive's comment is not an info record"});
    QCOMPARE(logged(), QStringList());
    QVERIFY(PackageBuilder().file("a.json", "{}").record("show", "x").write(broken));
    QCOMPARE(logged(), QStringList());
    QCOMPARE(list.listProjects.size(), 2);

    WarningGuard::clear();
    list.scanProjectFiles(broken + "/below/", list.beginScan());
    QCOMPARE(WarningGuard::texts(QtDebugMsg),
             QStringList{"Not listed: cannot create the folder " + broken + ": File exists"});
}

TEST_MAIN(TstReasons)
#include "tst_reasons.moc"

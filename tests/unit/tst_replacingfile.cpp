// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "filesystem.h"
#include "packagereader.h"
#include "packagetesting.h"
#include "projectlist.h"
#include "replacingfile.h"
#include "zippackagehandle.h"

#include <support/packagebuilder.h>
#include <support/testmain.h>

#include <QDateTime>
#include <QTemporaryDir>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using TestSupport::PackageBuilder;

/// Replacing, copying and renaming files atomically, and recovery after a kill.
class TstReplacingFile : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void fragment_is_hidden_and_removed_on_destruction();
    void required_target_is_kept();
    void copy_keeps_content_and_permissions();
    void changing_a_copy_leaves_its_source_alone();
    void file_written_in_many_steps_is_complete();
    void copying_never_overwrites();
    void copying_creates_no_folder();
    void copying_a_special_file_fails_at_once_data();
    void copying_a_special_file_fails_at_once();
    void copy_does_not_follow_a_dangling_link();
    void renaming_never_overwrites();
    void missing_folder_is_created_with_its_parents();
    void file_at_a_folders_path_is_reported();

    void only_old_fragments_are_stale();
    void other_files_are_never_stale_fragments_data();
    void other_files_are_never_stale_fragments();
    void scanning_saving_copying_and_extracting_remove_stale_fragments_data();
    void scanning_saving_copying_and_extracting_remove_stale_fragments();
    void fragments_are_not_packed();

    void record_keeps_its_checksum_when_written();
    void read_only_package_keeps_its_record();

private:
    QString path(const QString &name) const { return m_temp->filePath(name); }
    bool addFragment(const QString &folder, int hoursOld, const QString &name = fragment()) const;
    static QString fragment() { return QStringLiteral(".01234567-89ab-cdef-0123-456789abcdef.part"); }

    QScopedPointer<QTemporaryDir> m_temp;
};

void TstReplacingFile::init()
{
    m_temp.reset(new QTemporaryDir);
    QVERIFY(m_temp->isValid());
}

bool TstReplacingFile::addFragment(const QString &folder, int hoursOld, const QString &name) const
{
    if (!writeFile(path(folder) + '/' + name, "half a package"))
        return false;
    QFile file(path(folder) + '/' + name);
    return file.open(QIODevice::ReadWrite) &&
           file.setFileTime(QDateTime::currentDateTime().addSecs(-3600 * hoursOld), QFileDevice::FileModificationTime);
}

void TstReplacingFile::fragment_is_hidden_and_removed_on_destruction()
{
    QVERIFY(writeFile(path("target"), "old"));
    {
        ReplacingFile file(path("target"), ReplacingFile::Durability::FlushedToDisk);
        QVERIFY(file.create());
        QCOMPARE(file.file().write("new"), qint64(3));
        const QString name = QFileInfo(file.path()).fileName();
        QVERIFY2(ReplacingFile::isFragment(name), qPrintable(name));
        QCOMPARE(contents(m_temp->path()), (QStringList{name, "target"}));
    }
    QCOMPARE(contents(m_temp->path()), QStringList{"target"});
    QCOMPARE(readFile(path("target")), QByteArray("old"));
}

void TstReplacingFile::required_target_is_kept()
{
    for (const auto durability : {ReplacingFile::Durability::FlushedToDisk, ReplacingFile::Durability::NotFlushed}) {
        QVERIFY(writeFile(path("target"), "old"));
        for (const bool keep : {true, false}) {
            ReplacingFile file(path("target"), durability);
            QVERIFY(file.create());
            QCOMPARE(file.file().write("new"), qint64(3));
            QCOMPARE(file.commit(keep ? ReplacingFile::ExistingTarget::Kept : ReplacingFile::ExistingTarget::Replaced),
                     !keep);
            QCOMPARE(readFile(path("target")), QByteArray(keep ? "old" : "new"));
        }
    }
    QCOMPARE(contents(m_temp->path()), QStringList{"target"});
}

void TstReplacingFile::copy_keeps_content_and_permissions()
{
    const QByteArray bytes = noise(3 * MiB + 1);
    QVERIFY(writeFile(path("source"), bytes));
    // Like from a read-only medium.
    QVERIFY(QFile::setPermissions(path("source"), QFile::ReadOwner | QFile::ReadGroup));
    QVERIFY(copyToFreeName(path("source"), path("copy")));
    QVERIFY(readFile(path("copy")) == bytes);
    struct stat status;
    QCOMPARE(stat(QFile::encodeName(path("copy")).constData(), &status), 0);
    QCOMPARE(int(status.st_mode & 0777), 0440);
    QCOMPARE(contents(m_temp->path()), (QStringList{"copy", "source"}));
}

void TstReplacingFile::changing_a_copy_leaves_its_source_alone()
{
    const QByteArray content = QByteArray("the same in both ").repeated(3000);
    QVERIFY(writeFile(path("source"), content));
    ReplacingFile copy(path("target"), ReplacingFile::Durability::FlushedToDisk);
    QVERIFY(copy.createFrom(path("source")));
    QCOMPARE(copy.file().pos(), qint64(0));
    QCOMPARE(copy.file().write("only here"), qint64(9));
    QVERIFY(copy.file().resize(20000));
    QVERIFY(copy.commit());
    QCOMPARE(readFile(path("source")), content);
    QCOMPARE(readFile(path("target")), "only here" + content.mid(9, 20000 - 9));
}

/// Large enough that writing starts before the end, with numbers at the beginning that are known only then.
void TstReplacingFile::file_written_in_many_steps_is_complete()
{
    ReplacingFile file(path("target"), ReplacingFile::Durability::FlushedToDisk);
    QVERIFY(file.create());
    QByteArray expected("begun");
    QCOMPARE(file.file().write(expected), qint64(expected.size()));
    for (int step = 0; step < 300; ++step) {
        const QByteArray block(100000, char('a' + step % 26));
        QCOMPARE(file.file().write(block), qint64(block.size()));
        expected += block;
    }
    QVERIFY(file.file().seek(0));
    QCOMPARE(file.file().write("ended"), qint64(5));
    expected.replace(0, 5, "ended");
    QVERIFY(file.commit());
    QVERIFY(readFile(path("target")) == expected);
}

void TstReplacingFile::copying_never_overwrites()
{
    QVERIFY(writeFile(path("source"), "new"));
    QVERIFY(writeFile(path("copy"), "old"));
    QVERIFY(QDir().mkpath(path("folder")));
    QVERIFY(!copyToFreeName(path("source"), path("copy")));
    QVERIFY(!copyToFreeName(path("source"), path("source")));
    QVERIFY(!copyToFreeName(path("source"), path("folder")));
    QVERIFY(!copyToFreeName(path("missing"), path("new")));
    QCOMPARE(readFile(path("copy")), QByteArray("old"));
    QCOMPARE(readFile(path("source")), QByteArray("new"));
    QCOMPARE(contents(m_temp->path()), (QStringList{"copy", "folder", "source"}));
}

void TstReplacingFile::copying_creates_no_folder()
{
    QVERIFY(writeFile(path("source"), "new"));
    QVERIFY(!copyToFreeName(path("source"), path("stick/copy")));
    QCOMPARE(contents(m_temp->path()), QStringList{"source"});
}

void TstReplacingFile::copying_a_special_file_fails_at_once_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("linked");
    QTest::newRow("pipe") << "pipe" << false;
    QTest::newRow("link to a pipe") << "pipe" << true;
    QTest::newRow("folder") << "folder" << false;
    QTest::newRow("device") << "/dev/zero" << true;
}

void TstReplacingFile::copying_a_special_file_fails_at_once()
{
    QFETCH(QString, kind);
    QFETCH(bool, linked);
    QCOMPARE(::mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    QVERIFY(QDir().mkdir(path("folder")));
    const QString object = kind.startsWith('/') ? kind : path(kind);
    const QString source = linked ? path("link") : object;
    QVERIFY(!linked || QFile::link(object, source));
    const QStringList before = contents(m_temp->path());
    // Waiting at the pipe, or copying the device, would never end.
    QVERIFY(!copyToFreeName(source, path("copy")));
    QCOMPARE(contents(m_temp->path()), before);
}

void TstReplacingFile::copy_does_not_follow_a_dangling_link()
{
    QVERIFY(writeFile(path("source"), "new"));
    QVERIFY(QFile::link(path("missing"), path("copy")));
    QVERIFY(!copyToFreeName(path("source"), path("copy")));
    QCOMPARE(contents(m_temp->path()), (QStringList{"copy", "source"}));
}

void TstReplacingFile::renaming_never_overwrites()
{
    QVERIFY(writeFile(path("from"), "new"));
    QVERIFY(writeFile(path("taken"), "old"));
    QVERIFY(!FileSystem::renameDurably(path("from"), path("taken")));
    QVERIFY(!FileSystem::renameDurably(path("missing"), path("free")));
    QVERIFY(!FileSystem::renameDurably(path("from"), path("no folder/free")));
    QCOMPARE(contents(m_temp->path()), (QStringList{"from", "taken"}));
    QCOMPARE(readFile(path("taken")), QByteArray("old"));
    QVERIFY(FileSystem::renameDurably(path("from"), path("free")));
    QCOMPARE(contents(m_temp->path()), (QStringList{"free", "taken"}));
    QCOMPARE(readFile(path("free")), QByteArray("new"));
}

void TstReplacingFile::missing_folder_is_created_with_its_parents()
{
    QVERIFY(FileSystem::makeFolder(path("a/b/c/")));
    QVERIFY(FileSystem::makeFolder(path("a/b/c")));
    QCOMPARE(contents(m_temp->path()), (QStringList{"a", "a/b", "a/b/c"}));
}

void TstReplacingFile::file_at_a_folders_path_is_reported()
{
    QVERIFY(writeFile(path("a"), "a file"));
    QVERIFY(!FileSystem::makeFolder(path("a")));
    QVERIFY(!FileSystem::makeFolder(path("a/b/c")));
    QVERIFY(!FileSystem::flushTree(path("missing")));
}

void TstReplacingFile::only_old_fragments_are_stale()
{
    QVERIFY(addFragment("folder", 25, ".00000000-0000-0000-0000-000000000001.part"));
    QVERIFY(addFragment("folder", 23, ".00000000-0000-0000-0000-000000000002.part"));
    QVERIFY(addFragment("folder", -30, ".00000000-0000-0000-0000-000000000003.part"));
    ReplacingFile::removeStaleFragments(path("folder"));
    QCOMPARE(contents(path("folder")),
             (QStringList{".00000000-0000-0000-0000-000000000002.part", ".00000000-0000-0000-0000-000000000003.part"}));
}

void TstReplacingFile::other_files_are_never_stale_fragments_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("visible") << fragment().mid(1);
    QTest::newRow("another extension") << fragment() + ".corvelpro";
    QTest::newRow("no id") << ".show.part";
    QTest::newRow("another form of id") << ".{01234567-89ab-cdef-0123-456789abcdef}.part";
    QTest::newRow("longer") << fragment().insert(1, 'a');
    QTest::newRow("with a line end") << fragment() + '\n';
}

void TstReplacingFile::other_files_are_never_stale_fragments()
{
    QFETCH(QString, name);
    QVERIFY(!ReplacingFile::isFragment(name));
    QVERIFY(addFragment("folder", 1000, name));
    ReplacingFile::removeStaleFragments(path("folder"));
    QCOMPARE(contents(path("folder")), QStringList{name});
    // Nor is a folder or a link.
    QVERIFY(QDir().mkpath(path("other/") + fragment()));
    ReplacingFile::removeStaleFragments(path("other"));
    QCOMPARE(contents(path("other")), QStringList{fragment()});
}

void TstReplacingFile::scanning_saving_copying_and_extracting_remove_stale_fragments_data()
{
    QTest::addColumn<QString>("work");
    for (const char *work : {"scan", "save", "copy", "extract"})
        QTest::newRow(work) << QString(work);
}

void TstReplacingFile::scanning_saving_copying_and_extracting_remove_stale_fragments()
{
    QFETCH(QString, work);
    const QString young = fragment().replace('0', 'f');
    QVERIFY(addFragment("folder", 48));
    QVERIFY(addFragment("folder", 1, young));
    const QString package = path("folder/show.corvelpro");
    QVERIFY(PackageBuilder().file("a.txt", "text").record("show", "comment").write(package));
    EngineerPacketInfo info;
    info.strFilePath = package;

    if (work == "scan") {
        ProjectList list;
        list.scanProjectFiles(path("folder/"), list.beginScan());
        QCOMPARE(list.listProjects.size(), 1);
    } else if (work == "save") {
        QVERIFY(makeDeviceTree(path("device")));
        QVERIFY(ZipPackageHandle::compressEngineerPacket(path("device"), info));
    } else if (work == "copy") {
        QVERIFY(writeFile(path("source"), "bytes"));
        QVERIFY(copyToFreeName(path("source"), path("folder/copy")));
    } else {
        QVERIFY(!PackageReader(package).extractFile("a.txt", path("folder/a.txt")).isEmpty());
    }
    const QStringList left = contents(path("folder"));
    QVERIFY2(!left.contains(fragment()), qPrintable(left.join(' ')));
    QVERIFY2(left.contains(young), qPrintable(left.join(' ')));
}

void TstReplacingFile::fragments_are_not_packed()
{
    QVERIFY(makeDeviceTree(path("device")));
    QVERIFY(addFragment("device/BKG", 0));
    EngineerPacketInfo info;
    info.strFilePath = path("show.corvelpro");
    QVERIFY(ZipPackageHandle::compressEngineerPacket(path("device"), info));
    const QStringList entries = ZipPackageHandle::getFileList(info.strFilePath);
    QVERIFY(entries.contains("BKG/BKG_0.png"));
    QVERIFY2(entries.filter(".part").isEmpty(), qPrintable(entries.join(' ')));
}

void TstReplacingFile::record_keeps_its_checksum_when_written()
{
    EngineerPacketInfo info;
    info.strFilePath = path("show.corvelpro");
    QVERIFY(PackageBuilder().file("a.txt", "text").record("show", "before").write(info.strFilePath));
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    EngineerPacketInfo edited = info;
    edited.strProjectName = QString::fromUtf8("演出");
    edited.strComment = "after";
    QVERIFY(ZipPackageHandle::setEngineerInfo(edited));
    EngineerPacketInfo read;
    read.strFilePath = info.strFilePath;
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(read));
    QCOMPARE(read.strProjectName, edited.strProjectName);
    QCOMPARE(read.strComment, edited.strComment);
    QCOMPARE(read.strChecksum, info.strChecksum);
}

void TstReplacingFile::read_only_package_keeps_its_record()
{
    const QString package = path("show.corvelpro");
    QVERIFY(PackageBuilder().file("a.txt", "text").record("show", "before").write(package));
    QCOMPARE(run("chmod", {"777", m_temp->path()}).exitCode, 0);
    QCOMPARE(run("chmod", {"444", package}).exitCode, 0);
    const QByteArray before = readFile(package);
    const OrdinaryUser user;
    QVERIFY(!ZipPackageHandle::setZipComment(package, "another"));
    QVERIFY(readFile(package) == before);
}

TEST_MAIN_CORE(TstReplacingFile)
#include "tst_replacingfile.moc"

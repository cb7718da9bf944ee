// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagechecksum.h"
#include "packagetesting.h"
#include "projectlist.h"
#include "zippackagehandle.h"

#include <support/packagebuilder.h>
#include <support/testmain.h>

#include <QDateTime>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <functional>
#include <memory>

#include <fcntl.h>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using TestSupport::PackageBuilder;

/// An edit of a package's record like the panel's, seen from outside: its effect on the file and its neighbours, and on
/// other programs working on the same file.
class TstPackageEditing : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void edit_changes_only_the_end_of_the_file();
    void an_edit_keeps_file_time_permissions_and_place();
    void an_edit_leaves_nothing_beside_the_package();
    void an_edit_needs_no_room_for_a_copy();
    void edit_works_in_a_read_only_folder();
    void replaced_package_gets_its_own_checksum();
    void archive_ending_just_past_a_chunk_stays_valid_data();
    void archive_ending_just_past_a_chunk_stays_valid();
    void unusual_archives_are_refused_data();
    void unusual_archives_are_refused();
    void unfindable_comment_is_refused_data();
    void unfindable_comment_is_refused();
    void a_named_pipe_keeps_no_edit_waiting();
    void a_deleted_package_never_comes_back();
    void a_package_replaced_under_an_edit_stays_whole();
    void two_simultaneous_edits_leave_one_record();

private:
    QString path(const QString &name) const { return m_temp->filePath(name); }
    /// Writes a package and reads its record.
    EngineerPacketInfo package(const QString &name);
    static EngineerPacketInfo withComment(EngineerPacketInfo info, const QString &comment);
    static QString commentOf(const QString &path);

    QScopedPointer<QTemporaryDir> m_temp;
};

namespace {

const QString editOption = QStringLiteral("--edit");

struct stat statusOf(const QString &path)
{
    struct stat status = {};
    stat(QFile::encodeName(path).constData(), &status);
    return status;
}

bool isSameTime(const timespec &one, const timespec &other)
{
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

} // namespace

void TstPackageEditing::init()
{
    m_temp.reset(new QTemporaryDir);
    QVERIFY(m_temp->isValid());
}

EngineerPacketInfo TstPackageEditing::package(const QString &name)
{
    EngineerPacketInfo info;
    info.strFilePath = path(name);
    if (!PackageBuilder().file("device.json", noise(3000)).record("show", "before").write(info.strFilePath) ||
        !ZipPackageHandle::getZipFileEngineerInfo(info))
        qFatal("No package to edit");
    return info;
}

EngineerPacketInfo TstPackageEditing::withComment(EngineerPacketInfo info, const QString &comment)
{
    info.strComment = comment;
    return info;
}

QString TstPackageEditing::commentOf(const QString &path)
{
    EngineerPacketInfo info;
    info.strFilePath = path;
    return ZipPackageHandle::getZipFileEngineerInfo(info) ? info.strComment : QStringLiteral("no valid package");
}

void TstPackageEditing::edit_changes_only_the_end_of_the_file()
{
    const EngineerPacketInfo info = package("show.corvelpro");
    const QByteArray before = readFile(info.strFilePath);
    const QByteArray oldRecord = PackageBuilder::infoRecord(info.strChecksum, "show", "before");
    QVERIFY(before.endsWith(oldRecord));
    for (const QString &comment : {QString(1000, 'l'), QString(), QString("before"), QString::fromUtf8("演出")}) {
        EngineerPacketInfo edited = withComment(info, comment);
        QVERIFY(ZipPackageHandle::setEngineerInfo(edited));
        const QByteArray after = readFile(info.strFilePath);
        const QByteArray record = PackageBuilder::infoRecord(info.strChecksum, "show", comment);
        QVERIFY(after.endsWith(record));
        QCOMPARE(after.left(after.size() - record.size() - 2), before.left(before.size() - oldRecord.size() - 2));
        QCOMPARE(commentOf(info.strFilePath), comment);
        QCOMPARE(complaints(info.strFilePath), QString());
    }
}

void TstPackageEditing::an_edit_keeps_file_time_permissions_and_place()
{
    const EngineerPacketInfo first = package("first.corvelpro");
    const EngineerPacketInfo second = package("second.corvelpro");
    QCOMPARE(run("touch", {"-d", "2020-02-29 10:15:30.123456789 UTC", first.strFilePath}).exitCode, 0);
    QVERIFY(QFile::setPermissions(first.strFilePath, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
    const struct stat before = statusOf(first.strFilePath);
    EngineerPacketInfo edited = withComment(first, "after");
    QVERIFY(ZipPackageHandle::setEngineerInfo(edited));
    const struct stat after = statusOf(first.strFilePath);
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(after.st_mode, before.st_mode);
    QVERIFY(isSameTime(after.st_mtim, before.st_mtim));
    ProjectList list;
    list.scanProjectFiles(m_temp->path() + '/', list.beginScan());
    QCOMPARE(list.listProjects.size(), 2);
    QCOMPARE(list.listProjects.at(1).strComment, QString("after"));
}

void TstPackageEditing::an_edit_leaves_nothing_beside_the_package()
{
    EngineerPacketInfo edited = withComment(package("show.corvelpro"), "after");
    QVERIFY(ZipPackageHandle::setEngineerInfo(edited));
    QCOMPARE(contents(m_temp->path()), QStringList{"show.corvelpro"});
}

void TstPackageEditing::an_edit_needs_no_room_for_a_copy()
{
    EngineerPacketInfo info = package("show.corvelpro");
    QVERIFY(PackageBuilder()
                .file("large", noise(MiB), PackageBuilder::Stored)
                .record("show", "before")
                .write(info.strFilePath));
    // A process may mount file systems in its own namespace.
    const QString script =
        "mkdir \"$1/small\" && mount -t tmpfs -o size=1100k none \"$1/small\" &&"
        "cp \"$1/show.corvelpro\" \"$1/small\" && cd \"$1/small\" || exit 77\n"
        // Two blocks are free.
        "dd if=/dev/zero of=filler bs=4096 count=$(($(stat -f -c %a .) - 2)) 2>/dev/null || exit 77\n"
        "\"$0\" --edit \"$1/small/show.corvelpro\" after 1 || exit 1\n"
        "test \"$(ls -A)\" = \"filler\nshow.corvelpro\" || exit 2\n"
        "cp show.corvelpro \"$1/edited.corvelpro\"\n";
    const Run run = PackageTesting::run(
        "unshare", {"-rm", "sh", "-c", script, QCoreApplication::applicationFilePath(), m_temp->path()});
    if (run.exitCode != 0 && !QFileInfo(path("small")).isDir())
        QSKIP("No small file system can be mounted here");
    QVERIFY2(run.exitCode == 0, run.output + run.errors);
    QCOMPARE(commentOf(path("edited.corvelpro")), QString("after"));
}

void TstPackageEditing::edit_works_in_a_read_only_folder()
{
    EngineerPacketInfo edited = withComment(package("show.corvelpro"), "after");
    QCOMPARE(run("chmod", {"666", edited.strFilePath}).exitCode, 0);
    QCOMPARE(run("chmod", {"555", m_temp->path()}).exitCode, 0);
    {
        const OrdinaryUser user;
        QVERIFY(ZipPackageHandle::setEngineerInfo(edited));
    }
    QCOMPARE(commentOf(edited.strFilePath), QString("after"));
    QCOMPARE(run("chmod", {"755", m_temp->path()}).exitCode, 0);
}

void TstPackageEditing::replaced_package_gets_its_own_checksum()
{
    EngineerPacketInfo listed = package("show.corvelpro");
    // Another program replaces it with one whose first bytes, and so its checksum, differ.
    QVERIFY(
        PackageBuilder().file("a.txt", "text").claimVersionNeeded(10).record("other", "b").write(listed.strFilePath));
    const QString before = listed.strChecksum;
    listed.strComment = "after";
    QVERIFY(ZipPackageHandle::setEngineerInfo(listed));
    QCOMPARE(commentOf(listed.strFilePath), QString("after"));
    QVERIFY(listed.strChecksum != before);
    QCOMPARE(listed.strChecksum, ZipPackageHandle::calcPacketChecksum(listed.strFilePath));
}

void TstPackageEditing::archive_ending_just_past_a_chunk_stays_valid_data()
{
    QTest::addColumn<int>("behind");
    for (int behind = -1; behind <= 23; ++behind)
        QTest::newRow(qPrintable(QStringLiteral("%1 bytes").arg(behind))) << behind;
}

// Then the end record is part of the last chunk and may reach the comment's length, which the edit changes.
void TstPackageEditing::archive_ending_just_past_a_chunk_stays_valid()
{
    QFETCH(int, behind);
    const auto archive = [](qint64 size) {
        return PackageBuilder().file("a", noise(size), PackageBuilder::Stored).build();
    };
    const qint64 frame = archive(0).size();
    EngineerPacketInfo info;
    info.strFilePath = path("show.corvelpro");
    QVERIFY(writeFile(info.strFilePath, archive(PackageChecksum::chunkSize + behind - frame)));
    QCOMPARE(QFileInfo(info.strFilePath).size(), PackageChecksum::chunkSize + behind);
    for (const QString &comment : {QString("a"), QString(300, 'b'), QString(20000, 'c')}) {
        info.strComment = comment;
        QVERIFY(ZipPackageHandle::setEngineerInfo(info));
        QCOMPARE(commentOf(info.strFilePath), comment);
    }
}

void TstPackageEditing::unusual_archives_are_refused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const PackageBuilder good = PackageBuilder().file("device.json", "{}");
    const QByteArray archive = good.build();
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("text") << QByteArray("no archive");
    QTest::newRow("zeros") << QByteArray(70000, '\0');
    QTest::newRow("cut in the end record") << archive.left(archive.size() - 1);
    QTest::newRow("cut in the comment") << PackageBuilder(good).archiveComment("a comment").build().chopped(1);
    QTest::newRow("a byte behind the comment")
        << PackageBuilder(good).record("show", "before").trailingBytes("\n").build();
    QTest::newRow("a comment too long to be read")
        << PackageBuilder(good).archiveComment(QByteArray(65514, 'c')).build();
    QByteArray otherDisk = archive;
    otherDisk[archive.size() - 18] = 1;
    QTest::newRow("of several disks") << otherDisk;
    const QByteArray end = archive.right(22);
    QTest::newRow("64-bit") << archive.chopped(22) + QByteArray("PK\x06\x06", 4) + QByteArray(52, '\0') +
                                   QByteArray("PK\x06\x07", 4) + QByteArray(16, '\0') + end;
}

void TstPackageEditing::unusual_archives_are_refused()
{
    QFETCH(QByteArray, bytes);
    EngineerPacketInfo info;
    info.strFilePath = path("show.corvelpro");
    QVERIFY(writeFile(info.strFilePath, bytes));
    QVERIFY(!ZipPackageHandle::setEngineerInfo(info));
    QVERIFY(!ZipPackageHandle::setZipComment(info.strFilePath, "x"));
    QVERIFY(readFile(info.strFilePath) == bytes);
    QCOMPARE(contents(m_temp->path()), QStringList{"show.corvelpro"});
}

void TstPackageEditing::unfindable_comment_is_refused_data()
{
    QTest::addColumn<QString>("comment");
    QTest::newRow("too long") << QString(65514, 'c');
    QTest::newRow("holds a NUL") << QString::fromLatin1("a\0b", 3);
    QTest::newRow("looks like the end of an archive") << QString("a PK\x05\x06 b");
    QTest::newRow("looks like a whole end") << QString("PK\x05\x06") + QString(18, 'x');
    QTest::newRow("looks like a 64-bit end") << QString("PK\x06\x07") + QString(16, 'x');
}

void TstPackageEditing::unfindable_comment_is_refused()
{
    QFETCH(QString, comment);
    const EngineerPacketInfo info = package("show.corvelpro");
    const QByteArray before = readFile(info.strFilePath);
    QVERIFY(!ZipPackageHandle::setZipComment(info.strFilePath, comment));
    QVERIFY(readFile(info.strFilePath) == before);
}

void TstPackageEditing::a_named_pipe_keeps_no_edit_waiting()
{
    EngineerPacketInfo info;
    info.strFilePath = path("show.corvelpro");
    QCOMPARE(::mkfifo(QFile::encodeName(info.strFilePath).constData(), 0600), 0);
    QVERIFY(!ZipPackageHandle::setEngineerInfo(info));
    QVERIFY(!ZipPackageHandle::setZipComment(info.strFilePath, "x"));
}

void TstPackageEditing::a_deleted_package_never_comes_back()
{
    constexpr int rounds = 200;
    for (int round = 0; round < rounds; ++round) {
        EngineerPacketInfo info = package("show.corvelpro");
        std::unique_ptr<QThread> editor(QThread::create([&info] {
            for (int edit = 0; edit < 50 && ZipPackageHandle::setEngineerInfo(info); ++edit)
                info.strComment = QString(edit % 7, 'x');
        }));
        editor->start();
        // At a random point of an edit, different in each round.
        for (int pause = 0; pause < round % 20; ++pause)
            readFile(info.strFilePath);
        QVERIFY(QFile::remove(path("show.corvelpro")));
        QVERIFY(editor->wait());
        QVERIFY2(contents(m_temp->path()).isEmpty(), qPrintable(QString::number(round)));
    }
}

void TstPackageEditing::a_package_replaced_under_an_edit_stays_whole()
{
    const QByteArray other = PackageBuilder().file("other", noise(500)).record("other", "other").build();
    constexpr int rounds = 50;
    for (int round = 0; round < rounds; ++round) {
        EngineerPacketInfo info = package("show.corvelpro");
        QVERIFY(writeFile(path("other"), other));
        std::unique_ptr<QThread> editor(QThread::create([info]() mutable {
            for (int edit = 0; edit < 5; ++edit) {
                info.strComment = QString(edit + 1, 'x');
                ZipPackageHandle::setEngineerInfo(info);
            }
        }));
        editor->start();
        for (int pause = 0; pause < round; ++pause)
            readFile(info.strFilePath);
        QCOMPARE(std::rename(QFile::encodeName(path("other")), QFile::encodeName(path("show.corvelpro"))), 0);
        QVERIFY(editor->wait());
        const QString comment = commentOf(info.strFilePath);
        QVERIFY2(comment == "other" || comment == QString(comment.size(), 'x'), qPrintable(comment));
        QCOMPARE(ZipPackageHandle::getFileList(info.strFilePath), QStringList{"other"});
        QCOMPARE(contents(m_temp->path()), QStringList{"show.corvelpro"});
    }
}

void TstPackageEditing::two_simultaneous_edits_leave_one_record()
{
    const EngineerPacketInfo info = package("show.corvelpro");
    QProcess programs[2];
    const QString comments[] = {QString(5000, 'a'), QString(20, 'b')};
    for (int number : {0, 1}) {
        programs[number].setProcessChannelMode(QProcess::ForwardedChannels);
        programs[number].start(QCoreApplication::applicationFilePath(),
                               {editOption, info.strFilePath, comments[number], "100"});
    }
    for (QProcess &program : programs) {
        QVERIFY(program.waitForFinished(120000));
        QCOMPARE(program.exitCode(), 0);
    }
    const QString left = commentOf(info.strFilePath);
    QVERIFY2(left == comments[0] || left == comments[1], qPrintable(left));
    QCOMPARE(complaints(info.strFilePath), QString());
    QCOMPARE(contents(m_temp->path()), QStringList{"show.corvelpro"});
}

namespace {

/// Another program that edits a package: path, comment, repetitions.
int editAndExit(const QStringList &arguments)
{
    EngineerPacketInfo info;
    info.strFilePath = arguments.value(2);
    info.strComment = arguments.value(3);
    // An edit may be refused if another one blocks it for too long, which happens in a race of hundreds.
    int done = 0;
    for (int round = 0; round < arguments.value(4).toInt(); ++round)
        done += ZipPackageHandle::setEngineerInfo(info) ? 1 : 0;
    return done > 0 ? 0 : 1;
}

} // namespace

int main(int argc, char *argv[])
{
    TestSupport::TestHome home;
    QCoreApplication application(argc, argv);
    if (QCoreApplication::arguments().value(1) == editOption)
        return editAndExit(QCoreApplication::arguments());
    TstPackageEditing test;
    QTEST_SET_MAIN_SOURCE_PATH
    return TestSupport::runTest(&test, argc, argv);
}

#include "tst_packageediting.moc"

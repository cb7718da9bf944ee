// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "inplacefile.h"
#include "packagetesting.h"
#include "projectlist.h"
#include "undorecord.h"
#include "zippackagehandle.h"

#include <support/packagebuilder.h>
#include <support/testmain.h>

#include <QDateTime>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <ctime>
#include <functional>
#include <utility>

#include <sys/syscall.h>
#include <unistd.h>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using TestSupport::PackageBuilder;

Q_DECLARE_METATYPE(UndoRecord)

namespace {

/// What happens elsewhere the next time that this thread sleeps, or a file is to be flushed.
std::function<void()> s_whileAsleep;
std::function<void()> s_beforeFlush;
/// The error with which flushing fails.
int s_flushError = 0;

void runOnce(std::function<void()> &action)
{
    if (const auto once = std::exchange(action, nullptr))
        once();
}

} // namespace

// These stand before the C library's.

extern "C" Q_DECL_EXPORT int nanosleep(const timespec *time, timespec *left)
{
    runOnce(s_whileAsleep);
    return int(syscall(SYS_nanosleep, time, left));
}

extern "C" Q_DECL_EXPORT int clock_nanosleep(clockid_t clock, int flags, const timespec *time, timespec *left)
{
    runOnce(s_whileAsleep);
    return syscall(SYS_clock_nanosleep, clock, flags, time, left) == 0 ? 0 : errno;
}

extern "C" Q_DECL_EXPORT int fsync(int handle)
{
    runOnce(s_beforeFlush);
    errno = s_flushError;
    return s_flushError == 0 ? int(syscall(SYS_fsync, handle)) : -1;
}

/// Changing the end of a file in place, and recovery from an interrupted change.
class TstInPlaceFile : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void the_tail_is_replaced_and_nothing_else_data();
    void the_tail_is_replaced_and_nothing_else();
    void missing_file_is_not_created();
    void special_files_are_not_opened();
    void a_link_is_followed_and_stays();
    void a_full_disk_leaves_the_old_tail();
    void unflushed_tail_is_rolled_back();
    void changing_a_removed_file_fails();
    void second_writer_is_refused();
    void edit_waits_for_a_briefly_held_lock();
    void a_tail_of_128_kib_can_be_replaced();

    void a_record_is_read_as_it_was_written();
    void a_damaged_record_is_known_data();
    void a_damaged_record_is_known();
    void undo_record_from_another_folder_is_ignored();
    void records_are_neither_listed_nor_packed();
    void records_of_different_files_have_different_names();

    void crash_leaves_the_old_or_new_tail_data();
    void crash_leaves_the_old_or_new_tail();
    void next_edit_finishes_an_interrupted_one();
    void what_cannot_be_undone_keeps_its_record();
    void unremovable_record_prevents_the_edit();
    void unreadable_record_prevents_the_edit();
    void scan_finishes_interrupted_edits();
    void scan_finishes_interrupted_edit_behind_a_link();
    void a_renamed_file_is_found();
    void undo_record_of_a_missing_file_is_removed();
    void concurrent_changes_by_others_stay();
    void another_file_under_the_name_stays();
    void undo_record_of_a_running_edit_stays();
    void files_that_only_look_like_records_stay();
    void recovering_brings_the_time_back();
    void the_record_precedes_the_change();

private:
    QString path(const QString &name) const { return m_temp->filePath(name); }
    /// State after a kill: a file with this tail, and the undo record of its change from `before` to `after`.
    UndoRecord leaveCut(const QString &name, const QByteArray &tail);

    QScopedPointer<QTemporaryDir> m_temp;
};

namespace {

const QByteArray head = noise(6000);
const QByteArray before = "the old tail, which is the longer one";
const QByteArray after = "the new tail, shorter";

} // namespace

void TstInPlaceFile::init()
{
    m_temp.reset(new QTemporaryDir);
    QVERIFY(m_temp->isValid());
}

UndoRecord TstInPlaceFile::leaveCut(const QString &name, const QByteArray &tail)
{
    UndoRecord record;
    QFile file(path(name));
    if (!writeFile(file.fileName(), head + tail) || !file.open(QIODevice::ReadOnly))
        qFatal("No file");
    record.strFileName = name;
    record.nOffset = head.size();
    record.mark = UndoRecord::markOf(file, record.nOffset);
    record.before = before;
    record.after = after;
    record.nModified = qint64(1500000000) * 1000000000 + 123456789;
    if (!record.write(UndoRecord::pathFor(file.fileName())))
        qFatal("No record");
    return record;
}

void TstInPlaceFile::the_tail_is_replaced_and_nothing_else_data()
{
    QTest::addColumn<QByteArray>("tail");
    QTest::newRow("shorter") << QByteArray("x");
    QTest::newRow("none") << QByteArray();
    QTest::newRow("same length") << QByteArray(before.size(), 'x');
    QTest::newRow("longer") << QByteArray(65536, 'x');
    QTest::newRow("the same") << before;
}

void TstInPlaceFile::the_tail_is_replaced_and_nothing_else()
{
    QFETCH(QByteArray, tail);
    QVERIFY(writeFile(path("file"), head + before));
    InPlaceFile file(path("file"));
    QVERIFY(file.open());
    QVERIFY(file.replaceTail(head.size(), tail));
    QVERIFY(readFile(path("file")) == head + tail);
    QCOMPARE(contents(m_temp->path()), QStringList{"file"});
}

void TstInPlaceFile::missing_file_is_not_created()
{
    QVERIFY(!InPlaceFile(path("file")).open());
    QVERIFY(QFile::link(path("missing"), path("link")));
    QVERIFY(!InPlaceFile(path("link")).open());
    QCOMPARE(contents(m_temp->path()), QStringList{"link"});
}

void TstInPlaceFile::special_files_are_not_opened()
{
    QCOMPARE(::mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    QVERIFY(!InPlaceFile(path("pipe")).open());
    QVERIFY(!InPlaceFile(m_temp->path()).open());
    QVERIFY(!InPlaceFile("/dev/null").open());
}

void TstInPlaceFile::a_link_is_followed_and_stays()
{
    QVERIFY(writeFile(path("folder/file"), head + before));
    QVERIFY(QFile::link(path("folder/file"), path("link")));
    InPlaceFile file(path("link"));
    QVERIFY(file.open());
    QVERIFY(file.replaceTail(head.size(), after));
    QVERIFY(QFileInfo(path("link")).isSymLink());
    QVERIFY(readFile(path("folder/file")) == head + after);
}

void TstInPlaceFile::a_full_disk_leaves_the_old_tail()
{
    QVERIFY(writeFile(path("file"), head + before));
    const QByteArray tail(5000, 'x');
    for (int limit = 0; limit < head.size() + tail.size(); limit += 499) {
        InPlaceFile file(path("file"));
        QVERIFY(file.open());
        QString reason;
        {
            const FullDisk disk(limit);
            QVERIFY2(!file.replaceTail(head.size(), tail, &reason), qPrintable(QString::number(limit)));
        }
        QCOMPARE(reason,
                 QStringLiteral("cannot write the end of %1: %2")
                     .arg(path("file"), limit <= head.size() ? "File too large"
                                                             : "only part of it was written, the disk may be full"));
        QVERIFY(readFile(path("file")) == head + before);
        QCOMPARE(contents(m_temp->path()), QStringList{"file"});
    }
}

void TstInPlaceFile::unflushed_tail_is_rolled_back()
{
    QVERIFY(writeFile(path("file"), head + before));
    InPlaceFile file(path("file"));
    QVERIFY(file.open());
    QString reason;
    s_flushError = EIO;
    const bool isReplaced = file.replaceTail(head.size(), after, &reason);
    s_flushError = 0;
    QVERIFY(!isReplaced);
    QCOMPARE(reason, QStringLiteral("cannot write the end of %1: Input/output error").arg(path("file")));
    QVERIFY(readFile(path("file")) == head + before);
}

void TstInPlaceFile::changing_a_removed_file_fails()
{
    for (const bool isReplaced : {false, true}) {
        QVERIFY(writeFile(path("file"), head + before));
        InPlaceFile file(path("file"));
        QVERIFY(file.open());
        QVERIFY(QFile::remove(path("file")));
        if (isReplaced)
            QVERIFY(writeFile(path("file"), "another"));
        QString reason;
        QVERIFY(!file.replaceTail(head.size(), after, &reason));
        QCOMPARE(reason, path("file") + " was removed or replaced meanwhile");
        QCOMPARE(readFile(path("file")), isReplaced ? QByteArray("another") : QByteArray());
        QCOMPARE(contents(m_temp->path()), isReplaced ? QStringList{"file"} : QStringList());
    }
}

void TstInPlaceFile::second_writer_is_refused()
{
    QVERIFY(writeFile(path("file"), head + before));
    auto first = std::make_unique<InPlaceFile>(path("file"));
    InPlaceFile second(path("file"));
    QVERIFY(first->open());
    QVERIFY(!second.open());
    first.reset();
    InPlaceFile third(path("file"));
    QVERIFY(third.open());
}

void TstInPlaceFile::edit_waits_for_a_briefly_held_lock()
{
    QVERIFY(writeFile(path("file"), head + before));
    auto first = std::make_unique<InPlaceFile>(path("file"));
    QVERIFY(first->open());
    s_whileAsleep = [&first] { first.reset(); };
    InPlaceFile second(path("file"));
    QVERIFY(second.open());
    QVERIFY2(!first, "it was not waited for");
}

void TstInPlaceFile::a_tail_of_128_kib_can_be_replaced()
{
    const int longest = 128 * 1024;
    for (const int size : {longest, longest + 1}) {
        const QByteArray tail = noise(size, 5);
        QVERIFY(writeFile(path("file"), head + tail));
        InPlaceFile file(path("file"));
        QVERIFY(file.open());
        QCOMPARE(file.replaceTail(head.size(), after), size == longest);
        QVERIFY(readFile(path("file")) == head + (size == longest ? after : tail));
        QString reason;
        QVERIFY(!file.replaceTail(head.size() + size + 1, after, &reason));
        QCOMPARE(reason, QStringLiteral("cannot read the end of %1: Unknown error").arg(path("file")));
        QCOMPARE(contents(m_temp->path()), QStringList{"file"});
    }
}

void TstInPlaceFile::a_record_is_read_as_it_was_written()
{
    const UndoRecord written = leaveCut(QString::fromUtf8("演出.corvelpro"), before);
    UndoRecord read;
    QCOMPARE(read.read(UndoRecord::pathFor(path(written.strFileName))), UndoRecord::Reading::Whole);
    QCOMPARE(read.strFileName, written.strFileName);
    QCOMPARE(read.nOffset, written.nOffset);
    QCOMPARE(read.mark, written.mark);
    QCOMPARE(read.before, written.before);
    QCOMPARE(read.after, written.after);
    QCOMPARE(read.nModified, written.nModified);
}

void TstInPlaceFile::a_damaged_record_is_known_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("flipped");
    for (int size : {0, 1, 31, 32, 40, 100, -1})
        QTest::newRow(qPrintable(QStringLiteral("cut at %1").arg(size))) << size << -1;
    for (int flipped : {0, 31, 32, 36, 60, 120})
        QTest::newRow(qPrintable(QStringLiteral("byte %1").arg(flipped))) << 100000 << flipped;
}

void TstInPlaceFile::a_damaged_record_is_known()
{
    QFETCH(int, size);
    QFETCH(int, flipped);
    const QByteArray torn = after.left(10) + before.mid(10);
    leaveCut("file", torn);
    const QString recordPath = UndoRecord::pathFor(path("file"));
    QByteArray bytes = readFile(recordPath);
    bytes = size < 0 ? bytes.chopped(1) : bytes.left(size);
    if (flipped >= 0)
        bytes[flipped] = char(bytes.at(flipped) ^ 1);
    QVERIFY(writeFile(recordPath, bytes));
    UndoRecord record;
    QCOMPARE(record.read(recordPath), UndoRecord::Reading::Broken);
    // The error says nothing about the file, but somebody may be writing it.
    InPlaceFile::recover(m_temp->path());
    QVERIFY(QFile::exists(recordPath));
    {
        QFile file(recordPath);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(-2), QFileDevice::FileModificationTime));
    }
    InPlaceFile::recover(m_temp->path());
    QVERIFY(!QFile::exists(recordPath));
    // Whoever holds the lock knows that nobody writes.
    QVERIFY(writeFile(recordPath, bytes));
    QVERIFY(InPlaceFile(path("file")).open());
    QVERIFY(readFile(path("file")) == head + torn);
    QCOMPARE(contents(m_temp->path()), QStringList{"file"});
}

void TstInPlaceFile::undo_record_from_another_folder_is_ignored()
{
    const QByteArray torn = after.left(10) + before.mid(10);
    UndoRecord record = leaveCut("file", torn);
    QVERIFY(QDir().mkdir(path("folder")));
    record.strFileName = "../file";
    const QString elsewhere = UndoRecord::pathFor(path("folder/file"));
    QVERIFY(record.write(elsewhere));
    QCOMPARE(record.read(elsewhere), UndoRecord::Reading::Broken);
    InPlaceFile::recover(path("folder"));
    QVERIFY(readFile(path("file")) == head + torn);
}

void TstInPlaceFile::records_are_neither_listed_nor_packed()
{
    QVERIFY(makeDeviceTree(path("device")));
    UndoRecord record = leaveCut("device/192.168.0.10.json", before);
    QCOMPARE(QDir(path("device")).entryList({".*.undo"}, QDir::Files | QDir::Hidden).size(), 1);
    EngineerPacketInfo info;
    info.strFilePath = path("show.corvelpro");
    QVERIFY(ZipPackageHandle::compressEngineerPacket(path("device"), info));
    const QStringList entries = ZipPackageHandle::getFileList(info.strFilePath);
    QVERIFY(entries.contains("BKG/BKG_0.png"));
    QVERIFY2(entries.filter(".undo").isEmpty(), qPrintable(entries.join(' ')));
    QVERIFY(!QDir(path("device")).entryList({"*.corvelpro"}, QDir::Dirs | QDir::Files | QDir::Drives).size());
}

void TstInPlaceFile::records_of_different_files_have_different_names()
{
    const QString one = UndoRecord::pathFor(path("one.corvelpro"));
    QCOMPARE(one, UndoRecord::pathFor(path("one.corvelpro")));
    QVERIFY(one != UndoRecord::pathFor(path("two.corvelpro")));
    QVERIFY(UndoRecord::isUndoRecord(QFileInfo(one).fileName()));
    QVERIFY(QFileInfo(one).fileName().startsWith('.'));
    QVERIFY(!UndoRecord::isUndoRecord("one.undo"));
    QVERIFY(!UndoRecord::isUndoRecord(QFileInfo(one).fileName() + '~'));
}

void TstInPlaceFile::crash_leaves_the_old_or_new_tail_data()
{
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("to");
    QTest::newRow("to a shorter one") << before << after;
    QTest::newRow("to a longer one") << after << before;
    QTest::newRow("to one as long") << before << QByteArray(before).replace("old", "new");
}

void TstInPlaceFile::crash_leaves_the_old_or_new_tail()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QVector<QPair<QByteArray, QByteArray>> cuts{{from, from}, {to, to}};
    const int longer = std::max(from.size(), to.size());
    for (int written = 0; written < to.size(); ++written) {
        // A kill during the write, and a power failure that preserved any two parts of it.
        cuts.append({to.left(written) + from.mid(written), from});
        if (written <= from.size())
            cuts.append({from.left(written) + to.mid(written), from});
        // Extended, but the content is still missing.
        cuts.append({(to.left(written) + from.mid(written)).leftJustified(longer, '\0'), from});
        cuts.append({QByteArray(to.left(written)).leftJustified(longer, '\0'), from});
    }
    // Not truncated yet.
    cuts.append({to + from.mid(to.size()), from});
    for (const auto &cut : cuts) {
        UndoRecord record = leaveCut("file", cut.first);
        record.before = from;
        record.after = to;
        QVERIFY(record.write(UndoRecord::pathFor(path("file"))));
        InPlaceFile::recover(m_temp->path());
        // Both may be equal at that place: then the file is already complete.
        const QByteArray expected = cut.first == to ? to : cut.second;
        QVERIFY2(readFile(path("file")) == head + expected, cut.first.toPercentEncoding(" ,"));
        QCOMPARE(contents(m_temp->path()), QStringList{"file"});
    }
}

void TstInPlaceFile::next_edit_finishes_an_interrupted_one()
{
    leaveCut("file", after.left(10) + before.mid(10));
    InPlaceFile file(path("file"));
    QVERIFY(file.open());
    QVERIFY(readFile(path("file")) == head + before);
    QCOMPARE(contents(m_temp->path()), QStringList{"file"});
}

void TstInPlaceFile::what_cannot_be_undone_keeps_its_record()
{
    leaveCut("file", after.left(10) + before.mid(10));
    QString reason;
    bool isOpen = true;
    {
        InPlaceFile file(path("file"));
        const FullDisk disk(100);
        isOpen = file.open(&reason);
    }
    QVERIFY(!isOpen);
    QVERIFY2(reason.startsWith("cannot write the end of " + path("file")), qPrintable(reason));
    QVERIFY(QFile::exists(UndoRecord::pathFor(path("file"))));
    // With room again it is undone.
    QVERIFY(InPlaceFile(path("file")).open());
    QVERIFY(readFile(path("file")) == head + before);
}

void TstInPlaceFile::unremovable_record_prevents_the_edit()
{
    leaveCut("file", after.left(10) + before.mid(10));
    QCOMPARE(run("chmod", {"a+rwX", path("file"), UndoRecord::pathFor(path("file"))}).exitCode, 0);
    QCOMPARE(run("chmod", {"a=rx", m_temp->path()}).exitCode, 0);
    QString reason;
    bool isOpen = true;
    {
        const OrdinaryUser user;
        isOpen = InPlaceFile(path("file")).open(&reason);
    }
    QCOMPARE(run("chmod", {"u+w", m_temp->path()}).exitCode, 0);
    QVERIFY(!isOpen);
    QCOMPARE(
        reason,
        QStringLiteral("cannot remove the undo record %1: Permission denied").arg(UndoRecord::pathFor(path("file"))));
    QVERIFY(readFile(path("file")) == head + before);
}

void TstInPlaceFile::unreadable_record_prevents_the_edit()
{
    QVERIFY(writeFile(path("file"), head + before));
    const QString recordPath = UndoRecord::pathFor(path("file"));
    QVERIFY(QDir().mkdir(recordPath));
    QString reason;
    QVERIFY(!InPlaceFile(path("file")).open(&reason));
    QCOMPARE(reason, "cannot read the undo record " + recordPath);
}

void TstInPlaceFile::scan_finishes_interrupted_edits()
{
    const QString package = path("show.corvelpro");
    QVERIFY(PackageBuilder().file("a.txt", noise(9000)).record("show", "before").write(package));
    const QByteArray whole = readFile(package);
    UndoRecord record;
    {
        QFile file(package);
        QVERIFY(file.open(QIODevice::ReadOnly));
        record.strFileName = "show.corvelpro";
        record.nOffset = whole.lastIndexOf("PK\x05\x06") + 20;
        record.mark = UndoRecord::markOf(file, record.nOffset);
        record.before = whole.mid(int(record.nOffset));
    }
    record.after = QByteArray(500, 'n');
    QVERIFY(record.write(UndoRecord::pathFor(package)));
    QVERIFY(writeFile(package, whole.left(int(record.nOffset)) + record.after.left(300)));
    ProjectList list;
    list.scanProjectFiles(m_temp->path() + '/', list.beginScan());
    QCOMPARE(list.listProjects.size(), 1);
    QCOMPARE(list.listProjects.first().strComment, QString("before"));
    QVERIFY(readFile(package) == whole);
    QCOMPARE(contents(m_temp->path()), QStringList{"show.corvelpro"});
}

void TstInPlaceFile::scan_finishes_interrupted_edit_behind_a_link()
{
    leaveCut("file", after.left(10) + before.mid(10));
    QVERIFY(QDir().mkdir(path("projects")));
    QVERIFY(QFile::link(path("file"), path("projects/link.corvelpro")));
    ProjectList list;
    list.scanProjectFiles(path("projects/"), list.beginScan());
    QVERIFY(readFile(path("file")) == head + before);
    QCOMPARE(contents(m_temp->path()), QStringList({"file", "projects", "projects/link.corvelpro"}));
}

void TstInPlaceFile::a_renamed_file_is_found()
{
    leaveCut("show.corvelpro", after.left(10) + before.mid(10));
    QVERIFY(QFile::rename(path("show.corvelpro"), path("renamed.corvelpro")));
    QVERIFY(writeFile(path("a.corvelpro"), noise(8000, 2)));
    for (const bool isNameTaken : {true, false}) {
        if (isNameTaken)
            QVERIFY(writeFile(path("show.corvelpro"), noise(8000, 3)));
        InPlaceFile::recover(m_temp->path());
        QVERIFY(readFile(path("renamed.corvelpro")) == head + before);
        QVERIFY(readFile(path("a.corvelpro")) == noise(8000, 2));
        QVERIFY(contents(m_temp->path()).filter(".undo").isEmpty());
        QFile::remove(path("show.corvelpro"));
        leaveCut("show.corvelpro", after.left(10) + before.mid(10));
        QVERIFY(QFile::remove(path("renamed.corvelpro")));
        QVERIFY(QFile::rename(path("show.corvelpro"), path("renamed.corvelpro")));
    }
}

void TstInPlaceFile::undo_record_of_a_missing_file_is_removed()
{
    leaveCut("show.corvelpro", after);
    QVERIFY(QFile::remove(path("show.corvelpro")));
    ProjectList list;
    list.scanProjectFiles(m_temp->path() + '/', list.beginScan());
    QVERIFY(contents(m_temp->path()).isEmpty());
}

void TstInPlaceFile::concurrent_changes_by_others_stay()
{
    for (const QByteArray &tail : {QByteArray("written by somebody else"), QByteArray(), before + "more"}) {
        leaveCut("file", tail);
        InPlaceFile::recover(m_temp->path());
        QVERIFY(readFile(path("file")) == head + tail);
        QCOMPARE(contents(m_temp->path()), QStringList{"file"});
    }
}

void TstInPlaceFile::another_file_under_the_name_stays()
{
    const QByteArray torn = after.left(10) + before.mid(10);
    leaveCut("file", torn);
    const QByteArray other = noise(head.size(), 7) + torn;
    QVERIFY(writeFile(path("file"), other));
    InPlaceFile file(path("file"));
    QVERIFY(file.open());
    QVERIFY(readFile(path("file")) == other);
    QCOMPARE(contents(m_temp->path()), QStringList{"file"});
}

void TstInPlaceFile::undo_record_of_a_running_edit_stays()
{
    const QByteArray torn = after.left(10) + before.mid(10);
    QVERIFY(writeFile(path("file"), head + before));
    InPlaceFile living(path("file"));
    QVERIFY(living.open());
    // In the middle of its write.
    leaveCut("file", torn);
    InPlaceFile::recover(m_temp->path());
    InPlaceFile::recoverFile(path("file"));
    QVERIFY(readFile(path("file")) == head + torn);
    QCOMPARE(contents(m_temp->path()).filter(".undo").size(), 1);
}

void TstInPlaceFile::files_that_only_look_like_records_stay()
{
    QFile file(path(".notes.undo"));
    QVERIFY(writeFile(file.fileName(), "of another program"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(-2), QFileDevice::FileModificationTime));
    InPlaceFile::recover(m_temp->path());
    QCOMPARE(contents(m_temp->path()), QStringList{".notes.undo"});
}

void TstInPlaceFile::recovering_brings_the_time_back()
{
    for (const QByteArray &tail : {after, QByteArray(after.left(10) + before.mid(10))}) {
        const UndoRecord record = leaveCut("file", tail);
        InPlaceFile::recover(m_temp->path());
        struct stat status;
        QCOMPARE(stat(QFile::encodeName(path("file")).constData(), &status), 0);
        QCOMPARE(qint64(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec, record.nModified);
    }
}

void TstInPlaceFile::the_record_precedes_the_change()
{
    QVERIFY(writeFile(path("file"), head + before));
    InPlaceFile file(path("file"));
    QVERIFY(file.open());
    UndoRecord record;
    QByteArray content;
    // The first flush is that of the record.
    s_beforeFlush = [&] {
        record.read(UndoRecord::pathFor(path("file")));
        content = readFile(path("file"));
    };
    QVERIFY(file.replaceTail(head.size(), after));
    QVERIFY(content == head + before);
    QCOMPARE(record.strFileName, QString("file"));
    QCOMPARE(record.nOffset, qint64(head.size()));
    QCOMPARE(record.before, before);
    QCOMPARE(record.after, after);
}

TEST_MAIN_CORE(TstInPlaceFile)
#include "tst_inplacefile.moc"

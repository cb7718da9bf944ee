// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "filesystem.h"
#include "packagetesting.h"
#include "replacingfile.h"

#include <support/libraryhook.h>
#include <support/testmain.h>

#include <QTemporaryDir>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <functional>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;

namespace {

/// The system's answers to the steps that make a file durable: 0 for the real answer, or the error to return. And the
/// steps taken, in order.
struct System
{
    int openFolder = 0;
    int flushFile = 0;
    int flushFolder = 0;
    int flushDisk = 0;
    int renameToFreeName = 0;
    int exchange = 0;
    /// Another program's action just before the next exchange.
    QVector<std::function<void()>> beforeExchange;
    /// The file system finds a file under a name that differs in case only; see rename().
    bool ignoresCase = false;
    /// Another program's action just before a file is renamed to a free name.
    std::function<void()> beforeRename;
    /// The file system can clone files (reflinks), which few support.
    bool sharesContent = false;
    /// Another program creates each folder just before.
    bool foldersAppear = false;
    QStringList steps;
};

System s_system;

bool isFolder(int handle)
{
    struct stat status;
    return fstat(handle, &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

// Hook the C library's functions, on the test's thread only.

// The same function: the headers select one.
template<typename Open>
int openUnlessFolderFails(Open function, const char *path, int flags, va_list arguments)
{
    const mode_t mode = (flags & O_CREAT) ? va_arg(arguments, mode_t) : 0;
    return (flags & O_DIRECTORY) && failsWith(s_system.openFolder) ? -1 : function(path, flags, mode);
}

extern "C" Q_DECL_EXPORT int open(const char *path, int flags, ...)
{
    static const auto function = original<int(const char *, int, mode_t)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const int handle = openUnlessFolderFails(function, path, flags, arguments);
    va_end(arguments);
    return handle;
}

extern "C" Q_DECL_EXPORT int open64(const char *path, int flags, ...)
{
    static const auto function = original<int(const char *, int, mode_t)>("open64");
    va_list arguments;
    va_start(arguments, flags);
    const int handle = openUnlessFolderFails(function, path, flags, arguments);
    va_end(arguments);
    return handle;
}

extern "C" Q_DECL_EXPORT int fsync(int handle)
{
    static const auto function = original<int(int)>("fsync");
    s_system.steps.append(isFolder(handle) ? QStringLiteral("flush folder") : QStringLiteral("flush file"));
    return failsWith(isFolder(handle) ? s_system.flushFolder : s_system.flushFile) ? -1 : function(handle);
}

extern "C" Q_DECL_EXPORT int sync_file_range(int handle, off64_t offset, off64_t count, unsigned int flags)
{
    static const auto function = original<int(int, off64_t, off64_t, unsigned int)>("sync_file_range");
    // All of it, and without blocking.
    const bool isHint = offset == 0 && count == 0 && flags == SYNC_FILE_RANGE_WRITE;
    s_system.steps.append(isHint ? QStringLiteral("begin flushing") : QStringLiteral("flush a part"));
    return function(handle, offset, count, flags);
}

extern "C" Q_DECL_EXPORT int syncfs(int handle) noexcept
{
    static const auto function = original<int(int)>("syncfs");
    s_system.steps.append(QStringLiteral("flush disk"));
    return failsWith(s_system.flushDisk) ? -1 : function(handle);
}

extern "C" Q_DECL_EXPORT int ioctl(int handle, unsigned long request, ...) noexcept
{
    static const auto function = original<int(int, unsigned long, void *)>("ioctl");
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    return s_system.sharesContent && request == FICLONE ? 0 : function(handle, request, argument);
}

extern "C" Q_DECL_EXPORT int mkdir(const char *path, mode_t mode) noexcept
{
    static const auto function = original<int(const char *, mode_t)>("mkdir");
    if (s_system.foldersAppear)
        function(path, mode);
    return function(path, mode);
}

extern "C" Q_DECL_EXPORT int rename(const char *from, const char *to) noexcept
{
    static const auto function = original<int(const char *, const char *)>("rename");
    s_system.steps.append(QStringLiteral("rename"));
    // A second hard link of the file stands for the name in the other case, and has none of its own.
    if (s_system.ignoresCase)
        ::unlink(to);
    return function(from, to);
}

extern "C" Q_DECL_EXPORT int renameat2(int fromFolder, const char *from, int toFolder, const char *to,
                                       unsigned int flags) noexcept
{
    static const auto function = original<int(int, const char *, int, const char *, unsigned int)>("renameat2");
    if (flags == RENAME_EXCHANGE) {
        s_system.steps.append(QStringLiteral("exchange"));
        if (!s_system.beforeExchange.isEmpty())
            s_system.beforeExchange.takeFirst()();
        return failsWith(s_system.exchange) ? -1 : function(fromFolder, from, toFolder, to, flags);
    }
    s_system.steps.append(QStringLiteral("rename to a free name"));
    if (s_system.beforeRename)
        s_system.beforeRename();
    return failsWith(s_system.renameToFreeName) ? -1 : function(fromFolder, from, toFolder, to, flags);
}

/// What is flushed when, and what remains if the system refuses a step.
class TstFileSystem : public QObject
{
    Q_OBJECT

private slots:
    void a_file_is_known_without_a_handle();
    void an_identity_gives_its_handle_back();
    void readers_wait_for_a_writer_only();
    void folder_has_one_lock();
    void the_time_is_kept_to_the_nanosecond();
    void content_is_shared_where_the_file_system_does();
    void folder_created_by_others_counts_as_created();
    void without_standard_input_folders_are_made_and_flushed();
    void init();

    void content_then_name_is_flushed_before_success_data();
    void content_then_name_is_flushed_before_success();
    void reproducible_files_are_not_flushed();
    void writing_to_disk_begins_after_8_mib();
    void unflushed_content_replaces_nothing();
    void unwritten_content_replaces_nothing();
    void missing_folder_is_flushed_before_its_file();
    void unreadable_folder_keeps_its_content();
    void unflushed_name_is_reported_data();
    void unflushed_name_is_reported();
    void copying_works_without_exclusive_rename_data();
    void copying_works_without_exclusive_rename();
    void letter_case_alone_is_renamed_where_case_is_ignored_data();
    void letter_case_alone_is_renamed_where_case_is_ignored();
    void renaming_to_its_other_hard_link_removes_the_old_name_data();
    void renaming_to_its_other_hard_link_removes_the_old_name();
    void another_file_at_the_old_name_stays();
    void refused_system_call_is_not_retried_differently();
    void only_what_is_expected_is_replaced_data();
    void only_what_is_expected_is_replaced();
    void late_file_is_kept();
    void late_file_is_kept_without_exchange();
    void target_vanishing_at_commit_is_no_failure();
    void target_vanishing_during_rollback_is_restored();
    void a_refused_exchange_is_not_tried_another_way();
    void old_file_is_removed_after_flushing_the_name();
    void foreign_file_at_the_fragments_name_is_kept();
    void file_identity_survives_edits_and_renames();
    void files_of_two_disks_are_never_the_same();
    void used_number_is_not_assigned_again();
    void creating_a_folder_flushes_its_parent();
    void existing_folder_is_not_flushed();
    void a_tree_is_flushed_with_its_disk();
    void a_copy_aside_is_read_from_its_beginning();
    void no_handle_is_left_open();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }
    bool replace(ReplacingFile::Durability durability, ReplacingFile::ExistingTarget existing) const;

    QScopedPointer<QTemporaryDir> m_dir;
};

void TstFileSystem::content_is_shared_where_the_file_system_does()
{
    s_system = System();
    QVERIFY(!FileSystem::shareContent(-1, -1));
    s_system.sharesContent = true;
    const bool isShared = FileSystem::shareContent(-1, -1);
    s_system = System();
    QVERIFY(isShared);
}

void TstFileSystem::folder_created_by_others_counts_as_created()
{
    const QTemporaryDir dir;
    s_system = System();
    s_system.foldersAppear = true;
    QVERIFY(FileSystem::makeFolder(dir.filePath("one/two")));
    QVERIFY(QFileInfo(dir.filePath("one/two")).isDir());
    s_system = System();
}

void TstFileSystem::without_standard_input_folders_are_made_and_flushed()
{
    const QTemporaryDir dir;
    s_system = System();
    // So the next descriptor is 0.
    const int kept = dup(0);
    ::close(0);
    const bool isMade = FileSystem::makeFolder(dir.filePath("one/two"));
    const bool isFlushed = FileSystem::flushTree(dir.path());
    const int next = dup(1);
    ::close(next);
    dup2(kept, 0);
    ::close(kept);
    QVERIFY(isMade);
    QVERIFY(isFlushed);
    // All of them were closed again.
    QCOMPARE(next, 0);
}

void TstFileSystem::init()
{
    s_system = System();
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
}

/// Writes "new" over the target.
bool TstFileSystem::replace(ReplacingFile::Durability durability, ReplacingFile::ExistingTarget existing) const
{
    ReplacingFile file(path("target"), durability);
    return file.create() && file.file().write("new") == 3 && file.commit(existing);
}

void TstFileSystem::content_then_name_is_flushed_before_success_data()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<QString>("rename");
    QTest::newRow("replaced") << true << "rename";
    QTest::newRow("free") << false << "rename to a free name";
}

void TstFileSystem::content_then_name_is_flushed_before_success()
{
    QFETCH(bool, exists);
    QFETCH(QString, rename);
    QVERIFY(!exists || writeFile(path("target"), "old"));
    QVERIFY(replace(ReplacingFile::Durability::FlushedToDisk,
                    exists ? ReplacingFile::ExistingTarget::Replaced : ReplacingFile::ExistingTarget::Kept));
    QCOMPARE(s_system.steps, (QStringList{"flush file", rename, "flush folder"}));
    QCOMPARE(readFile(path("target")), QByteArray("new"));
}

void TstFileSystem::reproducible_files_are_not_flushed()
{
    QVERIFY(replace(ReplacingFile::Durability::NotFlushed, ReplacingFile::ExistingTarget::Replaced));
    QCOMPARE(s_system.steps, QStringList{"rename"});
    QCOMPARE(readFile(path("target")), QByteArray("new"));
}

void TstFileSystem::writing_to_disk_begins_after_8_mib()
{
    for (const auto durability : {ReplacingFile::Durability::FlushedToDisk, ReplacingFile::Durability::NotFlushed}) {
        const bool isFlushed = durability == ReplacingFile::Durability::FlushedToDisk;
        s_system.steps.clear();
        ReplacingFile file(path("target"), durability);
        QVERIFY(file.create());
        const QByteArray block(int(MiB), 'x');
        for (int number = 1; number <= 17; ++number) {
            QCOMPARE(file.file().write(block), qint64(block.size()));
            QCOMPARE(s_system.steps.count("begin flushing"), isFlushed ? number / 8 : 0);
        }
        QVERIFY(file.commit());
        QCOMPARE(s_system.steps.mid(isFlushed ? 2 : 0),
                 isFlushed ? (QStringList{"flush file", "rename", "flush folder"}) : QStringList{"rename"});
    }
}

void TstFileSystem::unflushed_content_replaces_nothing()
{
    QVERIFY(writeFile(path("target"), "old"));
    s_system.flushFile = EIO;
    QVERIFY(!replace(ReplacingFile::Durability::FlushedToDisk, ReplacingFile::ExistingTarget::Replaced));
    {
        ReplacingFile file(path("target"), ReplacingFile::Durability::FlushedToDisk);
        QVERIFY(file.create());
        QString reason;
        QVERIFY(!file.commit(ReplacingFile::ExistingTarget::Replaced, &reason));
        QCOMPARE(reason, QStringLiteral("cannot flush %1: Input/output error").arg(path("target")));
    }
    QCOMPARE(contents(m_dir->path()), QStringList{"target"});
    QCOMPARE(readFile(path("target")), QByteArray("old"));
}

void TstFileSystem::unwritten_content_replaces_nothing()
{
    QVERIFY(writeFile(path("target"), "old"));
    // Errors that occur immediately, and errors that occur when the buffer is written.
    for (const int size : {1000000, 10}) {
        ReplacingFile file(path("target"), ReplacingFile::Durability::NotFlushed);
        QVERIFY(file.create());
        const FullDisk disk(0);
        file.file().write(QByteArray(size, 'x'));
        QString reason;
        QVERIFY(!file.commit(ReplacingFile::ExistingTarget::Replaced, &reason));
        QCOMPARE(reason, QStringLiteral("cannot write %1: File too large").arg(path("target")));
    }
    QCOMPARE(contents(m_dir->path()), QStringList{"target"});
    QCOMPARE(readFile(path("target")), QByteArray("old"));
}

void TstFileSystem::missing_folder_is_flushed_before_its_file()
{
    for (const auto durability : {ReplacingFile::Durability::FlushedToDisk, ReplacingFile::Durability::NotFlushed}) {
        s_system.steps.clear();
        ReplacingFile file(path(QStringLiteral("folder%1/target").arg(int(durability))), durability);
        QVERIFY(file.create());
        const bool isFlushed = durability == ReplacingFile::Durability::FlushedToDisk;
        QCOMPARE(s_system.steps, isFlushed ? QStringList{"flush folder"} : QStringList());
    }
}

void TstFileSystem::unreadable_folder_keeps_its_content()
{
    QVERIFY(writeFile(path("target"), "old"));
    s_system.openFolder = EMFILE;
    QVERIFY(!replace(ReplacingFile::Durability::FlushedToDisk, ReplacingFile::ExistingTarget::Replaced));
    QString reason;
    QVERIFY(!FileSystem::renameDurably(path("target"), path("free"), &reason));
    QCOMPARE(reason, QStringLiteral("cannot open the folder %1: Too many open files").arg(m_dir->path()));
    QVERIFY(!FileSystem::makeFolder(path("folder")));
    QVERIFY(!FileSystem::flushTree(m_dir->path()));
    QCOMPARE(contents(m_dir->path()), QStringList{"target"});
    QCOMPARE(readFile(path("target")), QByteArray("old"));
    QCOMPARE(s_system.steps, QStringList{"flush file"});
}

void TstFileSystem::unflushed_name_is_reported_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("isTold");
    QTest::newRow("a broken disk") << EIO << true;
    QTest::newRow("a full disk") << ENOSPC << true;
    // Sticks and network shares cannot flush folders.
    QTest::newRow("not known to the file system") << EINVAL << false;
    QTest::newRow("not supported by the file system") << ENOTSUP << false;
}

void TstFileSystem::unflushed_name_is_reported()
{
    QFETCH(int, error);
    QFETCH(bool, isTold);
    s_system.flushFolder = error;
    QCOMPARE(replace(ReplacingFile::Durability::FlushedToDisk, ReplacingFile::ExistingTarget::Replaced), !isTold);
    QString reason;
    QCOMPARE(FileSystem::renameDurably(path("target"), path("free"), &reason), !isTold);
    const QString cause = QString::fromLocal8Bit(std::strerror(error));
    QCOMPARE(reason, isTold ? QStringLiteral("cannot flush the folder %1: %2").arg(m_dir->path(), cause) : QString());
    QCOMPARE(FileSystem::makeFolder(path("folder")), !isTold);
}

void TstFileSystem::copying_works_without_exclusive_rename_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("not known to the file system") << EINVAL;
    QTest::newRow("not known to the system") << ENOSYS;
}

void TstFileSystem::copying_works_without_exclusive_rename()
{
    QFETCH(int, error);
    s_system.renameToFreeName = error;
    QVERIFY(writeFile(path("from"), "new") && writeFile(path("taken"), "old"));
    QVERIFY(QFile::link(path("missing"), path("link")));
    QString reason;
    QVERIFY(!FileSystem::renameToFreeName(path("from"), path("taken"), &reason));
    QCOMPARE(reason, QStringLiteral("cannot rename %1 to %2: it already exists").arg(path("from"), path("taken")));
    QVERIFY(!FileSystem::renameToFreeName(path("from"), path("link")));
    QCOMPARE(readFile(path("taken")), QByteArray("old"));
    QVERIFY(QFileInfo(path("link")).isSymLink());
    QVERIFY(FileSystem::renameToFreeName(path("from"), path("free")));
    QCOMPARE(readFile(path("free")), QByteArray("new"));
    QVERIFY(!FileSystem::renameToFreeName(path("from"), path("another")));
}

void TstFileSystem::letter_case_alone_is_renamed_where_case_is_ignored_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("with the system's help") << 0;
    QTest::newRow("not known to the file system") << EINVAL;
}

// A file system that ignores case finds the file itself under the new name; here a second name of it stands for that.
void TstFileSystem::letter_case_alone_is_renamed_where_case_is_ignored()
{
    QFETCH(int, error);
    s_system.renameToFreeName = error;
    s_system.ignoresCase = true;
    QVERIFY(writeFile(path("show"), "the show") && writeFile(path("SHOW"), "another one"));
    for (const char *name : {"Show", "other"})
        QCOMPARE(::link(QFile::encodeName(path("show")).constData(), QFile::encodeName(path(name)).constData()), 0);
    s_system.steps.clear();
    QVERIFY(FileSystem::renameToFreeName(path("show"), path("Show")));
    QCOMPARE(s_system.steps.last(), QStringLiteral("rename"));
    QCOMPARE(contents(m_dir->path()), QStringList({"SHOW", "Show", "other"}));
    s_system.steps.clear();
    QVERIFY(!FileSystem::renameToFreeName(path("Show"), path("SHOW")));
    QVERIFY(!FileSystem::renameToFreeName(path("Show"), path("other")));
    QVERIFY(!s_system.steps.contains("rename"));
    QCOMPARE(readFile(path("SHOW")), QByteArray("another one"));
}

void TstFileSystem::renaming_to_its_other_hard_link_removes_the_old_name_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("with the system's help") << 0;
    QTest::newRow("not known to the file system") << EINVAL;
}

void TstFileSystem::renaming_to_its_other_hard_link_removes_the_old_name()
{
    QFETCH(int, error);
    s_system.renameToFreeName = error;
    QVERIFY(writeFile(path("show"), "the show"));
    QCOMPARE(::link(QFile::encodeName(path("show")).constData(), QFile::encodeName(path("Show")).constData()), 0);
    QVERIFY(FileSystem::renameToFreeName(path("show"), path("Show")));
    QCOMPARE(contents(m_dir->path()), QStringList{"Show"});
    QCOMPARE(readFile(path("Show")), QByteArray("the show"));
}

void TstFileSystem::another_file_at_the_old_name_stays()
{
    QVERIFY(writeFile(path("show"), "the show") && writeFile(path("new"), "came meanwhile"));
    QCOMPARE(::link(QFile::encodeName(path("show")).constData(), QFile::encodeName(path("Show")).constData()), 0);
    int renames = 0;
    QStringList onTheWay;
    s_system.beforeRename = [&] {
        if (++renames == 2)
            QVERIFY(FileSystem::replace(path("new"), path("show")));
        else if (renames == 3)
            onTheWay = QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden);
    };
    QString reason;
    QVERIFY(!FileSystem::renameToFreeName(path("show"), path("Show"), &reason));
    QCOMPARE(reason, QStringLiteral("cannot rename %1 to %2: it already exists").arg(path("show"), path("Show")));
    // Should the program end there, no listing shows the name, and a later save removes it.
    QCOMPARE(onTheWay.size(), 2);
    QVERIFY(std::any_of(onTheWay.cbegin(), onTheWay.cend(), ReplacingFile::isFragment));
    QCOMPARE(contents(m_dir->path()), QStringList({"Show", "show"}));
    QCOMPARE(readFile(path("show")), QByteArray("came meanwhile"));
    QCOMPARE(readFile(path("Show")), QByteArray("the show"));
}

void TstFileSystem::refused_system_call_is_not_retried_differently()
{
    s_system.renameToFreeName = EACCES;
    QVERIFY(writeFile(path("from"), "new"));
    QVERIFY(!FileSystem::renameToFreeName(path("from"), path("free")));
    QCOMPARE(contents(m_dir->path()), QStringList{"from"});
}

void TstFileSystem::only_what_is_expected_is_replaced_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("with the system's help") << 0;
    QTest::newRow("not known to the file system") << EINVAL;
    QTest::newRow("not known to the system") << ENOSYS;
}

void TstFileSystem::only_what_is_expected_is_replaced()
{
    QFETCH(int, error);
    s_system.renameToFreeName = error;
    s_system.exchange = error;
    const FileSystem::FileIdentity nothing(path("target"));
    QVERIFY(nothing.isNothing());
    QVERIFY(writeFile(path("target"), "came meanwhile") && writeFile(path("from"), "new"));
    QVERIFY(!FileSystem::replaceSame(path("from"), path("target"), nothing));
    QCOMPARE(readFile(path("target")), QByteArray("came meanwhile"));

    const FileSystem::FileIdentity same(path("target"));
    QVERIFY(!same.isNothing());
    QVERIFY(FileSystem::replaceSame(path("from"), path("target"), same));
    QCOMPARE(readFile(path("target")), QByteArray("new"));
    QVERIFY(!QFile::exists(path("from")) || readFile(path("from")) == "came meanwhile");

    QVERIFY(writeFile(path("from"), "newer"));
    s_system.steps.clear();
    QVERIFY(!FileSystem::replaceSame(path("from"), path("target"), same));
    // Not even for a moment: a crash then would leave the other file under a hidden name.
    QCOMPARE(s_system.steps, QStringList());
    QCOMPARE(readFile(path("target")), QByteArray("new"));
    QCOMPARE(readFile(path("from")), QByteArray("newer"));

    QVERIFY(QFile::remove(path("target")));
    QVERIFY(FileSystem::replaceSame(path("from"), path("target"), same));
    QCOMPARE(readFile(path("target")), QByteArray("newer"));

    QVERIFY(QDir().mkpath(path("folder")) && writeFile(path("from"), "newest"));
    QVERIFY(!FileSystem::replaceSame(path("from"), path("folder"), FileSystem::FileIdentity(path("folder"))));
    QCOMPARE(contents(m_dir->path()), (QStringList{"folder", "from", "target"}));
}

void TstFileSystem::late_file_is_kept()
{
    QVERIFY(writeFile(path("target"), "old") && writeFile(path("from"), "new"));
    const FileSystem::FileIdentity old(path("target"));
    s_system.beforeExchange = {[this] {
        QFile::remove(path("target"));
        writeFile(path("target"), "came meanwhile");
    }};
    QVERIFY(!FileSystem::replaceSame(path("from"), path("target"), old));
    QCOMPARE(readFile(path("target")), QByteArray("came meanwhile"));
    QCOMPARE(readFile(path("from")), QByteArray("new"));
    QCOMPARE(s_system.steps, (QStringList{"exchange", "exchange"}));
}

void TstFileSystem::late_file_is_kept_without_exchange()
{
    QVERIFY(writeFile(path("target"), "old") && writeFile(path("from"), "new"));
    const FileSystem::FileIdentity old(path("target"));
    s_system.exchange = EINVAL;
    s_system.beforeExchange = {[this] {
        QFile::remove(path("target"));
        writeFile(path("target"), "came meanwhile");
    }};
    QVERIFY(!FileSystem::replaceSame(path("from"), path("target"), old));
    QCOMPARE(readFile(path("target")), QByteArray("came meanwhile"));
    QCOMPARE(readFile(path("from")), QByteArray("new"));
}

void TstFileSystem::target_vanishing_at_commit_is_no_failure()
{
    QVERIFY(writeFile(path("target"), "old") && writeFile(path("from"), "new"));
    const FileSystem::FileIdentity old(path("target"));
    s_system.beforeExchange = {[this] { QFile::remove(path("target")); }};
    QVERIFY(FileSystem::replaceSame(path("from"), path("target"), old));
    QCOMPARE(readFile(path("target")), QByteArray("new"));
    QVERIFY(!QFile::exists(path("from")));
}

void TstFileSystem::target_vanishing_during_rollback_is_restored()
{
    QVERIFY(writeFile(path("target"), "old") && writeFile(path("from"), "new"));
    const FileSystem::FileIdentity old(path("target"));
    s_system.beforeExchange = {[this] {
                                   QFile::remove(path("target"));
                                   writeFile(path("target"), "came meanwhile");
                               },
                               [this] { QFile::remove(path("target")); }};
    QVERIFY(!FileSystem::replaceSame(path("from"), path("target"), old));
    QCOMPARE(readFile(path("target")), QByteArray("came meanwhile"));
    QCOMPARE(contents(m_dir->path()), QStringList{"target"});
}

void TstFileSystem::a_refused_exchange_is_not_tried_another_way()
{
    s_system.exchange = EACCES;
    QVERIFY(writeFile(path("target"), "old") && writeFile(path("from"), "new"));
    QVERIFY(!FileSystem::replaceSame(path("from"), path("target"), FileSystem::FileIdentity(path("target"))));
    QCOMPARE(readFile(path("target")), QByteArray("old"));
    QCOMPARE(readFile(path("from")), QByteArray("new"));
    QCOMPARE(s_system.steps, QStringList{"exchange"});
}

void TstFileSystem::old_file_is_removed_after_flushing_the_name()
{
    QVERIFY(writeFile(path("target"), "old"));
    const FileSystem::FileIdentity old(path("target"));
    ReplacingFile file(path("target"), ReplacingFile::Durability::FlushedToDisk);
    QVERIFY(file.create() && file.file().write("new") == 3);
    s_system.steps.clear();
    QVERIFY(file.commitInPlaceOf(old));
    QCOMPARE(s_system.steps, (QStringList{"flush file", "exchange", "flush folder"}));
    QCOMPARE(contents(m_dir->path()), QStringList{"target"});
    QCOMPARE(readFile(path("target")), QByteArray("new"));
}

void TstFileSystem::foreign_file_at_the_fragments_name_is_kept()
{
    QVERIFY(writeFile(path("target"), "old"));
    const FileSystem::FileIdentity old(path("target"));
    QString fragment;
    {
        ReplacingFile file(path("target"), ReplacingFile::Durability::FlushedToDisk);
        fragment = QFileInfo(file.path()).fileName();
        QVERIFY(file.create() && file.file().write("new") == 3);
        s_system.beforeExchange = {[this] {
                                       QFile::remove(path("target"));
                                       writeFile(path("target"), "came meanwhile");
                                   },
                                   [] { s_system.exchange = EIO; }};
        QVERIFY(!file.commitInPlaceOf(old));
    }
    QCOMPARE(contents(m_dir->path()), (QStringList{fragment, "target"}));
    QCOMPARE(readFile(path(fragment)), QByteArray("came meanwhile"));
}

void TstFileSystem::file_identity_survives_edits_and_renames()
{
    QVERIFY(writeFile(path("target"), "old"));
    const FileSystem::FileIdentity identity(path("target"));
    QVERIFY(identity.isAt(path("target")));
    QVERIFY(writeFile(path("target"), "changed in place"));
    QVERIFY(identity.isAt(path("target")));
    QVERIFY(QFile::rename(path("target"), path("renamed")));
    QVERIFY(identity.isAt(path("renamed")));
    QVERIFY(!identity.isAt(path("target")));
    QVERIFY(QFile::link(path("renamed"), path("target")));
    QVERIFY(!identity.isAt(path("target")));
    const FileSystem::FileIdentity link(path("target"));
    QVERIFY(!link.isNothing());
    QVERIFY(link.isAt(path("target")));
    const FileSystem::FileIdentity nothing(path("missing"));
    QVERIFY(nothing.isAt(path("nowhere either")));
    QVERIFY(!nothing.isAt(path("renamed")));
}

void TstFileSystem::files_of_two_disks_are_never_the_same()
{
    struct stat one;
    struct stat other;
    if (::stat("/proc", &one) != 0 || ::stat("/sys", &other) != 0 || one.st_ino != other.st_ino)
        QSKIP("The roots of two file systems have different numbers here");
    QVERIFY(FileSystem::FileIdentity("/proc").isAt("/proc"));
    QVERIFY(!FileSystem::FileIdentity("/proc").isAt("/sys"));
}

void TstFileSystem::used_number_is_not_assigned_again()
{
    // Some file systems reuse the inode number of a removed file immediately.
    for (int round = 0; round < 100; ++round) {
        QVERIFY(writeFile(path("target"), "old"));
        const FileSystem::FileIdentity old(path("target"));
        QVERIFY(QFile::remove(path("target")));
        QVERIFY(writeFile(path("target"), "new"));
        QVERIFY(!old.isAt(path("target")));
        QVERIFY(QFile::remove(path("target")));
    }
}

void TstFileSystem::creating_a_folder_flushes_its_parent()
{
    QVERIFY(FileSystem::makeFolder(path("a/b")));
    QCOMPARE(s_system.steps, (QStringList{"flush folder", "flush folder"}));
    QCOMPARE(contents(m_dir->path()), (QStringList{"a", "a/b"}));
}

void TstFileSystem::existing_folder_is_not_flushed()
{
    QVERIFY(FileSystem::makeFolder(m_dir->path()));
    QCOMPARE(s_system.steps, QStringList());
}

void TstFileSystem::a_tree_is_flushed_with_its_disk()
{
    QVERIFY(FileSystem::flushTree(m_dir->path()));
    QCOMPARE(s_system.steps, QStringList{"flush disk"});
    s_system.flushDisk = EIO;
    QString reason;
    QVERIFY(!FileSystem::flushTree(m_dir->path(), &reason));
    QCOMPARE(reason, QStringLiteral("cannot flush %1: Input/output error").arg(m_dir->path()));
}

void TstFileSystem::a_copy_aside_is_read_from_its_beginning()
{
    QVERIFY(writeFile(path("source"), "content"));
    ReplacingFile file(path("target"), ReplacingFile::Durability::NotFlushed);
    QVERIFY(file.createFrom(path("source")));
    QCOMPARE(file.file().readAll(), QByteArray("content"));
}

void TstFileSystem::no_handle_is_left_open()
{
    const auto openHandles = [] { return QDir(QStringLiteral("/proc/self/fd")).count(); };
    QVERIFY(replace(ReplacingFile::Durability::FlushedToDisk, ReplacingFile::ExistingTarget::Replaced));
    const uint before = openHandles();
    for (int i = 0; i < 10; ++i) {
        QVERIFY(replace(ReplacingFile::Durability::FlushedToDisk, ReplacingFile::ExistingTarget::Replaced));
        QVERIFY(FileSystem::flushTree(m_dir->path()));
        QCOMPARE(FileSystem::openToChange("/dev/null"), -1);
    }
    QCOMPARE(openHandles(), before);
}

void TstFileSystem::a_file_is_known_without_a_handle()
{
    QVERIFY(writeFile(path("target"), "x"));
    rlimit before;
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &none), 0);
    const bool isNothing = FileSystem::FileIdentity(path("target")).isNothing();
    const bool isMissing = FileSystem::FileIdentity(path("missing")).isNothing();
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &before), 0);
    QVERIFY(!isNothing);
    QVERIFY(isMissing);
}

void TstFileSystem::an_identity_gives_its_handle_back()
{
    QVERIFY(writeFile(path("target"), "x"));
    const auto next = [this] {
        const int handle = ::open(QFile::encodeName(path("target")).constData(), O_RDONLY | O_CLOEXEC);
        ::close(handle);
        return handle;
    };
    const int before = next();
    QVERIFY(!FileSystem::FileIdentity(path("target")).isNothing());
    QCOMPARE(next(), before);
}

void TstFileSystem::readers_wait_for_a_writer_only()
{
    QVERIFY(writeFile(path("target"), "x"));
    QFile one(path("target"));
    QFile other(path("target"));
    QVERIFY(one.open(QIODevice::ReadWrite) && other.open(QIODevice::ReadWrite));
    QVERIFY(FileSystem::lock(one.handle()));
    QVERIFY(!FileSystem::lockToRead(other.handle()));
    FileSystem::unlock(one.handle());
    errno = EWOULDBLOCK;
    QVERIFY(FileSystem::lockToRead(one.handle()));
    QVERIFY(FileSystem::lockToRead(other.handle()));
    QVERIFY(!FileSystem::lock(one.handle()));
    FileSystem::unlock(other.handle());
    errno = EWOULDBLOCK;
    QVERIFY(FileSystem::lock(one.handle()));
    // A file system without locks has nobody to wait for.
    QVERIFY(FileSystem::lock(-1) && FileSystem::lockToRead(-1));
}

void TstFileSystem::folder_has_one_lock()
{
    const QTemporaryDir dir;
    {
        const FileSystem::Folder first(dir.path());
        const FileSystem::Folder second(dir.path());
        QVERIFY(first.lock());
        QVERIFY(!second.lock());
    }
    QVERIFY(FileSystem::Folder(dir.path()).lock());
}

void TstFileSystem::the_time_is_kept_to_the_nanosecond()
{
    QVERIFY(writeFile(path("target"), "x"));
    QFile file(path("target"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    for (const qint64 time : {qint64(1500000000123456789), qint64(0), qint64(-1), qint64(-1500000000)}) {
        QVERIFY(FileSystem::setModified(file.handle(), time));
        QCOMPARE(FileSystem::modified(file.handle()), time);
    }
    QVERIFY(!FileSystem::setModified(-1, 0));
    QCOMPARE(FileSystem::modified(-1), qint64(0));
}

TEST_MAIN(TstFileSystem)
#include "tst_filesystem.moc"

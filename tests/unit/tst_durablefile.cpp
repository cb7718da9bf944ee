#include "durablefile.h"
#include "packagetesting.h"
#include "replacingfile.h"

#include <support/testmain.h>

#include <QTemporaryDir>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <functional>

#include <dlfcn.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;

namespace {

/// What the system answers to the steps that make a file outlive a power failure: 0 for what it would answer anyway, or
/// the error that the step ends with. And which of them were taken, in their order.
struct System
{
    int openFolder = 0;
    int flushFile = 0;
    int flushFolder = 0;
    int flushDisk = 0;
    int renameToFreeName = 0;
    int exchange = 0;
    /// What another program does before the next exchanges.
    QVector<std::function<void()>> beforeExchange;
    /// The file system shares content between files, as few do.
    bool sharesContent = false;
    /// Somebody else makes each folder just before.
    bool foldersAppear = false;
    QStringList steps;
};

System s_system;

template<typename Function>
Function original(const char *name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

bool failsWith(int error)
{
    errno = error;
    return error != 0;
}

bool isFolder(int handle)
{
    struct stat status;
    return fstat(handle, &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

// These stand before the C library's. On the thread that tests alone.

// The same function, which the headers choose between.
template<typename Open>
int openUnlessFolderFails(Open function, const char *path, int flags, va_list arguments)
{
    const mode_t mode = (flags & O_CREAT) ? va_arg(arguments, mode_t) : 0;
    return (flags & O_DIRECTORY) && failsWith(s_system.openFolder) ? -1 : function(path, flags, mode);
}

extern "C" Q_DECL_EXPORT int open(const char *path, int flags, ...)
{
    static const auto function = original<int (*)(const char *, int, mode_t)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const int handle = openUnlessFolderFails(function, path, flags, arguments);
    va_end(arguments);
    return handle;
}

extern "C" Q_DECL_EXPORT int open64(const char *path, int flags, ...)
{
    static const auto function = original<int (*)(const char *, int, mode_t)>("open64");
    va_list arguments;
    va_start(arguments, flags);
    const int handle = openUnlessFolderFails(function, path, flags, arguments);
    va_end(arguments);
    return handle;
}

extern "C" Q_DECL_EXPORT int fsync(int handle)
{
    static const auto function = original<int (*)(int)>("fsync");
    s_system.steps.append(isFolder(handle) ? QStringLiteral("flush folder") : QStringLiteral("flush file"));
    return failsWith(isFolder(handle) ? s_system.flushFolder : s_system.flushFile) ? -1 : function(handle);
}

extern "C" Q_DECL_EXPORT int sync_file_range(int handle, off64_t offset, off64_t count, unsigned int flags)
{
    static const auto function = original<int (*)(int, off64_t, off64_t, unsigned int)>("sync_file_range");
    // All of it, and without waiting.
    const bool isHint = offset == 0 && count == 0 && flags == SYNC_FILE_RANGE_WRITE;
    s_system.steps.append(isHint ? QStringLiteral("begin flushing") : QStringLiteral("flush a part"));
    return function(handle, offset, count, flags);
}

extern "C" Q_DECL_EXPORT int syncfs(int handle) noexcept
{
    static const auto function = original<int (*)(int)>("syncfs");
    s_system.steps.append(QStringLiteral("flush disk"));
    return failsWith(s_system.flushDisk) ? -1 : function(handle);
}

extern "C" Q_DECL_EXPORT int ioctl(int handle, unsigned long request, ...) noexcept
{
    static const auto function = original<int (*)(int, unsigned long, void *)>("ioctl");
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    return s_system.sharesContent && request == FICLONE ? 0 : function(handle, request, argument);
}

extern "C" Q_DECL_EXPORT int mkdir(const char *path, mode_t mode) noexcept
{
    static const auto function = original<int (*)(const char *, mode_t)>("mkdir");
    if (s_system.foldersAppear)
        function(path, mode);
    return function(path, mode);
}

extern "C" Q_DECL_EXPORT int rename(const char *from, const char *to) noexcept
{
    static const auto function = original<int (*)(const char *, const char *)>("rename");
    s_system.steps.append(QStringLiteral("rename"));
    return function(from, to);
}

extern "C" Q_DECL_EXPORT int renameat2(int fromFolder, const char *from, int toFolder, const char *to,
                                       unsigned int flags) noexcept
{
    static const auto function = original<int (*)(int, const char *, int, const char *, unsigned int)>("renameat2");
    if (flags == RENAME_EXCHANGE) {
        s_system.steps.append(QStringLiteral("exchange"));
        if (!s_system.beforeExchange.isEmpty())
            s_system.beforeExchange.takeFirst()();
        return failsWith(s_system.exchange) ? -1 : function(fromFolder, from, toFolder, to, flags);
    }
    s_system.steps.append(QStringLiteral("rename to a free name"));
    return failsWith(s_system.renameToFreeName) ? -1 : function(fromFolder, from, toFolder, to, flags);
}

/// What is flushed when, and what is left when the system refuses a step.
class TstDurableFile : public QObject
{
    Q_OBJECT

private slots:
    void content_is_shared_where_the_file_system_does();
    void a_folder_that_appears_meanwhile_counts_as_made();
    void without_standard_input_folders_are_made_and_flushed();
    void init();

    void content_is_flushed_before_the_name_and_the_name_before_success_data();
    void content_is_flushed_before_the_name_and_the_name_before_success();
    void what_can_be_made_again_is_not_flushed();
    void the_disk_begins_with_the_first_8_MiB();
    void content_that_cannot_be_flushed_replaces_nothing();
    void content_that_cannot_be_written_replaces_nothing();
    void a_missing_folder_is_flushed_before_the_file_is_made();
    void a_folder_that_cannot_be_opened_keeps_what_it_has();
    void a_name_that_cannot_be_flushed_is_told_data();
    void a_name_that_cannot_be_flushed_is_told();
    void a_free_name_is_found_without_the_systems_help_data();
    void a_free_name_is_found_without_the_systems_help();
    void what_the_system_refuses_is_not_tried_another_way();
    void only_what_is_expected_is_replaced_data();
    void only_what_is_expected_is_replaced();
    void what_comes_at_the_last_moment_is_kept();
    void what_comes_at_the_last_moment_is_kept_without_an_exchange();
    void what_goes_at_the_last_moment_is_not_missed();
    void what_goes_while_it_is_put_back_is_replaced_by_it();
    void a_refused_exchange_is_not_tried_another_way();
    void the_old_file_goes_after_the_new_name_is_flushed();
    void a_foreign_file_in_the_fragments_place_is_kept();
    void a_file_is_known_again_when_it_was_changed_or_renamed();
    void a_number_in_use_is_not_given_away();
    void a_folder_that_is_made_is_flushed_in_the_one_it_is_made_in();
    void a_folder_that_was_there_is_not_flushed();
    void a_tree_is_flushed_with_its_disk();
    void a_copy_aside_is_read_from_its_beginning();
    void no_handle_is_left_open();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }
    bool replace(ReplacingFile::Durability durability, ReplacingFile::ExistingTarget existing) const;

    QScopedPointer<QTemporaryDir> m_dir;
};

void TstDurableFile::content_is_shared_where_the_file_system_does()
{
    s_system = System();
    QVERIFY(!DurableFile::shareContent(-1, -1));
    s_system.sharesContent = true;
    const bool isShared = DurableFile::shareContent(-1, -1);
    s_system = System();
    QVERIFY(isShared);
}

void TstDurableFile::a_folder_that_appears_meanwhile_counts_as_made()
{
    const QTemporaryDir dir;
    s_system = System();
    s_system.foldersAppear = true;
    QVERIFY(DurableFile::makeFolder(dir.filePath("one/two")));
    QVERIFY(QFileInfo(dir.filePath("one/two")).isDir());
    s_system = System();
}

void TstDurableFile::without_standard_input_folders_are_made_and_flushed()
{
    const QTemporaryDir dir;
    s_system = System();
    // The descriptor that is opened next is 0 then.
    const int kept = dup(0);
    ::close(0);
    const bool isMade = DurableFile::makeFolder(dir.filePath("one/two"));
    const bool isFlushed = DurableFile::flushTree(dir.path());
    const int next = dup(1);
    ::close(next);
    dup2(kept, 0);
    ::close(kept);
    QVERIFY(isMade);
    QVERIFY(isFlushed);
    // Each was closed again.
    QCOMPARE(next, 0);
}

void TstDurableFile::init()
{
    s_system = System();
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
}

/// Writes "new" over what the target is.
bool TstDurableFile::replace(ReplacingFile::Durability durability, ReplacingFile::ExistingTarget existing) const
{
    ReplacingFile file(path("target"), durability);
    return file.create() && file.file().write("new") == 3 && file.commit(existing);
}

void TstDurableFile::content_is_flushed_before_the_name_and_the_name_before_success_data()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<QString>("rename");
    QTest::newRow("replaced") << true << "rename";
    QTest::newRow("free") << false << "rename to a free name";
}

void TstDurableFile::content_is_flushed_before_the_name_and_the_name_before_success()
{
    QFETCH(bool, exists);
    QFETCH(QString, rename);
    QVERIFY(!exists || writeFile(path("target"), "old"));
    QVERIFY(replace(ReplacingFile::FlushedToDisk, exists ? ReplacingFile::Replaced : ReplacingFile::Kept));
    QCOMPARE(s_system.steps, (QStringList{"flush file", rename, "flush folder"}));
    QCOMPARE(readFile(path("target")), QByteArray("new"));
}

void TstDurableFile::what_can_be_made_again_is_not_flushed()
{
    QVERIFY(replace(ReplacingFile::NotFlushed, ReplacingFile::Replaced));
    QCOMPARE(s_system.steps, QStringList{"rename"});
    QCOMPARE(readFile(path("target")), QByteArray("new"));
}

void TstDurableFile::the_disk_begins_with_the_first_8_MiB()
{
    for (const auto durability : {ReplacingFile::FlushedToDisk, ReplacingFile::NotFlushed}) {
        const bool isFlushed = durability == ReplacingFile::FlushedToDisk;
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

void TstDurableFile::content_that_cannot_be_flushed_replaces_nothing()
{
    QVERIFY(writeFile(path("target"), "old"));
    s_system.flushFile = EIO;
    QVERIFY(!replace(ReplacingFile::FlushedToDisk, ReplacingFile::Replaced));
    QCOMPARE(contents(m_dir->path()), QStringList{"target"});
    QCOMPARE(readFile(path("target")), QByteArray("old"));
}

void TstDurableFile::content_that_cannot_be_written_replaces_nothing()
{
    QVERIFY(writeFile(path("target"), "old"));
    // What fails at once, and what fails when the buffer is written.
    for (const int size : {1000000, 10}) {
        ReplacingFile file(path("target"), ReplacingFile::NotFlushed);
        QVERIFY(file.create());
        const FullDisk disk(0);
        file.file().write(QByteArray(size, 'x'));
        QVERIFY(!file.commit());
    }
    QCOMPARE(contents(m_dir->path()), QStringList{"target"});
    QCOMPARE(readFile(path("target")), QByteArray("old"));
}

void TstDurableFile::a_missing_folder_is_flushed_before_the_file_is_made()
{
    for (const auto durability : {ReplacingFile::FlushedToDisk, ReplacingFile::NotFlushed}) {
        s_system.steps.clear();
        ReplacingFile file(path(QStringLiteral("folder%1/target").arg(durability)), durability);
        QVERIFY(file.create());
        const bool isFlushed = durability == ReplacingFile::FlushedToDisk;
        QCOMPARE(s_system.steps, isFlushed ? QStringList{"flush folder"} : QStringList());
    }
}

void TstDurableFile::a_folder_that_cannot_be_opened_keeps_what_it_has()
{
    QVERIFY(writeFile(path("target"), "old"));
    s_system.openFolder = EMFILE;
    QVERIFY(!replace(ReplacingFile::FlushedToDisk, ReplacingFile::Replaced));
    QVERIFY(!DurableFile::renameDurably(path("target"), path("free")));
    QVERIFY(!DurableFile::makeFolder(path("folder")));
    QVERIFY(!DurableFile::flushTree(m_dir->path()));
    QCOMPARE(contents(m_dir->path()), QStringList{"target"});
    QCOMPARE(readFile(path("target")), QByteArray("old"));
    QCOMPARE(s_system.steps, QStringList{"flush file"});
}

void TstDurableFile::a_name_that_cannot_be_flushed_is_told_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("isTold");
    QTest::newRow("a broken disk") << EIO << true;
    QTest::newRow("a full disk") << ENOSPC << true;
    // Sticks and network shares: their folders cannot be flushed.
    QTest::newRow("not known to the file system") << EINVAL << false;
    QTest::newRow("not supported by the file system") << ENOTSUP << false;
}

void TstDurableFile::a_name_that_cannot_be_flushed_is_told()
{
    QFETCH(int, error);
    QFETCH(bool, isTold);
    s_system.flushFolder = error;
    QCOMPARE(replace(ReplacingFile::FlushedToDisk, ReplacingFile::Replaced), !isTold);
    QCOMPARE(DurableFile::renameDurably(path("target"), path("free")), !isTold);
    QCOMPARE(DurableFile::makeFolder(path("folder")), !isTold);
}

void TstDurableFile::a_free_name_is_found_without_the_systems_help_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("not known to the file system") << EINVAL;
    QTest::newRow("not known to the system") << ENOSYS;
}

void TstDurableFile::a_free_name_is_found_without_the_systems_help()
{
    QFETCH(int, error);
    s_system.renameToFreeName = error;
    QVERIFY(writeFile(path("from"), "new") && writeFile(path("taken"), "old"));
    QVERIFY(QFile::link(path("missing"), path("link")));
    QVERIFY(!DurableFile::renameToFreeName(path("from"), path("taken")));
    QVERIFY(!DurableFile::renameToFreeName(path("from"), path("link")));
    QCOMPARE(readFile(path("taken")), QByteArray("old"));
    QVERIFY(QFileInfo(path("link")).isSymLink());
    QVERIFY(DurableFile::renameToFreeName(path("from"), path("free")));
    QCOMPARE(readFile(path("free")), QByteArray("new"));
    QVERIFY(!DurableFile::renameToFreeName(path("from"), path("another")));
}

void TstDurableFile::what_the_system_refuses_is_not_tried_another_way()
{
    s_system.renameToFreeName = EACCES;
    QVERIFY(writeFile(path("from"), "new"));
    QVERIFY(!DurableFile::renameToFreeName(path("from"), path("free")));
    QCOMPARE(contents(m_dir->path()), QStringList{"from"});
}

void TstDurableFile::only_what_is_expected_is_replaced_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("with the system's help") << 0;
    QTest::newRow("not known to the file system") << EINVAL;
    QTest::newRow("not known to the system") << ENOSYS;
}

void TstDurableFile::only_what_is_expected_is_replaced()
{
    QFETCH(int, error);
    s_system.renameToFreeName = error;
    s_system.exchange = error;
    const DurableFile::FileIdentity nothing(path("target"));
    QVERIFY(nothing.isNothing());
    QVERIFY(writeFile(path("target"), "came meanwhile") && writeFile(path("from"), "new"));
    QVERIFY(!DurableFile::replaceSame(path("from"), path("target"), nothing));
    QCOMPARE(readFile(path("target")), QByteArray("came meanwhile"));

    const DurableFile::FileIdentity same(path("target"));
    QVERIFY(!same.isNothing());
    QVERIFY(DurableFile::replaceSame(path("from"), path("target"), same));
    QCOMPARE(readFile(path("target")), QByteArray("new"));
    QVERIFY(!QFile::exists(path("from")) || readFile(path("from")) == "came meanwhile");

    QVERIFY(writeFile(path("from"), "newer"));
    QVERIFY(!DurableFile::replaceSame(path("from"), path("target"), same));
    QCOMPARE(readFile(path("target")), QByteArray("new"));
    QCOMPARE(readFile(path("from")), QByteArray("newer"));

    QVERIFY(QFile::remove(path("target")));
    QVERIFY(DurableFile::replaceSame(path("from"), path("target"), same));
    QCOMPARE(readFile(path("target")), QByteArray("newer"));

    QVERIFY(QDir().mkpath(path("folder")) && writeFile(path("from"), "newest"));
    QVERIFY(!DurableFile::replaceSame(path("from"), path("folder"), DurableFile::FileIdentity(path("folder"))));
    QCOMPARE(contents(m_dir->path()), (QStringList{"folder", "from", "target"}));
}

void TstDurableFile::what_comes_at_the_last_moment_is_kept()
{
    QVERIFY(writeFile(path("target"), "old") && writeFile(path("from"), "new"));
    const DurableFile::FileIdentity old(path("target"));
    s_system.beforeExchange = {[this] {
        QFile::remove(path("target"));
        writeFile(path("target"), "came meanwhile");
    }};
    QVERIFY(!DurableFile::replaceSame(path("from"), path("target"), old));
    QCOMPARE(readFile(path("target")), QByteArray("came meanwhile"));
    QCOMPARE(readFile(path("from")), QByteArray("new"));
    QCOMPARE(s_system.steps, (QStringList{"exchange", "exchange"}));
}

void TstDurableFile::what_comes_at_the_last_moment_is_kept_without_an_exchange()
{
    QVERIFY(writeFile(path("target"), "old") && writeFile(path("from"), "new"));
    const DurableFile::FileIdentity old(path("target"));
    s_system.exchange = EINVAL;
    s_system.beforeExchange = {[this] {
        QFile::remove(path("target"));
        writeFile(path("target"), "came meanwhile");
    }};
    QVERIFY(!DurableFile::replaceSame(path("from"), path("target"), old));
    QCOMPARE(readFile(path("target")), QByteArray("came meanwhile"));
    QCOMPARE(readFile(path("from")), QByteArray("new"));
}

void TstDurableFile::what_goes_at_the_last_moment_is_not_missed()
{
    QVERIFY(writeFile(path("target"), "old") && writeFile(path("from"), "new"));
    const DurableFile::FileIdentity old(path("target"));
    s_system.beforeExchange = {[this] { QFile::remove(path("target")); }};
    QVERIFY(DurableFile::replaceSame(path("from"), path("target"), old));
    QCOMPARE(readFile(path("target")), QByteArray("new"));
    QVERIFY(!QFile::exists(path("from")));
}

void TstDurableFile::what_goes_while_it_is_put_back_is_replaced_by_it()
{
    QVERIFY(writeFile(path("target"), "old") && writeFile(path("from"), "new"));
    const DurableFile::FileIdentity old(path("target"));
    s_system.beforeExchange = {[this] {
                                   QFile::remove(path("target"));
                                   writeFile(path("target"), "came meanwhile");
                               },
                               [this] { QFile::remove(path("target")); }};
    QVERIFY(!DurableFile::replaceSame(path("from"), path("target"), old));
    QCOMPARE(readFile(path("target")), QByteArray("came meanwhile"));
    QCOMPARE(contents(m_dir->path()), QStringList{"target"});
}

void TstDurableFile::a_refused_exchange_is_not_tried_another_way()
{
    s_system.exchange = EACCES;
    QVERIFY(writeFile(path("target"), "old") && writeFile(path("from"), "new"));
    QVERIFY(!DurableFile::replaceSame(path("from"), path("target"), DurableFile::FileIdentity(path("target"))));
    QCOMPARE(readFile(path("target")), QByteArray("old"));
    QCOMPARE(readFile(path("from")), QByteArray("new"));
    QCOMPARE(s_system.steps, QStringList{"exchange"});
}

void TstDurableFile::the_old_file_goes_after_the_new_name_is_flushed()
{
    QVERIFY(writeFile(path("target"), "old"));
    const DurableFile::FileIdentity old(path("target"));
    ReplacingFile file(path("target"), ReplacingFile::FlushedToDisk);
    QVERIFY(file.create() && file.file().write("new") == 3);
    s_system.steps.clear();
    QVERIFY(file.commitInPlaceOf(old));
    QCOMPARE(s_system.steps, (QStringList{"flush file", "exchange", "flush folder"}));
    QCOMPARE(contents(m_dir->path()), QStringList{"target"});
    QCOMPARE(readFile(path("target")), QByteArray("new"));
}

void TstDurableFile::a_foreign_file_in_the_fragments_place_is_kept()
{
    QVERIFY(writeFile(path("target"), "old"));
    const DurableFile::FileIdentity old(path("target"));
    QString fragment;
    {
        ReplacingFile file(path("target"), ReplacingFile::FlushedToDisk);
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

void TstDurableFile::a_file_is_known_again_when_it_was_changed_or_renamed()
{
    QVERIFY(writeFile(path("target"), "old"));
    const DurableFile::FileIdentity identity(path("target"));
    QVERIFY(identity.isAt(path("target")));
    QVERIFY(writeFile(path("target"), "changed in place"));
    QVERIFY(identity.isAt(path("target")));
    QVERIFY(QFile::rename(path("target"), path("renamed")));
    QVERIFY(identity.isAt(path("renamed")));
    QVERIFY(!identity.isAt(path("target")));
    QVERIFY(QFile::link(path("renamed"), path("target")));
    QVERIFY(!identity.isAt(path("target")));
    const DurableFile::FileIdentity link(path("target"));
    QVERIFY(!link.isNothing());
    QVERIFY(link.isAt(path("target")));
    const DurableFile::FileIdentity nothing(path("missing"));
    QVERIFY(nothing.isAt(path("nowhere either")));
    QVERIFY(!nothing.isAt(path("renamed")));
}

void TstDurableFile::a_number_in_use_is_not_given_away()
{
    // Some file systems give the number of a file that was removed to the next one.
    for (int round = 0; round < 100; ++round) {
        QVERIFY(writeFile(path("target"), "old"));
        const DurableFile::FileIdentity old(path("target"));
        QVERIFY(QFile::remove(path("target")));
        QVERIFY(writeFile(path("target"), "new"));
        QVERIFY(!old.isAt(path("target")));
        QVERIFY(QFile::remove(path("target")));
    }
}

void TstDurableFile::a_folder_that_is_made_is_flushed_in_the_one_it_is_made_in()
{
    QVERIFY(DurableFile::makeFolder(path("a/b")));
    QCOMPARE(s_system.steps, (QStringList{"flush folder", "flush folder"}));
    QCOMPARE(contents(m_dir->path()), (QStringList{"a", "a/b"}));
}

void TstDurableFile::a_folder_that_was_there_is_not_flushed()
{
    QVERIFY(DurableFile::makeFolder(m_dir->path()));
    QCOMPARE(s_system.steps, QStringList());
}

void TstDurableFile::a_tree_is_flushed_with_its_disk()
{
    QVERIFY(DurableFile::flushTree(m_dir->path()));
    QCOMPARE(s_system.steps, QStringList{"flush disk"});
    s_system.flushDisk = EIO;
    QVERIFY(!DurableFile::flushTree(m_dir->path()));
}

void TstDurableFile::a_copy_aside_is_read_from_its_beginning()
{
    QVERIFY(writeFile(path("source"), "content"));
    ReplacingFile file(path("target"), ReplacingFile::NotFlushed);
    QVERIFY(file.createFrom(path("source")));
    QCOMPARE(file.file().readAll(), QByteArray("content"));
}

void TstDurableFile::no_handle_is_left_open()
{
    const auto openHandles = [] { return QDir(QStringLiteral("/proc/self/fd")).count(); };
    QVERIFY(replace(ReplacingFile::FlushedToDisk, ReplacingFile::Replaced));
    const uint before = openHandles();
    for (int i = 0; i < 10; ++i) {
        QVERIFY(replace(ReplacingFile::FlushedToDisk, ReplacingFile::Replaced));
        QVERIFY(DurableFile::flushTree(m_dir->path()));
    }
    QCOMPARE(openHandles(), before);
}

TEST_MAIN(TstDurableFile)
#include "tst_durablefile.moc"

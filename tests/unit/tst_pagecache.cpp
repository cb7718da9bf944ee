// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "cachetesting.h"
#include "dropbehind.h"
#include "filesystem.h"
#include "flushbehind.h"
#include "packagereader.h"
#include "packagesnapshot.h"
#include "packagetesting.h"
#include "pagecache.h"
#include "replacingfile.h"
#include "streamcopy.h"
#include "zippackagehandle.h"

#include <support/libraryhook.h>
#include <support/testmain.h>

#include <QTemporaryDir>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <memory>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

using namespace CacheTesting;
using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;

Q_DECLARE_METATYPE(std::function<void()>)

namespace {

/// The errors with which the system answers; 0 for the real answer.
struct System
{
    int syncRange = 0;
    int advise = 0;
    int residency = 0;
    /// Files that were removed before they were to be written.
    int removedFilesWritten = 0;
    int rangesWaitedFor = 0;
    int ranges = 0;
    int advices = 0;
};

System s_system;

} // namespace

// Hook the C library's functions, on the test's thread only.

extern "C" Q_DECL_EXPORT int sync_file_range(int handle, off64_t offset, off64_t count, unsigned int flags)
{
    static const auto function = original<int(int, off64_t, off64_t, unsigned int)>("sync_file_range");
    s_system.removedFilesWritten += FileSystem::isRemoved(handle);
    ++s_system.ranges;
    s_system.rangesWaitedFor += (flags & SYNC_FILE_RANGE_WAIT_AFTER) != 0;
    return failsWith(s_system.syncRange) ? -1 : function(handle, offset, count, flags);
}

extern "C" Q_DECL_EXPORT int posix_fadvise(int handle, off_t offset, off_t size, int advice)
{
    static const auto function = original<int(int, off_t, off_t, int)>("posix_fadvise");
    ++s_system.advices;
    return s_system.advise != 0 ? s_system.advise : function(handle, offset, size, advice);
}

extern "C" Q_DECL_EXPORT int posix_fadvise64(int handle, off64_t offset, off64_t size, int advice)
{
    return posix_fadvise(handle, offset, size, advice);
}

extern "C" Q_DECL_EXPORT int mincore(void *address, size_t size, unsigned char *pages) noexcept
{
    static const auto function = original<int(void *, size_t, unsigned char *)>("mincore");
    return failsWith(s_system.residency) ? -1 : function(address, size, pages);
}

/// What large files leave in the system's page cache.
class TstPageCache : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void read_pages_are_dropped_behind_the_reader();
    void pages_cached_before_stay_cached();
    void cached_pages_ahead_of_the_reader_stay();
    void an_empty_range_drops_nothing();
    void an_empty_range_waits_for_nothing();
    void unwritten_pages_survive_a_reader();
    void reading_back_and_forth_leaves_nothing();
    void pages_far_ahead_are_dropped();
    void scattered_cached_pages_cost_little();
    void truncated_file_is_read_to_its_end();
    void written_pages_are_dropped_behind_the_writer();
    void going_back_changes_what_was_dropped();
    void finished_files_are_bounded_together();
    void finished_files_are_begun_before_waiting();
    void removed_files_are_not_written();
    void nothing_is_written_before_it_must_be();
    void small_files_are_left_alone();
    void finished_files_are_closed();
    void refused_write_is_reported_once();
    void refused_write_replaces_nothing();
    void refused_finished_file_is_reported();
    void missing_calls_change_no_content_data();
    void missing_calls_change_no_content();
    void operations_leave_little_cached_data();
    void operations_leave_little_cached();
    void source_is_dropped_while_it_is_read();
    void operations_keep_what_was_cached_data();
    void operations_keep_what_was_cached();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }
    static constexpr qint64 pictureSize = 44 * MiB;
    /// Of a file that was written: the distance, and what was written since the last flush.
    static constexpr qint64 largestRest = FlushBehind::defaultDistance * 5 / 4;

    /// A file of noise on the disk, nothing of which is cached.
    void makeUncached(const QString &name, qint64 size);
    static qint64 cachedBelow(const QString &folder);
    static bool isCached(const QFile &file, qint64 offset);
    void defineOperations();
    bool pack(const QString &name);
    /// A device's folder and a package of it, nothing of which is cached.
    void makeOperands();

    std::unique_ptr<QTemporaryDir> m_dir;
};

void TstPageCache::init()
{
    s_system = System();
    m_dir = folderOnDisk();
    if (!m_dir)
        QSKIP("this file system does not drop pages");
}

void TstPageCache::cleanup()
{
    s_system = System();
    m_dir.reset();
}

void TstPageCache::makeUncached(const QString &name, qint64 size)
{
    QVERIFY(writeFile(path(name), noise(size)) && uncache(path(name)));
}

qint64 TstPageCache::cachedBelow(const QString &folder)
{
    qint64 bytes = 0;
    QDirIterator walk(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (walk.hasNext())
        bytes += cached(walk.next());
    return bytes;
}

bool TstPageCache::isCached(const QFile &file, qint64 offset)
{
    const std::vector<PageCache::Range> uncached = PageCache::uncachedRanges(file.handle(), file.size());
    return std::none_of(uncached.begin(), uncached.end(), [offset](const PageCache::Range &range) {
        return range.nBegin <= offset && offset < range.nEnd;
    });
}

void TstPageCache::read_pages_are_dropped_behind_the_reader()
{
    constexpr qint64 size = 66 * MiB;
    constexpr qint64 largest = 40 * MiB;
    makeUncached("file", size);
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    {
        DropBehind dropBehind(file.handle());
        while (!file.atEnd()) {
            QCOMPARE(file.read(MiB).size(), int(MiB));
            dropBehind.advance(file.pos());
            QVERIFY(cached(file.fileName()) <= largest);
        }
    }
    QCOMPARE(cached(file.fileName()), 0LL);
}

void TstPageCache::pages_cached_before_stay_cached()
{
    constexpr qint64 size = 24 * MiB;
    makeUncached("file", size);
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    const auto ranges = [&] {
        QVector<QPair<qint64, qint64>> found;
        for (const PageCache::Range &range : PageCache::uncachedRanges(file.handle(), size))
            found.append({range.nBegin, range.nEnd});
        return found;
    };
    QVERIFY(holdsOnce([&] {
        // As after a scan, which reads some bytes of each 10 MiB.
        posix_fadvise(file.handle(), 0, 0, POSIX_FADV_RANDOM);
        for (const qint64 offset : {0LL, 10 * MiB, 10 * MiB + 300000, 20 * MiB, size - 70000}) {
            if (!file.seek(offset) || file.read(16 * 1024).isEmpty())
                return false;
        }
        const auto before = ranges();
        file.seek(0);
        {
            DropBehind dropBehind(file.handle());
            while (!file.read(MiB).isEmpty())
                dropBehind.advance(file.pos());
        }
        return before.size() > 3 && ranges() == before;
    }));
}

void TstPageCache::cached_pages_ahead_of_the_reader_stay()
{
    constexpr qint64 size = 66 * MiB;
    makeUncached("file", size);
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    for (const qint64 portion : {8 * MiB, 9 * MiB}) {
        QVERIFY(holdsOnce([&] {
            posix_fadvise(file.handle(), 0, 0, POSIX_FADV_RANDOM);
            if (!file.seek(60 * MiB) || file.read(1000).isEmpty() || !file.seek(0))
                return false;
            DropBehind dropBehind(file.handle());
            file.read(portion);
            dropBehind.advance(portion);
            return isCached(file, 60 * MiB);
        }));
    }
}

void TstPageCache::an_empty_range_drops_nothing()
{
    constexpr qint64 size = 4 * MiB;
    makeUncached("file", size);
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(holdsOnce([&] {
        if (!file.seek(0) || file.readAll().size() != size)
            return false;
        PageCache::drop(file.handle(), {MiB, MiB});
        PageCache::drop(file.handle(), {2 * MiB, MiB});
        return cachedOf(file) == size;
    }));
}

void TstPageCache::an_empty_range_waits_for_nothing()
{
    QVERIFY(writeFile(path("file"), noise(MiB)));
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    s_system.syncRange = EIO;
    QVERIFY(PageCache::finishWriting(file.handle(), {MiB, MiB}));
    QVERIFY(PageCache::finishWriting(file.handle(), {MiB, 1}));
    QCOMPARE(s_system.ranges, 0);
    QVERIFY(!PageCache::finishWriting(file.handle(), PageCache::Range()));
}

void TstPageCache::unwritten_pages_survive_a_reader()
{
    // As pictures that were just staged: they are removed before they need to reach the disk.
    const QByteArray content = noise(12 * MiB);
    QVERIFY(holdsOnce([&] {
        QFile file(path("file"));
        if (!writeFile(file.fileName(), content) || !file.open(QIODevice::ReadOnly))
            return false;
        {
            DropBehind dropBehind(file.handle());
            if (file.readAll() != content)
                return false;
            dropBehind.advance(file.pos());
        }
        return cached(file.fileName()) == content.size();
    }));
}

void TstPageCache::reading_back_and_forth_leaves_nothing()
{
    constexpr qint64 size = 66 * MiB;
    constexpr qint64 largest = 56 * MiB;
    makeUncached("file", size);
    const QByteArray content = noise(size);
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    QRandomGenerator random(5);
    {
        DropBehind dropBehind(file.handle());
        for (int step = 0; step < 200; ++step) {
            const qint64 offset = random.bounded(int(size));
            const qint64 count = random.bounded(int(2 * MiB));
            QVERIFY(file.seek(offset));
            QCOMPARE(file.read(count), content.mid(int(offset), int(count)));
            dropBehind.advance(file.pos());
            QVERIFY(cached(file.fileName()) <= largest);
        }
    }
    QCOMPARE(cached(file.fileName()), 0LL);
}

void TstPageCache::pages_far_ahead_are_dropped()
{
    constexpr qint64 size = 66 * MiB;
    makeUncached("file", size);
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    DropBehind dropBehind(file.handle());
    const auto read = [&](qint64 offset) {
        QVERIFY(file.seek(offset) && file.read(9 * MiB).size() == 9 * MiB);
        dropBehind.advance(file.pos());
    };
    read(0);
    QVERIFY(!isCached(file, 5 * MiB));
    read(52 * MiB);
    QVERIFY(file.seek(64 * MiB) && !file.read(1000).isEmpty());
    QVERIFY(isCached(file, 64 * MiB));
    read(0);
    QVERIFY(!isCached(file, 64 * MiB));
}

void TstPageCache::scattered_cached_pages_cost_little()
{
    constexpr qint64 size = 66 * MiB;
    makeUncached("file", size);
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    QCOMPARE(posix_fadvise(file.handle(), 0, 0, POSIX_FADV_RANDOM), 0);
    for (qint64 offset = 0; offset < size; offset += MiB / 8)
        QVERIFY(file.seek(offset) && !file.read(100).isEmpty());
    const auto ranges = int(PageCache::uncachedRanges(file.handle(), size).size());
    QVERIFY(ranges > 400);
    QVERIFY(file.seek(0));
    s_system.advices = 0;
    {
        DropBehind dropBehind(file.handle());
        while (!file.read(MiB).isEmpty())
            dropBehind.advance(file.pos());
    }
    // Each range while it is passed, once more with the next portion, and at the end.
    QVERIFY(s_system.advices <= 4 * ranges);
}

void TstPageCache::truncated_file_is_read_to_its_end()
{
    makeUncached("file", 20 * MiB);
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    DropBehind dropBehind(file.handle());
    QCOMPARE(file.read(12 * MiB).size(), int(12 * MiB));
    QVERIFY(QFile::resize(path("file"), 13 * MiB));
    dropBehind.advance(file.pos());
    QCOMPARE(file.read(12 * MiB).size(), int(MiB));
    dropBehind.advance(file.pos());
}

void TstPageCache::written_pages_are_dropped_behind_the_writer()
{
    constexpr qint64 distance = 2 * MiB;
    for (const auto begin : {FlushBehind::Begin::AtOnce, FlushBehind::Begin::BeyondDistance}) {
        FlushBehind flushBehind(begin, distance);
        FlushedBehind<QFile> file(&flushBehind, path("file"));
        QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Truncate));
        const QByteArray block = noise(MiB / 4);
        for (int number = 0; number < 80; ++number) {
            QCOMPARE(file.write(block), qint64(block.size()));
            QVERIFY(cached(file.fileName()) <= 2 * distance);
        }
        QVERIFY(file.flush() && cached(file.fileName()) > 0);
        QCOMPARE(readFile(file.fileName()), block.repeated(80));
    }
}

void TstPageCache::going_back_changes_what_was_dropped()
{
    // As the zip library does when an entry is complete; compared with a plain buffer.
    QRandomGenerator random(9);
    for (int round = 0; round < 20; ++round) {
        FlushBehind flushBehind(FlushBehind::Begin::AtOnce, 256 * 1024);
        FlushedBehind<QFile> file(&flushBehind, path("file"));
        QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Truncate));
        QByteArray model;
        for (int step = 0; step < 60; ++step) {
            const QByteArray block = noise(1 + random.bounded(100000), random.generate());
            const int offset = step % 3 == 0 ? random.bounded(model.size() + 1) : model.size();
            model.resize(std::max(model.size(), offset + block.size()));
            std::copy(block.begin(), block.end(), model.begin() + offset);
            QVERIFY(file.seek(offset));
            QCOMPARE(file.write(block), qint64(block.size()));
        }
        QVERIFY(file.flush() && file.refusal().isEmpty());
        QCOMPARE(readFile(path("file")), model);
        QVERIFY(uncache(path("file")));
        QCOMPARE(readFile(path("file")), model);
    }
}

void TstPageCache::finished_files_are_bounded_together()
{
    constexpr qint64 distance = 4 * MiB;
    QVERIFY(QDir().mkdir(path("files")));
    FlushBehind flushBehind(FlushBehind::Begin::BeyondDistance, distance);
    for (int number = 0; number < 40; ++number) {
        const QByteArray content = noise(MiB, quint32(number));
        ReplacingFile file(path(QStringLiteral("files/%1").arg(number)), ReplacingFile::Durability::NotFlushed,
                           &flushBehind);
        QVERIFY(file.create() && file.file().write(content) == content.size() && file.commit());
        QVERIFY(cachedBelow(path("files")) <= distance + MiB);
    }
    QVERIFY(cachedBelow(path("files")) > 0);
    for (int number = 0; number < 40; ++number)
        QCOMPARE(readFile(path(QStringLiteral("files/%1").arg(number))), noise(MiB, quint32(number)));
}

void TstPageCache::finished_files_are_begun_before_waiting()
{
    FlushBehind flushBehind(FlushBehind::Begin::BeyondDistance, 8 * MiB);
    const auto finishFile = [&](int number) {
        ReplacingFile file(path(QString::number(number)), ReplacingFile::Durability::NotFlushed, &flushBehind);
        return file.create() && file.file().write(QByteArray(int(MiB), 'x')) == MiB && file.commit();
    };
    for (int number = 1; number <= 9; ++number) {
        QVERIFY(finishFile(number));
        const int begun = number <= 4 ? 0 : number - 1;
        const int waitedFor = number <= 8 ? 0 : 5;
        QCOMPARE(s_system.rangesWaitedFor, waitedFor);
        QCOMPARE(s_system.ranges, begun + waitedFor);
    }
}

void TstPageCache::removed_files_are_not_written()
{
    FlushBehind flushBehind(FlushBehind::Begin::BeyondDistance, 4 * MiB);
    for (int number = 0; number < 40; ++number) {
        ReplacingFile file(path("file"), ReplacingFile::Durability::NotFlushed, &flushBehind);
        QVERIFY(file.create() && file.file().write(QByteArray(int(MiB), 'x')) == MiB && file.commit());
        QVERIFY(QFile::remove(path("file")));
    }
    QCOMPARE(s_system.removedFilesWritten, 0);
    QCOMPARE(s_system.rangesWaitedFor, 0);
}

void TstPageCache::nothing_is_written_before_it_must_be()
{
    for (const auto begin : {FlushBehind::Begin::AtOnce, FlushBehind::Begin::BeyondDistance}) {
        s_system.ranges = 0;
        FlushBehind flushBehind(begin, 4 * MiB);
        FlushedBehind<QFile> file(&flushBehind, path("file"));
        QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Truncate));
        QCOMPARE(file.write(QByteArray(int(4 * MiB), 'x')), 4 * MiB);
        QCOMPARE(s_system.ranges, begin == FlushBehind::Begin::AtOnce ? 1 : 0);
        QCOMPARE(file.write(QByteArray(int(MiB), 'x')), MiB);
        QVERIFY(s_system.rangesWaitedFor > 0);
        s_system.rangesWaitedFor = 0;
    }
}

void TstPageCache::small_files_are_left_alone()
{
    FlushBehind flushBehind(FlushBehind::Begin::BeyondDistance, MiB);
    for (int number = 0; number < 40; ++number) {
        ReplacingFile file(path(QString::number(number)), ReplacingFile::Durability::NotFlushed, &flushBehind);
        QVERIFY(file.create() && file.file().write(QByteArray(200000, 'x')) == 200000 && file.commit());
    }
    QCOMPARE(s_system.rangesWaitedFor, 0);

    makeUncached("small", 200000);
    QFile file(path("small"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    {
        DropBehind dropBehind(file.handle());
        QCOMPARE(file.readAll().size(), 200000);
    }
    QVERIFY(cached(file.fileName()) > 0);
}

void TstPageCache::finished_files_are_closed()
{
    const auto openFiles = [] { return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size(); };
    const int before = openFiles();
    {
        FlushBehind flushBehind(FlushBehind::Begin::BeyondDistance, 4 * MiB);
        for (int number = 0; number < 11; ++number) {
            ReplacingFile file(path(QString::number(number)), ReplacingFile::Durability::NotFlushed, &flushBehind);
            QVERIFY(file.create() && file.file().write(QByteArray(int(MiB), 'x')) == MiB && file.commit());
        }
        QVERIFY(openFiles() > before && openFiles() <= before + 4);
    }
    QCOMPARE(openFiles(), before);
}

void TstPageCache::refused_write_is_reported_once()
{
    FlushBehind flushBehind(FlushBehind::Begin::AtOnce, MiB);
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::ReadWrite) && file.write(QByteArray(int(3 * MiB), 'x')) && file.flush());
    for (const int error : {EIO, ENOSPC, EDQUOT}) {
        s_system.syncRange = error;
        QVERIFY(!flushBehind.wrote(file.handle(), MiB));
        QCOMPARE(errno, error);
        s_system.syncRange = 0;
        QVERIFY(flushBehind.wrote(file.handle(), MiB));
    }
}

void TstPageCache::refused_write_replaces_nothing()
{
    QVERIFY(writeFile(path("target"), "old"));
    ReplacingFile file(path("target"), ReplacingFile::Durability::FlushedToDisk);
    QVERIFY(file.create());
    const QByteArray block(int(8 * MiB), 'x');
    for (int number = 0; number < 4; ++number)
        QCOMPARE(file.file().write(block), qint64(block.size()));
    s_system.syncRange = EIO;
    QCOMPARE(file.file().write(block), -1LL);
    QCOMPARE(file.file().errorString(), QString("Input/output error"));
    // The system has forgotten it, and every later call succeeds.
    s_system.syncRange = 0;
    QCOMPARE(file.file().write(block), qint64(block.size()));
    QString reason;
    QVERIFY(!file.commit(ReplacingFile::ExistingTarget::Replaced, &reason));
    QCOMPARE(reason, QStringLiteral("cannot write %1: Input/output error").arg(path("target")));
    QCOMPARE(readFile(path("target")), QByteArray("old"));
}

void TstPageCache::refused_finished_file_is_reported()
{
    FlushBehind flushBehind(FlushBehind::Begin::BeyondDistance, 2 * MiB);
    QString reason;
    const auto write = [&](const QString &name) {
        ReplacingFile file(path(name), ReplacingFile::Durability::NotFlushed, &flushBehind);
        return file.create() && file.file().write(QByteArray(int(MiB), 'x')) == MiB &&
               file.commit(ReplacingFile::ExistingTarget::Replaced, &reason);
    };
    QVERIFY(write("1") && write("2"));
    s_system.syncRange = EIO;
    QVERIFY(!write("3"));
    QCOMPARE(reason, QStringLiteral("cannot flush %1: Input/output error").arg(path("3")));
    QVERIFY(!QFile::exists(path("3")));
    s_system.syncRange = 0;
    for (const QString name : {"4", "5", "6", "7"})
        QVERIFY(write(name));
}

void TstPageCache::missing_calls_change_no_content_data()
{
    QTest::addColumn<int>("syncRange");
    QTest::addColumn<int>("advise");
    QTest::addColumn<int>("residency");
    QTest::newRow("sync_file_range") << ENOSYS << 0 << 0;
    QTest::newRow("sync_file_range, not for this file system") << EINVAL << 0 << 0;
    QTest::newRow("posix_fadvise") << 0 << ENOSYS << 0;
    QTest::newRow("mincore") << 0 << 0 << ENOSYS;
    QTest::newRow("all of them") << ENOSYS << EINVAL << ENOMEM;
}

void TstPageCache::missing_calls_change_no_content()
{
    QFETCH(int, syncRange);
    QFETCH(int, advise);
    QFETCH(int, residency);
    makeUncached("source", 50 * MiB);
    s_system.syncRange = syncRange;
    s_system.advise = advise;
    s_system.residency = residency;
    QString reason;
    QVERIFY2(copyToFreeName(path("source"), path("copy"), &reason), qPrintable(reason));
    QCOMPARE(readFile(path("copy")), noise(50 * MiB));
}

/// Each reads `source`, which is larger than all distances together.
void TstPageCache::defineOperations()
{
    QTest::addColumn<std::function<void()>>("operation");
    QTest::addColumn<QString>("source");
    const auto row = [](const char *name, const QString &source, const std::function<void()> &operation) {
        QTest::newRow(name) << operation << source;
    };
    row("packing", "device/BKG/BKG_1.png", [this] { QVERIFY(pack("new.corvelpro")); });
    row("copying", "package.corvelpro",
        [this] { QVERIFY(copyToFreeName(path("package.corvelpro"), path("copy.corvelpro"))); });
    row("extracting", "package.corvelpro", [this] {
        PackageReader package(path("package.corvelpro"));
        QVERIFY(!package.extractFile("BKG/BKG_1.png", path("BKG_1.png")).isEmpty());
    });
    row("reading", "package.corvelpro", [this] {
        PackageReader package(path("package.corvelpro"));
        QCOMPARE(package.read("BKG/BKG_1.png", pictureSize).size(), int(pictureSize));
    });
    row("copying before an apply", "package.corvelpro", [this] {
        PackageSnapshot snapshot;
        QVERIFY(snapshot.take(path("package.corvelpro"), {m_dir->path()}) == PackageSnapshot::Outcome::Taken);
        const std::unique_ptr<QFile> copy = snapshot.release();
        QVERIFY(cachedOf(*copy) > 0 && cachedOf(*copy) <= largestRest);
    });
}

bool TstPageCache::pack(const QString &name)
{
    EngineerPacketInfo info;
    info.strFilePath = path(name);
    info.strProjectName = "show";
    return ZipPackageHandle::compressEngineerPacket(path("device"), info);
}

void TstPageCache::makeOperands()
{
    makeUncached("device/BKG/BKG_1.png", pictureSize);
    QVERIFY(pack("package.corvelpro"));
    QVERIFY(uncache(path("package.corvelpro")) && uncache(path("device/BKG/BKG_1.png")));
    QCOMPARE(cachedBelow(m_dir->path()), 0LL);
}

void TstPageCache::operations_leave_little_cached_data()
{
    defineOperations();
}

void TstPageCache::operations_leave_little_cached()
{
    QFETCH(std::function<void()>, operation);
    QFETCH(QString, source);
    makeOperands();
    operation();
    // The directory of a package, which is read first.
    QVERIFY(cached(path(source)) <= MiB);
    QVERIFY(cachedBelow(m_dir->path()) <= MiB + largestRest);
}

void TstPageCache::source_is_dropped_while_it_is_read()
{
    /// Remembers the most that was cached of a file at any write.
    class Watcher : public QIODevice
    {
    public:
        explicit Watcher(const QString &watched)
            : m_strWatched(watched)
        {
            open(QIODevice::WriteOnly | QIODevice::Unbuffered);
        }
        qint64 most() const { return m_nMost; }

    protected:
        qint64 readData(char *, qint64) override { return -1; }
        qint64 writeData(const char *, qint64 size) override
        {
            m_nMost = std::max(m_nMost, cached(m_strWatched));
            return size;
        }

    private:
        const QString m_strWatched;
        qint64 m_nMost = 0;
    };
    makeOperands();
    constexpr qint64 largest = 41 * MiB;
    const QString picture = path("device/BKG/BKG_1.png");
    Watcher copying(picture);
    QFile source(picture);
    qint64 copied = 0;
    QVERIFY(source.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    QVERIFY(copyFile(source, copying, pictureSize, &copied));
    QVERIFY(copying.most() > 0 && copying.most() <= largest);

    Watcher reading(path("package.corvelpro"));
    PackageReader package(path("package.corvelpro"));
    QVERIFY(package.read("BKG/BKG_1.png", reading, pictureSize));
    QVERIFY(reading.most() > 0 && reading.most() <= largest);
}

void TstPageCache::operations_keep_what_was_cached_data()
{
    defineOperations();
}

void TstPageCache::operations_keep_what_was_cached()
{
    QFETCH(std::function<void()>, operation);
    QFETCH(QString, source);
    makeOperands();
    QVERIFY(holdsOnce([&] {
        for (const QString &made : {"new.corvelpro", "copy.corvelpro"})
            QFile::remove(path(made));
        const qint64 size = readFile(path(source)).size();
        const bool isCached = cached(path(source)) == size;
        operation();
        return isCached && cached(path(source)) == size;
    }));
}

TEST_MAIN_CORE(TstPageCache)
#include "tst_pagecache.moc"

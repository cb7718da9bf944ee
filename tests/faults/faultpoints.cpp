// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "faultpoints.h"

#include <support/libraryhook.h>

#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QSet>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

using TestSupport::original;

namespace FaultPoints {

namespace {

struct State
{
    std::mutex mutex;
    QVector<QByteArray> folders;
    Plan plan;
    Report report;
    /// Calls counted by plans for all kinds of calls.
    int steps = 0;
    /// Descriptors opened below the watched folders since arm().
    QMap<int, QByteArray> descriptors;
    /// Files with unflushed content, and folders with unflushed names.
    QSet<ino_t> dirtyFiles;
    QSet<QByteArray> dirtyFolders;
};

std::atomic<bool> s_armed{false};
/// Excludes calls made by the hooks below.
thread_local bool s_inside = false;

/// Never destroyed: threads may outlive static destruction.
State &state()
{
    static State *const instance = new State;
    return *instance;
}

bool isWatched(const QByteArray &path)
{
    for (const QByteArray &folder : state().folders) {
        if (path == folder || path.startsWith(folder + '/'))
            return true;
    }
    return false;
}

QByteArray parentOf(const QByteArray &path)
{
    QByteArray trimmed = path;
    while (trimmed.size() > 1 && trimmed.endsWith('/'))
        trimmed.chop(1);
    return trimmed.left(trimmed.lastIndexOf('/'));
}

QByteArray cleaned(const char *path)
{
    QByteArray clean(path);
    while (clean.contains("//"))
        clean.replace("//", "/");
    return clean;
}

ino_t inodeOf(const QByteArray &path)
{
    struct stat status;
    return lstat(path.constData(), &status) == 0 ? status.st_ino : 0;
}

ino_t inodeOf(int descriptor)
{
    struct stat status;
    return fstat(descriptor, &status) == 0 ? status.st_ino : 0;
}

struct Verdict
{
    bool fails = false;
    int error = 0;
    bool isHalf = false;
    bool isKilled = false;
};

/// `changes`: the call would change something; opening to read and closing do not. `needsRoom`: it fails on a full
/// disk.
Verdict judge(Kind kind, bool changes, bool needsRoom)
{
    State &s = state();
    ++s.report.calls[kind];
    Verdict verdict;
    if (s.plan.number == 0)
        return verdict;
    if (s.plan.effect == Plan::FailOnce) {
        verdict.fails = kind == s.plan.kind && s.report.calls.at(kind) == s.plan.number;
        verdict.error = s.plan.error;
        s.report.struck = s.report.struck || verdict.fails;
        return verdict;
    }
    // Wherever a kill strikes between two changes, it leaves the same state.
    if (s.plan.effect == Plan::Kill && !changes)
        return verdict;
    const int number = ++s.steps;
    const bool first = number == s.plan.number;
    s.report.struck = s.report.struck || first;
    if (number < s.plan.number)
        return verdict;
    switch (s.plan.effect) {
    case Plan::FailOnce:
        break;
    case Plan::FullDisk:
    case Plan::FullForAWhile:
        verdict.fails = needsRoom && (s.plan.effect == Plan::FullDisk || number < s.plan.number + 4);
        verdict.error = ENOSPC;
        verdict.isHalf = first && kind == Write;
        break;
    case Plan::ReadOnly:
        verdict.fails = changes;
        verdict.error = EROFS;
        break;
    case Plan::Gone:
        verdict.fails = true;
        verdict.error = kind == Write || kind == Flush ? EIO : ENOENT;
        break;
    case Plan::Kill:
        verdict.isKilled = true;
        break;
    case Plan::Interrupt:
        if (first)
            std::raise(SIGINT);
        break;
    }
    return verdict;
}

/// For kinds that are not steps of a lasting failure: a single call fails, or all fail after the medium is gone or
/// read-only.
bool failsBesides(Kind kind, bool changes)
{
    State &s = state();
    const Plan &plan = s.plan;
    ++s.report.calls[kind];
    if (plan.number == 0)
        return false;
    if (plan.effect == Plan::FailOnce) {
        if (kind != plan.kind || s.report.calls.at(kind) != plan.number)
            return false;
        s.report.struck = true;
        errno = plan.error;
        return true;
    }
    const bool isStruck = s.steps >= plan.number;
    if (isStruck && (plan.effect == Plan::Gone || (plan.effect == Plan::ReadOnly && changes))) {
        errno = plan.effect == Plan::Gone ? EIO : EROFS;
        return true;
    }
    return false;
}

void die()
{
    kill(getpid(), SIGKILL);
    for (;;)
        pause();
}

/// Locks the state for one call; does not watch while no plan is armed.
class Watch
{
public:
    Watch()
    {
        if (!s_armed || s_inside)
            return;
        s_inside = true;
        m_lock = std::unique_lock<std::mutex>(state().mutex);
        m_isActive = s_armed;
    }
    ~Watch()
    {
        if (m_lock.owns_lock()) {
            const int error = errno;
            m_lock.unlock();
            s_inside = false;
            errno = error;
        }
    }
    bool isActive() const { return m_isActive; }

private:
    std::unique_lock<std::mutex> m_lock;
    bool m_isActive = false;
};

template<typename Call>
int openWatched(const char *path, int flags, Call call)
{
    Watch watch;
    const QByteArray name = watch.isActive() ? cleaned(path) : QByteArray();
    if (!watch.isActive() || !isWatched(name))
        return call();
    const bool creates = (flags & O_CREAT) && inodeOf(name) == 0;
    const bool changes = (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0;
    const Verdict verdict = judge(Open, changes, creates);
    if (verdict.isKilled)
        die();
    if (verdict.fails) {
        errno = verdict.error;
        return -1;
    }
    const int descriptor = call();
    if (descriptor >= 0) {
        state().descriptors.insert(descriptor, name);
        if (creates)
            state().dirtyFolders.insert(parentOf(name));
        if (flags & O_TRUNC)
            state().dirtyFiles.insert(inodeOf(descriptor));
    }
    return descriptor;
}

template<typename Size, typename Call>
Size writeWatched(int descriptor, Size size, Call call)
{
    Watch watch;
    if (!watch.isActive() || !state().descriptors.contains(descriptor))
        return call(size);
    const QByteArray name = state().descriptors.value(descriptor);
    if (name.endsWith(".corvelpro") && !state().dirtyFiles.contains(inodeOf(descriptor))) {
        state().report.changedInPlace.append(QFile::decodeName(name));
        state().report.unflushedBefore += state().dirtyFiles.size() + state().dirtyFolders.size();
    }
    const Verdict verdict = judge(Write, true, true);
    if (verdict.isKilled) {
        call(size / 2);
        die();
    }
    if (state().plan.effect == Plan::Kill && judge(Write, true, true).isKilled) {
        call(size - 1);
        die();
    }
    if (verdict.isHalf && size > 1) {
        state().dirtyFiles.insert(inodeOf(descriptor));
        return call(size / 2);
    }
    if (verdict.fails) {
        errno = verdict.error;
        return -1;
    }
    state().dirtyFiles.insert(inodeOf(descriptor));
    return call(size);
}

/// A call on a descriptor that is not a step of its own.
template<typename Call>
auto besides(int descriptor, Kind kind, bool changes, Call call) -> decltype(call())
{
    const Watch watch;
    if (!watch.isActive() || !state().descriptors.contains(descriptor))
        return call();
    return failsBesides(kind, changes) ? -1 : call();
}

/// The same by path.
template<typename Call>
int besides(const char *path, Kind kind, Call call)
{
    const Watch watch;
    if (!watch.isActive() || !path || !isWatched(cleaned(path)))
        return call();
    return failsBesides(kind, true) ? -1 : call();
}

template<typename Call>
int flushWatched(int descriptor, bool isWholeSystem, Call call)
{
    Watch watch;
    if (!watch.isActive() || !state().descriptors.contains(descriptor))
        return call();
    const Verdict verdict = judge(Flush, true, true);
    if (verdict.isKilled)
        die();
    if (verdict.fails) {
        errno = verdict.error;
        return -1;
    }
    State &s = state();
    if (isWholeSystem) {
        s.dirtyFiles.clear();
        s.dirtyFolders.clear();
    } else {
        s.dirtyFiles.remove(inodeOf(descriptor));
        s.dirtyFolders.remove(s.descriptors.value(descriptor));
    }
    return 0;
}

template<typename Call>
int renameWatched(const char *from, const char *to, Call call)
{
    Watch watch;
    const QByteArray source = watch.isActive() ? cleaned(from) : QByteArray();
    const QByteArray target = watch.isActive() ? cleaned(to) : QByteArray();
    if (!watch.isActive() || !(isWatched(source) || isWatched(target)))
        return call();
    const Verdict verdict = judge(Rename, true, true);
    if (verdict.isKilled)
        die();
    if (verdict.fails) {
        errno = verdict.error;
        return -1;
    }
    const ino_t inode = inodeOf(source);
    const int result = call();
    if (result == 0) {
        state().dirtyFolders.insert(parentOf(target));
        if (target.endsWith(".corvelpro") && state().dirtyFiles.contains(inode))
            state().report.namedBeforeFlushed.append(QFile::decodeName(target));
    }
    return result;
}

template<typename Call>
int changeName(const char *path, Kind kind, Call call)
{
    Watch watch;
    const QByteArray name = watch.isActive() ? cleaned(path) : QByteArray();
    if (!watch.isActive() || !isWatched(name))
        return call();
    const Verdict verdict = judge(kind, true, kind == MakeFolder);
    if (verdict.isKilled)
        die();
    if (verdict.fails) {
        errno = verdict.error;
        return -1;
    }
    const ino_t inode = inodeOf(name);
    const int result = call();
    if (result == 0) {
        if (kind == Remove)
            state().dirtyFiles.remove(inode); // the inode may be reused
        else
            state().dirtyFolders.insert(parentOf(name));
    }
    return result;
}

} // namespace

QString kindName(Kind kind)
{
    static const char *const names[] = {"open", "write",     "flush", "rename", "mkdir",   "remove",         "read",
                                        "seek", "ftruncate", "close", "chmod",  "utimens", "sync_file_range"};
    static_assert(sizeof names / sizeof *names == KindCount, "each kind has a name");
    return QLatin1String(names[kind]);
}

void arm(const QStringList &watchedFolders, const Plan &plan)
{
    State &s = state();
    const std::lock_guard<std::mutex> lock(s.mutex);
    s.folders.clear();
    for (const QString &folder : watchedFolders)
        s.folders.append(QFile::encodeName(folder));
    s.plan = plan;
    s.report = Report();
    s.steps = 0;
    s.descriptors.clear();
    s.dirtyFiles.clear();
    s.dirtyFolders.clear();
    s_armed = true;
}

Report disarm()
{
    State &s = state();
    const std::lock_guard<std::mutex> lock(s.mutex);
    s_armed = false;
    return s.report;
}

bool isUnflushed(const QString &path)
{
    State &s = state();
    const std::lock_guard<std::mutex> lock(s.mutex);
    const QByteArray name = QFile::encodeName(path);
    return s.dirtyFiles.contains(inodeOf(name)) || s.dirtyFolders.contains(parentOf(name));
}

} // namespace FaultPoints

// ---------------------------------------------------------------------------------------------------------------------
// Hooks in front of the C library's functions

using namespace FaultPoints;

#define FAULT_POINT extern "C" __attribute__((visibility("default")))

namespace {

mode_t modeOf(int flags, va_list arguments)
{
    const bool makesFile = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return makesFile ? mode_t(va_arg(arguments, int)) : 0;
}

} // namespace

// Functions with an optional mode argument.
#define OPEN_BODY(name)                                                                                                \
    va_list arguments;                                                                                                 \
    va_start(arguments, flags);                                                                                        \
    const mode_t mode = modeOf(flags, arguments);                                                                      \
    va_end(arguments);                                                                                                 \
    static const auto next = original<int(const char *, int, ...)>(name);                                              \
    return openWatched(path, flags, [&] { return next(path, flags, mode); });
#define OPENAT_BODY(name)                                                                                              \
    va_list arguments;                                                                                                 \
    va_start(arguments, flags);                                                                                        \
    const mode_t mode = modeOf(flags, arguments);                                                                      \
    va_end(arguments);                                                                                                 \
    static const auto next = original<int(int, const char *, int, ...)>(name);                                         \
    return openWatched(path, flags, [&] { return next(directory, path, flags, mode); });

FAULT_POINT int open(const char *path, int flags, ...){OPEN_BODY("open")} FAULT_POINT
    int open64(const char *path, int flags, ...){OPEN_BODY("open64")} FAULT_POINT
    int openat(int directory, const char *path, int flags, ...){OPENAT_BODY("openat")} FAULT_POINT
    int openat64(int directory, const char *path, int flags, ...){OPENAT_BODY("openat64")}

FAULT_POINT int close(int descriptor)
{
    static const auto next = original<int(int)>("close");
    Watch watch;
    if (!watch.isActive() || !state().descriptors.contains(descriptor))
        return next(descriptor);
    const bool writes = (fcntl(descriptor, F_GETFL) & O_ACCMODE) != O_RDONLY;
    const Verdict verdict = writes ? judge(Flush, false, false) : Verdict();
    if (verdict.isKilled)
        die();
    // As on Linux, the descriptor is closed even if close() fails.
    const bool failsAlone = !verdict.fails && failsBesides(Close, false);
    const int error = verdict.fails ? verdict.error : errno;
    state().descriptors.remove(descriptor);
    const int result = next(descriptor);
    if (!verdict.fails && !failsAlone)
        return result;
    errno = error;
    return -1;
}

FAULT_POINT ssize_t write(int descriptor, const void *bytes, size_t count)
{
    static const auto next = original<ssize_t(int, const void *, size_t)>("write");
    return writeWatched(descriptor, ssize_t(count),
                        [&](ssize_t size) { return next(descriptor, bytes, size_t(size)); });
}
FAULT_POINT ssize_t pwrite(int descriptor, const void *bytes, size_t count, off_t offset)
{
    static const auto next = original<ssize_t(int, const void *, size_t, off_t)>("pwrite");
    return writeWatched(descriptor, ssize_t(count),
                        [&](ssize_t size) { return next(descriptor, bytes, size_t(size), offset); });
}
FAULT_POINT ssize_t pwrite64(int descriptor, const void *bytes, size_t count, off64_t offset)
{
    static const auto next = original<ssize_t(int, const void *, size_t, off64_t)>("pwrite64");
    return writeWatched(descriptor, ssize_t(count),
                        [&](ssize_t size) { return next(descriptor, bytes, size_t(size), offset); });
}
FAULT_POINT ssize_t writev(int descriptor, const iovec *parts, int count)
{
    static const auto next = original<ssize_t(int, const iovec *, int)>("writev");
    return writeWatched(descriptor, ssize_t(count), [&](ssize_t part) { return next(descriptor, parts, int(part)); });
}
FAULT_POINT ssize_t sendfile(int out, int in, off_t *offset, size_t count) noexcept
{
    static const auto next = original<ssize_t(int, int, off_t *, size_t)>("sendfile");
    return writeWatched(out, ssize_t(count), [&](ssize_t size) { return next(out, in, offset, size_t(size)); });
}
FAULT_POINT ssize_t sendfile64(int out, int in, off64_t *offset, size_t count) noexcept
{
    static const auto next = original<ssize_t(int, int, off64_t *, size_t)>("sendfile64");
    return writeWatched(out, ssize_t(count), [&](ssize_t size) { return next(out, in, offset, size_t(size)); });
}
FAULT_POINT int ftruncate(int descriptor, off_t length) noexcept
{
    static const auto next = original<int(int, off_t)>("ftruncate");
    if (besides(descriptor, Truncate, true, [] { return 0; }) != 0)
        return -1;
    return writeWatched(descriptor, 1, [&](int whole) { return whole ? next(descriptor, length) : 0; });
}
FAULT_POINT int ftruncate64(int descriptor, off64_t length) noexcept
{
    static const auto next = original<int(int, off64_t)>("ftruncate64");
    if (besides(descriptor, Truncate, true, [] { return 0; }) != 0)
        return -1;
    return writeWatched(descriptor, 1, [&](int whole) { return whole ? next(descriptor, length) : 0; });
}

FAULT_POINT int fsync(int descriptor)
{
    static const auto next = original<int(int)>("fsync");
    return flushWatched(descriptor, false, [&] { return next(descriptor); });
}
FAULT_POINT int fdatasync(int descriptor)
{
    static const auto next = original<int(int)>("fdatasync");
    return flushWatched(descriptor, false, [&] { return next(descriptor); });
}
FAULT_POINT int syncfs(int descriptor) noexcept
{
    static const auto next = original<int(int)>("syncfs");
    return flushWatched(descriptor, true, [&] { return next(descriptor); });
}

FAULT_POINT int rename(const char *from, const char *to) noexcept
{
    static const auto next = original<int(const char *, const char *)>("rename");
    return renameWatched(from, to, [&] { return next(from, to); });
}
FAULT_POINT int renameat(int fromFolder, const char *from, int toFolder, const char *to) noexcept
{
    static const auto next = original<int(int, const char *, int, const char *)>("renameat");
    return renameWatched(from, to, [&] { return next(fromFolder, from, toFolder, to); });
}
FAULT_POINT int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) noexcept
{
    static const auto next = original<int(int, const char *, int, const char *, unsigned)>("renameat2");
    return renameWatched(from, to, [&] { return next(fromFolder, from, toFolder, to, flags); });
}
FAULT_POINT int link(const char *from, const char *to) noexcept
{
    static const auto next = original<int(const char *, const char *)>("link");
    return renameWatched(from, to, [&] { return next(from, to); });
}
FAULT_POINT int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags) noexcept
{
    static const auto next = original<int(int, const char *, int, const char *, int)>("linkat");
    return renameWatched(from, to, [&] { return next(fromFolder, from, toFolder, to, flags); });
}

FAULT_POINT int mkdir(const char *path, mode_t mode) noexcept
{
    static const auto next = original<int(const char *, mode_t)>("mkdir");
    return changeName(path, MakeFolder, [&] { return next(path, mode); });
}
FAULT_POINT int unlink(const char *path) noexcept
{
    static const auto next = original<int(const char *)>("unlink");
    return changeName(path, Remove, [&] { return next(path); });
}
FAULT_POINT int rmdir(const char *path) noexcept
{
    static const auto next = original<int(const char *)>("rmdir");
    return changeName(path, Remove, [&] { return next(path); });
}

FAULT_POINT int unlinkat(int folder, const char *path, int flags) noexcept
{
    static const auto next = original<int(int, const char *, int)>("unlinkat");
    return changeName(path, Remove, [&] { return next(folder, path, flags); });
}

FAULT_POINT ssize_t read(int descriptor, void *bytes, size_t count)
{
    static const auto next = original<ssize_t(int, void *, size_t)>("read");
    return besides(descriptor, Read, false, [&] { return next(descriptor, bytes, count); });
}
FAULT_POINT ssize_t pread(int descriptor, void *bytes, size_t count, off_t offset)
{
    static const auto next = original<ssize_t(int, void *, size_t, off_t)>("pread");
    return besides(descriptor, Read, false, [&] { return next(descriptor, bytes, count, offset); });
}
FAULT_POINT ssize_t pread64(int descriptor, void *bytes, size_t count, off64_t offset)
{
    static const auto next = original<ssize_t(int, void *, size_t, off64_t)>("pread64");
    return besides(descriptor, Read, false, [&] { return next(descriptor, bytes, count, offset); });
}
FAULT_POINT off_t lseek(int descriptor, off_t offset, int whence) noexcept
{
    static const auto next = original<off_t(int, off_t, int)>("lseek");
    return besides(descriptor, Seek, false, [&] { return next(descriptor, offset, whence); });
}
FAULT_POINT off64_t lseek64(int descriptor, off64_t offset, int whence) noexcept
{
    static const auto next = original<off64_t(int, off64_t, int)>("lseek64");
    return besides(descriptor, Seek, false, [&] { return next(descriptor, offset, whence); });
}

FAULT_POINT int fchmod(int descriptor, mode_t mode) noexcept
{
    static const auto next = original<int(int, mode_t)>("fchmod");
    return besides(descriptor, SetMode, true, [&] { return next(descriptor, mode); });
}
FAULT_POINT int chmod(const char *path, mode_t mode) noexcept
{
    static const auto next = original<int(const char *, mode_t)>("chmod");
    return besides(path, SetMode, [&] { return next(path, mode); });
}
FAULT_POINT int fchmodat(int folder, const char *path, mode_t mode, int flags) noexcept
{
    static const auto next = original<int(int, const char *, mode_t, int)>("fchmodat");
    return besides(path, SetMode, [&] { return next(folder, path, mode, flags); });
}
FAULT_POINT int futimens(int descriptor, const timespec *times) noexcept
{
    static const auto next = original<int(int, const timespec *)>("futimens");
    return besides(descriptor, SetTimes, true, [&] { return next(descriptor, times); });
}
FAULT_POINT int utimensat(int folder, const char *path, const timespec *times, int flags) noexcept
{
    static const auto next = original<int(int, const char *, const timespec *, int)>("utimensat");
    return besides(path, SetTimes, [&] { return next(folder, path, times, flags); });
}
FAULT_POINT int sync_file_range(int descriptor, off64_t offset, off64_t count, unsigned flags)
{
    static const auto next = original<int(int, off64_t, off64_t, unsigned)>("sync_file_range");
    return besides(descriptor, FlushRange, true, [&] { return next(descriptor, offset, count, flags); });
}

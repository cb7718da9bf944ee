// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "pagecache.h"

#ifdef Q_OS_LINUX
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/mman.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <vector>
#endif

namespace Corvelpro {

#ifdef Q_OS_LINUX

namespace {

/// False where something else than the system's cache of the file may hold its content: a server, the process behind a
/// file system in user space, or ZFS's own cache.
bool isOnLocalDisk(int handle)
{
    constexpr quint32 ntfs3 = 0x7366746E;
    constexpr quint32 local[] = {EXT4_SUPER_MAGIC, MSDOS_SUPER_MAGIC, XFS_SUPER_MAGIC,       BTRFS_SUPER_MAGIC,
                                 F2FS_SUPER_MAGIC, EXFAT_SUPER_MAGIC, OVERLAYFS_SUPER_MAGIC, ntfs3};
    struct statfs found;
    return fstatfs(handle, &found) == 0 &&
           std::find(std::begin(local), std::end(local), quint32(found.f_type)) != std::end(local);
}

bool isPartInMemory(int handle, qint64 offset, qint64 size)
{
    void *part = mmap(nullptr, size_t(size), PROT_READ, MAP_SHARED, handle, offset);
    if (part == MAP_FAILED)
        return true;
    std::vector<unsigned char> pages(size_t(size / sysconf(_SC_PAGESIZE) + 1));
    const bool isKnown = mincore(part, size_t(size), pages.data()) == 0;
    munmap(part, size_t(size));
    constexpr unsigned char resident = 1;
    return !isKnown ||
           std::any_of(pages.begin(), pages.end(), [](unsigned char page) { return (page & resident) != 0; });
}

bool isInMemory(int handle, qint64 size)
{
    constexpr qint64 portion = 256 * 1024 * 1024;
    for (qint64 offset = 0; offset < size; offset += portion) {
        if (isPartInMemory(handle, offset, std::min(portion, size - offset)))
            return true;
    }
    return false;
}

} // namespace

bool dropFromMemory(int handle, qint64 size)
{
    // The system keeps a page that is in use at this moment.
    constexpr int attempts = 3;
    for (int attempt = 0; isOnLocalDisk(handle) && attempt < attempts; ++attempt) {
        if (posix_fadvise(handle, 0, 0, POSIX_FADV_DONTNEED) == 0 && !isInMemory(handle, size))
            return true;
    }
    return false;
}

#else

bool dropFromMemory(int, qint64)
{
    return false;
}

#endif

} // namespace Corvelpro

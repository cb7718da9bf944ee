// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "dropfrommemory.h"

#include "pagecache.h"

#ifdef Q_OS_LINUX
#include <linux/magic.h>
#include <sys/vfs.h>

#include <algorithm>
#include <iterator>
#endif

namespace Corvelpro {

#ifdef Q_OS_LINUX

namespace PageCache = ProjectFileCfg::Internal::PageCache;

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

bool isInMemory(int handle, qint64 size)
{
    const auto uncached = PageCache::uncachedRanges(handle, size);
    return uncached.size() != 1 || uncached.front().nBegin != 0 || uncached.front().nEnd != size;
}

} // namespace

bool dropFromMemory(int handle, qint64 size)
{
    // The system keeps a page that is in use at this moment.
    constexpr int attempts = 3;
    for (int attempt = 0; isOnLocalDisk(handle) && attempt < attempts; ++attempt) {
        PageCache::drop(handle, PageCache::Range());
        if (!isInMemory(handle, size))
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

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "filesystem.h"
#include "pagecache.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <functional>
#include <memory>

/// Looks into the system's page cache. Needs files on a disk: the folder of temporary files may be in memory.
namespace CacheTesting {

/// In bytes, in steps of 64 KiB.
inline qint64 cachedOf(const QFile &file)
{
    qint64 uncached = 0;
    for (const auto &range : ProjectFileCfg::Internal::PageCache::uncachedRanges(file.handle(), file.size()))
        uncached += range.nEnd - range.nBegin;
    return file.size() - uncached;
}

/// -1 if the file cannot be opened.
inline qint64 cached(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? cachedOf(file) : -1;
}

/// Flushes a file, and drops it from the cache.
inline bool uncache(const QString &path)
{
    using namespace ProjectFileCfg::Internal;
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite) || !FileSystem::flush(file.handle()))
        return false;
    PageCache::drop(file.handle(), PageCache::Range());
    return true;
}

/// True if `attempt` succeeds once in five times: the system may take pages away at any moment, for reasons of its own,
/// while a program that drops what it must not drop does so each time.
inline bool holdsOnce(const std::function<bool()> &attempt)
{
    for (int number = 0; number < 5; ++number) {
        if (attempt())
            return true;
    }
    return false;
}

/// A folder on the disk of the programs; null if its file system does not drop pages.
inline std::unique_ptr<QTemporaryDir> folderOnDisk()
{
    auto folder = std::make_unique<QTemporaryDir>(QCoreApplication::applicationDirPath() + "/../pagecache-XXXXXX");
    QFile probe(folder->filePath("probe"));
    const bool drops = probe.open(QIODevice::WriteOnly) && probe.write(QByteArray(1024 * 1024, 'x')) > 0 &&
                       probe.flush() && uncache(probe.fileName()) && cached(probe.fileName()) == 0;
    return drops && probe.remove() ? std::move(folder) : nullptr;
}

} // namespace CacheTesting

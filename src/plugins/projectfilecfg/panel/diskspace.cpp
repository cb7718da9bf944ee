// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "diskspace.h"

#include "filesystem.h"

#include <QDebug>
#include <QFileInfo>
#include <QStorageInfo>

namespace ProjectFileCfg {
namespace Internal {
namespace DiskSpace {

unsigned long long wholeMebibytes(qint64 bytes)
{
    return static_cast<unsigned long long>(bytes / 1024 / 1024);
}

unsigned long long getDiskAvailableSize(const QString &path)
{
    QStorageInfo storage(path);
    storage.refresh();
    qDebug() << "QStorageInfo rootPath:" << storage.rootPath();
    return wholeMebibytes(storage.bytesAvailable());
}

unsigned long long availableForProjects(const QString &directory)
{
    FileSystem::makeFolder(directory);
    return getDiskAvailableSize(directory);
}

bool isEnoughFor(const QStringList &files, unsigned long long mebibytes)
{
    constexpr unsigned long long bytesPerMebibyte = 1024ULL * 1024;
    unsigned long long total = 0;
    for (const QString &file : files)
        total += static_cast<unsigned long long>(QFileInfo(file).size());
    return total < mebibytes * bytesPerMebibyte;
}

} // namespace DiskSpace
} // namespace Internal
} // namespace ProjectFileCfg

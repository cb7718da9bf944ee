// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QStringList>

namespace ProjectFileCfg {
namespace Internal {

/// Free space on disks, and what fits there.
namespace DiskSpace {

/// Bytes as whole MiB, rounded towards zero. A volume that cannot be read has -1 bytes free, which is 0 MiB.
unsigned long long wholeMebibytes(qint64 bytes);

/// Free space, in MiB, of the volume that holds `path`.
unsigned long long getDiskAvailableSize(const QString &path);

/// The same for the project-files directory, which is created if it is missing, since a path that does not exist has no
/// free space.
unsigned long long availableForProjects(const QString &directory);

/// True if the total size of the files is less than `mebibytes` MiB.
bool isEnoughFor(const QStringList &files, unsigned long long mebibytes);

} // namespace DiskSpace

} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QFileInfo>

namespace ProjectFileCfg {
namespace Internal {

/// Which files of a directory may be listed, in which order and under which names. Those that are packages with a
/// readable record are listed. Only reads.
namespace ProjectListing {

/// The entries of a directory that have the extension of packages, newest first, and by name if their times are equal.
/// QDir::Time gives the same order, but would take most of the time of a scan: it converts two times to local time per
/// comparison.
QFileInfoList packagesIn(const QString &dirPath);

/// The name under which a package is listed, whatever its record says.
QString nameOf(const QFileInfo &package);

} // namespace ProjectListing

} // namespace Internal
} // namespace ProjectFileCfg

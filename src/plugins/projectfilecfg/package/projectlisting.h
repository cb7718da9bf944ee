// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QFileInfo>

namespace ProjectFileCfg {
namespace Internal {

/// Which files of a directory may be listed, in which order and under which names; of these, a package whose record can
/// be read is listed. Only reads.
namespace ProjectListing {

/// The entries of a directory that have the extension of packages, newest first, those of the same time by name. This
/// is the order of QDir::Time, which would take most of a scan: it converts two times to local time per comparison.
QFileInfoList packagesIn(const QString &dirPath);

/// The name that is listed for a package, whatever its record says.
QString nameOf(const QFileInfo &package);

} // namespace ProjectListing

} // namespace Internal
} // namespace ProjectFileCfg

#pragma once

#include <QFileInfo>

namespace ProjectFileCfg {
namespace Internal {

/// The entries of a directory that have the extension of packages, newest first, those of the same time by name. This
/// is the order of QDir::Time, which would take most of a scan: it converts two times to local time per comparison.
QFileInfoList packagesIn(const QString &dirPath);

} // namespace Internal
} // namespace ProjectFileCfg

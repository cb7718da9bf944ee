#pragma once

#include <QFileInfo>

namespace ProjectFileCfg {
namespace Internal {

/// The entries of a directory that are called like packages: the newest first, those of one time by name. This is the
/// order of QDir::Time, which takes most of a scan, since it makes two local times for each comparison.
QFileInfoList packagesIn(const QString &dirPath);

} // namespace Internal
} // namespace ProjectFileCfg

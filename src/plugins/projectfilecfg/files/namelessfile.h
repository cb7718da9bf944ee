#pragma once

#include <QFile>

#include <memory>

namespace ProjectFileCfg {
namespace Internal {

/// A file of one's own on the disk, to which no path leads, so that no other program changes it; it ends with its last
/// user, also when the process is killed. Where the system cannot do without a name, its name is nobody's guess, and it
/// is removed at the end.
///
/// In `folder`, which must be there; open for reading and writing. Null when that fails.
std::unique_ptr<QFile> openNamelessFile(const QString &folder);

} // namespace Internal
} // namespace ProjectFileCfg

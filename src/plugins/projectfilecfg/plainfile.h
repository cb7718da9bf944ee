#pragma once

#include <QString>

class QFile;

namespace ProjectFileCfg {
namespace Internal {

/// Opens the file at `path` for reading. False when that fails, or at once when it is no plain file, whatever became of
/// it since it was looked at last: opening a pipe waits for somebody who writes to it.
bool openPlainFile(QFile &file, const QString &path);

} // namespace Internal
} // namespace ProjectFileCfg

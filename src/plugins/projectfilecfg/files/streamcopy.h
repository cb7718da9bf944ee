#pragma once

#include <QtGlobal>

class QIODevice;

namespace ProjectFileCfg {
namespace Internal {

/// Copies what is left of `source`, in bounded memory. False when reading or writing fails, or when there are more
/// than `limit` bytes; nothing beyond them is written. `*copied` counts what was read.
bool copyStream(QIODevice &source, QIODevice &destination, qint64 limit, qint64 *copied);

} // namespace Internal
} // namespace ProjectFileCfg

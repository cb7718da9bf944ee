#pragma once

#include <QtGlobal>

#include <functional>

class QIODevice;

namespace ProjectFileCfg {
namespace Internal {

/// Copies what is left of `source`, in bounded memory. False when reading or writing fails, or when there are more
/// than `limit` bytes; nothing beyond them is written. `*copied` counts what was read. `look`, where there is one, sees
/// each portion on its way.
bool copyStream(QIODevice &source, QIODevice &destination, qint64 limit, qint64 *copied,
                const std::function<void(const char *data, qint64 size)> &look = nullptr);

} // namespace Internal
} // namespace ProjectFileCfg

#pragma once

#include <QtGlobal>

namespace Corvelpro {

/// Has the system forget the content of an open file that was flushed, so that the next reading is one of the disk.
/// True only if the system confirms that it holds none of it in memory any more: not on a file system in memory, and on
/// Linux alone.
bool dropFromMemory(int handle, qint64 size);

} // namespace Corvelpro

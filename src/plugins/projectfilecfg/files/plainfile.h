#pragma once

class QFile;

namespace ProjectFileCfg {
namespace Internal {

/// Opens `file` for reading, without a buffer of its own where `unbuffered`, if it is a plain file, or a link to one,
/// at that moment. False for anything else, and at once: to open a named pipe as QFile does waits until somebody
/// writes into it, and a file may become one between the look at it and the opening.
bool openPlainFile(QFile &file, bool unbuffered = false);

} // namespace Internal
} // namespace ProjectFileCfg

#pragma once

class QByteArray;
class QFile;

namespace ProjectFileCfg {
namespace Internal {

/// Writes the whole content of a staged file that was just opened, and closes it. False when it is cut, for instance
/// by a full disk: the package must not carry it then.
bool writeWhole(QFile &file, const QByteArray &content);

} // namespace Internal
} // namespace ProjectFileCfg

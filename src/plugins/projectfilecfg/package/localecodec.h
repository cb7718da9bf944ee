#pragma once

#include <QTextCodec>

namespace ProjectFileCfg {
namespace Internal {

/// Sets the process's locale codec to UTF-8, permanently. Call it before constructing a QuaZip, which takes its codecs
/// for entry names and comments from the locale then. Any thread: every caller sets the same value.
inline void useUtf8LocaleCodec()
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

} // namespace Internal
} // namespace ProjectFileCfg

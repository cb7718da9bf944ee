#pragma once

#include <QTextCodec>

namespace ProjectFileCfg {
namespace Internal {

/// Sets the process's locale codec to UTF-8, permanently. Any thread: every caller sets the same value. Archives do it
/// (Utf8Zip), and operations on names and records that begin, or may end, without one.
inline void useUtf8LocaleCodec()
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

} // namespace Internal
} // namespace ProjectFileCfg

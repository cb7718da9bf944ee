#pragma once

#include <QTextCodec>

namespace ProjectFileCfg {
namespace Internal {

/// Makes UTF-8 the process's locale codec, for good. To be called before a QuaZip is constructed: it takes the
/// codecs of entry names and comments from the locale at that moment. Every caller sets the same value.
inline void useUtf8LocaleCodec()
{
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

} // namespace Internal
} // namespace ProjectFileCfg

#pragma once

#include <QTextDocument>

namespace ProjectFileCfg {
namespace Internal {

/// A tool tip that shows `text` as it is, although tool tips understand markup; nothing in it is loaded.
inline QString asToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}

} // namespace Internal
} // namespace ProjectFileCfg

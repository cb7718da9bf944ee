// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QTextDocument>

namespace ProjectFileCfg {
namespace Internal {

/// Escapes markup, since tool tips render rich text: `text` appears as it is and loads nothing.
inline QString asToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}

} // namespace Internal
} // namespace ProjectFileCfg

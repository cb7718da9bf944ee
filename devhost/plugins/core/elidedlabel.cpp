// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/elidedlabel.h>

#include <QPainter>
#include <QStyle>
#include <QTextDocument>

namespace Core {

void ElidedLabel::paintEvent(QPaintEvent *)
{
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
    // Escaped: a tool tip detects rich text by itself.
    setToolTip(shown == text() ? QString() : Qt::convertFromPlainText(text()));
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(), int(alignment()) | Qt::TextSingleLine, palette(), isEnabled(),
                          shown, foregroundRole());
}

} // namespace Core

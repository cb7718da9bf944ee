#include <core/elidedlabel.h>

#include <QPainter>
#include <QStyle>

namespace Core {

void ElidedLabel::paintEvent(QPaintEvent *)
{
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
    setToolTip(shown == text() ? QString() : text());
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(), int(alignment()) | Qt::TextSingleLine, palette(), isEnabled(),
                          shown, foregroundRole());
}

} // namespace Core

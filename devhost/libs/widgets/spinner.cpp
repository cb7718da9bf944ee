// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <widgets/spinner.h>

#include <QPainter>

namespace Corvel {
namespace Widgets {

Spinner::Spinner(QWidget *parent)
    : QWidget(parent)
{
    setFixedSize(48, 48);
    m_angle.setStartValue(0);
    m_angle.setEndValue(360);
    m_angle.setDuration(1100);
    m_angle.setLoopCount(-1);
    connect(&m_angle, &QVariantAnimation::valueChanged, this, QOverload<>::of(&Spinner::update));
}

void Spinner::paintEvent(QPaintEvent *)
{
    const int penWidth = 4;
    const int unitsPerDegree = 16;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect circle = rect().adjusted(penWidth, penWidth, -penWidth, -penWidth);
    painter.setPen(QPen(palette().color(QPalette::Mid), penWidth));
    painter.drawEllipse(circle);
    painter.setPen(QPen(palette().color(QPalette::Highlight), penWidth, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(circle, (90 - m_angle.currentValue().toInt()) * unitsPerDegree, -100 * unitsPerDegree);
}

void Spinner::showEvent(QShowEvent *event)
{
    m_angle.start();
    QWidget::showEvent(event);
}

void Spinner::hideEvent(QHideEvent *event)
{
    m_angle.stop();
    QWidget::hideEvent(event);
}

} // namespace Widgets
} // namespace Corvel

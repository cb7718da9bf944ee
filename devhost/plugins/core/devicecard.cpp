// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/devicecard.h>

#include <core/elidedlabel.h>
#include <utils/textsize.h>

#include <QEvent>
#include <QGridLayout>
#include <QStyle>
#include <QTextDocument>
#include <QVariant>

namespace Core {

namespace {

/// Sets a property on which the style sheet selects and lets the style notice.
void setStyleProperty(QWidget *widget, const char *name, bool value)
{
    if (widget->property(name).isValid() && widget->property(name).toBool() == value)
        return;
    widget->setProperty(name, value);
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
}

} // namespace

DeviceCard::DeviceCard(QWidget *parent)
    : QPushButton(parent)
    , m_name(new ElidedLabel(this))
    , m_details(new ElidedLabel(this))
    , m_dot(new QLabel(this))
    , m_state(new QLabel(this))
    , m_active(new QLabel(this))
{
    setObjectName(QStringLiteral("DeviceCard"));
    setAutoDefault(false);
    fixSize();
    m_name->setObjectName(QStringLiteral("DeviceCardName"));
    m_details->setObjectName(QStringLiteral("DeviceCardDetails"));
    m_dot->setObjectName(QStringLiteral("DeviceCardDot"));
    m_dot->setFixedSize(8, 8);
    m_state->setObjectName(QStringLiteral("DeviceCardState"));
    m_active->setObjectName(QStringLiteral("DeviceCardActive"));
    for (QLabel *label : {static_cast<QLabel *>(m_name), static_cast<QLabel *>(m_details), m_dot, m_state, m_active}) {
        label->setTextFormat(Qt::PlainText);
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
    }

    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(12, 7, 12, 7);
    layout->setHorizontalSpacing(8);
    layout->setVerticalSpacing(2);
    layout->setColumnStretch(1, 1);
    layout->addWidget(m_dot, 0, 0, Qt::AlignVCenter);
    layout->addWidget(m_name, 0, 1);
    layout->addWidget(m_state, 0, 2, Qt::AlignRight);
    layout->addWidget(m_details, 1, 0, 1, 2);
    layout->addWidget(m_active, 1, 2, Qt::AlignRight);
}

void DeviceCard::setSummary(const DeviceSummary &summary)
{
    if (summary == m_summary)
        return;
    m_summary = summary;
    m_name->setText(summary.name);
    m_details->setText(QStringLiteral("%1 · %2").arg(summary.type, summary.ip));
    setStyleProperty(this, "ActiveDevice", summary.active);
    setStyleProperty(m_dot, "Online", summary.online);
    fixSize();
    retranslateUi();
}

bool DeviceCard::event(QEvent *event)
{
    const bool handled = QPushButton::event(event);
    if (event->type() == QEvent::Polish)
        fixSize();
    return handled;
}

/// Polishing applies the style sheet's minimum size for buttons, which replaces the card's own.
void DeviceCard::fixSize()
{
    setFixedSize(Corvel::Utils::inTextSize(216), Corvel::Utils::inTextSize(56));
}

void DeviceCard::retranslateUi()
{
    m_state->setText(m_summary.online ? tr("Online") : tr("Offline"));
    m_active->setText(m_summary.active ? tr("Active") : QString());
    QStringList told = {m_summary.name, m_summary.type, m_summary.ip, m_state->text()};
    if (m_summary.active)
        told.append(m_active->text());
    setAccessibleName(told.join(QStringLiteral(", ")));
    // Its labels elide what does not fit, and the mouse does not see them. Escaped: a tool tip detects rich text by
    // itself.
    setToolTip(Qt::convertFromPlainText(QStringList{m_summary.name, m_details->text(), m_state->text()}.join('\n')));
}

} // namespace Core

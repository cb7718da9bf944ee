// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "panellayout.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QVBoxLayout>

namespace ProjectFileCfg {
namespace Internal {

namespace {

QHBoxLayout *newRow()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(16);
    return row;
}

QFrame *newSeparator(QWidget *panel)
{
    auto *separator = new QFrame(panel);
    separator->setFrameShape(QFrame::HLine);
    separator->setFrameShadow(QFrame::Plain);
    separator->setMinimumHeight(1);
    separator->setMaximumHeight(1);
    separator->setStyleSheet(QStringLiteral("border-top: solid ; background-color:rgb(81, 84, 91)"));
    return separator;
}

} // namespace

PanelLayout::PanelLayout(QWidget *panel, const Widgets &widgets)
    : m_pPanel(panel)
    , m_widgets(widgets)
{
    arrange();
}

void PanelLayout::arrange()
{
    m_widgets.pDeviceCombo->setItemDelegate(new QStyledItemDelegate(m_pPanel));
    m_widgets.pDeviceCombo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    m_widgets.pDeviceCombo->setFixedSize(300, 36);
    m_widgets.pDeviceCombo->setMaximumWidth(300);
    m_widgets.pDeviceLabel->setBuddy(m_widgets.pDeviceCombo);
    QHBoxLayout *deviceRow = newRow();
    deviceRow->addSpacing(25);
    deviceRow->addWidget(m_widgets.pDeviceLabel);
    deviceRow->addWidget(m_widgets.pDeviceCombo);
    deviceRow->addStretch(1);

    QHBoxLayout *commandRow = newRow();
    commandRow->addSpacing(25);
    commandRow->addWidget(m_widgets.pSaveProjectBtn);
    commandRow->addStretch(0);
    commandRow->addWidget(m_widgets.pAllSaveasBtn);
    commandRow->addWidget(m_widgets.pAllDeleteBtn);
    commandRow->addSpacing(24);

    QFrame *separator = newSeparator(m_pPanel);
    QHBoxLayout *tableRow = newRow();
    tableRow->addSpacing(24);
    tableRow->addWidget(m_widgets.pProjectTable);
    tableRow->addSpacing(10);

    QHBoxLayout *importRow = newRow();
    importRow->addStretch(0);
    importRow->addWidget(m_widgets.pImportProjectBtn);
    importRow->addWidget(m_widgets.pApplyOthersBtn);
    importRow->addSpacing(24);

    auto *outerLayout = new QVBoxLayout;
    outerLayout->setSpacing(16);
    outerLayout->addSpacing(19);
    outerLayout->addLayout(deviceRow);
    outerLayout->addSpacing(8);
    outerLayout->addLayout(commandRow);
    outerLayout->addLayout(tableRow);
    outerLayout->addWidget(separator);
    outerLayout->addSpacing(10);
    outerLayout->addLayout(importRow);
    outerLayout->addSpacing(10);
    m_pPanel->setLayout(outerLayout);
}

void PanelLayout::retranslate()
{
    m_widgets.pDeviceLabel->setText(tr("Device"));
    m_widgets.pSaveProjectBtn->setText(tr("Save Project"));
    m_widgets.pImportProjectBtn->setText(tr("Import Project"));
    m_widgets.pApplyOthersBtn->setText(tr("Apply Others"));
    m_widgets.pAllSaveasBtn->setText(tr("ALL Save as"));
    m_widgets.pAllDeleteBtn->setText(tr("All Delete"));

    const QFontMetrics metrics = m_pPanel->fontMetrics();
    QPushButton *const buttons[] = {m_widgets.pSaveProjectBtn, m_widgets.pImportProjectBtn, m_widgets.pApplyOthersBtn,
                                    m_widgets.pAllSaveasBtn, m_widgets.pAllDeleteBtn};
    int buttonWidth = 100;
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    m_widgets.pDeviceLabel->setFixedWidth(metrics.width(m_widgets.pDeviceLabel->text()) + 15);
    for (const QPushButton *button : buttons)
        buttonWidth = qMax(buttonWidth, metrics.width(button->text()));
    QT_WARNING_POP
    for (QPushButton *button : buttons) {
        button->setFixedSize(buttonWidth + 25, 30);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }
}

} // namespace Internal
} // namespace ProjectFileCfg

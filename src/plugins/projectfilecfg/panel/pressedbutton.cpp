// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "pressedbutton.h"

#include "projectrowwidget.h"

#include <QToolButton>
#include <QVariant>

namespace ProjectFileCfg {
namespace Internal {

PressedButton::PressedButton(QObject *sender)
    : m_pSender(sender)
    , m_pRow(sender ? qobject_cast<ProjectRowWidget *>(sender->parent()) : nullptr)
    , m_bButton(qobject_cast<QToolButton *>(sender))
    , m_strFilePath(m_bButton ? sender->property("FilePath").toString() : QString())
{}

void PressedButton::setFilePath(const QString &path) const
{
    if (m_pSender)
        m_pSender->setProperty("FilePath", path);
    if (m_pRow)
        m_pRow->setFilePath(path);
}

} // namespace Internal
} // namespace ProjectFileCfg

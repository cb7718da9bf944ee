// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectdeletion.h"

#include "messageboxes.h"

#include <QDebug>
#include <QFile>

namespace ProjectFileCfg {
namespace Internal {

bool ProjectDeletion::isConfirmed(QWidget *panel, const QString &path)
{
    if (!MessageBoxes::confirm(panel, [] { return tr("Confirm to delete the selected project file?"); }))
        return false;
    if (QFile::exists(path))
        return true;
    qCritical() << "File not exist . path:" << path;
    return false;
}

bool ProjectDeletion::isConfirmedForAll(QWidget *panel)
{
    return MessageBoxes::confirm(panel, [] { return tr("Confirm to delete all project file?"); });
}

bool ProjectDeletion::remove(QWidget *panel, const QString &path)
{
    if (QFile::remove(path))
        return true;
    MessageBoxes::warn(panel, [] { return tr("Delete project file failed!"); });
    return false;
}

} // namespace Internal
} // namespace ProjectFileCfg

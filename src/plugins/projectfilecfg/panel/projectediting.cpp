// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectediting.h"

#include "engineerpropertysettingwidget.h"
#include "filesystem.h"
#include "messageboxes.h"
#include "packagelayout.h"
#include "projectlist.h"

#include <QDebug>
#include <QPointer>

namespace ProjectFileCfg {
namespace Internal {

std::optional<EngineerPacketInfo> ProjectEditing::edit(QWidget *panel, ProjectList &projects, const QString &path,
                                                       const QString &directory)
{
    std::optional<EngineerPacketInfo> entry = projects.find(path);
    if (!entry)
        return std::nullopt;

    // Not deleted here: it stays a child of the panel.
    const QPointer<EngineerPropertySettingWidget> dialog =
        new EngineerPropertySettingWidget(panel, QString(), QString());
    dialog->setProjectName(entry->strProjectName);
    dialog->setComment(entry->strComment);
    const int answer = dialog->exec();
    if (!dialog)
        return std::nullopt;
    entry = projects.find(path);
    if (answer != QDialog::Accepted || !entry)
        return std::nullopt;

    EngineerPacketInfo edited = *entry;
    edited.strProjectName = dialog->getProjectName();
    edited.strComment = dialog->getComment();
    // After a crash before the rename, only the record has the new name; the list shows file names.
    QString reason;
    if (!ZipPackageHandle::setEngineerInfo(edited, &reason)) {
        qDebug().noquote() << "Edit failed:" << reason;
        return std::nullopt;
    }

    edited.strFilePath = directory + edited.strProjectName + PackageLayout::packageExtension;
    if (edited.strFilePath != path && !FileSystem::renameDurably(path, edited.strFilePath, &reason)) {
        qDebug().noquote() << "Edit failed:" << reason;
        qWarning() << "File rename failed.";
        MessageBoxes::remind(panel, [] { return tr("File rename failed"); });
        return std::nullopt;
    }
    return edited;
}

} // namespace Internal
} // namespace ProjectFileCfg

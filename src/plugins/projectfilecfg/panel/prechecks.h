// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QCoreApplication>
#include <QStringList>

class QWidget;

namespace ProjectFileCfg {
namespace Internal {

/// Checks before the panel's operations. A check that fails shows a message box; the panel may have been deleted when
/// it returns. User-interface thread.
class PreChecks
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// True if `address`, that of the selected device, is not empty.
    static bool isDeviceSelected(QWidget *panel, const QString &address);
    /// True if the device with `address` is the selected one. Otherwise only logs.
    static bool isStillSelected(const QString &address, const QString &selectedAddress);
    static bool isFileThere(QWidget *panel, const QString &path);
    /// True if the file at `path` is a valid package. Otherwise also logs the reason.
    static bool isPackage(QWidget *panel, const QString &path);

    /// Updates the host's model of the active device. True if that device answers, and the estimated size of a project
    /// of the device with `address` is less than the free space in the project-files directory. Also true, without an
    /// update, if the active device is offline.
    static bool isRoomForProject(QWidget *panel, const QString &address, const QString &directory);
    /// True if the total size of the files is less than the free space in the project-files directory.
    static bool isRoomForImport(QWidget *panel, const QStringList &files, const QString &directory);
    /// True if the total size of the files is less than the free space in the folder.
    static bool isRoomForCopies(QWidget *panel, const QStringList &files, const QString &folder);
};

} // namespace Internal
} // namespace ProjectFileCfg

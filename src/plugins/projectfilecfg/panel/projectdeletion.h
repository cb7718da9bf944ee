// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QCoreApplication>

class QWidget;

namespace ProjectFileCfg {
namespace Internal {

/// The question before packages are deleted, and the removal of a single file. User-interface thread.
class ProjectDeletion
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// True if the operator agrees to delete the package at `path`, and the panel and the file still exist. A missing
    /// file is logged, but not shown.
    static bool isConfirmed(QWidget *panel, const QString &path);
    /// True if the operator agrees to delete all packages, and the panel still exists.
    static bool isConfirmedForAll(QWidget *panel);

    /// Removes the file. False, after a message box, if that fails; the panel may have been deleted then.
    static bool remove(QWidget *panel, const QString &path);
};

} // namespace Internal
} // namespace ProjectFileCfg

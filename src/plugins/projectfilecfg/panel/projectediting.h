// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "zippackagehandle.h"

#include <QCoreApplication>

#include <optional>

class QWidget;

namespace ProjectFileCfg {
namespace Internal {

class ProjectList;

/// Edits the name and the comment of a package. User-interface thread.
class ProjectEditing
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// Lets the operator edit the package at `path` in `projects`, writes its record, and renames the file if the name
    /// changed, into `directory`, which ends in a separator. Returns the new record, which is not in the list yet.
    ///
    /// None if the package is not listed, the operator cancels, the panel is deleted meanwhile, or the record cannot be
    /// written, which is not shown. Also none, after a message box, if the file cannot be renamed; the file's record
    /// then already has the new name and comment.
    static std::optional<EngineerPacketInfo> edit(QWidget *panel, ProjectList &projects, const QString &path,
                                                  const QString &directory);
};

} // namespace Internal
} // namespace ProjectFileCfg

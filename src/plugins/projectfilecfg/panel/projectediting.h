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
    /// Has the operator edit the package at `path`, which `projects` lists, writes the package's record, and renames
    /// its file into `directory`, which ends in a separator. Returns its new record, which the list does not know yet.
    ///
    /// None if nothing was changed, or not all: the package is not listed or its record cannot be written, which is not
    /// shown; the operator cancelled; the panel has gone; or the file could not be renamed, which a box says, and then
    /// the file's record has the new name and comment already.
    static std::optional<EngineerPacketInfo> edit(QWidget *panel, ProjectList &projects, const QString &path,
                                                  const QString &directory);
};

} // namespace Internal
} // namespace ProjectFileCfg

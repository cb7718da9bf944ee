// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QCoreApplication>
#include <QStringList>

class QWidget;

namespace ProjectFileCfg {
namespace Internal {

/// Asks for files and folders. User-interface thread. Each function runs a modal dialog, which follows a change of the
/// language.
///
/// Returns nothing if the operator cancels, or if `parent`, and so the dialog, is deleted meanwhile.
class FileDialogs
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// Existing project files from anywhere; one unless `bMulti`. Begins in the process's current directory.
    static QStringList selectProjectFiles(QWidget *parent, bool bMulti);

    /// The path for a copy of the file at `path`; proposes its name in the folder `documents`. Appends the packages'
    /// extension unless the name ends in it, in any case. Also empty if the answer is `documents` itself, or, after a
    /// message box, an existing file.
    static QString selectTarget(QWidget *parent, const QString &documents, const QString &path);

    /// The folder for copies; proposes `documents`. Also empty if the answer is `documents` itself.
    static QString selectFolder(QWidget *parent, const QString &documents);

private:
    static QString targetTitle();
    static QString projectFileFilter();
};

} // namespace Internal
} // namespace ProjectFileCfg

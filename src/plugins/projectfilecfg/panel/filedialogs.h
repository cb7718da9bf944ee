// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QCoreApplication>
#include <QStringList>

class QWidget;

namespace ProjectFileCfg {
namespace Internal {

/// Asks for files and folders. User-interface thread; each runs a modal dialog, which follows a change of the language.
///
/// The answer is empty if the operator cancelled, or if `parent` was deleted meanwhile, and the dialog with it.
class FileDialogs
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// Existing project files from anywhere; one unless `bMulti`. Begins in the process's current directory.
    static QStringList selectProjectFiles(QWidget *parent, bool bMulti);

    /// The path of a copy of the file at `path`, by default under its name in the folder `documents`. A name that does
    /// not end in the packages' extension, in capitals or not, gets it. Empty also if the answer is `documents` itself,
    /// or an existing file, which a box says.
    static QString selectTarget(QWidget *parent, const QString &documents, const QString &path);

    /// The folder for copies, by default `documents`. Empty also if the answer is `documents` itself.
    static QString selectFolder(QWidget *parent, const QString &documents);

private:
    static QString targetTitle();
    static QString projectFileFilter();
};

} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QStringList>

/// Opens the files that the program was started with, by a double click for example. The host does not know what its
/// pages do with a file, so it passes them on as if they had been dropped on the page.
namespace FileOpening {

/// The first that is not a project file; empty if all are.
QString otherThanProjectFile(const QStringList &files);

/// Passes the files to the first page in the central area that accepts them, now or when the operator opens it, except
/// those in the folder of project files, which the page already lists. Absolute paths; user-interface thread, before
/// the first page is shown.
void open(const QStringList &files);

} // namespace FileOpening

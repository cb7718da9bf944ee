// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QStringList>

/// Opens the files that the program was started with, by a double click for example. The host knows nothing of what its
/// pages do with a file: it gives them to the page as if they had been dragged onto it.
namespace FileOpening {

/// The first of them that is no project file; empty if there is none.
QString otherThanProjectFile(const QStringList &files);

/// Gives the files to the first page in the central area that takes them, now or when the operator turns to it. Those
/// in the folder of project files are left out: the page lists them already. Absolute paths; user-interface thread,
/// before the first page is shown.
void open(const QStringList &files);

} // namespace FileOpening

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

class QTableWidget;
class QWidget;

namespace ProjectFileCfg {
namespace Internal {

/// Shows a table with buttons in its cells to assistive technology. Qt's own interface of a table does not know cell
/// widgets: a screen reader that goes through its cells never meets a button.
///
/// Both replace the interface that Qt may have made while it constructed the widget, and delete theirs with it. An
/// interface stays with its row when rows above it come and go. User-interface thread.
namespace AccessibleTable {

/// `table`, whose cells cannot be selected. Each cell of `buttonColumn` must have a widget given to describeButtons().
void describe(QTableWidget *table, int buttonColumn);

/// `buttons` is the cell widget, now or soon, in a row of `table`: it becomes the cell, named by its accessible name,
/// and its buttons the cell's children.
void describeButtons(QWidget *buttons, QTableWidget *table, int buttonColumn);

} // namespace AccessibleTable
} // namespace Internal
} // namespace ProjectFileCfg

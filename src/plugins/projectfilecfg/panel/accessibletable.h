// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

class QTableWidget;
class QWidget;

namespace ProjectFileCfg {
namespace Internal {

/// Makes a table with buttons in its cells accessible to assistive technology. Qt's own accessible interface for tables
/// ignores cell widgets, so a screen reader that goes through the cells would never find a button.
///
/// Both functions replace the interface that Qt may have created while it constructed the widget; the new one is
/// deleted with the widget. An interface stays with its row when rows above it are inserted or removed. User-interface
/// thread.
namespace AccessibleTable {

/// For `table`, whose cells must not be selectable. Each cell of `buttonColumn` must contain a widget that is passed to
/// describeButtons().
void describe(QTableWidget *table, int buttonColumn);

/// For `buttons`, which is or will be the cell widget of a row of `table`: it becomes the accessible cell, and its
/// buttons become the cell's children.
void describeButtons(QWidget *buttons, QTableWidget *table, int buttonColumn);

} // namespace AccessibleTable
} // namespace Internal
} // namespace ProjectFileCfg

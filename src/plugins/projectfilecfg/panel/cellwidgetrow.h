// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QTableWidget>

namespace ProjectFileCfg {
namespace Internal {

/// The row of `table` that has `widget` in `column`; -1 if there is none.
inline int cellWidgetRow(const QTableWidget *table, const QWidget *widget, int column)
{
    int row = table->rowCount() - 1;
    while (row >= 0 && table->cellWidget(row, column) != widget)
        --row;
    return row;
}

} // namespace Internal
} // namespace ProjectFileCfg

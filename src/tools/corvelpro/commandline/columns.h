// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QStringList>
#include <QVector>

namespace Corvelpro {

/// One line per row, with aligned columns on a terminal, where an East Asian character is two cells wide. The last
/// column is not padded. Control characters must already be escaped, since that changes their width.
QStringList inColumns(const QVector<QStringList> &rows);

} // namespace Corvelpro

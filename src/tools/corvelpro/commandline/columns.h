// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QStringList>
#include <QVector>

namespace Corvelpro {

/// A line for each row, with the columns one below the other on a terminal, where an East Asian character takes two
/// places. The last column is not padded. Control characters are escaped already, since they take more places then.
QStringList inColumns(const QVector<QStringList> &rows);

} // namespace Corvelpro

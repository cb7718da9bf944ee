// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>

namespace Corvelpro {

/// "1 entry" or "2 entries".
inline QString counted(qint64 count, const char *one, const char *several)
{
    return QStringLiteral("%1 %2").arg(QString::number(count), QString::fromLatin1(count == 1 ? one : several));
}

} // namespace Corvelpro

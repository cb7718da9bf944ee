// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>

namespace Corvelpro {

/// A reason (see reason.h) without the package's path before it, for a line that names the file anyway.
inline QString withoutPath(const QString &reason, const QString &path)
{
    const QString prefix = path + QStringLiteral(": ");
    return reason.startsWith(prefix) ? reason.mid(prefix.size()) : reason;
}

} // namespace Corvelpro

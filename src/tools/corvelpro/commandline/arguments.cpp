// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "arguments.h"

namespace Corvelpro {

void Arguments::add(const QString &name, const QString &value)
{
    m_values[name].append(value);
}

bool Arguments::has(const QString &name) const
{
    return m_values.contains(name);
}

QString Arguments::value(const QString &name) const
{
    const QStringList all = values(name);
    return all.isEmpty() ? QString() : all.last();
}

QStringList Arguments::values(const QString &name) const
{
    return m_values.value(name);
}

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace Corvelpro {

/// The arguments of a command: values by the names in the command's table row ("FILE", "--ignore").
class Arguments
{
public:
    void add(const QString &name, const QString &value);

    /// True if the flag or option was given.
    bool has(const QString &name) const;
    /// Its only or last value; empty if it was not given.
    QString value(const QString &name) const;
    /// All its values, in the order in which they were given.
    QStringList values(const QString &name) const;

private:
    QHash<QString, QStringList> m_values;
};

} // namespace Corvelpro

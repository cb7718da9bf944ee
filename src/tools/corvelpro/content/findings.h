// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>
#include <QVector>

namespace Corvelpro {

/// Something about a package, and where.
struct Finding
{
    /// The entry's name; empty for the archive as a whole.
    QString entry;
    /// In the file, in bytes; -1 if it is at no single place.
    qint64 offset = -1;
    /// A short English sentence without a full stop, such as "its CRC is wrong".
    QString text;
};

/// What a verification has found. Keeps the first ones only, since a package made for that purpose has one in each of
/// its 65,535 entries; all are counted.
class Findings
{
public:
    void add(const QString &entry, qint64 offset, const QString &text);
    /// What could not be told, and why.
    void addUnknown(const QString &entry, const QString &text);

    const QVector<Finding> &damage() const { return m_damage; }
    const QVector<Finding> &unknown() const { return m_unknown; }
    /// How many there are, those included that were not kept.
    int damageCount() const { return m_damageCount; }
    int unknownCount() const { return m_unknownCount; }

private:
    QVector<Finding> m_damage;
    QVector<Finding> m_unknown;
    int m_damageCount = 0;
    int m_unknownCount = 0;
};

} // namespace Corvelpro

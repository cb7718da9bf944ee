// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "findings.h"

namespace Corvelpro {

namespace {

void keep(QVector<Finding> &kept, int &count, const Finding &finding)
{
    constexpr int most = 1000;
    if (++count <= most)
        kept.append(finding);
}

} // namespace

void Findings::add(const QString &entry, qint64 offset, const QString &text)
{
    keep(m_damage, m_damageCount, {entry, offset, text});
}

void Findings::addUnknown(const QString &entry, const QString &text)
{
    keep(m_unknown, m_unknownCount, {entry, -1, text});
}

} // namespace Corvelpro

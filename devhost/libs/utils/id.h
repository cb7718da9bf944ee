// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <utils/utils_global.h>

#include <QByteArray>
#include <QDebug>
#include <QHash>
#include <QMetaType>
#include <QString>

namespace HX {
namespace Utils {

/// Stands for the host's identifier of modes and widgets: a name that is compared by value.
class HOST_UTILS_EXPORT Id
{
public:
    Id() = default;
    Id(const char *name)
        : m_name(name)
    {}
    explicit Id(const QString &name)
        : m_name(name.toUtf8())
    {}

    bool isValid() const { return !m_name.isEmpty(); }
    QString toString() const { return QString::fromUtf8(m_name); }

    friend bool operator==(const Id &a, const Id &b) { return a.m_name == b.m_name; }
    friend bool operator!=(const Id &a, const Id &b) { return a.m_name != b.m_name; }
    friend bool operator<(const Id &a, const Id &b) { return a.m_name < b.m_name; }
    friend uint qHash(const Id &id, uint seed = 0) { return qHash(id.m_name, seed); }
    friend QDebug operator<<(QDebug debug, const Id &id) { return debug << id.m_name; }

private:
    QByteArray m_name;
};

} // namespace Utils
} // namespace HX

Q_DECLARE_METATYPE(HX::Utils::Id)

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QObject>
#include <QVector>

namespace TestSupport {

/// Tracks every QObject created after it that lives on the user-interface thread, whoever owns it. One at a time; query
/// it on that thread.
class ObjectCensus
{
public:
    ObjectCensus();
    ~ObjectCensus();
    Q_DISABLE_COPY(ObjectCensus)

    /// Objects of that class or derived from it, by the meta-object's class name (with namespaces).
    QVector<QObject *> living(const char *className) const;
};

} // namespace TestSupport

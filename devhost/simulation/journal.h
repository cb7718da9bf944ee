// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <simulation/operations.h>

#include <QMetaType>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

#include <mutex>
#include <vector>

namespace Simulation {

/// One call of a host operation.
struct HOST_SIMULATION_EXPORT JournalEntry
{
    /// One of Operations.
    QString operation;
    QVariantMap arguments;
    /// Identifies the thread; 0 is never used.
    quintptr threadId = 0;
    bool onMainThread = false;
};

/// Records every call of a host operation in the order in which the calls began. Any thread.
class HOST_SIMULATION_EXPORT Journal : public QObject
{
    Q_OBJECT

public:
    static Journal *instance();

    void record(const QString &operation, const QVariantMap &arguments = QVariantMap());
    /// Records that an operation completed, so that the host's window can show it.
    void recordSuccess(const QString &operation);

    QVector<JournalEntry> entries() const;
    /// The entries of that operation only.
    QVector<JournalEntry> entries(const QString &operation) const;
    /// The names only, in order.
    QStringList operations() const;
    int count(const QString &operation) const;
    void clear();

signals:
    /// Emitted from the thread that made the call.
    void recorded(const Simulation::JournalEntry &entry);
    /// The same for recordSuccess().
    void succeeded(const QString &operation);

private:
    Journal();

    mutable std::mutex m_mutex;
    std::vector<JournalEntry> m_entries;
};

} // namespace Simulation

Q_DECLARE_METATYPE(Simulation::JournalEntry)

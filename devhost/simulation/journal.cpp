// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "journal.h"

#include <QCoreApplication>
#include <QThread>

namespace Simulation {

Journal::Journal()
{
    qRegisterMetaType<Simulation::JournalEntry>();
}

Journal *Journal::instance()
{
    static Journal journal;
    return &journal;
}

void Journal::record(const QString &operation, const QVariantMap &arguments)
{
    const QCoreApplication *application = QCoreApplication::instance();
    JournalEntry entry;
    entry.operation = operation;
    entry.arguments = arguments;
    entry.threadId = reinterpret_cast<quintptr>(QThread::currentThreadId());
    entry.onMainThread = application && application->thread() == QThread::currentThread();
    {
        const std::lock_guard<std::mutex> locker(m_mutex);
        m_entries.push_back(entry);
    }
    emit recorded(entry);
}

void Journal::recordSuccess(const QString &operation)
{
    emit succeeded(operation);
}

QVector<JournalEntry> Journal::entries() const
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    return QVector<JournalEntry>(m_entries.begin(), m_entries.end());
}

QVector<JournalEntry> Journal::entries(const QString &operation) const
{
    QVector<JournalEntry> found;
    const QVector<JournalEntry> all = entries();
    for (const JournalEntry &entry : all) {
        if (entry.operation == operation)
            found.append(entry);
    }
    return found;
}

QStringList Journal::operations() const
{
    QStringList names;
    const QVector<JournalEntry> all = entries();
    for (const JournalEntry &entry : all)
        names.append(entry.operation);
    return names;
}

int Journal::count(const QString &operation) const
{
    return entries(operation).size();
}

void Journal::clear()
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_entries.clear();
}

} // namespace Simulation

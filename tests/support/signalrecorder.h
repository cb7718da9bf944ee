// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QObject>
#include <QVector>

#include <tuple>

namespace TestSupport {

/// Records the emissions of a signal, whichever thread they come from.
///
/// QSignalSpy appends to its list on the emitting thread, a data race with the test that reads it. Here each emission
/// is queued to the recorder's thread, so it becomes visible once the event loop runs (QTRY_*), in the order of the
/// emissions. `Args` are the signal's arguments, or the first of them:
///
///     SignalRecorder<QString> progress(&job, &EngineerDocBackup::signal_operatoerChanged);
///     SignalRecorder<> finished(&job, &QThread::finished);
template<typename... Args>
class SignalRecorder
{
public:
    template<typename Sender, typename Signal>
    SignalRecorder(const Sender *sender, Signal signal)
    {
        QObject::connect(
            sender, signal, &m_context, [this](Args... args) { m_calls.append(std::tuple<Args...>(args...)); },
            Qt::QueuedConnection);
    }
    Q_DISABLE_COPY(SignalRecorder)

    int count() const { return m_calls.size(); }
    bool isEmpty() const { return m_calls.isEmpty(); }
    void clear() { m_calls.clear(); }
    const QVector<std::tuple<Args...>> &calls() const { return m_calls; }

    /// That argument of each emission, in order.
    template<int number = 0>
    auto values() const
    {
        QVector<std::tuple_element_t<number, std::tuple<Args...>>> result;
        for (const std::tuple<Args...> &call : m_calls)
            result.append(std::get<number>(call));
        return result;
    }

private:
    QObject m_context;
    QVector<std::tuple<Args...>> m_calls;
};

} // namespace TestSupport

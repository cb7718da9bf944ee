// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <simulation/faults.h>

#include <QSemaphore>
#include <QThread>

#include <functional>
#include <memory>

namespace TestSupport {

/// Blocks a thread until the test releases it, at the latest in the destructor, so that a failing test never hangs.
class Gate
{
public:
    Gate() = default;
    ~Gate() { open(); }
    Q_DISABLE_COPY(Gate)

    /// Blocks the calling thread. Usable once, even after the gate was destroyed.
    std::function<void()> action() const
    {
        return [state = m_state] {
            state->thread = QThread::currentThread();
            state->arrived.release();
            state->open.acquire();
        };
    }
    /// The same as a fault at that call.
    Simulation::Fault fault(int call = 1) const { return Simulation::Fault::run(action(), call); }

    /// The thread waiting at the gate; null if none arrives within a minute.
    QThread *waitForThread() { return m_state->arrived.tryAcquire(1, 60000) ? m_state->thread : nullptr; }
    void open() { m_state->open.release(); }

private:
    struct State
    {
        QSemaphore arrived;
        QSemaphore open;
        QThread *thread = nullptr;
    };

    const std::shared_ptr<State> m_state = std::make_shared<State>();
};

} // namespace TestSupport

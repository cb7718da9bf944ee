#pragma once

#include <simulation/faults.h>

#include <QSemaphore>
#include <QThread>

#include <functional>
#include <memory>

namespace TestSupport {

/// Holds a thread where the test wants it until the test lets it go on, at the latest when the gate is destroyed,
/// so that a test that fails on the way leaves nobody waiting.
class Gate
{
public:
    Gate() = default;
    ~Gate() { open(); }
    Q_DISABLE_COPY(Gate)

    /// Blocks the thread that calls it. To be used once, and may be called after the gate is gone.
    std::function<void()> action() const
    {
        return [state = m_state] {
            state->thread = QThread::currentThread();
            state->arrived.release();
            state->open.acquire();
        };
    }
    /// The same as a fault that strikes at that call.
    Simulation::Fault fault(int call = 1) const { return Simulation::Fault::run(action(), call); }

    /// The thread that waits at the gate; null when none comes within a minute.
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

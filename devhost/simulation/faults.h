// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <simulation/operations.h>

#include <QString>
#include <QVector>

#include <functional>
#include <mutex>

namespace Simulation {

/// Which failure occurs at which call. Faults are chosen, never random.
struct HOST_SIMULATION_EXPORT Fault
{
    enum class Kind {
        Fail,       ///< the device refuses the operation
        Late,       ///< the operation answers `delayMs` later than it would
        Disconnect, ///< the device drops off the network, so that the operation and all later ones fail
        Cancel,     ///< the operation ends as if it had been cancelled
        Run,        ///< `action` runs on the calling thread, then the operation continues
        Throw       ///< the operation throws a std::runtime_error, as if the host had a bug
    };
    /// Value of `call`: the fault is triggered by every call until the faults are cleared.
    static constexpr int everyCall = 0;

    Kind kind = Kind::Fail;
    /// The call that triggers the fault, counted from 1 after arming. The fault is then removed.
    int call = 1;
    int delayMs = 0;
    std::function<void()> action;

    static Fault fail(int call = 1);
    static Fault late(int delayMs, int call = 1);
    static Fault disconnect(int call = 1);
    static Fault cancel(int call = 1);
    static Fault run(const std::function<void()> &action, int call = 1);
    static Fault throwing(int call = 1);
};

/// The armed faults by operation name. Any thread.
class HOST_SIMULATION_EXPORT Faults
{
public:
    static Faults *instance();

    /// Arms a fault; an operation may have several. A name missing in Operations::all() logs a warning, since the fault
    /// would never be triggered.
    void arm(const QString &operation, const Fault &fault);
    void clear();
    /// The number of armed faults: those that were not triggered yet, and those for every call.
    int armedCount() const;

    /// Counts a call of the operation and returns the faults that it triggers, in the order of arming. For
    /// beginOperation().
    QVector<Fault> strike(const QString &operation);

private:
    struct Armed
    {
        QString operation;
        Fault fault;
        int calls = 0;
    };

    Faults() = default;

    mutable std::mutex m_mutex;
    QVector<Armed> m_armed;
};

} // namespace Simulation

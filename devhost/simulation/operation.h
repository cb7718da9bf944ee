// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <simulation/operations.h>

#include <QHash>
#include <QString>
#include <QVariantMap>

#include <memory>

namespace Simulation {

class Hardware;

/// The outcome of the beginning of a host operation. It continues only with Done, else it fails.
enum class Outcome { Done, Failed, Disconnected, Cancelled };

/// Every host operation calls this first, on its calling thread: records the operation in the journal, triggers its
/// armed faults, and waits as long as the operation and the transfer of `bytes` take. With `hardware` the operation
/// needs that device: returns Disconnected if it is unreachable, or becomes so during the wait.
HOST_SIMULATION_EXPORT Outcome beginOperation(const QString &operation, const QVariantMap &arguments = QVariantMap());
HOST_SIMULATION_EXPORT Outcome beginOperation(const QString &operation, const QVariantMap &arguments,
                                              const std::shared_ptr<Hardware> &hardware, quint64 bytes = 0);

/// For operations that the host answers from its own memory, without a device: no journal, no wait. Triggers only the
/// faults Run and Throw.
HOST_SIMULATION_EXPORT void meetFaults(const QString &operation);

/// Makes all running operations end as cancelled, but no later ones. Any thread.
HOST_SIMULATION_EXPORT void cancelRunningOperations();
/// The same for operations on the device at that address.
HOST_SIMULATION_EXPORT void cancelRunningOperations(const QString &ip);

/// How long operations take. By default, nothing waits.
struct HOST_SIMULATION_EXPORT Pace
{
    /// Milliseconds by operation name.
    QHash<QString, int> durations;
    /// Bytes per second to and from devices; 0 is unlimited.
    double throughput = 0;
};

/// Sets the pace of all operations that begin later. Any thread.
HOST_SIMULATION_EXPORT void setPace(const Pace &pace);
HOST_SIMULATION_EXPORT Pace pace();

} // namespace Simulation

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

/// How a host operation begins: only with Done does it go on, else it fails.
enum class Outcome { Done, Failed, Disconnected, Cancelled };

/// What every host operation does first, on its calling thread: enters itself into the journal, meets the
/// faults that are armed for it, and waits as long as the operation and the transfer of `bytes` take.
/// With `hardware` the operation needs that device; a device that is out of reach, also when it drops off
/// while the operation waits, gives Disconnected.
HOST_SIMULATION_EXPORT Outcome beginOperation(const QString &operation, const QVariantMap &arguments = QVariantMap());
HOST_SIMULATION_EXPORT Outcome beginOperation(const QString &operation, const QVariantMap &arguments,
                                              const std::shared_ptr<Hardware> &hardware, quint64 bytes = 0);

/// For what the host answers from its own memory, without a device: no journal, no time. Only Run and Throw strike.
HOST_SIMULATION_EXPORT void meetFaults(const QString &operation);

/// Makes all operations that are running now end as cancelled; later ones are not touched. Any thread.
HOST_SIMULATION_EXPORT void cancelRunningOperations();
/// The same for operations on the device at that address.
HOST_SIMULATION_EXPORT void cancelRunningOperations(const QString &ip);

/// How long operations take. Nothing waits unless a site says so.
struct HOST_SIMULATION_EXPORT Pace
{
    /// Milliseconds by operation name.
    QHash<QString, int> durations;
    /// Bytes per second to and from devices; 0 is without limit.
    double throughput = 0;
};

/// Sets the pace of all operations that begin from now on. Any thread.
HOST_SIMULATION_EXPORT void setPace(const Pace &pace);
HOST_SIMULATION_EXPORT Pace pace();

} // namespace Simulation

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "operation.h"

#include "faults.h"
#include "hardware.h"
#include "journal.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>

namespace Simulation {

namespace {

/// Counts of cancellations when an operation begins; only later ones apply to it.
struct Ticket
{
    quint64 everywhere = 0;
    quint64 atDevice = 0;
};

struct Running
{
    std::mutex mutex;
    std::condition_variable cancelled;
    quint64 everywhere = 0;
    QHash<QString, quint64> atDevice;
    Pace pace;

    static Running &instance()
    {
        static Running running;
        return running;
    }

    Ticket ticket(const QString &ip)
    {
        const std::lock_guard<std::mutex> locker(mutex);
        return {everywhere, atDevice.value(ip)};
    }

    bool isCancelled(const Ticket &ticket, const QString &ip) const
    {
        return ticket.everywhere != everywhere || ticket.atDevice != atDevice.value(ip);
    }

    /// Waits; returns false if the operation was cancelled.
    bool wait(qint64 ms, const Ticket &ticket, const QString &ip)
    {
        std::unique_lock<std::mutex> locker(mutex);
        return !cancelled.wait_for(locker, std::chrono::milliseconds(ms), [&] { return isCancelled(ticket, ip); });
    }

    qint64 duration(const QString &operation, quint64 bytes)
    {
        const std::lock_guard<std::mutex> locker(mutex);
        const double transfer = pace.throughput > 0 ? 1000.0 * static_cast<double>(bytes) / pace.throughput : 0.0;
        return pace.durations.value(operation) + static_cast<qint64>(transfer);
    }
};

Outcome begin(const QString &operation, const QVariantMap &arguments, Hardware *hardware, bool needsHardware,
              quint64 bytes)
{
    Running &running = Running::instance();
    const QString ip = hardware ? hardware->ip() : QString();
    const Ticket ticket = running.ticket(ip);
    Journal::instance()->record(operation, arguments);

    Outcome outcome = Outcome::Done;
    qint64 duration = running.duration(operation, bytes);
    for (const Fault &fault : Faults::instance()->strike(operation)) {
        switch (fault.kind) {
        case Fault::Kind::Fail:
            outcome = Outcome::Failed;
            break;
        case Fault::Kind::Late:
            duration += fault.delayMs;
            break;
        case Fault::Kind::Disconnect:
            if (hardware)
                hardware->setReachable(false);
            outcome = Outcome::Disconnected;
            break;
        case Fault::Kind::Cancel:
            outcome = Outcome::Cancelled;
            break;
        case Fault::Kind::Run:
            if (fault.action)
                fault.action();
            break;
        case Fault::Kind::Throw:
            throw std::runtime_error(operation.toStdString() + " throws");
        }
    }
    if (needsHardware && (!hardware || !hardware->isReachable()))
        return Outcome::Disconnected;
    if (!running.wait(duration, ticket, ip))
        return Outcome::Cancelled;
    if (needsHardware && !hardware->isReachable())
        return Outcome::Disconnected;
    return outcome;
}

} // namespace

QStringList Operations::all()
{
    return {calLogoMaterailCapacity,
            canMVEEnable,
            cancelCurrentTask,
            cancelOperator,
            copyMVRItemDataToDevice,
            copyModelToDevice,
            copySlotDataToDevice,
            createMaterailFromImage,
            enableMVR,
            setChannelExclusive,
            updateDeviceInfo,
            usedCapacity,
            deviceFromJson,
            getDeviceByIPAddr,
            getDevices,
            setOperatorType,
            loadImage,
            queryMaterailData,
            updateOnlineDevice,
            presetFullDetail2Binary,
            serailize,
            activeDevice,
            appendSelectedScreen,
            clearScreenList,
            setActiveDevice,
            setActivedScreen};
}

Outcome beginOperation(const QString &operation, const QVariantMap &arguments)
{
    return begin(operation, arguments, nullptr, false, 0);
}

Outcome beginOperation(const QString &operation, const QVariantMap &arguments,
                       const std::shared_ptr<Hardware> &hardware, quint64 bytes)
{
    return begin(operation, arguments, hardware.get(), true, bytes);
}

void meetFaults(const QString &operation)
{
    for (const Fault &fault : Faults::instance()->strike(operation)) {
        if (fault.kind == Fault::Kind::Run && fault.action)
            fault.action();
        else if (fault.kind == Fault::Kind::Throw)
            throw std::runtime_error(operation.toStdString() + " throws");
    }
}

void cancelRunningOperations()
{
    Running &running = Running::instance();
    const std::lock_guard<std::mutex> locker(running.mutex);
    ++running.everywhere;
    running.cancelled.notify_all();
}

void cancelRunningOperations(const QString &ip)
{
    Running &running = Running::instance();
    const std::lock_guard<std::mutex> locker(running.mutex);
    ++running.atDevice[ip];
    running.cancelled.notify_all();
}

void setPace(const Pace &pace)
{
    Running &running = Running::instance();
    const std::lock_guard<std::mutex> locker(running.mutex);
    running.pace = pace;
}

Pace pace()
{
    Running &running = Running::instance();
    const std::lock_guard<std::mutex> locker(running.mutex);
    return running.pace;
}

} // namespace Simulation

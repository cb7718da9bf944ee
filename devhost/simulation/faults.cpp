// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "faults.h"

#include "operation.h"

#include <QtDebug>

namespace Simulation {

namespace {

Fault makeFault(Fault::Kind kind, int call)
{
    Fault fault;
    fault.kind = kind;
    fault.call = call;
    return fault;
}

} // namespace

Fault Fault::fail(int call)
{
    return makeFault(Kind::Fail, call);
}

Fault Fault::late(int delayMs, int call)
{
    Fault fault = makeFault(Kind::Late, call);
    fault.delayMs = delayMs;
    return fault;
}

Fault Fault::disconnect(int call)
{
    return makeFault(Kind::Disconnect, call);
}

Fault Fault::cancel(int call)
{
    return makeFault(Kind::Cancel, call);
}

Fault Fault::run(const std::function<void()> &action, int call)
{
    Fault fault = makeFault(Kind::Run, call);
    fault.action = action;
    return fault;
}

Fault Fault::throwing(int call)
{
    return makeFault(Kind::Throw, call);
}

Faults *Faults::instance()
{
    static Faults faults;
    return &faults;
}

void Faults::arm(const QString &operation, const Fault &fault)
{
    if (!Operations::all().contains(operation))
        qWarning().noquote() << "No host operation is called" << operation;
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_armed.append(Armed{operation, fault, 0});
}

void Faults::clear()
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_armed.clear();
}

int Faults::armedCount() const
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    return m_armed.size();
}

QVector<Fault> Faults::strike(const QString &operation)
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    QVector<Fault> striking;
    for (int i = 0; i < m_armed.size();) {
        Armed &armed = m_armed[i];
        if (armed.operation != operation) {
            ++i;
            continue;
        }
        ++armed.calls;
        if (armed.fault.call == Fault::everyCall) {
            striking.append(armed.fault);
            ++i;
        } else if (armed.calls == armed.fault.call) {
            striking.append(armed.fault);
            m_armed.remove(i);
        } else {
            ++i;
        }
    }
    return striking;
}

} // namespace Simulation

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "digestingdevice.h"

#include "reason.h"

namespace Corvelpro {

DigestingDevice::DigestingDevice(QIODevice *target, const std::function<bool(qint64 size)> &step)
    : m_target(target)
    , m_step(step)
{
    open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

qint64 DigestingDevice::writeData(const char *data, qint64 size)
{
    if (!m_step(size)) {
        setErrorString(QStringLiteral("interrupted"));
        return -1;
    }
    if (m_target && m_target->write(data, size) != size) {
        setErrorString(ProjectFileCfg::Internal::writeError(*m_target));
        return -1;
    }
    m_digest.addData(data, int(size));
    return size;
}

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "materail.h"

namespace Model {

Materail::Materail(MaterailType type, quint8 keyNo, const QString &name, const QSize &size, const QString &deviceIp)
    : m_type(type)
    , m_keyNo(keyNo)
    , m_name(name)
    , m_size(size)
    , m_deviceIp(deviceIp)
{}

QString Materail::imageKey() const
{
    const QString kind = m_type == Logo ? QStringLiteral("logo") : QStringLiteral("background");
    return QStringLiteral("%1/%2/%3").arg(m_deviceIp, kind, QString::number(m_keyNo));
}

void Materail::setThumb(const QImage &thumb)
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_thumb = thumb;
}

QImage Materail::thumb() const
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    return m_thumb;
}

} // namespace Model

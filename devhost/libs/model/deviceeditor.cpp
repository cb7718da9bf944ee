// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "deviceeditor.h"

#include "device_p.h"

namespace Model {

DeviceEditor::DeviceEditor(Device &device)
    : m_device(device)
{}

DeviceData DeviceEditor::data() const
{
    const std::lock_guard<std::mutex> locker(m_device.d->mutex);
    return m_device.d->data;
}

void DeviceEditor::replace(const DeviceData &data)
{
    const std::lock_guard<std::mutex> locker(m_device.d->mutex);
    m_device.d->data = data;
}

void DeviceEditor::setOnlineFlag(bool online)
{
    const std::lock_guard<std::mutex> locker(m_device.d->mutex);
    m_device.d->online = online;
}

} // namespace Model

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "deviceconfigmanager.h"

namespace Model {

DeviceConfigManager *DeviceConfigManager::instance()
{
    static DeviceConfigManager manager;
    return &manager;
}

const s_DeviceConfig *DeviceConfigManager::findDeviceConfigByID(int modelId) const
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    const auto found = m_known.find(modelId);
    return found == m_known.end() ? nullptr : found->second;
}

void DeviceConfigManager::addDeviceConfig(const s_DeviceConfig &config)
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    m_storage.push_back(std::make_unique<s_DeviceConfig>(config));
    m_known[config.modelId] = m_storage.back().get();
}

void DeviceConfigManager::clear()
{
    const std::lock_guard<std::mutex> locker(m_mutex);
    // The storage stays: callers may hold references to a description.
    m_known.clear();
}

} // namespace Model

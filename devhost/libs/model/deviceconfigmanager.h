// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/device.h>

#include <map>
#include <mutex>

namespace Model {

/// Stands for the host's catalogue of device models. Any thread.
class HOST_MODEL_EXPORT DeviceConfigManager
{
public:
    static DeviceConfigManager *instance();

    /// The description of that model; null if there is none. It lives as long as the program.
    const s_DeviceConfig *findDeviceConfigByID(int modelId) const;

    /// Adds a description, replacing an earlier one of the same model.
    void addDeviceConfig(const s_DeviceConfig &config);
    /// Forgets all models; references to them stay valid.
    void clear();

private:
    mutable std::mutex m_mutex;
    std::map<int, const s_DeviceConfig *> m_known;
    std::vector<std::unique_ptr<s_DeviceConfig>> m_storage;
};

} // namespace Model

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "devicelookup.h"

#include <host/devices.h>

namespace ProjectFileCfg {
namespace Internal {

std::shared_ptr<Model::Device> findDeviceByAddress(const QString &ip)
{
    const Model::DeviceList *devices = Model::DeviceList::instance();
    return devices ? devices->getDeviceByIPAddr(ip) : nullptr;
}

} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/deviceeditor.h>

#include <mutex>

namespace Model {

class Device::Private
{
public:
    mutable std::mutex mutex;
    DeviceData data;
    bool online = false;
};

} // namespace Model

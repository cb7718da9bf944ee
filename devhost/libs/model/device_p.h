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

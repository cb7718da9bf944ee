#pragma once

#include <QString>

#include <memory>

namespace Model {
class Device;
}

namespace ProjectFileCfg {
namespace Internal {

/// The device that the host knows under that address; null when it knows none, or has no device list yet. Any thread.
std::shared_ptr<Model::Device> findDeviceByAddress(const QString &ip);

} // namespace Internal
} // namespace ProjectFileCfg

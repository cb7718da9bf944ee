#pragma once

#include <QString>

#include <memory>

class QIODevice;

namespace Model {
class Device;
} // namespace Model

namespace ProjectFileCfg {
namespace Internal {

/// Creates a device, which is in no list, from a description that the host has written. `device` is open for reading as
/// text. Null, with the parser's reason in `error`, if it is not a JSON document with content, or exceeds
/// PackageLimits.
std::shared_ptr<Model::Device> readDeviceDescription(QIODevice &device, QString &error);

} // namespace Internal
} // namespace ProjectFileCfg

#pragma once

#include <QString>

#include <memory>

class QIODevice;

namespace Model {
class Device;
} // namespace Model

namespace ProjectFileCfg {
namespace Internal {

/// Makes a device, which is in no list, of a description that the host has written. `device` is open for reading as
/// text. Null, with the parser's reason in `error`, when it is no JSON document with content, or more than
/// PackageLimits allows to parse.
std::shared_ptr<Model::Device> readDeviceDescription(QIODevice &device, QString &error);

} // namespace Internal
} // namespace ProjectFileCfg

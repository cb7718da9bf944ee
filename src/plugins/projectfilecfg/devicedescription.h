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
/// text. Null, with the parser's reason in `error`, when it is no JSON document with content, or is too much for the
/// memory: above 16 MiB, or above 1,048,576 members, elements and brackets.
std::shared_ptr<Model::Device> readDeviceDescription(QIODevice &device, QString &error);

} // namespace Internal
} // namespace ProjectFileCfg

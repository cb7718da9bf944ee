#pragma once

#include "operationresultcodes.h"

namespace Model {
class Device;
} // namespace Model

namespace ProjectFileCfg {
namespace Internal {

/// Compares the device that a package describes with the device that is to get its configuration:
/// LoadDeviceTypeMismatch if they are of different models; for an online device also LoadCardMismatch if a slot has
/// another card, and LoadProtocolVersionMismatch if the package is from a newer protocol. Otherwise LoadSuccess.
LoadResultCode compareDevices(const Model::Device &package, const Model::Device &target, bool isTargetOnline);

} // namespace Internal
} // namespace ProjectFileCfg

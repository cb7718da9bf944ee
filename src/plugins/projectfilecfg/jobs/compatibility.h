// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "operationresultcodes.h"

#include <host/fwd.h>

class QString;

namespace ProjectFileCfg {
namespace Internal {

/// Compares the device that a package describes with the device that is to get its configuration:
/// LoadDeviceTypeMismatch if their models differ; for an online device also LoadCardMismatch if a slot holds a
/// different card, and LoadProtocolVersionMismatch if the package is from a newer protocol. Otherwise LoadSuccess.
LoadResultCode compareDevices(const Model::Device &package, const Model::Device &target, bool isTargetOnline,
                              QString *reason);

} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "operationresultcodes.h"

#include <host/fwd.h>

class QString;

namespace ProjectFileCfg {
namespace Internal {

/// Compares the device that a package describes with the target device: LoadDeviceTypeMismatch if their models differ;
/// for an online device also LoadCardMismatch if a slot contains a different card, and LoadProtocolVersionMismatch if
/// the package has a newer protocol version. Otherwise LoadSuccess.
LoadResultCode compareDevices(const Model::Device &package, const Model::Device &target, bool isTargetOnline,
                              QString *reason);

} // namespace Internal
} // namespace ProjectFileCfg

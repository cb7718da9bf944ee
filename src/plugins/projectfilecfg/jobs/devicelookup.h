// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <host/fwd.h>

#include <QString>

#include <memory>

namespace ProjectFileCfg {
namespace Internal {

/// The host's device with that address; null if there is none, or no device list yet. Any thread.
std::shared_ptr<Model::Device> findDeviceByAddress(const QString &ip);

} // namespace Internal
} // namespace ProjectFileCfg

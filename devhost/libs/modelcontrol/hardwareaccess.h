// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/deviceeditor.h>
#include <modelcontrol/modelcontrol_global.h>
#include <simulation/hardware.h>
#include <simulation/operation.h>

namespace ModelControl {

/// How the controllers reach the hardware, and how hardware state and host model are converted into each other.
namespace HardwareAccess {

/// Begins an operation on the device at that address and adds the address to the arguments. Returns the hardware if the
/// operation can continue, null if it fails; an unreachable device becomes offline in the host's list. `outcome`, if
/// given, receives the reason.
std::shared_ptr<Simulation::Hardware> begin(const QString &operation, const QString &ip, QVariantMap arguments,
                                            quint64 bytes = 0, Simulation::Outcome *outcome = nullptr);

/// Updates the model from the hardware; logos go into the image store. Unchanged materials keep their objects.
HOST_MODELCONTROL_EXPORT void refreshModel(Model::Device &device, const Simulation::HardwareState &state);

/// Writes a model's configuration (settings, screens, presets, multi-viewer, and the names of pictures present on the
/// hardware) into the state. Identity and cards stay.
void writeConfiguration(const Model::DeviceData &data, Simulation::HardwareState &state);

/// Writes the settings of the cards in `data` to the cards in the same slots.
void writeCardSettings(const Model::DeviceData &data, Simulation::HardwareState &state);

} // namespace HardwareAccess

} // namespace ModelControl

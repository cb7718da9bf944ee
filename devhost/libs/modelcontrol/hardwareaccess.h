#pragma once

#include <model/deviceeditor.h>
#include <modelcontrol/modelcontrol_global.h>
#include <simulation/hardware.h>
#include <simulation/operation.h>

namespace ModelControl {

/// How the controllers reach the hardware, and how its state and the host's model become each other.
namespace HardwareAccess {

/// Begins an operation on the device at that address, whose address it adds to the arguments. Returns
/// the hardware when the operation can go on, null when it fails; a device that is found to be out of
/// reach becomes offline in the host's list. `outcome`, if given, receives the reason.
std::shared_ptr<Simulation::Hardware> begin(const QString &operation, const QString &ip, QVariantMap arguments,
                                            quint64 bytes = 0, Simulation::Outcome *outcome = nullptr);

/// Makes the model what the hardware holds; logos go into the image store. Materials that did not change
/// are kept as objects.
HOST_MODELCONTROL_EXPORT void refreshModel(Model::Device &device, const Simulation::HardwareState &state);

/// Writes the configuration of a model (settings, screens, presets, multi-viewer, and the names of the
/// pictures that the hardware has) into the state. The identity and the cards stay.
void writeConfiguration(const Model::DeviceData &data, Simulation::HardwareState &state);

/// Writes the settings of the cards of `data` to the cards in the same places.
void writeCardSettings(const Model::DeviceData &data, Simulation::HardwareState &state);

} // namespace HardwareAccess

} // namespace ModelControl

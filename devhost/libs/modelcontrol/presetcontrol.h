// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/device.h>
#include <modelcontrol/modelcontrol_global.h>

namespace ModelControl {

/// Stands for the host's control of one preset.
class HOST_MODELCONTROL_EXPORT PresetControl
{
public:
    explicit PresetControl(const std::shared_ptr<Model::Preset> &preset);

    /// Writes the preset in the hardware's binary form to `binary`. Any thread. Returns false on failure.
    bool presetFullDetail2Binary(QByteArray &binary);

private:
    const std::shared_ptr<Model::Preset> m_preset;
};

} // namespace ModelControl

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "presetcontrol.h"

#include <simulation/operation.h>

namespace ModelControl {

PresetControl::PresetControl(const std::shared_ptr<Model::Preset> &preset)
    : m_preset(preset)
{}

bool PresetControl::presetFullDetail2Binary(QByteArray &binary)
{
    if (!m_preset)
        return false;
    const Simulation::Outcome outcome = Simulation::beginOperation(Simulation::Operations::presetFullDetail2Binary,
                                                                   {{QStringLiteral("number"), m_preset->getNumber()}});
    if (outcome != Simulation::Outcome::Done)
        return false;
    binary = m_preset->detail;
    return true;
}

} // namespace ModelControl

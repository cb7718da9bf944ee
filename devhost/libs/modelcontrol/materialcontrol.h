// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/materail.h>
#include <modelcontrol/modelcontrol_global.h>

#include <any>
#include <map>
#include <memory>

namespace ModelControl {

/// Stands for the host's control of one picture.
class HOST_MODELCONTROL_EXPORT MaterialControl
{
public:
    explicit MaterialControl(const std::shared_ptr<Model::Materail> &materail);

    /// Fetches the requested parts from the hardware; a picture goes into the image store under the material's
    /// imageKey(). Blocks until the hardware has answered. Any thread. Returns false on failure.
    bool queryMaterailData(const std::map<Model::Materail::ParameterType, std::any> &request);

private:
    const std::shared_ptr<Model::Materail> m_materail;
};

} // namespace ModelControl

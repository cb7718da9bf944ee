// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "materialcontrol.h"

#include "hardwareaccess.h"

#include <imagestorager/imagestorager.h>

namespace ModelControl {

MaterialControl::MaterialControl(const std::shared_ptr<Model::Materail> &materail)
    : m_materail(materail)
{}

bool MaterialControl::queryMaterailData(const std::map<Model::Materail::ParameterType, std::any> &request)
{
    if (!m_materail)
        return false;
    // An empty picture in the request asks for the pixels.
    const auto entry = request.find(Model::Materail::Picture);
    const QImage *place = entry == request.end() ? nullptr : std::any_cast<QImage>(&entry->second);
    const bool wantsPicture = place && place->isNull();
    const std::shared_ptr<Simulation::Hardware> hardware =
        HardwareAccess::begin(Simulation::Operations::queryMaterailData, m_materail->deviceIp(),
                              {{QStringLiteral("type"), m_materail->getType()},
                               {QStringLiteral("keyNo"), m_materail->getKeyNo()},
                               {QStringLiteral("picture"), wantsPicture},
                               {QStringLiteral("entries"), int(request.size())}},
                              wantsPicture ? Simulation::pictureBytes(m_materail->size()) : 0);
    if (!hardware)
        return false;
    const Simulation::HardwareState state = hardware->state();
    const auto &gallery = m_materail->getType() == Model::Materail::Logo ? state.logos : state.backgrounds;
    const auto picture = gallery.find(m_materail->getKeyNo());
    if (picture == gallery.end())
        return false;
    if (wantsPicture)
        ImageStorager::instance()->store(m_materail->imageKey(), picture->pixels);
    return true;
}

} // namespace ModelControl

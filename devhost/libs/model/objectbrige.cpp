// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "objectbrige.h"

#include <simulation/operation.h>

namespace Model {

object_brige *object_brige::instance()
{
    static object_brige brige;
    return &brige;
}

std::shared_ptr<Device> object_brige::activeDevice() const
{
    Simulation::meetFaults(Simulation::Operations::activeDevice);
    return m_activeDevice.lock();
}

void object_brige::setActiveDevice(const std::weak_ptr<Device> &device)
{
    const std::shared_ptr<Device> wanted = device.lock();
    Simulation::beginOperation(Simulation::Operations::setActiveDevice,
                               {{QStringLiteral("ip"), wanted ? wanted->getIPAddress() : QString()}});
    // Compared by ownership, so that the expiry of the active device counts as a change.
    if (!m_activeDevice.owner_before(device) && !device.owner_before(m_activeDevice))
        return;
    m_activeDevice = device;
    emit signal_deviceChanged();
}

void object_brige::clearScreenList(bool withActived)
{
    Simulation::beginOperation(Simulation::Operations::clearScreenList, {{QStringLiteral("withActived"), withActived}});
    m_selectedScreens.clear();
    if (withActived)
        m_activedScreen.reset();
    emit signal_screensChanged();
}

void object_brige::setActivedScreen(const std::shared_ptr<Screen> &screen)
{
    Simulation::beginOperation(Simulation::Operations::setActivedScreen,
                               {{QStringLiteral("screen"), screen ? screen->id : -1}});
    m_activedScreen = screen;
    emit signal_screensChanged();
}

void object_brige::appendSelectedScreen(const std::shared_ptr<Screen> &screen)
{
    Simulation::beginOperation(Simulation::Operations::appendSelectedScreen,
                               {{QStringLiteral("screen"), screen ? screen->id : -1}});
    m_selectedScreens.push_back(screen);
    emit signal_screensChanged();
}

} // namespace Model

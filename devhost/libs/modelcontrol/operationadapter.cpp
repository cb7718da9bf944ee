// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "operationadapter.h"

#include "hardwareaccess.h"

#include <model/devicelist.h>

void ControlStruct::defaultCallBack(int percent)
{
    Q_UNUSED(percent)
}

OperationAdapter *OperationAdapter::instance()
{
    static OperationAdapter adapter;
    return &adapter;
}

ControlEnum::enum_ErrorCode OperationAdapter::updateOnlineDevice(const QString &ip, const QString &sn,
                                                                 const ControlStruct::CallBack &callBack)
{
    using namespace ModelControl;

    Simulation::Outcome outcome = Simulation::Outcome::Done;
    const std::shared_ptr<Simulation::Hardware> hardware = HardwareAccess::begin(
        Simulation::Operations::updateOnlineDevice, ip, {{QStringLiteral("sn"), sn}}, 0, &outcome);
    if (!hardware) {
        switch (outcome) {
        case Simulation::Outcome::Disconnected:
            return ControlEnum::ErrorDisconnected;
        case Simulation::Outcome::Cancelled:
            return ControlEnum::ErrorTimeout;
        default:
            return ControlEnum::ErrorRefused;
        }
    }
    const std::shared_ptr<Model::Device> device =
        Model::DeviceList::instance() ? Model::DeviceList::instance()->getDeviceByIPAddr(ip) : nullptr;
    const Simulation::HardwareState state = hardware->state();
    if (!device || state.identity.sn != sn)
        return ControlEnum::ErrorRefused;
    HardwareAccess::refreshModel(*device, state);
    if (callBack)
        callBack(100);
    return ControlEnum::ErrorNone;
}

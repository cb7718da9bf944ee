// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "compatibility.h"

#include "reason.h"

#include <host/devices.h>

#include <algorithm>
#include <memory>

namespace ProjectFileCfg {
namespace Internal {

namespace {

constexpr int defaultExchangePos = 8;

/// Slot types of the output card, and of the exchange card that may replace it.
constexpr int outputCardType = 3;
constexpr int exchangeCardType = 5;

bool slotsMatch(const Model::Slot &package, const Model::Slot &target, int exchangePos)
{
    const auto isOutputOrExchange = [](int type) { return type == outputCardType || type == exchangeCardType; };
    const bool typesAgree = package.getType() == target.getType() ||
                            (target.getPos() == exchangePos && isOutputOrExchange(package.getType()) &&
                             isOutputOrExchange(target.getType()));
    return typesAgree && package.getPos() == target.getPos() && package.getModelId() == target.getModelId();
}

bool cardsAgree(const Model::Device &package, const Model::Device &target)
{
    const auto targetSlots = target.getSlots();
    const auto packageSlots = package.getSlots();
    if (targetSlots.size() != packageSlots.size())
        return false;

    const Model::s_DeviceConfig *config =
        Model::DeviceConfigManager::instance()->findDeviceConfigByID(package.getModelID());
    const int exchangePos = config ? config->exchangePos : defaultExchangePos;
    return std::all_of(targetSlots.begin(), targetSlots.end(), [&](const std::shared_ptr<Model::Slot> &targetSlot) {
        return std::any_of(packageSlots.begin(), packageSlots.end(),
                           [&](const std::shared_ptr<Model::Slot> &packageSlot) {
                               return packageSlot && targetSlot && slotsMatch(*packageSlot, *targetSlot, exchangePos);
                           });
    });
}

bool isFromNewerProtocol(const Model::Device &package, const Model::Device &target)
{
    // Keep the factor: the multiplication rounds away a difference in the last bit. Do not round to an integer: 2.41 is
    // newer than 2.4.
    return package.getCommunicationProtocolNumber() * 10 > target.getCommunicationProtocolNumber() * 10;
}

} // namespace

LoadResultCode compareDevices(const Model::Device &package, const Model::Device &target, bool isTargetOnline,
                              QString *reason)
{
    const auto differ = [reason](const QString &what, double ofPackage, double ofTarget) {
        failBecause(reason, QStringLiteral("the package's %1 is %2, the device's %3")
                                .arg(what, QString::number(ofPackage), QString::number(ofTarget)));
    };
    if (target.getModelID() != package.getModelID()) {
        differ(QStringLiteral("model ID"), package.getModelID(), target.getModelID());
        return LoadDeviceTypeMismatch;
    }
    if (!isTargetOnline)
        return LoadSuccess;
    if (!cardsAgree(package, target)) {
        failBecause(reason, QStringLiteral("the package has %1 slots, the device %2, or the cards in them differ")
                                .arg(package.getSlots().size())
                                .arg(target.getSlots().size()));
        return LoadCardMismatch;
    }
    if (isFromNewerProtocol(package, target)) {
        differ(QStringLiteral("protocol number"), package.getCommunicationProtocolNumber(),
               target.getCommunicationProtocolNumber());
        return LoadProtocolVersionMismatch;
    }
    return LoadSuccess;
}

} // namespace Internal
} // namespace ProjectFileCfg

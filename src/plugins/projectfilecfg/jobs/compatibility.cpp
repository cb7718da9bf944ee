#include "compatibility.h"

#include <model/deviceconfigmanager.h>

#include <algorithm>
#include <memory>

namespace ProjectFileCfg {
namespace Internal {

static const int defaultExchangePos = 8;

/// Slot types of the output card and of the exchange card that may take its place.
static const int outputCardType = 3;
static const int exchangeCardType = 5;

static bool slotsMatch(const Model::Slot &package, const Model::Slot &target, int exchangePos)
{
    const auto isOutputOrExchange = [](int type) { return type == outputCardType || type == exchangeCardType; };
    const bool typesAgree = package.getType() == target.getType() ||
                            (target.getPos() == exchangePos && isOutputOrExchange(package.getType()) &&
                             isOutputOrExchange(target.getType()));
    return typesAgree && package.getPos() == target.getPos() && package.getModelId() == target.getModelId();
}

static bool cardsAgree(const Model::Device &package, const Model::Device &target)
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

static bool isFromNewerProtocol(const Model::Device &package, const Model::Device &target)
{
    // Not the same without the factor: the product rounds a difference in the last bit away. It is not rounded to a
    // whole number either: 2.41 is newer than 2.4.
    return package.getCommunicationProtocolNumber() * 10 > target.getCommunicationProtocolNumber() * 10;
}

LoadResultCode compareDevices(const Model::Device &package, const Model::Device &target, bool isTargetOnline)
{
    if (target.getModelID() != package.getModelID())
        return LoadDeviceTypeMismatch;
    if (!isTargetOnline)
        return LoadSuccess;
    if (!cardsAgree(package, target))
        return LoadCardMismatch;
    return isFromNewerProtocol(package, target) ? LoadProtocolVersionMismatch : LoadSuccess;
}

} // namespace Internal
} // namespace ProjectFileCfg

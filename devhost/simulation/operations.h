#pragma once

#include <simulation/simulation_global.h>

#include <QLatin1String>
#include <QStringList>

/// The host's operations as journal, faults and durations name them: "Class.operation". Code uses these constants, so
/// that a misspelt name does not compile; site files have the texts.
namespace Simulation::Operations {

constexpr QLatin1String calLogoMaterailCapacity{"DeviceControler.calLogoMaterailCapacity"};
constexpr QLatin1String canMVEEnable{"DeviceControler.canMVEEnable"};
constexpr QLatin1String cancelCurrentTask{"DeviceControler.cancelCurrentTask"};
constexpr QLatin1String cancelOperator{"DeviceControler.cancelOperator"};
constexpr QLatin1String copyMVRItemDataToDevice{"DeviceControler.copyMVRItemDataToDevice"};
constexpr QLatin1String copyModelToDevice{"DeviceControler.copyModelToDevice"};
constexpr QLatin1String copySlotDataToDevice{"DeviceControler.copySlotDataToDevice"};
constexpr QLatin1String createMaterailFromImage{"DeviceControler.createMaterailFromImage"};
constexpr QLatin1String enableMVR{"DeviceControler.enableMVR"};
constexpr QLatin1String setChannelExclusive{"DeviceControler.setChannelExclusive"};
constexpr QLatin1String updateDeviceInfo{"DeviceControler.updateDeviceInfo"};
constexpr QLatin1String usedCapacity{"DeviceControler.usedCapacity"};
constexpr QLatin1String deviceFromJson{"Device.fromJson"};
constexpr QLatin1String getDeviceByIPAddr{"DeviceList.getDeviceByIPAddr"};
constexpr QLatin1String setOperatorType{"ICore.setOperatorType"};
constexpr QLatin1String loadImage{"ImageStorager.load"};
constexpr QLatin1String queryMaterailData{"MaterialControl.queryMaterailData"};
constexpr QLatin1String updateOnlineDevice{"OperationAdapter.updateOnlineDevice"};
constexpr QLatin1String presetFullDetail2Binary{"PresetControl.presetFullDetail2Binary"};
constexpr QLatin1String serailize{"Serailizer.serailize"};
constexpr QLatin1String appendSelectedScreen{"object_brige.appendSelectedScreen"};
constexpr QLatin1String clearScreenList{"object_brige.clearScreenList"};
constexpr QLatin1String setActiveDevice{"object_brige.setActiveDevice"};
constexpr QLatin1String setActivedScreen{"object_brige.setActivedScreen"};

/// All of the above: faults can be armed for these, and a site can say how long they take.
HOST_SIMULATION_EXPORT QStringList all();

// The host's window; these are recorded and nothing else.
constexpr QLatin1String informationBox{"FramelessMessageBox.information"};
constexpr QLatin1String questionBox{"FramelessMessageBox.question"};
constexpr QLatin1String warningBox{"FramelessMessageBox.warning"};
constexpr QLatin1String hideWaitingDialog{"WaitingDialog.hideWaitingDialog"};
constexpr QLatin1String setCanelVisible{"WaitingDialog.setCanelVisible"};
constexpr QLatin1String showWaitingDialog{"WaitingDialog.showWaitingDialog"};
constexpr QLatin1String enterWindow{"ICenterWidget.enterWindow"};
constexpr QLatin1String leaveWindow{"ICenterWidget.leaveWindow"};
constexpr QLatin1String raiseWindow{"ICenterWidget.raiseWindow"};
constexpr QLatin1String activateMode{"ModeManager.activateMode"};
constexpr QLatin1String addCenterWidget{"ModeManager.addCenterWidget"};
constexpr QLatin1String existCenterWidget{"ModeManager.existCenterWidget"};
constexpr QLatin1String removeCenterWidget{"ModeManager.removeCenterWidget"};
constexpr QLatin1String setActivateCenterWidget{"ModeManager.setActivateCenterWidget"};
constexpr QLatin1String activateNavigationMode{"NavigationBarModeManager.activateMode"};
constexpr QLatin1String addNavigationMode{"NavigationBarModeManager.addMode"};
constexpr QLatin1String removeNavigationMode{"NavigationBarModeManager.removeMode"};

} // namespace Simulation::Operations

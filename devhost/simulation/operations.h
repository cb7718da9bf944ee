// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <simulation/simulation_global.h>

#include <QLatin1String>
#include <QStringList>

/// The names of the host's operations in journal, faults and durations: "Class.operation". Code uses these constants,
/// so that a misspelt name does not compile; site files contain the names themselves.
namespace Simulation::Operations {

/// The name with its length, which QLatin1String(const char *) counts at run time if the compiler is clang.
template<int sizeWithEnd>
constexpr QLatin1String operation(const char (&name)[sizeWithEnd])
{
    return QLatin1String(name, sizeWithEnd - 1);
}

constexpr QLatin1String calLogoMaterailCapacity = operation("DeviceControler.calLogoMaterailCapacity");
constexpr QLatin1String canMVEEnable = operation("DeviceControler.canMVEEnable");
constexpr QLatin1String cancelCurrentTask = operation("DeviceControler.cancelCurrentTask");
constexpr QLatin1String cancelOperator = operation("DeviceControler.cancelOperator");
constexpr QLatin1String copyMVRItemDataToDevice = operation("DeviceControler.copyMVRItemDataToDevice");
constexpr QLatin1String copyModelToDevice = operation("DeviceControler.copyModelToDevice");
constexpr QLatin1String copySlotDataToDevice = operation("DeviceControler.copySlotDataToDevice");
constexpr QLatin1String createMaterailFromImage = operation("DeviceControler.createMaterailFromImage");
constexpr QLatin1String enableMVR = operation("DeviceControler.enableMVR");
constexpr QLatin1String setChannelExclusive = operation("DeviceControler.setChannelExclusive");
constexpr QLatin1String updateDeviceInfo = operation("DeviceControler.updateDeviceInfo");
constexpr QLatin1String usedCapacity = operation("DeviceControler.usedCapacity");
constexpr QLatin1String deviceFromJson = operation("Device.fromJson");
constexpr QLatin1String getDeviceByIPAddr = operation("DeviceList.getDeviceByIPAddr");
constexpr QLatin1String getDevices = operation("DeviceList.getDevices");
constexpr QLatin1String setOperatorType = operation("ICore.setOperatorType");
constexpr QLatin1String loadImage = operation("ImageStorager.load");
constexpr QLatin1String queryMaterailData = operation("MaterialControl.queryMaterailData");
constexpr QLatin1String updateOnlineDevice = operation("OperationAdapter.updateOnlineDevice");
constexpr QLatin1String presetFullDetail2Binary = operation("PresetControl.presetFullDetail2Binary");
constexpr QLatin1String serailize = operation("Serailizer.serailize");
constexpr QLatin1String activeDevice = operation("object_brige.activeDevice");
constexpr QLatin1String appendSelectedScreen = operation("object_brige.appendSelectedScreen");
constexpr QLatin1String clearScreenList = operation("object_brige.clearScreenList");
constexpr QLatin1String setActiveDevice = operation("object_brige.setActiveDevice");
constexpr QLatin1String setActivedScreen = operation("object_brige.setActivedScreen");

/// All of the above: faults can be armed for these, and a site can set their durations.
HOST_SIMULATION_EXPORT QStringList all();

// Of the host's window. These are only recorded.
constexpr QLatin1String informationBox = operation("FramelessMessageBox.information");
constexpr QLatin1String questionBox = operation("FramelessMessageBox.question");
constexpr QLatin1String warningBox = operation("FramelessMessageBox.warning");
constexpr QLatin1String hideWaitingDialog = operation("WaitingDialog.hideWaitingDialog");
constexpr QLatin1String setCanelVisible = operation("WaitingDialog.setCanelVisible");
constexpr QLatin1String showWaitingDialog = operation("WaitingDialog.showWaitingDialog");
constexpr QLatin1String enterWindow = operation("ICenterWidget.enterWindow");
constexpr QLatin1String leaveWindow = operation("ICenterWidget.leaveWindow");
constexpr QLatin1String raiseWindow = operation("ICenterWidget.raiseWindow");
constexpr QLatin1String activateMode = operation("ModeManager.activateMode");
constexpr QLatin1String addCenterWidget = operation("ModeManager.addCenterWidget");
constexpr QLatin1String existCenterWidget = operation("ModeManager.existCenterWidget");
constexpr QLatin1String removeCenterWidget = operation("ModeManager.removeCenterWidget");
constexpr QLatin1String setActivateCenterWidget = operation("ModeManager.setActivateCenterWidget");
constexpr QLatin1String activateNavigationMode = operation("NavigationBarModeManager.activateMode");
constexpr QLatin1String addNavigationMode = operation("NavigationBarModeManager.addMode");
constexpr QLatin1String removeNavigationMode = operation("NavigationBarModeManager.removeMode");

} // namespace Simulation::Operations

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <modelcontrol/modelcontrol_global.h>

#include <QString>

#include <functional>

namespace ControlEnum {

/// Stands for the host's error codes of device operations; 0 is success.
enum enum_ErrorCode { ErrorNone = 0, ErrorTimeout = 1, ErrorDisconnected = 2, ErrorRefused = 3 };

} // namespace ControlEnum

namespace ControlStruct {

/// Receives progress in percent.
using CallBack = std::function<void(int)>;
/// A callback that does nothing.
HOST_MODELCONTROL_EXPORT void defaultCallBack(int percent);

} // namespace ControlStruct

/// Stands for the host's adapter that refreshes models from hardware.
class HOST_MODELCONTROL_EXPORT OperationAdapter
{
public:
    static OperationAdapter *instance();

    /// Copies the hardware's state into the host's model of the device, including logos into the image store;
    /// backgrounds are fetched one by one with MaterialControl. Blocks until done.
    ControlEnum::enum_ErrorCode updateOnlineDevice(const QString &ip, const QString &sn,
                                                   const ControlStruct::CallBack &callBack);
};

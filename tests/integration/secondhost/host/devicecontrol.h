// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <acme/host.h>

namespace ModelControl {
using DeviceControler = Acme::Link;
using MaterialControl = Acme::Link;
using PresetControl = Acme::Link;
} // namespace ModelControl

namespace ControlEnum {
using enum_ErrorCode = Acme::Result;
} // namespace ControlEnum

namespace ControlStruct {
using Acme::ignoreProgress;
constexpr auto defaultCallBack = &ignoreProgress;
} // namespace ControlStruct

using OperationAdapter = Acme::Link;

namespace ProjectFileCfg::Internal::HostNumbers {
constexpr auto noError = Acme::Done;
} // namespace ProjectFileCfg::Internal::HostNumbers

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <acme/host.h>

#include <QMessageBox>

namespace Corvel::Widgets {
using FixedBitLineEditEx = Acme::NameEdit;
using WaitingDialog = Acme::Busy;
} // namespace Corvel::Widgets

namespace HX::Widgets {
using FramelessDialog = Acme::Dialog;
using FramelessMessageBox = QMessageBox;
} // namespace HX::Widgets

namespace ProjectFileCfg::Internal::HostNumbers {
constexpr int tooltipLevelNormal = 0;
} // namespace ProjectFileCfg::Internal::HostNumbers

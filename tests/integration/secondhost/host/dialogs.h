// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <acme/host.h>

#include <QMessageBox>

namespace Corvel {
namespace Widgets {
using FixedBitLineEditEx = Acme::NameEdit;
using WaitingDialog = Acme::Busy;
} // namespace Widgets
} // namespace Corvel

namespace HX {
namespace Widgets {
using FramelessDialog = Acme::Dialog;
using FramelessMessageBox = QMessageBox;
} // namespace Widgets
} // namespace HX

namespace ProjectFileCfg {
namespace Internal {
namespace HostNumbers {
constexpr int tooltipLevelNormal = 0;
} // namespace HostNumbers
} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

// Dialogs, message boxes, the waiting dialog, and the line edit for names.
#include <widgets/fixedbitlineeditex.h>
#include <widgets/framelessdialog.h>
#include <widgets/framelessmessagebox.h>
#include <widgets/waitingdialog.h>

namespace ProjectFileCfg {
namespace Internal {
namespace HostNumbers {
// The level that showWaitingDialog takes.
constexpr int tooltipLevelNormal = 0;
} // namespace HostNumbers
} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Reads each file to its last byte, and prints what is damaged or wrong in it.
ExitCode runVerify(const Arguments &arguments, Output &output);

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Prints what a package says about itself and contains.
ExitCode runInfo(const Arguments &arguments, Output &output);

} // namespace Corvelpro

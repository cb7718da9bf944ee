// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Compares two packages, or a package and a device's directory, by what a device would get.
ExitCode runDiff(const Arguments &arguments, Output &output);

} // namespace Corvelpro

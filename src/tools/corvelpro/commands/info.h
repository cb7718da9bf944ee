// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Prints the record and the content of a package.
ExitCode runInfo(const Arguments &arguments, Output &output);

} // namespace Corvelpro

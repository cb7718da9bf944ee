// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Prints the projects that the panel lists for a folder.
ExitCode runList(const Arguments &arguments, Output &output);

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Packs a directory into a new package, as a save does.
ExitCode runCreate(const Arguments &arguments, Output &output);

} // namespace Corvelpro

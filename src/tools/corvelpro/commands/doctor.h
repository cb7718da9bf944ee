// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Prints which files of a folder the panel does not list, or lists under a misleading name, and what to do.
ExitCode runDoctor(const Arguments &arguments, Output &output);

} // namespace Corvelpro

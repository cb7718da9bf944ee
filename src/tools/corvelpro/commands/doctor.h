// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Prints which files of a folder the panel leaves out, or misleads about, and what to do.
ExitCode runDoctor(const Arguments &arguments, Output &output);

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/command.h"

namespace Corvelpro {

/// Changes a package's name, with its file's, and its comment, as the panel's edit does.
ExitCode runEdit(const Arguments &arguments, Output &output);

} // namespace Corvelpro

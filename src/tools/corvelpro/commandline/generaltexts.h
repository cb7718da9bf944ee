// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "command.h"

namespace Corvelpro {

/// Texts about the whole tool, for its help, its manual page and its completions.
namespace GeneralTexts {

constexpr const char *purpose =
    "Inspects, verifies and copies project files (.corvelpro) without the control application.";

/// The options of every command.
constexpr Option jsonOption{"--json", nullptr, "Print the result as one JSON document"};
constexpr Option quietOption{"--quiet", nullptr, "Print no result, only return the exit code"};
constexpr Option helpOption{"--help", nullptr, "Print this help message and exit"};

/// The option of the tool itself, besides the one for help.
constexpr Option versionOption{"--version", nullptr, "Display program version information and exit"};

} // namespace GeneralTexts

} // namespace Corvelpro

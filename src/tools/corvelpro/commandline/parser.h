// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "arguments.h"
#include "output.h"

namespace Corvelpro {

struct Command;

/// What a command line asks for.
struct Request
{
    /// Null: only `text` is to be printed.
    const Command *command = nullptr;
    Arguments arguments;
    Output::Form form = Output::Form::Text;
    /// The help or the version, for stdout; or what is wrong with the command line, for stderr.
    QString text;
    bool isUsageError = false;
};

Request parse(int count, const char *const *values);

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QVector>

namespace Corvelpro {

class Arguments;
class Output;

/// The exit code of the process. Scripts rely on it.
enum class ExitCode {
    /// Yes: valid, equal, done.
    Yes = 0,
    /// No: not valid, different, refused.
    No = 1,
    /// No answer: wrong usage, a file that cannot be read, no room for the result.
    Unknown = 2
};

/// An argument without an option's name on the command line.
struct Positional
{
    enum class Count { One, Optional, OneOrMore };

    const char *name; ///< As in the help: "FILE".
    const char *help;
    Count count = Count::One;
};

/// "--json" and "--quiet" belong to every command and are in no row.
struct Option
{
    const char *name;            ///< "--ignore"
    const char *value = nullptr; ///< As in the help: "PATH". Null: a flag without a value.
    const char *help = "";
    bool isRepeatable = false;
};

/// A command, as a row of a table from which the parser, the help, the manual page and the completions are made. Texts
/// are English.
struct Command
{
    const char *name;
    /// One line without a full stop, for the list of commands.
    const char *summary;
    /// The rest of its manual page: paragraphs separated by an empty line.
    const char *description;
    QVector<Positional> positionals;
    QVector<Option> options;
    /// Main thread. Prints its result to `output`.
    ExitCode (*run)(const Arguments &arguments, Output &output);
};

/// All commands, in the order of the help.
const QVector<Command> &commandTable();

} // namespace Corvelpro

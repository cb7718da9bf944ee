// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "command.h"

#include <QString>

class QJsonObject;

namespace Corvelpro {

class Output;

/// The outcome of an operation that creates or changes a file.
struct Outcome
{
    ExitCode code = ExitCode::Yes;
    /// Why it was not done, with the path; empty if it was done.
    QString reason;

    bool isDone() const { return code == ExitCode::Yes; }
    /// "done", "refused" or "failed".
    QString word() const;

    /// Nothing was done, because a rule of the tool forbids it.
    static Outcome refused(const QString &reason) { return {ExitCode::No, reason}; }
    /// Reading or writing failed, or the command line is wrong.
    static Outcome failed(const QString &reason) { return {ExitCode::Unknown, reason}; }
};

/// Prints `line` if the operation was done, its reason otherwise, and adds "result" and "reason" to `json`.
ExitCode finish(Output &output, const Outcome &outcome, const QString &line, QJsonObject json);

/// Why no plain file can be opened at `path`, nor through a link there; empty if one can.
QString whyUnreadable(const QString &path);
/// Fails if none can.
Outcome wantPlainFile(const QString &path);
/// Refuses a path at which anything exists, even a broken link.
Outcome wantFreeName(const QString &path);

} // namespace Corvelpro

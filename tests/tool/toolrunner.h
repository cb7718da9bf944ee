// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "tooloutcome.h"

#include <support/testmain.h>

#include <QProcess>
#include <QStringList>

/// Runs the built tool and keeps what it printed.
namespace ToolTesting {

inline Outcome runTool(const QStringList &arguments)
{
    Outcome outcome;
    QProcess process;
    process.start(QStringLiteral(CORVELPRO_PROGRAM), arguments, QIODevice::ReadOnly);
    // One run may read hundreds of packages, under a sanitizer on a busy machine: CTest's timeout is the limit.
    if (process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit)
        outcome.code = process.exitCode();
    outcome.out = process.readAllStandardOutput();
    outcome.messages = process.readAllStandardError();
    process.kill();
    process.waitForFinished();
    return outcome;
}

} // namespace ToolTesting

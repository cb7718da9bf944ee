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
    if (process.waitForFinished(TestSupport::patience) && process.exitStatus() == QProcess::NormalExit)
        outcome.code = process.exitCode();
    outcome.out = process.readAllStandardOutput();
    outcome.messages = process.readAllStandardError();
    process.kill();
    process.waitForFinished();
    return outcome;
}

} // namespace ToolTesting

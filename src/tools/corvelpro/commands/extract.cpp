// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "extract.h"

#include "commandline/arguments.h"
#include "commandline/interrupt.h"
#include "commandline/outcome.h"
#include "making/extraction.h"

#include <QJsonArray>
#include <QJsonObject>

namespace Corvelpro {

ExitCode runExtract(const Arguments &arguments, Output &output)
{
    const Interrupt interrupt;
    const QString file = arguments.value(QStringLiteral("FILE"));
    const QString entry = arguments.value(QStringLiteral("--entry"));
    Extraction extraction(file, arguments.value(QStringLiteral("DIR")), entry);
    Outcome outcome = wantPlainFile(file);
    if (outcome.isDone())
        outcome = extraction.run();

    const QStringList entries = outcome.isDone() ? extraction.entries() : QStringList();
    const QString line =
        entry.isEmpty()
            ? QStringLiteral("%1: %2 entries extracted").arg(extraction.directory(), QString::number(entries.size()))
            : QStringLiteral("%1/%2").arg(extraction.directory(), entry);
    return finish(output, outcome, line,
                  {{QStringLiteral("file"), file},
                   {QStringLiteral("directory"), extraction.directory()},
                   {QStringLiteral("entries"), QJsonArray::fromStringList(entries)}});
}

} // namespace Corvelpro

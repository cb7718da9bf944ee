// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "create.h"

#include "commandline/arguments.h"
#include "commandline/outcome.h"
#include "making/packagemaking.h"

#include <QJsonObject>

namespace Corvelpro {

ExitCode runCreate(const Arguments &arguments, Output &output)
{
    ProjectFileCfg::Internal::EngineerPacketInfo record;
    record.strFilePath = arguments.value(QStringLiteral("FILE"));
    record.strProjectName = arguments.value(QStringLiteral("--name"));
    record.strComment = arguments.value(QStringLiteral("--comment"));
    const Outcome outcome = PackageMaking::create(arguments.value(QStringLiteral("DIR")), record);
    return finish(output, outcome, QStringLiteral("%1: created").arg(record.strFilePath),
                  PackageMaking::toJson(record));
}

} // namespace Corvelpro

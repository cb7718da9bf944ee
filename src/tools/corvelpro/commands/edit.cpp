// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "edit.h"

#include "commandline/arguments.h"
#include "commandline/outcome.h"
#include "making/packagemaking.h"

#include <QJsonObject>

#include <optional>

namespace Corvelpro {

namespace {

std::optional<QString> given(const Arguments &arguments, const QString &name)
{
    return arguments.has(name) ? std::make_optional(arguments.value(name)) : std::nullopt;
}

} // namespace

ExitCode runEdit(const Arguments &arguments, Output &output)
{
    ProjectFileCfg::Internal::EngineerPacketInfo record;
    record.strFilePath = arguments.value(QStringLiteral("FILE"));
    const std::optional<QString> name = given(arguments, QStringLiteral("--name"));
    const std::optional<QString> comment = given(arguments, QStringLiteral("--comment"));
    Outcome outcome = wantPlainFile(record.strFilePath);
    if (outcome.isDone()) {
        outcome = name || comment ? PackageMaking::edit(record, name, comment)
                                  : Outcome::failed(QStringLiteral("give --name, --comment or both"));
    }
    return finish(output, outcome, QStringLiteral("%1: edited").arg(record.strFilePath), PackageMaking::toJson(record));
}

} // namespace Corvelpro

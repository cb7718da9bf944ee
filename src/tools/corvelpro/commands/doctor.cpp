// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "doctor.h"

#include "commandline/output.h"
#include "content/folderdiagnosis.h"
#include "directoryargument.h"

#include <QJsonArray>
#include <QJsonObject>

namespace Corvelpro {

namespace {

void print(const Complaint &complaint, Output &output)
{
    output.line(QStringLiteral("%1: %2").arg(complaint.file, complaint.reason));
    if (!complaint.blockedName.isEmpty())
        output.line(QStringLiteral("  no other project can be called \"%1\"").arg(complaint.blockedName));
    output.line(QStringLiteral("  to do: %1").arg(complaint.advice));
}

QJsonObject jsonOf(const Complaint &complaint)
{
    QJsonObject object{{QStringLiteral("file"), complaint.file},
                       {QStringLiteral("reason"), complaint.reason},
                       {QStringLiteral("advice"), complaint.advice}};
    if (!complaint.blockedName.isEmpty())
        object.insert(QStringLiteral("blocks"), complaint.blockedName);
    return object;
}

} // namespace

ExitCode runDoctor(const Arguments &arguments, Output &output)
{
    const std::optional<QString> directory = directoryArgument(arguments, output);
    if (!directory)
        return ExitCode::Unknown;
    const QVector<Complaint> complaints = diagnoseFolder(*directory);
    QJsonArray files;
    for (const Complaint &complaint : complaints) {
        print(complaint, output);
        files.append(jsonOf(complaint));
    }
    if (complaints.isEmpty())
        output.line(QStringLiteral("%1: every file is listed under its name").arg(*directory));
    output.json({{QStringLiteral("directory"), *directory}, {QStringLiteral("files"), files}});
    return complaints.isEmpty() ? ExitCode::Yes : ExitCode::No;
}

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "info.h"

#include "commandline/arguments.h"
#include "commandline/columns.h"
#include "commandline/counted.h"
#include "commandline/jsontext.h"
#include "commandline/output.h"
#include "content/packagesummary.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace Corvelpro {

namespace {

QString bytes(qint64 count)
{
    return counted(count, "byte", "bytes");
}

QString pixels(const QSize &size)
{
    return size.isEmpty() ? QStringLiteral("no picture")
                          : QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
}

void printTable(const QString &title, const QVector<QStringList> &rows, Output &output)
{
    output.line(QStringLiteral("%1: %2").arg(title).arg(rows.size()));
    for (const QString &line : inColumns(rows))
        output.line(QStringLiteral("  ") + line);
}

void print(const PackageSummary &package, Output &output)
{
    output.line(QStringLiteral("name: ") + package.record().strProjectName);
    for (const QString &line : package.record().strComment.split(QLatin1Char('\n')))
        output.line(QStringLiteral("comment: ") + line);
    output.line(QStringLiteral("checksum: ") + package.record().strChecksum);
    output.line(QStringLiteral("listed: ") +
                (package.problem().isEmpty() ? QStringLiteral("yes") : QStringLiteral("no: ") + package.problem()));
    output.line(
        QStringLiteral("entries: %1, %2").arg(QString::number(package.entries()), bytes(package.contentSize())));
    output.line(QStringLiteral("description: %1%2")
                    .arg(package.description(), package.descriptionProblem().isEmpty()
                                                    ? QString()
                                                    : QStringLiteral(" (%1)").arg(package.descriptionProblem())));
    const QJsonObject &members = package.members();
    for (auto member = members.begin(); member != members.end(); ++member)
        output.line(QStringLiteral("  %1: %2").arg(member.key(), jsonText(*member)));
    QVector<QStringList> pictures;
    for (const PackageSummary::Picture &picture : package.pictures())
        pictures.append({printable(picture.entry), pixels(picture.size), bytes(picture.bytes)});
    printTable(QStringLiteral("pictures"), pictures, output);
    QVector<QStringList> presets;
    for (const PackageSummary::Preset &preset : package.presets())
        presets.append({printable(preset.entry), bytes(preset.bytes)});
    printTable(QStringLiteral("presets"), presets, output);
    QVector<QStringList> leftOver;
    for (const PackageSummary::LeftOver &entry : package.leftOver())
        leftOver.append({printable(entry.entry), bytes(entry.bytes), entry.reason});
    printTable(QStringLiteral("left over"), leftOver, output);
}

QJsonObject jsonOf(const PackageSummary &package)
{
    QJsonArray pictures;
    for (const PackageSummary::Picture &picture : package.pictures())
        pictures.append(QJsonObject{{QStringLiteral("entry"), picture.entry},
                                    {QStringLiteral("bytes"), picture.bytes},
                                    {QStringLiteral("width"), picture.size.width()},
                                    {QStringLiteral("height"), picture.size.height()}});
    QJsonArray presets;
    for (const PackageSummary::Preset &preset : package.presets())
        presets.append(QJsonObject{{QStringLiteral("entry"), preset.entry}, {QStringLiteral("bytes"), preset.bytes}});
    QJsonArray leftOver;
    for (const PackageSummary::LeftOver &entry : package.leftOver())
        leftOver.append(QJsonObject{{QStringLiteral("entry"), entry.entry},
                                    {QStringLiteral("bytes"), entry.bytes},
                                    {QStringLiteral("reason"), entry.reason}});
    QJsonObject description{{QStringLiteral("entry"), package.description()},
                            {QStringLiteral("members"), package.members()}};
    if (!package.descriptionProblem().isEmpty())
        description.insert(QStringLiteral("reason"), package.descriptionProblem());
    QJsonObject result{{QStringLiteral("file"), package.record().strFilePath},
                       {QStringLiteral("name"), package.record().strProjectName},
                       {QStringLiteral("comment"), package.record().strComment},
                       {QStringLiteral("checksum"), package.record().strChecksum},
                       {QStringLiteral("listed"), package.problem().isEmpty()},
                       {QStringLiteral("entries"), package.entries()},
                       {QStringLiteral("contentSize"), package.contentSize()},
                       {QStringLiteral("description"), description},
                       {QStringLiteral("pictures"), pictures},
                       {QStringLiteral("presets"), presets},
                       {QStringLiteral("leftOver"), leftOver}};
    if (!package.problem().isEmpty())
        result.insert(QStringLiteral("reason"), package.problem());
    return result;
}

} // namespace

ExitCode runInfo(const Arguments &arguments, Output &output)
{
    const QString file = arguments.value(QStringLiteral("FILE"));
    PackageSummary package;
    QString reason;
    if (!package.read(file, &reason)) {
        output.message(reason);
        return ExitCode::Unknown;
    }
    if (output.form() == Output::Form::Text)
        print(package, output);
    output.json(jsonOf(package));
    return package.problem().isEmpty() ? ExitCode::Yes : ExitCode::No;
}

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "list.h"

#include "commandline/columns.h"
#include "commandline/counted.h"
#include "commandline/output.h"
#include "content/projectrow.h"
#include "directoryargument.h"

#include <QJsonArray>
#include <QJsonObject>

namespace Corvelpro {

namespace {

/// One line of a comment is enough to tell projects apart.
QString firstLine(const QString &comment)
{
    const int end = comment.indexOf(QLatin1Char('\n'));
    return end < 0 ? comment : comment.left(end) + QStringLiteral(" ...");
}

QStringList columnsOf(const ProjectRow &row)
{
    return {printable(row.name),
            row.modified.toString(QStringLiteral("yyyy-MM-dd HH:mm")),
            counted(row.size, "byte", "bytes"),
            counted(row.pictures, "picture", "pictures"),
            counted(row.presets, "preset", "presets"),
            printable(firstLine(row.comment))};
}

void print(const QVector<ProjectRow> &rows, Output &output)
{
    QVector<QStringList> table;
    for (const ProjectRow &row : rows)
        table.append(columnsOf(row));
    for (const QString &line : inColumns(table))
        output.line(line);
}

QJsonObject jsonOf(const ProjectRow &row)
{
    return {
        {QStringLiteral("file"), row.file},
        {QStringLiteral("name"), row.name},
        {QStringLiteral("comment"), row.comment},
        {QStringLiteral("size"), row.size},
        {QStringLiteral("modified"), row.modified.toOffsetFromUtc(row.modified.offsetFromUtc()).toString(Qt::ISODate)},
        {QStringLiteral("pictures"), row.pictures},
        {QStringLiteral("presets"), row.presets}};
}

QJsonArray jsonOf(const QVector<ProjectRow> &rows)
{
    QJsonArray projects;
    for (const ProjectRow &row : rows)
        projects.append(jsonOf(row));
    return projects;
}

} // namespace

ExitCode runList(const Arguments &arguments, Output &output)
{
    const std::optional<QString> directory = directoryArgument(arguments, output);
    if (!directory)
        return ExitCode::Unknown;
    const QVector<ProjectRow> rows = projectRows(*directory);
    if (output.form() == Output::Form::Text)
        print(rows, output);
    else if (output.form() == Output::Form::Json)
        output.json({{QStringLiteral("directory"), *directory}, {QStringLiteral("projects"), jsonOf(rows)}});
    return ExitCode::Yes;
}

} // namespace Corvelpro

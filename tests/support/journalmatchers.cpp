// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "journalmatchers.h"

#include <simulation/journal.h>

namespace TestSupport {

namespace {

QString withMark(const QStringList &sequence, int at)
{
    QStringList lines;
    for (int i = qMax(0, at - 3); i < qMin(sequence.size(), at + 3); ++i)
        lines.append(
            QStringLiteral("  %1 %2 %3")
                .arg(i == at ? QStringLiteral("->") : QStringLiteral("  "), QString::number(i), sequence.at(i)));
    if (at >= sequence.size())
        lines.append(QStringLiteral("  -> (end, %1 in all)").arg(sequence.size()));
    return lines.join(QLatin1Char('\n'));
}

} // namespace

QString sequenceDifference(const QStringList &actual, const QStringList &expected)
{
    if (actual == expected)
        return QString();
    int at = 0;
    while (at < actual.size() && at < expected.size() && actual.at(at) == expected.at(at))
        ++at;
    return QStringLiteral("First difference at %1.\nActual:\n%2\nExpected:\n%3")
        .arg(QString::number(at), withMark(actual, at), withMark(expected, at));
}

QString journalDifference(const QStringList &expected)
{
    return sequenceDifference(Simulation::Journal::instance()->operations(), expected);
}

QString journalOrderDifference(const QStringList &expected)
{
    const QStringList actual = Simulation::Journal::instance()->operations();
    int from = 0;
    for (int i = 0; i < expected.size(); ++i) {
        const int at = actual.indexOf(expected.at(i), from);
        if (at < 0) {
            return QStringLiteral("\"%1\" (number %2 of the expected) is missing after position %3 of:\n  %4")
                .arg(expected.at(i), QString::number(i), QString::number(from), actual.join(QStringLiteral("\n  ")));
        }
        from = at + 1;
    }
    return QString();
}

QStringList mainThreadOperations()
{
    QStringList operations;
    for (const Simulation::JournalEntry &entry : Simulation::Journal::instance()->entries()) {
        if (entry.onMainThread)
            operations.append(entry.operation);
    }
    return operations;
}

QVariantList journalArguments(const QString &operation, const char *argument)
{
    QVariantList values;
    for (const Simulation::JournalEntry &entry : Simulation::Journal::instance()->entries(operation))
        values.append(entry.arguments.value(QLatin1String(argument)));
    return values;
}

} // namespace TestSupport

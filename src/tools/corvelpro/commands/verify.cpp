// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "verify.h"

#include "commandline/arguments.h"
#include "commandline/counted.h"
#include "commandline/output.h"
#include "commandline/progress.h"
#include "content/verification.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QLocale>

#include <algorithm>

namespace Corvelpro {

namespace {

QString placeOf(const Finding &finding)
{
    QString place = finding.entry.isEmpty() ? QString() : finding.entry + QStringLiteral(": ");
    if (finding.offset >= 0)
        place += QStringLiteral("at %1: ").arg(finding.offset);
    return place;
}

QJsonArray jsonOf(const QVector<Finding> &findings)
{
    QJsonArray array;
    for (const Finding &finding : findings) {
        QJsonObject object{{QStringLiteral("text"), finding.text}};
        if (!finding.entry.isEmpty())
            object.insert(QStringLiteral("entry"), finding.entry);
        if (finding.offset >= 0)
            object.insert(QStringLiteral("offset"), finding.offset);
        array.append(object);
    }
    return array;
}

void print(const QString &file, const Verification &verification, Output &output)
{
    const Findings &findings = verification.findings();
    for (const Finding &finding : findings.damage())
        output.line(QStringLiteral("%1: %2%3").arg(file, placeOf(finding), finding.text));
    if (findings.damageCount() > findings.damage().size())
        output.line(QStringLiteral("%1: and %2 more").arg(file).arg(findings.damageCount() - findings.damage().size()));
    for (const Finding &finding : findings.unknown())
        output.line(QStringLiteral("%1: %2not known: %3").arg(file, placeOf(finding), finding.text));
    const QString read = QStringLiteral("%1, %2, %3")
                             .arg(counted(verification.entries(), "entry", "entries"),
                                  counted(verification.pictures(), "picture", "pictures"),
                                  counted(verification.size(), "byte", "bytes"));
    if (findings.damageCount() == 0)
        output.line(QStringLiteral("%1: sound (%2)").arg(file, read));
    else
        output.line(
            QStringLiteral("%1: %2 (%3)").arg(file, counted(findings.damageCount(), "finding", "findings"), read));
}

QJsonObject jsonOf(const QString &file, const Verification &verification)
{
    const Findings &findings = verification.findings();
    return {
        {QStringLiteral("file"), file},
        {QStringLiteral("verdict"), findings.damageCount() == 0 ? QStringLiteral("sound") : QStringLiteral("damaged")},
        {QStringLiteral("findings"), jsonOf(findings.damage())},
        {QStringLiteral("findingCount"), findings.damageCount()},
        {QStringLiteral("notKnown"), jsonOf(findings.unknown())},
        {QStringLiteral("entries"), verification.entries()},
        {QStringLiteral("pictures"), verification.pictures()},
        {QStringLiteral("size"), verification.size()}};
}

} // namespace

ExitCode runVerify(const Arguments &arguments, Output &output)
{
    const QStringList files = arguments.values(QStringLiteral("FILE"));
    qint64 total = 0;
    for (const QString &file : files)
        total += QFileInfo(file).size();
    ExitCode code = ExitCode::Yes;
    QJsonArray results;
    Progress progress(output, total);
    for (const QString &file : files) {
        Verification verification(file);
        QString reason;
        qint64 left = QFileInfo(file).size();
        const auto advance = [&progress, &left](qint64 bytes) {
            progress.advance(bytes);
            left -= bytes;
        };
        const bool isRead = verification.run(advance, &reason);
        // Headers, and what could not be read.
        progress.advance(std::max<qint64>(left, 0));
        if (!isRead) {
            code = ExitCode::Unknown;
            output.message(reason);
            results.append(QJsonObject{{QStringLiteral("file"), file},
                                       {QStringLiteral("verdict"), QStringLiteral("unknown")},
                                       {QStringLiteral("reason"), reason}});
            continue;
        }
        if (verification.findings().damageCount() > 0)
            code = std::max(code, ExitCode::No);
        print(file, verification, output);
        results.append(jsonOf(file, verification));
    }
    output.json({{QStringLiteral("files"), results}});
    return code;
}

} // namespace Corvelpro

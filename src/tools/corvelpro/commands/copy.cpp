// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "copy.h"

#include "commandline/arguments.h"
#include "commandline/interrupt.h"
#include "commandline/outcome.h"
#include "commandline/output.h"
#include "commandline/progress.h"
#include "copying/verifiedcopy.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace Corvelpro {

namespace {

/// Each byte is read twice, once of the copy.
qint64 bytesToRead(const QStringList &files)
{
    qint64 size = 0;
    for (const QString &file : files)
        size += 2 * QFileInfo(file).size();
    return size;
}

struct Copied
{
    QString file;
    QString copy;
    Outcome outcome;
    VerifiedCopy::Proof proof = VerifiedCopy::Proof::Memory;

    QString proofText() const
    {
        return proof == VerifiedCopy::Proof::Disk
                   ? QStringLiteral("copied and read back from the disk")
                   : QStringLiteral("copied and read back, perhaps from memory: this system cannot tell");
    }

    QJsonObject toJson() const
    {
        QJsonObject json{
            {QStringLiteral("file"), file}, {QStringLiteral("copy"), copy}, {QStringLiteral("result"), outcome.word()}};
        if (outcome.isDone())
            json.insert(QStringLiteral("readBackFrom"),
                        proof == VerifiedCopy::Proof::Disk ? QStringLiteral("disk") : QStringLiteral("memory"));
        else
            json.insert(QStringLiteral("reason"), outcome.reason);
        return json;
    }
};

Copied copyTo(const QDir &directory, const QString &file, Progress &progress)
{
    Copied result;
    result.file = file;
    result.copy = directory.filePath(QFileInfo(file).fileName());
    result.outcome = wantPlainFile(file);
    if (!result.outcome.isDone())
        return result;
    VerifiedCopy copy(file, result.copy, [&progress](qint64 bytes) {
        progress.advance(bytes);
        return !Interrupt::came();
    });
    result.outcome = copy.run();
    result.proof = copy.proof();
    return result;
}

} // namespace

ExitCode runCopy(const Arguments &arguments, Output &output)
{
    const Interrupt interrupt;
    const QStringList files = arguments.values(QStringLiteral("FILE"));
    const QString path = arguments.value(QStringLiteral("DIR"));
    // Not QDir::exists(): to that, an empty path is the current directory.
    if (!QFileInfo(path).isDir()) {
        output.message(QStringLiteral("%1: not a directory").arg(path));
        return ExitCode::Unknown;
    }
    const QDir directory(path);
    ExitCode code = ExitCode::Yes;
    QJsonArray results;
    Progress progress(output, bytesToRead(files));
    for (const QString &file : files) {
        const Copied copied = copyTo(directory, file, progress);
        code = std::max(code, copied.outcome.code);
        if (copied.outcome.isDone())
            output.line(QStringLiteral("%1: %2").arg(copied.copy, copied.proofText()));
        else
            output.message(copied.outcome.reason);
        results.append(copied.toJson());
        if (Interrupt::came())
            break;
    }
    progress.hide();
    output.json({{QStringLiteral("files"), results}});
    return code;
}

} // namespace Corvelpro

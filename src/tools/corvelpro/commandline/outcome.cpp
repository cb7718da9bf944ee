// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "outcome.h"

#include "output.h"

#include <QFileInfo>
#include <QJsonObject>

namespace Corvelpro {

QString Outcome::word() const
{
    switch (code) {
    case ExitCode::Yes:
        return QStringLiteral("done");
    case ExitCode::No:
        return QStringLiteral("refused");
    default:
        return QStringLiteral("failed");
    }
}

ExitCode finish(Output &output, const Outcome &outcome, const QString &line, QJsonObject json)
{
    json.insert(QStringLiteral("result"), outcome.word());
    if (outcome.isDone()) {
        output.line(line);
    } else {
        output.message(outcome.reason);
        json.insert(QStringLiteral("reason"), outcome.reason);
    }
    output.json(json);
    return outcome.code;
}

QString whyNoPlainFile(const QString &path)
{
    const QFileInfo file(path);
    if (file.isFile())
        return QString();
    return file.exists() ? QStringLiteral("not a plain file") : QStringLiteral("no such file");
}

Outcome wantPlainFile(const QString &path)
{
    const QString reason = whyNoPlainFile(path);
    return reason.isEmpty() ? Outcome() : Outcome::failed(QStringLiteral("%1: %2").arg(path, reason));
}

Outcome wantFreeName(const QString &path)
{
    const QFileInfo existing(path);
    return existing.exists() || existing.isSymLink() ? Outcome::refused(QStringLiteral("%1: already exists").arg(path))
                                                     : Outcome();
}

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "outcome.h"

#include "output.h"

#include "plainfile.h"

#include <QFile>
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

QString whyUnreadable(const QString &path)
{
    const QFileInfo found(path);
    if (!found.exists())
        return QStringLiteral("no such file");
    if (!found.isFile())
        return QStringLiteral("not a plain file");
    QFile file(path);
    QString reason;
    if (ProjectFileCfg::Internal::openPlainFile(file, true, &reason))
        return QString();
    return QStringLiteral("it cannot be opened: %1").arg(reason.mid(reason.lastIndexOf(path) + path.size() + 2));
}

Outcome wantPlainFile(const QString &path)
{
    const QString reason = whyUnreadable(path);
    return reason.isEmpty() ? Outcome() : Outcome::failed(QStringLiteral("%1: %2").arg(path, reason));
}

Outcome wantFreeName(const QString &path)
{
    const QFileInfo existing(path);
    return existing.exists() || existing.isSymLink() ? Outcome::refused(QStringLiteral("%1: already exists").arg(path))
                                                     : Outcome();
}

} // namespace Corvelpro

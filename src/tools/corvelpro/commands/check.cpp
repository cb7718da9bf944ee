// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "check.h"

#include "commandline/arguments.h"
#include "commandline/outcome.h"
#include "commandline/output.h"

#include "zippackagehandle.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace Corvelpro {

using ProjectFileCfg::Internal::ZipPackageHandle;

namespace {

struct Verdict
{
    QString file;
    ExitCode code;
    QString reason;

    QString word() const
    {
        switch (code) {
        case ExitCode::Yes:
            return QStringLiteral("valid");
        case ExitCode::No:
            return QStringLiteral("not valid");
        default:
            return QStringLiteral("unknown");
        }
    }
};

Verdict verdictOn(const QString &file)
{
    Verdict verdict{file, ExitCode::Yes, whyUnreadable(file)};
    if (!verdict.reason.isEmpty())
        verdict.code = ExitCode::Unknown;
    else if (!ZipPackageHandle::isValidEngineerPacket(file, &verdict.reason))
        verdict.code = ExitCode::No;
    return verdict;
}

} // namespace

ExitCode runCheck(const Arguments &arguments, Output &output)
{
    ExitCode code = ExitCode::Yes;
    QJsonArray files;
    for (const QString &file : arguments.values(QStringLiteral("FILE"))) {
        const Verdict verdict = verdictOn(file);
        code = std::max(code, verdict.code);
        if (verdict.code == ExitCode::Unknown)
            output.message(QStringLiteral("%1: %2").arg(file, verdict.reason));
        else
            output.line(QStringLiteral("%1: %2").arg(file, verdict.word()));
        QJsonObject entry{{QStringLiteral("file"), file}, {QStringLiteral("verdict"), verdict.word()}};
        if (!verdict.reason.isEmpty())
            entry.insert(QStringLiteral("reason"), verdict.reason);
        files.append(entry);
    }
    output.json({{QStringLiteral("files"), files}});
    return code;
}

} // namespace Corvelpro

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

Outcome wantPlainFile(const QString &path)
{
    const QFileInfo file(path);
    if (file.isFile())
        return {};
    return Outcome::failed(QStringLiteral("%1: %2").arg(path, file.exists() ? QStringLiteral("not a plain file")
                                                                            : QStringLiteral("no such file")));
}

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "thumbnail.h"

#include "commandline/arguments.h"
#include "commandline/interrupt.h"
#include "commandline/outcome.h"
#include "making/projectthumbnail.h"

#include <QJsonObject>

namespace Corvelpro {

namespace {

/// The largest size that desktops ask for, and the most common one.
constexpr int maxSide = 1024;
constexpr int defaultSide = 256;

Outcome readSide(const Arguments &arguments, int &side)
{
    const QString option = QStringLiteral("--size");
    if (!arguments.has(option))
        return {};
    side = arguments.value(option).toInt();
    return side >= 1 && side <= maxSide
               ? Outcome()
               : Outcome::failed(QStringLiteral("--size: not a number from 1 to %1").arg(maxSide));
}

} // namespace

ExitCode runThumbnail(const Arguments &arguments, Output &output)
{
    const Interrupt interrupt;
    int side = defaultSide;
    ProjectThumbnail thumbnail(arguments.value(QStringLiteral("FILE")), arguments.value(QStringLiteral("OUT.png")));
    Outcome outcome = readSide(arguments, side);
    if (outcome.isDone())
        outcome = thumbnail.draw(side);

    const QSize size = thumbnail.size();
    QJsonObject json{{QStringLiteral("file"), thumbnail.package()}, {QStringLiteral("thumbnail"), thumbnail.target()}};
    if (outcome.isDone()) {
        json.insert(QStringLiteral("entry"), thumbnail.entry());
        json.insert(QStringLiteral("width"), size.width());
        json.insert(QStringLiteral("height"), size.height());
    }
    return finish(
        output, outcome,
        QStringLiteral("%1: %2, %3 x %4")
            .arg(thumbnail.target(), thumbnail.entry(), QString::number(size.width()), QString::number(size.height())),
        json);
}

} // namespace Corvelpro

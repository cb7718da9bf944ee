// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "directoryargument.h"

#include "commandline/arguments.h"
#include "commandline/output.h"

#include "projectpaths.h"

#include <QDir>
#include <QFileInfo>

namespace Corvelpro {

std::optional<QString> directoryArgument(const Arguments &arguments, Output &output)
{
    const bool isGiven = arguments.has(QStringLiteral("DIR"));
    const QString path =
        isGiven ? arguments.value(QStringLiteral("DIR")) : ProjectFileCfg::Internal::ProjectPaths::projectFilesPath();
    const QFileInfo folder(path);
    if (!isGiven && !folder.exists())
        return path;
    if (folder.isDir() && QDir(path).isReadable())
        return path;
    output.message(QStringLiteral("%1: %2").arg(path, !folder.exists()  ? QStringLiteral("no such folder")
                                                      : !folder.isDir() ? QStringLiteral("not a folder")
                                                                        : QStringLiteral("it cannot be read")));
    return std::nullopt;
}

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectpaths.h"

#include <QStandardPaths>

namespace ProjectFileCfg {
namespace Internal {
namespace ProjectPaths {

QString documentsPath()
{
    return QStandardPaths::standardLocations(QStandardPaths::DocumentsLocation).value(0);
}

QString projectFilesPath()
{
    return documentsPath() +
           QStringLiteral("/%1/%2/ProjectFiles/").arg(QStringLiteral("Velmora"), QStringLiteral("Tarvo"));
}

} // namespace ProjectPaths
} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "writewhole.h"

#include "reason.h"

#include <QFile>

namespace ProjectFileCfg {
namespace Internal {

bool writeWhole(QFile &file, const QByteArray &content, QString *reason)
{
    const bool isWritten = file.write(content) == content.size() && file.flush();
    if (isWritten)
        file.close();
    return (isWritten && file.error() == QFileDevice::NoError) ||
           failBecause(reason, QStringLiteral("cannot write %1: %2").arg(file.fileName(), writeError(file)));
}

} // namespace Internal
} // namespace ProjectFileCfg

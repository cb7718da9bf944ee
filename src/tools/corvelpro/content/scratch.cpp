// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "scratch.h"

#include "namelessfile.h"

#include <QBuffer>
#include <QDir>

namespace Corvelpro {

std::unique_ptr<QIODevice> openScratch(qint64 size, qint64 mostInMemory, QString *reason)
{
    if (size > mostInMemory)
        return ProjectFileCfg::Internal::openNamelessFile(QDir::tempPath(), reason);
    auto buffer = std::make_unique<QBuffer>();
    buffer->buffer().reserve(int(size));
    buffer->open(QIODevice::ReadWrite);
    return buffer;
}

} // namespace Corvelpro

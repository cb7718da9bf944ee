// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "content.h"

#include "entrysource.h"

#include "content/scratch.h"

#include "reason.h"

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;

std::unique_ptr<QIODevice> contentOf(EntrySource &source, const QString &file, QString *reason)
{
    constexpr qint64 maxInMemory = 32 * 1024 * 1024;
    std::unique_ptr<QIODevice> content = openScratch(source.size(file), maxInMemory, reason);
    if (!content || !source.read(file, *content, reason))
        return nullptr;
    if (content->seek(0))
        return content;
    failBecause(reason, QStringLiteral("cannot store %1: %2").arg(file, content->errorString()));
    return nullptr;
}

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "streamcopy.h"

#include "dropbehind.h"
#include "reason.h"

#include <QByteArray>
#include <QFile>

namespace ProjectFileCfg {
namespace Internal {

bool copyStream(QIODevice &source, QIODevice &destination, qint64 limit, qint64 *copied,
                const std::function<void(const char *data, qint64 size)> &look, QString *reason)
{
    constexpr qint64 largestBlock = 256 * 1024;
    // One byte beyond the limit tells that there is more. Small blocks for small entries, of which there may be
    // thousands.
    QByteArray block(int(qBound<qint64>(0, limit, largestBlock - 1) + 1), Qt::Uninitialized);
    qint64 count = 0;
    *copied = 0;
    while ((count = source.read(block.data(), block.size())) > 0) {
        *copied += count;
        if (look)
            look(block.constData(), count);
        if (*copied > limit)
            return failBecause(reason, QStringLiteral("there are more than %1 bytes").arg(limit));
        if (destination.write(block.constData(), count) != count)
            return failBecause(reason, QStringLiteral("cannot write: %1").arg(writeError(destination)));
    }
    return count == 0 || failBecause(reason, QStringLiteral("cannot read: %1").arg(source.errorString()));
}

bool copyFile(QFile &source, QIODevice &destination, qint64 limit, qint64 *copied,
              const std::function<void(const char *data, qint64 size)> &look, QString *reason)
{
    DropBehind dropBehind(source.handle());
    const auto pass = [&](const char *data, qint64 size) {
        dropBehind.advance(source.pos());
        if (look)
            look(data, size);
    };
    return copyStream(source, destination, limit, copied, pass, reason);
}

} // namespace Internal
} // namespace ProjectFileCfg

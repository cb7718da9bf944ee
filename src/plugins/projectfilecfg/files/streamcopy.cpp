// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "streamcopy.h"

#include "dropbehind.h"
#include "readahead.h"
#include "reason.h"

#include <QByteArray>
#include <QFile>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// In bytes. Below this, starting a thread costs more than it saves.
constexpr qint64 leastSizeToReadAhead = 4 * 1024 * 1024;

using NextPortion = std::function<ReadAhead::Portion()>;
using Look = std::function<void(const char *data, qint64 size)>;

bool copyPortions(const NextPortion &next, const QIODevice &source, QIODevice &destination, qint64 limit,
                  qint64 *copied, const Look &look, QString *reason)
{
    *copied = 0;
    ReadAhead::Portion portion = next();
    for (; portion.nSize > 0; portion = next()) {
        *copied += portion.nSize;
        if (look)
            look(portion.pData, portion.nSize);
        if (*copied > limit)
            return failBecause(reason, QStringLiteral("there are more than %1 bytes").arg(limit));
        if (destination.write(portion.pData, portion.nSize) != portion.nSize)
            return failBecause(reason, QStringLiteral("cannot write: %1").arg(writeError(destination)));
    }
    return portion.nSize == 0 || failBecause(reason, QStringLiteral("cannot read: %1").arg(source.errorString()));
}

} // namespace

bool copyStream(QIODevice &source, QIODevice &destination, qint64 limit, qint64 *copied, const Look &look,
                QString *reason)
{
    constexpr qint64 largestBlock = 256 * 1024;
    // One byte beyond the limit tells that there is more. Small blocks for small entries, of which there may be
    // thousands.
    QByteArray block(int(qBound<qint64>(0, limit, largestBlock - 1) + 1), Qt::Uninitialized);
    const auto next = [&] { return ReadAhead::Portion{block.constData(), source.read(block.data(), block.size())}; };
    return copyPortions(next, source, destination, limit, copied, look, reason);
}

bool copyFile(QFile &source, QIODevice &destination, qint64 limit, qint64 *copied, const Look &look, QString *reason)
{
    if (source.size() >= leastSizeToReadAhead) {
        ReadAhead readAhead(source);
        return copyPortions([&] { return readAhead.next(); }, source, destination, limit, copied, look, reason);
    }
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

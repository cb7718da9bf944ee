#include "streamcopy.h"

#include <QByteArray>
#include <QIODevice>

namespace ProjectFileCfg {
namespace Internal {

bool copyStream(QIODevice &source, QIODevice &destination, qint64 limit, qint64 *copied,
                const std::function<void(const char *data, qint64 size)> &look)
{
    constexpr qint64 blockSize = 256 * 1024;
    QByteArray block(int(blockSize), Qt::Uninitialized);
    qint64 count = 0;
    *copied = 0;
    while ((count = source.read(block.data(), block.size())) > 0) {
        *copied += count;
        if (look)
            look(block.constData(), count);
        if (*copied > limit || destination.write(block.constData(), count) != count)
            return false;
    }
    return count == 0;
}

} // namespace Internal
} // namespace ProjectFileCfg

#include "packagesnapshot.h"

#include "durablefile.h"
#include "namelessfile.h"
#include "plainfile.h"
#include "streamcopy.h"

#include <limits>

namespace ProjectFileCfg {
namespace Internal {

PackageSnapshot::Outcome PackageSnapshot::take(const QString &packetPath, const QStringList &folders)
{
    QFile package(packetPath);
    if (!openPlainFile(package))
        return Unreadable;
    for (const QString &folder : folders) {
        qint64 copied = 0;
        m_copy = openNamelessFile(folder);
        if (!m_copy || !package.seek(0))
            continue;
        if (DurableFile::shareContent(package.handle(), m_copy->handle()))
            return Taken;
        if (copyStream(package, *m_copy, std::numeric_limits<qint64>::max(), &copied) && m_copy->flush())
            return Taken;
        m_copy.reset();
        if (package.error() != QFileDevice::NoError)
            return Unreadable;
    }
    return NoRoom;
}

std::unique_ptr<QFile> PackageSnapshot::release()
{
    return std::move(m_copy);
}

} // namespace Internal
} // namespace ProjectFileCfg

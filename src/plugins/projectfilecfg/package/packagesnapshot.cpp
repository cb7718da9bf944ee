#include "packagesnapshot.h"

#include "durablefile.h"
#include "namelessfile.h"
#include "plainfile.h"
#include "reason.h"
#include "streamcopy.h"

#include <limits>

namespace ProjectFileCfg {
namespace Internal {

PackageSnapshot::Outcome PackageSnapshot::take(const QString &packetPath, const QStringList &folders, QString *reason)
{
    QFile package(packetPath);
    if (!openPlainFile(package, false, reason))
        return Unreadable;
    const DurableFile::ReadLock lock(package.handle());
    QString error;
    for (const QString &folder : folders) {
        qint64 copied = 0;
        m_copy = openNamelessFile(folder, &error);
        if (!m_copy || !package.seek(0))
            continue;
        if (DurableFile::shareContent(package.handle(), m_copy->handle()))
            return Taken;
        if (copyStream(package, *m_copy, std::numeric_limits<qint64>::max(), &copied, nullptr, &error) &&
            m_copy->flush())
            return Taken;
        m_copy.reset();
        if (package.error() != QFileDevice::NoError) {
            failBecause(reason, QStringLiteral("cannot read %1: %2").arg(packetPath, package.errorString()));
            return Unreadable;
        }
        error = QStringLiteral("cannot copy it to %1: %2").arg(folder, error);
    }
    failBecause(reason, QStringLiteral("no room for a copy of %1: %2").arg(packetPath, error));
    return NoRoom;
}

std::unique_ptr<QFile> PackageSnapshot::release()
{
    return std::move(m_copy);
}

} // namespace Internal
} // namespace ProjectFileCfg

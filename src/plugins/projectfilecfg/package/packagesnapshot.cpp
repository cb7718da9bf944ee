// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagesnapshot.h"

#include "filesystem.h"
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
        return Outcome::Unreadable;
    const FileSystem::ReadLock lock(package.handle());
    QString error;
    for (const QString &folder : folders) {
        qint64 copied = 0;
        m_pCopy = openNamelessFile(folder, &error);
        if (!m_pCopy || !package.seek(0))
            continue;
        if (FileSystem::shareContent(package.handle(), m_pCopy->handle()))
            return Outcome::Taken;
        if (copyFile(package, *m_pCopy, std::numeric_limits<qint64>::max(), &copied, nullptr, &error) &&
            m_pCopy->flush())
            return Outcome::Taken;
        m_pCopy.reset();
        if (package.error() != QFileDevice::NoError) {
            failBecause(reason, QStringLiteral("cannot read %1: %2").arg(packetPath, package.errorString()));
            return Outcome::Unreadable;
        }
        error = QStringLiteral("cannot copy it to %1: %2").arg(folder, error);
    }
    failBecause(reason, QStringLiteral("no room for a copy of %1: %2").arg(packetPath, error));
    return Outcome::NoRoom;
}

std::unique_ptr<QFile> PackageSnapshot::release()
{
    return std::move(m_pCopy);
}

} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "verifiedcopy.h"

#include "digestingdevice.h"
#include "dropfrommemory.h"

#include "filesystem.h"
#include "plainfile.h"
#include "reason.h"
#include "replacingfile.h"
#include "streamcopy.h"
#include "zippackagehandle.h"

#include <limits>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;

namespace {

constexpr qint64 unlimited = std::numeric_limits<qint64>::max();

} // namespace

VerifiedCopy::VerifiedCopy(const QString &source, const QString &target, const std::function<bool(qint64 bytes)> &step)
    : m_source(source)
    , m_target(target)
    , m_step(step)
{}

Outcome VerifiedCopy::run()
{
    QString reason;
    Outcome name = wantFreeName(m_target);
    if (!name.isDone())
        return name;
    if (!ZipPackageHandle::isValidEngineerPacket(m_source, &reason))
        return Outcome::refused(QStringLiteral("not a valid project file: %1").arg(reason));

    ReplacingFile copy(m_target, ReplacingFile::Durability::FlushedToDisk);
    if (!write(copy, &reason) || !readBack(copy.path(), &reason))
        return Outcome::failed(QStringLiteral("cannot copy %1 to %2: %3").arg(m_source, m_target, reason));
    // The original may have been replaced after it was found valid.
    if (!ZipPackageHandle::isValidEngineerPacket(copy.path(), &reason))
        return Outcome::refused(QStringLiteral("%1 changed while it was copied").arg(m_source));
    return copy.commit(ReplacingFile::ExistingTarget::Kept, &reason) ? Outcome() : Outcome::failed(reason);
}

// Not ReplacingFile::createFrom(): on some file systems its copy shares the blocks of the original.
bool VerifiedCopy::write(ReplacingFile &copy, QString *reason)
{
    QFile source(m_source);
    if (!openPlainFile(source, true, reason) || !copy.create(ReplacingFile::MissingFolders::NotMade, reason))
        return false;
    const FileSystem::ReadLock lock(source.handle());
    DigestingDevice destination(&copy.file(), m_step);
    qint64 copied = 0;
    if (!copyFile(source, destination, unlimited, &copied, nullptr, reason))
        return false;
    m_digest = destination.digest();
    return (copy.file().flush() && FileSystem::flush(copy.file().handle())) ||
           failBecause(reason, QStringLiteral("cannot flush it: %1").arg(systemError()));
}

bool VerifiedCopy::readBack(const QString &path, QString *reason)
{
    QFile copy(path);
    if (!openPlainFile(copy, true, reason))
        return false;
    m_proof = dropFromMemory(copy.handle(), copy.size()) ? Proof::Disk : Proof::Memory;
    DigestingDevice digested(nullptr, m_step);
    qint64 copied = 0;
    if (!copyFile(copy, digested, unlimited, &copied, nullptr, reason))
        return false;
    return digested.digest() == m_digest ||
           failBecause(reason,
                       QStringLiteral("what was written does not read back: the disk or its connection is bad"));
}

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "replacingfile.h"

#include "filesystem.h"
#include "plainfile.h"
#include "reason.h"
#include "streamcopy.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUuid>

#include <algorithm>
#include <limits>

namespace ProjectFileCfg {
namespace Internal {

namespace {

QString fragmentName()
{
    // Not the target's name with a suffix: that could be too long for a file name.
    const QString id = QUuid::createUuid().toString().remove(QLatin1Char('{')).remove(QLatin1Char('}'));
    return QLatin1Char('.') + id + QStringLiteral(".part");
}

} // namespace

QString ReplacingFile::resolvedTarget(const QString &targetPath)
{
    const QFileInfo target(targetPath);
    const QString linkedPath = target.isSymLink() ? target.canonicalFilePath() : QString();
    return linkedPath.isEmpty() ? target.absoluteFilePath() : linkedPath;
}

ReplacingFile::ReplacingFile(const QString &targetPath, Durability durability, FlushBehind *flushBehind)
    : m_strTargetPath(resolvedTarget(targetPath))
    , m_strFolderPath(QFileInfo(m_strTargetPath).absolutePath())
    , m_durability(durability)
    , m_pFlushBehind(durability == Durability::FlushedToDisk ? &m_ownFlushBehind : flushBehind)
    , m_fragment(m_pFlushBehind, m_strFolderPath + QLatin1Char('/') + fragmentName())
{}

ReplacingFile::~ReplacingFile()
{
    if (!m_bCommitted) {
        m_fragment.close();
        m_fragment.remove();
    }
}

bool ReplacingFile::create(MissingFolders folders, QString *reason)
{
    // Without checking first: the folder nearly always exists, and a package has thousands of entries.
    if (openFragment(reason))
        return true;
    if (folders == MissingFolders::NotMade)
        return false;
    if (m_durability == Durability::FlushedToDisk)
        return FileSystem::makeFolder(m_strFolderPath, reason) && openFragment(reason);
    if (!QDir().mkpath(m_strFolderPath))
        return failBecause(reason,
                           QStringLiteral("cannot create the folder %1: %2").arg(m_strFolderPath, systemError()));
    return openFragment(reason);
}

bool ReplacingFile::openFragment(QString *reason)
{
    if (m_durability == Durability::FlushedToDisk)
        removeStaleFragments(m_strFolderPath);
    return m_fragment.open(QIODevice::ReadWrite | QIODevice::Truncate) ||
           failBecause(
               reason,
               QStringLiteral("cannot create a file beside %1: %2").arg(m_strTargetPath, m_fragment.errorString()));
}

bool ReplacingFile::createFrom(const QString &sourcePath, QString *reason)
{
    QFile source(sourcePath);
    qint64 copied = 0;
    if (!openPlainFile(source, true, reason) || !openFragment(reason))
        return false;
    QString error;
    if (!FileSystem::shareContent(source.handle(), m_fragment.handle()) &&
        !copyFile(source, m_fragment, std::numeric_limits<qint64>::max(), &copied, nullptr, &error))
        return failBecause(reason, QStringLiteral("cannot copy %1 to %2: %3").arg(sourcePath, m_strTargetPath, error));
    // QFile::permissions() adds flags for the current user, which are not stored in the file. A failure does not
    // matter: a stick's file system may have no permissions.
    constexpr QFile::Permissions thisUser = QFile::ReadUser | QFile::WriteUser | QFile::ExeUser;
    m_fragment.setPermissions(source.permissions() & ~thisUser);
    return (m_fragment.flush() && m_fragment.seek(0)) || cannotWrite(reason);
}

bool ReplacingFile::cannotWrite(QString *reason) const
{
    const QString refusal = m_fragment.refusal();
    return failBecause(reason, QStringLiteral("cannot write %1: %2")
                                   .arg(m_strTargetPath, refusal.isEmpty() ? writeError(m_fragment) : refusal));
}

bool ReplacingFile::cannotFlush(QString *reason) const
{
    return failBecause(reason, QStringLiteral("cannot flush %1: %2").arg(m_strTargetPath, systemError()));
}

bool ReplacingFile::commit(ExistingTarget existing, QString *reason)
{
    const auto rename = existing == ExistingTarget::Kept ? FileSystem::renameToFreeName : FileSystem::replace;
    return finish([&] { return rename(path(), m_strTargetPath, reason); }, reason);
}

bool ReplacingFile::commitInPlaceOf(const FileSystem::FileIdentity &previous, QString *reason)
{
    const FileSystem::FileIdentity own(path());
    const bool committed =
        finish([&] { return FileSystem::replaceSame(path(), m_strTargetPath, previous, reason); }, reason);
    // The replaced file is at path() now. If it could not be exchanged back, it may be another program's only copy:
    // the destructor must not remove it.
    if (m_bCommitted)
        m_fragment.remove();
    else
        m_bCommitted = !own.isAt(path());
    return committed;
}

// docs/package-format.md lists the state on disk after a crash between any two of these steps.
bool ReplacingFile::finish(const std::function<bool()> &rename, QString *reason)
{
    if (!m_fragment.flush() || m_fragment.error() != QFileDevice::NoError || !m_fragment.refusal().isEmpty())
        return cannotWrite(reason);
    if (m_durability == Durability::FlushedToDisk && !FileSystem::flush(m_fragment.handle()))
        return cannotFlush(reason);
    if (m_durability == Durability::NotFlushed && m_pFlushBehind && !m_pFlushBehind->finish(m_fragment.handle()))
        return cannotFlush(reason);
    m_fragment.close();
    if (m_fragment.error() != QFileDevice::NoError)
        return cannotWrite(reason);

    if (m_durability == Durability::NotFlushed) {
        m_bCommitted = rename();
        return m_bCommitted;
    }
    const FileSystem::Folder folder(m_strFolderPath, reason);
    m_bCommitted = folder.isOpen() && rename();
    return m_bCommitted && folder.flush(reason);
}

bool ReplacingFile::isFragment(const QString &fileName)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\A\\.[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\.part\\z"));
    return pattern.match(fileName).hasMatch();
}

bool ReplacingFile::isStale(const QFileInfo &fragment)
{
    return fragment.lastModified() < QDateTime::currentDateTime().addDays(-1);
}

void ReplacingFile::removeStaleFragments(const QString &folderPath)
{
    const QFileInfoList candidates =
        QDir(folderPath)
            .entryInfoList({QStringLiteral(".*.part")}, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDir::Unsorted);
    for (const QFileInfo &candidate : candidates) {
        if (isFragment(candidate.fileName()) && isStale(candidate))
            QFile::remove(candidate.filePath());
    }
}

bool copyToFreeName(const QString &sourcePath, const QString &targetPath, QString *reason)
{
    // commit() checks again; checking here saves a useless copy.
    if (QFileInfo::exists(targetPath))
        return failBecause(reason, QStringLiteral("cannot copy %1: %2 already exists").arg(sourcePath, targetPath));
    ReplacingFile copy(targetPath, ReplacingFile::Durability::FlushedToDisk);
    return copy.createFrom(sourcePath, reason) && copy.commit(ReplacingFile::ExistingTarget::Kept, reason);
}

} // namespace Internal
} // namespace ProjectFileCfg

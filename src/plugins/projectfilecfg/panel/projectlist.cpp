// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectlist.h"

#include "filesystem.h"
#include "inplacefile.h"
#include "projectlisting.h"
#include "replacingfile.h"

#include <QDateTime>
#include <QDebug>
#include <QFileInfo>
#include <QHash>
#include <QMutexLocker>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {

QList<EngineerPacketInfo> ProjectList::snapshot()
{
    const QMutexLocker locker(&mutex);
    return listProjects;
}

QStringList ProjectList::paths()
{
    const QList<EngineerPacketInfo> current = snapshot();
    QStringList paths;
    for (const EngineerPacketInfo &info : current)
        paths.append(info.strFilePath);
    return paths;
}

QList<EngineerPacketInfo>::iterator ProjectList::entryOf(const QString &path)
{
    return std::find_if(listProjects.begin(), listProjects.end(),
                        [&path](const EngineerPacketInfo &info) { return info.strFilePath == path; });
}

std::optional<EngineerPacketInfo> ProjectList::find(const QString &path)
{
    const QMutexLocker locker(&mutex);
    const auto entry = entryOf(path);
    return entry == listProjects.end() ? std::nullopt : std::make_optional(*entry);
}

bool ProjectList::remove(const QString &path)
{
    const QMutexLocker locker(&mutex);
    const auto isThere = [&path](const EngineerPacketInfo &info) { return info.strFilePath == path; };
    listProjects.erase(std::remove_if(listProjects.begin(), listProjects.end(), isThere), listProjects.end());
    return supersedeScans();
}

bool ProjectList::rename(const QString &path, const EngineerPacketInfo &edited)
{
    const QMutexLocker locker(&mutex);
    const auto entry = entryOf(path);
    if (entry != listProjects.end())
        *entry = edited;
    return supersedeScans();
}

bool ProjectList::clear()
{
    const QMutexLocker locker(&mutex);
    for (const EngineerPacketInfo &info : qAsConst(listProjects))
        QFile::remove(info.strFilePath);
    listProjects.clear();
    return supersedeScans();
}

bool ProjectList::supersedeScans()
{
    const bool scansRunning = m_nLastApplied != m_nLastStarted;
    m_nLastApplied = ++m_nLastStarted;
    return scansRunning;
}

quint64 ProjectList::beginScan()
{
    return ++m_nLastStarted;
}

ProjectList::Hold::Hold(ProjectList &list)
    : m_list(list)
{
    m_list.mutex.lock();
    const QMutexLocker locker(&m_list.m_holdMutex);
    ++m_list.m_nHolds;
}

ProjectList::Hold::~Hold()
{
    {
        const QMutexLocker locker(&m_list.m_holdMutex);
        --m_list.m_nHolds;
    }
    m_list.mutex.unlock();
}

bool ProjectList::isHeldAgainstScan()
{
    const QMutexLocker locker(&m_holdMutex);
    m_bScanMissed = m_bScanMissed || m_nHolds > 0;
    return m_nHolds > 0;
}

bool ProjectList::takeMissedScan()
{
    const QMutexLocker locker(&m_holdMutex);
    const bool isDue = m_bScanMissed && m_nHolds == 0;
    m_bScanMissed = m_bScanMissed && !isDue;
    return isDue;
}

/// True after locking the mutex; false if the list is held.
bool ProjectList::lockForScan()
{
    // Without a Hold, the mutex is never locked for long.
    constexpr int shortWhile = 10;
    while (!mutex.tryLock(shortWhile)) {
        if (isHeldAgainstScan())
            return false;
    }
    return true;
}

/// Does nothing if the list is held, or if a scan that started later has already replaced it.
void ProjectList::replace(const QList<EngineerPacketInfo> &found, quint64 scanNumber)
{
    if (!lockForScan())
        return;
    if (scanNumber >= m_nLastApplied) {
        m_nLastApplied = scanNumber;
        listProjects = found;
    }
    mutex.unlock();
}

int ProjectList::nextLook(qint64 changed, qint64 now)
{
    constexpr qint64 second = 1000;
    constexpr qint64 rest = 10 * second;
    const qint64 age = now - changed;
    // Unchanged for long enough; or far in the future, so the clocks differ and the time means nothing.
    if (age >= rest || age <= -rest)
        return -1;
    return int(age < second ? second - age : second);
}

/// An empty reason means that the file is listed, so that any later one is logged again.
void ProjectList::logOnce(const QString &path, const QString &reason)
{
    {
        const QMutexLocker locker(&m_holdMutex);
        if (m_refused.value(path) == reason)
            return;
        m_refused.insert(path, reason);
    }
    if (!reason.isEmpty())
        qDebug().noquote() << "Not listed:" << reason;
}

int ProjectList::scanProjectFiles(const QString &dirPath, quint64 scanNumber)
{
    QString noFolder;
    const bool hasFolder = FileSystem::makeFolder(dirPath, &noFolder);
    logOnce(dirPath, noFolder);
    if (!hasFolder)
        return -1;
    ReplacingFile::removeStaleFragments(dirPath);
    InPlaceFile::recover(dirPath);

    QHash<QString, EngineerPacketInfo> known;
    if (!lockForScan())
        return -1;
    for (const EngineerPacketInfo &info : qAsConst(listProjects)) {
        if (!known.contains(info.strFilePath))
            known.insert(info.strFilePath, info);
    }
    mutex.unlock();

    int next = -1;
    QList<EngineerPacketInfo> found;
    for (const QFileInfo &entry : ProjectListing::packagesIn(dirPath)) {
        // If the target of a link has an undo record, that is beside the target.
        if (entry.isSymLink())
            InPlaceFile::recoverFile(entry.filePath());
        EngineerPacketInfo info = known.value(entry.filePath());
        if (info.strFilePath.isEmpty()) {
            info.strFilePath = entry.filePath();
            QString reason;
            const bool isPackage = ZipPackageHandle::getZipFileEngineerInfo(info, &reason);
            logOnce(entry.filePath(), reason);
            if (!isPackage) {
                const int look = entry.isFile()
                                     ? nextLook(QFileInfo(entry.filePath()).lastModified().toMSecsSinceEpoch(),
                                                QDateTime::currentMSecsSinceEpoch())
                                     : -1;
                next = next < 0 || look < 0 ? std::max(next, look) : std::min(next, look);
                continue;
            }
        }
        info.strProjectName = ProjectListing::nameOf(entry);
        found.append(info);
    }

    replace(found, scanNumber);
    return next;
}

} // namespace Internal
} // namespace ProjectFileCfg

#include "projectlist.h"

#include "durablefile.h"
#include "inplacefile.h"
#include "projectfilefacts.h"
#include "replacingfile.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QMutexLocker>
#include <QVector>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {

/// The newest first, those of one time by name: QDir::Time, which takes most of a scan, since it makes two local times
/// for each comparison.
static QFileInfoList packagesIn(const QString &dirPath)
{
    struct Package
    {
        qint64 modified;
        QString name;
        QFileInfo file;
    };
    QVector<Package> packages;
    const QFileInfoList entries = QDir(dirPath).entryInfoList({QLatin1Char('*') + ProjectFileFacts::packageExtension},
                                                              QDir::Dirs | QDir::Files | QDir::Drives, QDir::Unsorted);
    for (const QFileInfo &entry : entries)
        packages.append({entry.lastModified().toMSecsSinceEpoch(), entry.fileName(), entry});
    std::sort(packages.begin(), packages.end(), [](const Package &one, const Package &other) {
        return one.modified == other.modified ? one.name < other.name : one.modified > other.modified;
    });
    QFileInfoList sorted;
    for (const Package &package : qAsConst(packages))
        sorted.append(package.file);
    return sorted;
}

quint64 ProjectList::beginScan()
{
    return ++m_lastStarted;
}

bool ProjectList::supersedeScans()
{
    const QMutexLocker locker(&mutex);
    const bool scansRunning = m_lastApplied != m_lastStarted;
    m_lastApplied = ++m_lastStarted;
    return scansRunning;
}

ProjectList::Hold::Hold(ProjectList &list)
    : m_list(list)
{
    m_list.mutex.lock();
    const QMutexLocker locker(&m_list.m_holdMutex);
    ++m_list.m_holds;
}

ProjectList::Hold::~Hold()
{
    {
        const QMutexLocker locker(&m_list.m_holdMutex);
        --m_list.m_holds;
    }
    m_list.mutex.unlock();
}

bool ProjectList::isHeldAgainstScan()
{
    const QMutexLocker locker(&m_holdMutex);
    m_isScanMissed = m_isScanMissed || m_holds > 0;
    return m_holds > 0;
}

bool ProjectList::takeMissedScan()
{
    const QMutexLocker locker(&m_holdMutex);
    const bool isDue = m_isScanMissed && m_holds == 0;
    m_isScanMissed = m_isScanMissed && !isDue;
    return isDue;
}

/// True with the mutex locked; false when the list is held.
bool ProjectList::lockForScan()
{
    // Who locks it without holding the list is through with it soon.
    constexpr int shortWhile = 10;
    while (!mutex.tryLock(shortWhile)) {
        if (isHeldAgainstScan())
            return false;
    }
    return true;
}

int ProjectList::nextLook(qint64 changed, qint64 now)
{
    constexpr qint64 second = 1000;
    constexpr qint64 rest = 10 * second;
    const qint64 age = now - changed;
    // Older or newer by far: nobody writes there, or clocks differ and its time says nothing.
    if (age >= rest || age <= -rest)
        return -1;
    return int(age < second ? second - age : second);
}

int ProjectList::scanProjectFiles(const QString &dirPath, quint64 scanNumber)
{
    if (!DurableFile::makeFolder(dirPath))
        return -1;
    ReplacingFile::removeStaleFragments(dirPath);
    InPlaceFile::recover(dirPath);

    QHash<QString, EngineerPacketInfo> known;
    if (!lockForScan())
        return -1;
    for (const EngineerPacketInfo &info : qAsConst(projects)) {
        if (!known.contains(info.strFilePath))
            known.insert(info.strFilePath, info);
    }
    mutex.unlock();

    int next = -1;
    QList<EngineerPacketInfo> found;
    for (const QFileInfo &entry : packagesIn(dirPath)) {
        // What a link leads to has its undo record elsewhere.
        if (entry.isSymLink())
            InPlaceFile::recoverFile(entry.filePath());
        EngineerPacketInfo info = known.value(entry.filePath());
        if (info.strFilePath.isEmpty()) {
            info.strFilePath = entry.filePath();
            if (!ZipPackageHandle::getZipFileEngineerInfo(info)) {
                const int look = entry.isFile()
                                     ? nextLook(QFileInfo(entry.filePath()).lastModified().toMSecsSinceEpoch(),
                                                QDateTime::currentMSecsSinceEpoch())
                                     : -1;
                next = next < 0 || look < 0 ? std::max(next, look) : std::min(next, look);
                continue;
            }
        }
        info.strProjectName = entry.baseName();
        found.append(info);
    }

    if (!lockForScan())
        return next;
    if (scanNumber >= m_lastApplied) {
        m_lastApplied = scanNumber;
        projects = found;
    }
    mutex.unlock();
    return next;
}

} // namespace Internal
} // namespace ProjectFileCfg

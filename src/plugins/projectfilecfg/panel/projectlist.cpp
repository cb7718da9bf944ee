#include "projectlist.h"

#include "durablefile.h"
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

void ProjectList::scanProjectFiles(const QString &dirPath, quint64 scanNumber)
{
    if (!DurableFile::makeFolder(dirPath))
        return;
    ReplacingFile::removeStaleFragments(dirPath);

    QHash<QString, EngineerPacketInfo> known;
    {
        const QMutexLocker locker(&mutex);
        for (const EngineerPacketInfo &info : qAsConst(projects)) {
            if (!known.contains(info.strFilePath))
                known.insert(info.strFilePath, info);
        }
    }

    QList<EngineerPacketInfo> found;
    for (const QFileInfo &entry : packagesIn(dirPath)) {
        EngineerPacketInfo info = known.value(entry.filePath());
        if (info.strFilePath.isEmpty()) {
            info.strFilePath = entry.filePath();
            if (!ZipPackageHandle::getZipFileEngineerInfo(info))
                continue;
        }
        info.strProjectName = entry.baseName();
        found.append(info);
    }

    const QMutexLocker locker(&mutex);
    if (scanNumber < m_lastApplied)
        return;
    m_lastApplied = scanNumber;
    projects = found;
}

} // namespace Internal
} // namespace ProjectFileCfg

#include "projectlist.h"

#include "durablefile.h"
#include "projectfilefacts.h"
#include "replacingfile.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QMutexLocker>

namespace ProjectFileCfg {
namespace Internal {

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
    const QFileInfoList entries = QDir(dirPath).entryInfoList({QLatin1Char('*') + ProjectFileFacts::packageExtension},
                                                              QDir::Dirs | QDir::Files | QDir::Drives, QDir::Time);
    for (const QFileInfo &entry : entries) {
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

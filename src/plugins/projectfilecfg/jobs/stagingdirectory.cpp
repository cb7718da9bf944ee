// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "stagingdirectory.h"

#include "packagelayout.h"

#include <host/core.h>
#include <host/devices.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

using Model::Materail;

namespace ProjectFileCfg {
namespace Internal {

namespace {

void emptyFolder(const QString &path)
{
    QDir folder(path);
    if (!folder.exists()) {
        folder.mkpath(QStringLiteral("."));
        return;
    }
    const QFileInfoList entries =
        folder.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (entry.isDir() && !entry.isSymLink())
            QDir(entry.filePath()).removeRecursively();
        else
            QFile::remove(entry.filePath());
    }
}

} // namespace

StagingDirectory::StagingDirectory(const QString &ip)
    : m_strPath(Core::ICore::deviceConfigFilePath() + QDir::separator() + ip)
{}

QString StagingDirectory::presetPath() const
{
    return presetPath(PackageLayout::presetFolder + QLatin1Char('/'));
}

QString StagingDirectory::presetPath(const QString &entry) const
{
    return m_strPath + QDir::separator() + entry;
}

QString StagingDirectory::picturePath(const QString &entry) const
{
    // Keep the double separator, which preset paths do not have: logs have always contained these paths.
    return m_strPath + QDir::separator() + QLatin1Char('/') + entry;
}

QString StagingDirectory::pictureEntry(const QString &path) const
{
    return path.mid(picturePath(QString()).size());
}

void StagingDirectory::clear() const
{
    emptyFolder(picturePath(PackageLayout::backgroundFolder));
    emptyFolder(picturePath(PackageLayout::logoFolder));
    emptyFolder(picturePath(PackageLayout::presetFolder));
}

bool StagingDirectory::renewPresetFolder() const
{
    QDir(presetPath()).removeRecursively();
    return QDir().mkpath(presetPath());
}

bool StagingDirectory::hasPicturesOf(const Model::Device &device) const
{
    const auto haveFiles = [this](const std::vector<Talvik::weak_refrence<Materail>> &materails,
                                  QString (*entryOf)(int keyNo)) {
        return std::all_of(materails.begin(), materails.end(), [&](const Talvik::weak_refrence<Materail> &reference) {
            const std::shared_ptr<Materail> materail = reference.lock();
            return !materail || QFile::exists(picturePath(entryOf(materail->getKeyNo())));
        });
    };
    return haveFiles(device.getBKGs(), PackageLayout::backgroundEntry) &&
           haveFiles(device.getLogos(), PackageLayout::logoEntry);
}

StagedFiles::StagedFiles(const StagingDirectory &directory)
    : m_directory(directory)
{
    m_directory.clear();
}

StagedFiles::~StagedFiles()
{
    m_directory.clear();
}

} // namespace Internal
} // namespace ProjectFileCfg

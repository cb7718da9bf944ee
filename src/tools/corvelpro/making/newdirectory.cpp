// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "newdirectory.h"

#include "reason.h"
#include "replacingfile.h"

#include <QDir>
#include <QFileInfo>
#include <QUuid>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;

namespace {

QString hiddenSibling(const QString &path)
{
    return QStringLiteral("%1/.%2.part")
        .arg(QFileInfo(path).absolutePath(), QUuid::createUuid().toString(QUuid::WithoutBraces));
}

} // namespace

NewDirectory::NewDirectory(const QString &path)
    : m_path(QDir::cleanPath(QFileInfo(path).absoluteFilePath()))
    , m_hiddenPath(hiddenSibling(m_path))
{}

NewDirectory::~NewDirectory()
{
    if (m_isCreated)
        QDir(m_hiddenPath).removeRecursively();
}

bool NewDirectory::create(QString *reason)
{
    removeStale();
    m_isCreated = QDir().mkdir(m_hiddenPath);
    if (!m_isCreated)
        return failBecause(reason,
                           QStringLiteral("cannot create a directory beside %1: %2").arg(m_path, systemError()));
    m_lock = std::make_unique<FileSystem::Folder>(m_hiddenPath, reason);
    // False only while a doctor tries the lock: the directory is young, so it is safe without one.
    m_lock->lock();
    return m_lock->isOpen();
}

bool NewDirectory::commit(QString *reason)
{
    if (!FileSystem::flushTree(m_hiddenPath, reason) || !FileSystem::renameDurably(m_hiddenPath, m_path, reason))
        return false;
    m_isCreated = false;
    return true;
}

bool NewDirectory::isInUse(const QString &hiddenPath)
{
    return !FileSystem::Folder(hiddenPath).lock();
}

void NewDirectory::removeStale() const
{
    const QFileInfoList candidates = QFileInfo(m_path).dir().entryInfoList(
        {QStringLiteral(".*.part")}, QDir::Dirs | QDir::Hidden | QDir::NoSymLinks, QDir::Unsorted);
    for (const QFileInfo &candidate : candidates) {
        if (ReplacingFile::isFragment(candidate.fileName()) && ReplacingFile::isStale(candidate) &&
            !isInUse(candidate.filePath()))
            QDir(candidate.filePath()).removeRecursively();
    }
}

} // namespace Corvelpro

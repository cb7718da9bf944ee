// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "newdirectory.h"

#include "filesystem.h"
#include "reason.h"

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
    m_isCreated = QDir().mkdir(m_hiddenPath);
    return m_isCreated ||
           failBecause(reason, QStringLiteral("cannot create a directory beside %1: %2").arg(m_path, systemError()));
}

bool NewDirectory::commit(QString *reason)
{
    if (!FileSystem::flushTree(m_hiddenPath, reason) || !FileSystem::renameDurably(m_hiddenPath, m_path, reason))
        return false;
    m_isCreated = false;
    return true;
}

} // namespace Corvelpro

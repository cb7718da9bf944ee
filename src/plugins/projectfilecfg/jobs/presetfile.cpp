// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "presetfile.h"

#include "writewhole.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace ProjectFileCfg {
namespace Internal {

PresetFile::PresetFile(const QString &path)
    : m_strPath(path)
{}

PresetFile::Outcome PresetFile::write(const QByteArray &detail)
{
    QFile file(m_strPath);
    const auto open = [&file] { return file.open(QIODevice::WriteOnly | QIODevice::Truncate); };
    if (!open()) {
        m_strError = file.errorString();
        // Another program that saves this device may be replacing the folder at this moment.
        if (!QFileInfo(m_strPath).dir().exists())
            return Outcome::FolderGone;
        if (!open())
            return Outcome::NotOpened;
    }
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    // A null array would be streamed as the length 0xffffffff.
    stream << (detail.isNull() ? QByteArray("") : detail);
    m_nSize = content.size();
    return writeWhole(file, content, &m_strError) ? Outcome::Written : Outcome::Cut;
}

} // namespace Internal
} // namespace ProjectFileCfg

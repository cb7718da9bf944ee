// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>
#include <QString>

namespace ProjectFileCfg {
namespace Internal {

/// The file of a preset in a staging directory: the host's bytes, as a QDataStream writes a QByteArray.
class PresetFile
{
public:
    enum class Outcome {
        Written,
        /// The folder was removed.
        FolderGone,
        /// The file cannot be opened, although the folder exists.
        NotOpened,
        /// The file is incomplete: it must not be packed.
        Cut
    };

    explicit PresetFile(const QString &path);

    /// Overwrites the file. `detail` is the preset as the host serialised it.
    Outcome write(const QByteArray &detail);

    /// After Outcome::Written: the file's size in bytes.
    qint64 size() const { return m_nSize; }
    /// After Outcome::NotOpened, the system's error; after Outcome::Cut, the reason with the path.
    QString errorString() const { return m_strError; }

private:
    const QString m_strPath;
    qint64 m_nSize = 0;
    QString m_strError;
};

} // namespace Internal
} // namespace ProjectFileCfg

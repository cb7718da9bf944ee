#pragma once

#include <QByteArray>
#include <QString>

namespace ProjectFileCfg {
namespace Internal {

/// The file of a preset in a staging directory: its bytes as a QDataStream writes a QByteArray.
class PresetFile
{
public:
    enum Outcome {
        Written,
        /// The folder was removed, and is not back yet.
        FolderGone,
        /// Cannot be opened although the folder is there.
        NotOpened,
        /// The file is incomplete: it must not be packed.
        Cut
    };

    explicit PresetFile(const QString &path);

    /// Writes the file anew. `detail` is what the host made of the preset.
    Outcome write(const QByteArray &detail);

    /// After Written: its bytes.
    qint64 size() const { return m_nSize; }
    /// Unless it was written: why not, in the system's words; after Cut with the path (see reason.h).
    QString errorString() const { return m_strError; }

private:
    const QString m_strPath;
    qint64 m_nSize = 0;
    QString m_strError;
};

} // namespace Internal
} // namespace ProjectFileCfg

#pragma once

#include <QStringList>

#include <memory>

class QFile;

namespace ProjectFileCfg {
namespace Internal {

/// A package as it was at one moment. A job that looks at a package more than once works on such a copy, since another
/// program may not only put another file in its place, but cut or overwrite the very file that is held open.
///
/// The copy has no name (see openNamelessFile()), and shares its blocks with the package where the file system can do
/// that: then nothing is read or written. Elsewhere it takes as much room as the package has.
class PackageSnapshot
{
public:
    enum Outcome {
        Taken,
        /// Missing, no plain file, or not to be read to its end.
        Unreadable,
        /// None of the folders has room, or may be written.
        NoRoom
    };

    /// In the first of the folders where that is possible; they must be there. Any thread.
    Outcome take(const QString &packetPath, const QStringList &folders);

    /// The copy, open for reading, for its one user; null when none was taken.
    std::unique_ptr<QFile> release();

private:
    std::unique_ptr<QFile> m_copy;
};

} // namespace Internal
} // namespace ProjectFileCfg

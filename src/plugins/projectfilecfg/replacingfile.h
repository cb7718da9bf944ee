#pragma once

#include <QFile>

namespace ProjectFileCfg {
namespace Internal {

/// A file that is written aside and takes the target's place only when it is complete: until commit() returns
/// true, and for ever where it is not called, the target is what it was. QSaveFile cannot stand here: QuaZip
/// reads back and seeks in what it writes, and what was written is verified before it replaces anything.
class ReplacingFile
{
public:
    enum Durability {
        /// Complete also after a power failure.
        FlushedToDisk,
        /// Complete as long as the system runs: for files that can be made again.
        NotFlushed
    };

    /// `targetPath` may name a symbolic link: then what it points to is replaced and the link stays.
    explicit ReplacingFile(const QString &targetPath);
    /// Removes the fragment unless it was committed.
    ~ReplacingFile();

    /// Makes an empty fragment beside the target, with the folders that lead there, and opens it for reading
    /// and writing. Its name is unique, hidden, and carries no package extension, so no listing shows it.
    bool create();

    /// The same with the target's content and permissions.
    bool createFromTarget();

    /// The fragment; open after create() or createFromTarget().
    QFile &file() { return m_fragment; }
    QString path() const { return m_fragment.fileName(); }

    /// Closes the fragment and renames it over the target.
    bool commit(Durability durability);

private:
    Q_DISABLE_COPY(ReplacingFile)

    QString m_targetPath;
    QFile m_fragment;
    bool m_isCommitted = false;
};

} // namespace Internal
} // namespace ProjectFileCfg

#pragma once

#include <QFile>

#include <functional>

namespace ProjectFileCfg {
namespace Internal {

namespace DurableFile {
class FileIdentity;
}

/// A file that is written aside and takes the target's place only when it is complete: until commit(), and for
/// ever where it is not called or fails on the way, the target is what it was. QSaveFile cannot stand here: QuaZip
/// reads back and seeks in what it writes, and what was written is verified before it replaces anything.
///
/// What is written aside is the fragment: a hidden file `.<id>.part` beside the target. No listing shows it, no
/// package includes it. Only a process that is killed leaves one behind.
class ReplacingFile
{
public:
    enum Durability {
        /// What commit() says is true also after a power failure.
        FlushedToDisk,
        /// Complete as long as the system runs: for files that can be made again.
        NotFlushed
    };
    enum ExistingTarget {
        Replaced,
        /// Then commit() fails and the target stays.
        Kept
    };

    enum MissingFolders { Made, NotMade };

    /// What is replaced: where `targetPath` is a symbolic link, the path of what it points to.
    static QString targetBehind(const QString &targetPath);

    /// `targetPath` may name a symbolic link: then what it points to is replaced and the link stays.
    ReplacingFile(const QString &targetPath, Durability durability);
    /// Removes the fragment unless it was committed.
    ~ReplacingFile();

    /// Makes an empty fragment, by default with the folders that lead there, and opens it for reading and writing.
    /// What is to be flushed also clears its folder of stale fragments.
    bool create(MissingFolders folders = Made);

    /// The same with the content and the permissions of the plain file at `sourcePath`; stands at its beginning. Makes
    /// no folders: where a stick was mounted that is gone, a copy must fail.
    bool createFrom(const QString &sourcePath);

    /// The fragment; open after create() or createFrom().
    QFile &file() { return m_fragment; }
    QString path() const { return m_fragment.fileName(); }

    /// Flushes and closes the fragment and renames it to the target's name. The one failure that leaves the new
    /// target in place is that of the last step, when the renaming could not be flushed.
    bool commit(ExistingTarget existing = Replaced);

    /// The same, but takes the place of `previous` alone (see DurableFile::replaceSame): where another file lies at
    /// the target by now, it fails and that one stays.
    bool commitInPlaceOf(const DurableFile::FileIdentity &previous);

    /// True for the names of fragments.
    static bool isFragment(const QString &fileName);

    /// Removes the fragments in the folder that were last written more than a day ago. What is younger may belong
    /// to another copy of the program; the clocks of a network share and of a stick (which counts in somebody's
    /// local time) are less than a day from ours. If a living one is hit all the same, its commit() fails.
    static void removeStaleFragments(const QString &folderPath);

private:
    Q_DISABLE_COPY(ReplacingFile)

    /// While more is written, the disk takes what there is: else it stands idle until commit() waits for all of it.
    class Fragment : public QFile
    {
    public:
        Fragment(const QString &path, Durability durability);

    protected:
        qint64 writeData(const char *data, qint64 size) override;

    private:
        const Durability m_durability;
        qint64 m_nWaiting = 0;
    };

    bool openFragment();
    bool finish(const std::function<bool()> &rename);

    QString m_targetPath;
    QString m_folderPath;
    Fragment m_fragment;
    Durability m_durability;
    bool m_isCommitted = false;
};

/// Copies a file with its permissions, whole or not at all, and flushes it to disk. Fails where anything is at
/// `targetPath`. QFile::copy() cannot stand here: it does not look whether flushing failed.
bool copyToFreeName(const QString &sourcePath, const QString &targetPath);

} // namespace Internal
} // namespace ProjectFileCfg

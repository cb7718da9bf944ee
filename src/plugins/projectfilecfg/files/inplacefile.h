#pragma once

#include <QFile>

class QDir;

namespace ProjectFileCfg {
namespace Internal {

struct UndoRecord;

/// A file whose last bytes are changed where they lie: nothing is copied, and the file keeps its identity, its
/// permissions and its modification time. A kill, a full disk or a power failure on the way leaves the old bytes or the
/// new ones once recover(), or the next open(), has looked at the file.
///
/// That is the undo record's doing, which lies beside the file meanwhile. Where none can be made, because there is no
/// room or the folder may not be written, the bytes are written without it.
class InPlaceFile
{
public:
    /// `path` may name a symbolic link: then what it points to is changed.
    explicit InPlaceFile(const QString &path);
    /// Closes the file, and lets the next one at it.
    ~InPlaceFile();

    /// Opens the file for reading and writing, and ends what a killed process has begun there. Fails where there is
    /// none: it never makes one. Fails as well where the file is no plain one, may not be written, or is opened in this
    /// way by somebody else and stays so for a second.
    bool open();

    QFile &file() { return m_file; }

    /// Replaces all bytes from `offset` on, at most 64 KiB, by `tail`, with one write. True when they were flushed and
    /// read back, and the file still stands under its name. Otherwise it is what it was; where not even that can be
    /// reached, the undo record stays for who comes next.
    bool replaceTail(qint64 offset, const QByteArray &tail);

    /// Ends what killed processes have begun in the folder: for each undo record that no living process holds,
    /// its file's last bytes become the old ones again, unless they are the new ones, whole. A file that has got
    /// another name in the folder is found; a record whose file has gone, or was changed by others, is removed.
    static void recover(const QString &folderPath);
    /// The same for the one file at `path`, which may be a link that leads out of its folder.
    static void recoverFile(const QString &path);

private:
    Q_DISABLE_COPY(InPlaceFile)

    bool openPlainFile();
    bool lock(int patience);
    bool isStillInPlace() const;
    QByteArray tailFrom(qint64 offset);
    bool put(const UndoRecord &record, const QByteArray &tail);
    bool settle(const QString &recordPath);
    static bool settleInFolder(const QString &recordPath, const QDir &folder, const UndoRecord &record);
    static bool settleRecord(const QString &recordPath, const QString &filePath, const UndoRecord &record);

    const QString m_path;
    QFile m_file;
};

} // namespace Internal
} // namespace ProjectFileCfg

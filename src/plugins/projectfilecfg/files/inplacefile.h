// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QFile>

class QDir;

namespace ProjectFileCfg {
namespace Internal {

struct UndoRecord;

/// Changes the last bytes of a file in place: nothing is copied, and the file keeps its identity, permissions and
/// modification time. After a kill, a full disk or a power failure, recover() or the next open() restores the old bytes
/// or keeps the new ones.
///
/// An undo record beside the file makes that possible. If none can be created, because there is no room or the folder
/// is read-only, the bytes are written without one.
class InPlaceFile
{
public:
    /// If `path` is a symbolic link, its target is changed.
    explicit InPlaceFile(const QString &path);
    /// Closes and unlocks the file.
    ~InPlaceFile();

    /// Opens and locks the file for reading and writing, and applies an undo record that a crash has left behind. Never
    /// creates a file. Fails if the file does not exist, is not a plain one or is read-only, or if another process
    /// keeps it locked for a second.
    bool open(QString *reason = nullptr);

    QFile &file() { return m_file; }

    /// Replaces all bytes from `offset` on, at most 64 KiB, with `tail`, in a single write. True if they were flushed
    /// and read back, and the file is still at its path. Otherwise the file is restored; if even that fails, the undo
    /// record stays for the next recover() or open().
    bool replaceTail(qint64 offset, const QByteArray &tail, QString *reason = nullptr);

    /// Applies the undo records in the folder, except those of files that another process has locked: restores the old
    /// last bytes of each file, unless the new ones are complete. Finds a file that was renamed within the folder;
    /// removes a record whose file no longer exists or was changed by another program.
    static void recover(const QString &folderPath);
    /// The same for the file at `path`, which may be a link to another folder.
    static void recoverFile(const QString &path);

private:
    Q_DISABLE_COPY(InPlaceFile)

    bool openPlainFile(QString *reason = nullptr);
    bool lock(int patience, QString *reason = nullptr);
    bool isStillInPlace(QString *reason = nullptr) const;
    QByteArray tailFrom(qint64 offset);
    bool put(const UndoRecord &record, const QByteArray &tail, QString *reason = nullptr);
    bool settle(const QString &recordPath, QString *reason = nullptr);
    static bool settleInFolder(const QString &recordPath, const QDir &folder, const UndoRecord &record);
    static bool settleRecord(const QString &recordPath, const QString &filePath, const UndoRecord &record);

    const QString m_strPath;
    QFile m_file;
};

} // namespace Internal
} // namespace ProjectFileCfg

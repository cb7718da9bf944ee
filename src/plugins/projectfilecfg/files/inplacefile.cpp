// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "inplacefile.h"

#include "filesystem.h"
#include "reason.h"
#include "undorecord.h"

#include <QDir>
#include <QFileInfo>
#include <QThread>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// In bytes, more than any tail that this class writes.
constexpr qint64 maxTailSize = 128 * 1024;

/// The path itself if there is no file, so that a failure names it.
QString pathBehind(const QString &path)
{
    const QString canonicalPath = QFileInfo(path).canonicalFilePath();
    return canonicalPath.isEmpty() ? path : canonicalPath;
}

} // namespace

InPlaceFile::InPlaceFile(const QString &path)
    : m_strPath(pathBehind(path))
{}

InPlaceFile::~InPlaceFile() = default;

bool InPlaceFile::open(QString *reason)
{
    // In milliseconds. Recovery, or an edit by another program, takes a few; only a hung program holds the lock longer.
    constexpr int second = 1000;
    // The file may have been replaced while this process waited for the lock; the undo record then belongs to the new
    // file.
    return openPlainFile(reason) && lock(second, reason) && isStillInPlace(reason) &&
           settle(UndoRecord::pathFor(m_strPath), reason);
}

bool InPlaceFile::openPlainFile(QString *reason)
{
    // Not QFile::open(): it would create the file if it was removed meanwhile.
    const int handle = FileSystem::openToChange(m_strPath, reason);
    return handle >= 0 && m_file.open(handle, QIODevice::ReadWrite | QIODevice::Unbuffered, QFile::AutoCloseHandle);
}

bool InPlaceFile::lock(int patience, QString *reason)
{
    constexpr int pause = 10;
    for (int waited = 0; !FileSystem::lock(m_file.handle()); waited += pause) {
        if (waited >= patience)
            return failBecause(reason, QStringLiteral("another program keeps %1 locked").arg(m_strPath));
        QThread::msleep(pause);
    }
    return true;
}

bool InPlaceFile::isStillInPlace(QString *reason) const
{
    return FileSystem::isOpenFile(m_strPath, m_file.handle()) ||
           failBecause(reason, QStringLiteral("%1 was removed or replaced meanwhile").arg(m_strPath));
}

QByteArray InPlaceFile::tailFrom(qint64 offset)
{
    return m_file.seek(offset) ? m_file.read(maxTailSize) : QByteArray();
}

/// Replaces the file's last bytes with `tail` and flushes them. Success is decided by reading them back, whatever the
/// single calls return.
bool InPlaceFile::put(const UndoRecord &record, const QByteArray &tail, QString *reason)
{
    QString error = QStringLiteral("the bytes read back differ");
    if (tailFrom(record.nOffset) != tail) {
        const qint64 size = record.nOffset + tail.size();
        if (!m_file.seek(record.nOffset) || m_file.write(tail) != tail.size())
            error = writeError(m_file);
        // Not unconditionally: some file systems wait for the disk even if the size stays the same.
        if (m_file.size() > size)
            m_file.resize(size);
    }
    // A failure does not matter: the time only determines the row's position in the table.
    FileSystem::setModified(m_file.handle(), record.nModified);
    const bool isFlushed = FileSystem::flush(m_file.handle());
    if (!isFlushed)
        error = systemError();
    return (isFlushed && tailFrom(record.nOffset) == tail) ||
           failBecause(reason, QStringLiteral("cannot write the end of %1: %2").arg(m_strPath, error));
}

// docs/package-format.md lists the state on disk after a crash at each of these steps.
bool InPlaceFile::replaceTail(qint64 offset, const QByteArray &tail, QString *reason)
{
    UndoRecord record;
    record.strFileName = QFileInfo(m_strPath).fileName();
    record.nOffset = offset;
    record.mark = UndoRecord::markOf(m_file, offset);
    record.before = tailFrom(offset);
    record.after = tail;
    record.nModified = FileSystem::modified(m_file.handle());
    if (record.mark.isEmpty() || offset + record.before.size() != m_file.size())
        return failBecause(reason,
                           QStringLiteral("cannot read the end of %1: %2").arg(m_strPath, m_file.errorString()));
    const QString recordPath = UndoRecord::pathFor(m_strPath);
    if (!record.write(recordPath)) {
        // An older record must not reappear after a power failure: its removal may never have been flushed.
        QFile::remove(recordPath);
        FileSystem::Folder(QFileInfo(m_strPath).absolutePath()).flush();
    }
    const bool isReplaced = put(record, tail, reason) && isStillInPlace(reason);
    if (isReplaced || put(record, record.before))
        QFile::remove(recordPath);
    return isReplaced;
}

/// Applies the undo record at `recordPath`, if there is one, to this file, and removes the record.
bool InPlaceFile::settle(const QString &recordPath, QString *reason)
{
    if (!QFileInfo::exists(recordPath))
        return true;
    UndoRecord record;
    const UndoRecord::Reading reading = record.read(recordPath);
    if (reading == UndoRecord::Reading::Whole && record.fits(m_file)) {
        const QByteArray tail = tailFrom(record.nOffset);
        const bool isOurs = tail == record.before || tail == record.after || record.isTorn(tail);
        // Even if the bytes are right: the process may have been killed before it flushed them.
        if (isOurs && !put(record, tail == record.after ? tail : record.before, reason))
            return false;
    }
    if (reading == UndoRecord::Reading::Unreadable)
        return failBecause(reason, QStringLiteral("cannot read the undo record %1").arg(recordPath));
    return QFile::remove(recordPath) ||
           failBecause(reason, QStringLiteral("cannot remove the undo record %1: %2").arg(recordPath, systemError()));
}

/// True if the record belongs to the file, even if the file is locked and so left alone.
bool InPlaceFile::settleRecord(const QString &recordPath, const QString &filePath, const UndoRecord &record)
{
    QFile reader(filePath);
    if (!QFileInfo(filePath).isFile() || !reader.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ||
        !record.fits(reader))
        return false;
    InPlaceFile file(filePath);
    if (file.openPlainFile() && file.lock(0) && file.isStillInPlace())
        file.settle(recordPath);
    return true;
}

/// Tries the file with the recorded name first, then the others with its extension: it may have been renamed.
bool InPlaceFile::settleInFolder(const QString &recordPath, const QDir &folder, const UndoRecord &record)
{
    const QString sameKind = QStringLiteral("*.") + QFileInfo(record.strFileName).suffix();
    const QStringList names =
        QStringList(record.strFileName) + folder.entryList({sameKind}, QDir::Files, QDir::Unsorted);
    return std::any_of(names.begin(), names.end(),
                       [&](const QString &name) { return settleRecord(recordPath, folder.filePath(name), record); });
}

void InPlaceFile::recover(const QString &folderPath)
{
    const QDir folder(folderPath);
    const QStringList names =
        folder.entryList({QStringLiteral(".*.undo")}, QDir::Files | QDir::Hidden | QDir::NoSymLinks, QDir::Unsorted);
    for (const QString &name : names) {
        const QString recordPath = folder.filePath(name);
        UndoRecord record;
        const UndoRecord::Reading reading =
            UndoRecord::isUndoRecord(name) ? record.read(recordPath) : UndoRecord::Reading::Unreadable;
        const bool isWithoutFile = reading == UndoRecord::Reading::Whole && !settleInFolder(recordPath, folder, record);
        // A broken record does not tell its file, so there is no lock to find out whether a process is still writing
        // it.
        if (isWithoutFile || (reading == UndoRecord::Reading::Broken && UndoRecord::isStale(recordPath)))
            QFile::remove(recordPath);
    }
}

void InPlaceFile::recoverFile(const QString &path)
{
    InPlaceFile file(path);
    if (QFileInfo::exists(UndoRecord::pathFor(file.m_strPath)) && file.openPlainFile() && file.lock(0))
        file.settle(UndoRecord::pathFor(file.m_strPath));
}

} // namespace Internal
} // namespace ProjectFileCfg

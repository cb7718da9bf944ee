// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>

class QFile;

namespace ProjectFileCfg {
namespace Internal {

/// Locates the comment of a zip archive, and computes the archive's last bytes with another comment. Only for classic
/// archives: no 64-bit extension, one disk, nothing after the comment.
///
/// The *tail* of the archive is the comment with the two bytes of its length before it: everything that an edit
/// changes.
class ArchiveComment
{
public:
    static constexpr int lengthSize = 2;

    /// Reads the end of `file`, which is open for reading.
    explicit ArchiveComment(QFile &file);

    /// False if the file is not such an archive, or its comment is longer than readers accept.
    bool isFound() const { return m_nOffset >= 0; }
    /// The offset of the tail.
    qint64 offset() const { return m_nOffset; }
    QByteArray bytes() const { return m_comment; }

    /// The end record with the length of another comment, without that comment.
    QByteArray endRecordWith(const QByteArray &comment) const;
    static QByteArray tailWith(const QByteArray &comment);

    /// False for a comment that a reader would not find completely: too long, or containing a NUL or an end-of-archive
    /// signature.
    static bool isReadable(const QByteArray &comment);

    /// True if `end`, the last bytes of a file, ends with a comment of the stated length. False if it was read while
    /// another process was writing it. `end` must be at least as long as the end record with the longest comment,
    /// unless the file is shorter.
    static bool isConsistent(const QByteArray &end);

private:
    qint64 m_nOffset = -1;
    QByteArray m_endRecord;
    QByteArray m_comment;
};

} // namespace Internal
} // namespace ProjectFileCfg

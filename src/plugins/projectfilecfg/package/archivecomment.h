#pragma once

#include <QByteArray>

class QFile;

namespace ProjectFileCfg {
namespace Internal {

/// Where the comment of a zip archive stands, and what its last bytes are with another one. Classic archives alone: no
/// 64-bit extension, one disk, and nothing behind the comment.
///
/// The archive's *tail* is the comment with the two bytes of its length before it: all that an edit changes.
class ArchiveComment
{
public:
    static constexpr int lengthSize = 2;

    /// Looks at the end of `file`, which is open for reading.
    explicit ArchiveComment(QFile &file);

    /// False when the file is no such archive, or its comment is longer than a reader takes.
    bool isFound() const { return m_offset >= 0; }
    /// Where the tail begins.
    qint64 offset() const { return m_offset; }
    QByteArray bytes() const { return m_comment; }

    /// The end record with the length of another comment, which follows it.
    QByteArray endRecordWith(const QByteArray &comment) const;
    static QByteArray tailWith(const QByteArray &comment);

    /// False for a comment that no reader would find whole: one that is too long, holds a NUL, or what looks like the
    /// end of an archive.
    static bool isReadable(const QByteArray &comment);

    /// Whether the last bytes of a file, at least as many as the longest comment and the end record have, end with a
    /// comment as long as its length says. What is read while somebody writes there does not.
    static bool isConsistent(const QByteArray &end);

private:
    qint64 m_offset = -1;
    QByteArray m_endRecord;
    QByteArray m_comment;
};

} // namespace Internal
} // namespace ProjectFileCfg

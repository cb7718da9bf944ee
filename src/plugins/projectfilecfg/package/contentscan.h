#pragma once

#include <QByteArray>

class QIODevice;

namespace ProjectFileCfg {
namespace Internal {

/// What a PNG file says of itself, found while its bytes pass by and without decoding it. Whoever packs and whoever
/// reads a picture judges by this, and PackageLimits says what is too much. Whether its chunks are in order is left to
/// who decodes it.
class PictureScan
{
public:
    /// The next bytes of the file, in portions of any size.
    void feed(const char *data, qint64 size);
    /// The whole file, which can seek and stands at its beginning, as it does afterwards. False when it cannot be read.
    bool feed(QIODevice &file);

    bool isPng() const { return m_isPng; }
    /// Too wide or too high, or with texts, profiles and the like beyond what a picture needs: all of them are unpacked
    /// and kept before the first pixel is read, so that a megabyte fills gigabytes. It counts as having no size.
    bool isBeyondLimits() const { return m_isBeyondLimits; }
    /// Pixels, and the bytes that they take while they are read and then as 32 bits; 0 where no header tells them.
    qint64 pixels() const;
    qint64 memory() const;

private:
    enum Part { Signature, ChunkHead, Header };

    void take(const QByteArray &part);
    void takeChunkHead(const QByteArray &head);

    Part m_expected = Signature;
    /// What was fed of the part that is expected, and how many bytes come before the rest of it.
    QByteArray m_part;
    qint64 m_nGap = 0;
    bool m_isOver = false;
    bool m_isPng = false;
    bool m_isBeyondLimits = false;
    bool m_hasTransparentColour = false;
    bool m_isFirstChunk = true;
    qint64 m_nTextSize = 0;
    int m_nPackedTexts = 0;
    qint64 m_nWidth = 0;
    qint64 m_nHeight = 0;
    int m_nDepth = 0;
    int m_nColourType = 0;
};

/// Counts the members, elements and brackets of a JSON document, which say how much memory it takes once it is parsed.
/// What stands in its strings does not count.
class DescriptionScan
{
public:
    /// The next bytes of the document, in portions of any size.
    void feed(const char *data, qint64 size);

    qint64 parts() const { return m_nParts; }

private:
    qint64 m_nParts = 0;
    bool m_isInString = false;
    bool m_isEscaped = false;
};

} // namespace Internal
} // namespace ProjectFileCfg

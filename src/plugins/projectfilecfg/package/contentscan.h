// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>
#include <QSize>

class QIODevice;

namespace ProjectFileCfg {
namespace Internal {

/// Determines the properties of a PNG file from its bytes, without decoding it. Packing and reading both use it to
/// check a picture against PackageLimits. It does not check the order of the chunks; the decoder does.
class PictureScan
{
public:
    /// Takes the next bytes of the file, in portions of any size.
    void feed(const char *data, qint64 size);
    /// Takes the whole file, which must be seekable and at its beginning, and is there again afterwards. False if it
    /// cannot be read.
    bool feed(QIODevice &file);

    bool isPng() const { return m_bPng; }
    /// True if the picture is too wide or too high, or has more texts and profiles than a picture needs: the decoder
    /// unpacks and keeps all of them before the first pixel, so a megabyte can fill gigabytes. Such a picture has no
    /// size.
    bool isBeyondLimits() const { return m_bBeyondLimits; }
    /// Width and height as stated in the file, even if they make no sense; empty without a header.
    QSize size() const;
    /// The number of pixels, and the memory in bytes that they need as read and when converted to 32 bits; 0 without a
    /// header.
    qint64 pixels() const;
    qint64 memory() const;

private:
    enum class Part { Signature, ChunkHead, Header };

    void take(const QByteArray &part);
    void takeChunkHead(const QByteArray &head);

    Part m_expected = Part::Signature;
    /// The bytes of the expected part so far, and how many bytes to skip before the rest of it.
    QByteArray m_part;
    qint64 m_nGap = 0;
    bool m_bOver = false;
    bool m_bPng = false;
    bool m_bBeyondLimits = false;
    bool m_bTransparentColour = false;
    bool m_bFirstChunk = true;
    qint64 m_nTextSize = 0;
    int m_nPackedTexts = 0;
    qint64 m_nWidth = 0;
    qint64 m_nHeight = 0;
    int m_nDepth = 0;
    int m_nColourType = 0;
};

/// Counts the members, elements and brackets of a JSON document, which determine how much memory it needs when parsed.
/// The content of strings does not count.
class DescriptionScan
{
public:
    /// Takes the next bytes of the document, in portions of any size.
    void feed(const char *data, qint64 size);

    qint64 parts() const { return m_nParts; }

private:
    qint64 m_nParts = 0;
    bool m_bInString = false;
    bool m_bEscaped = false;
};

} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <support/packagebuilder.h>

#include <QByteArray>
#include <QtEndian>

namespace TestData {

/// A PNG built chunk by chunk, so that each can be made invalid.
class PngMaker
{
public:
    enum ColourType { Grey = 0, Rgb = 2, Palette = 3, Rgba = 6 };

    static QByteArray signature() { return QByteArray("\x89PNG\r\n\x1a\n", 8); }

    static QByteArray big32(quint32 value)
    {
        const quint32 big = qToBigEndian(value);
        return QByteArray(reinterpret_cast<const char *>(&big), sizeof big);
    }

    static QByteArray chunk(const QByteArray &type, const QByteArray &data)
    {
        return big32(quint32(data.size())) + type + data + big32(TestSupport::PackageBuilder::crc32(type + data));
    }

    static QByteArray header(quint32 width, quint32 height, int depth = 8, ColourType type = Rgba, int interlace = 0)
    {
        return chunk("IHDR",
                     big32(width) + big32(height) + char(depth) + char(type) + char(0) + char(0) + char(interlace));
    }

    /// `bytes` as a zlib stream.
    static QByteArray deflated(const QByteArray &bytes) { return qCompress(bytes).mid(4); }

    static QByteArray pixels(const QByteArray &rows) { return chunk("IDAT", deflated(rows)); }

    static QByteArray end() { return chunk("IEND", QByteArray()); }

    /// Rows of zeros, unfiltered.
    static QByteArray blank(quint32 width, quint32 height, int depth = 8, ColourType type = Rgba, int interlace = 0)
    {
        const int channels = type == Rgba ? 4 : type == Rgb ? 3 : 1;
        const qint64 row = 1 + (qint64(width) * depth * channels + 7) / 8;
        return signature() + header(width, height, depth, type, interlace) +
               pixels(QByteArray(int(row * height), '\0')) + end();
    }
};

} // namespace TestData

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QImage>

namespace Corvelpro {

/// What differs in two pictures.
struct PictureDifference
{
    /// Width and height in pixels. If these differ, no pixels are compared.
    QSize before;
    QSize after;
    /// How many pixels differ, and by how much at most in one of the channels red, green, blue and alpha: 0 to 255.
    qint64 pixels = 0;
    int largest = 0;

    bool isEmpty() const { return before == after && pixels == 0; }
    /// The share of the pixels that differ, 0 to 1.
    double share() const;
};

/// The largest difference of a channel.
int pixelDifference(QRgb before, QRgb after);

/// Both are of Format_ARGB32 and not null.
PictureDifference comparePictures(const QImage &before, const QImage &after);

} // namespace Corvelpro

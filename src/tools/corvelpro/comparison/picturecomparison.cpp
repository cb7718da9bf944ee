// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "picturecomparison.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace Corvelpro {

double PictureDifference::share() const
{
    return double(pixels) / (double(before.width()) * before.height());
}

int pixelDifference(QRgb before, QRgb after)
{
    return std::max({std::abs(qRed(before) - qRed(after)), std::abs(qGreen(before) - qGreen(after)),
                     std::abs(qBlue(before) - qBlue(after)), std::abs(qAlpha(before) - qAlpha(after))});
}

PictureDifference comparePictures(const QImage &before, const QImage &after)
{
    PictureDifference difference;
    difference.before = before.size();
    difference.after = after.size();
    if (before.size() != after.size())
        return difference;
    for (int y = 0; y < before.height(); ++y) {
        const auto *one = reinterpret_cast<const QRgb *>(before.constScanLine(y));
        const auto *other = reinterpret_cast<const QRgb *>(after.constScanLine(y));
        if (std::memcmp(one, other, size_t(before.width()) * sizeof(QRgb)) == 0)
            continue;
        for (int x = 0; x < before.width(); ++x) {
            const int distance = pixelDifference(one[x], other[x]);
            difference.pixels += distance > 0 ? 1 : 0;
            difference.largest = std::max(difference.largest, distance);
        }
    }
    return difference;
}

} // namespace Corvelpro

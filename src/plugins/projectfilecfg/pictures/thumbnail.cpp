// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "thumbnail.h"

#include <QImage>

#include <cmath>

namespace ProjectFileCfg {
namespace Internal {

namespace {

constexpr int smallThumbnailArea = 65536;
constexpr int largeThumbnailArea = 262144;

} // namespace

QImage thumbnailOf(const QImage &picture)
{
    // Wraps at 32 bits on purpose: the gallery has always computed it like this.
    const auto area =
        static_cast<qint32>(static_cast<quint32>(picture.width()) * static_cast<quint32>(picture.height()));
    // A tenth on purpose, although smaller and larger pictures get larger thumbnails: the gallery expects it.
    if (area > smallThumbnailArea && area < largeThumbnailArea)
        return picture.scaled(picture.width() / 10, picture.height() / 10, Qt::IgnoreAspectRatio,
                              Qt::FastTransformation);
    if (area <= largeThumbnailArea)
        return picture;
    // Single precision and truncation on purpose: otherwise the sizes would differ from those in the gallery.
    const double ratio = static_cast<double>(picture.width()) / picture.height();
    const float height = std::sqrt(static_cast<float>(largeThumbnailArea / ratio));
    return picture.scaled(static_cast<int>(height * ratio), static_cast<int>(height), Qt::IgnoreAspectRatio,
                          Qt::FastTransformation);
}

} // namespace Internal
} // namespace ProjectFileCfg

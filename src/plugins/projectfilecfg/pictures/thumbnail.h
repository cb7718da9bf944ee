// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

class QImage;

namespace ProjectFileCfg {
namespace Internal {

/// The gallery's thumbnail of a picture. Up to 65,536 pixels: the picture itself. Below 262,144 pixels: a tenth of its
/// width and height. Otherwise: at most 262,144 pixels, in the picture's proportions. Null for a null picture.
QImage thumbnailOf(const QImage &picture);

} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <utils/textsize.h>

#include <QFontInfo>
#include <QGuiApplication>

namespace Corvel {
namespace Utils {

int inTextSize(int pixels)
{
    const int normalTextSize = 13;
    return qMax(pixels, pixels * QFontInfo(QGuiApplication::font()).pixelSize() / normalTextSize);
}

} // namespace Utils
} // namespace Corvel

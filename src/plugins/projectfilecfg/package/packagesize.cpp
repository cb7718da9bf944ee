// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagesize.h"

#include "packagelayout.h"
#include "zipformat.h"

namespace ProjectFileCfg {
namespace Internal {

qint64 leastPackedSize(const QString &entryName, qint64 size)
{
    return ZipFormat::localHeaderSize + ZipFormat::centralHeaderSize + 2 * qint64(entryName.toUtf8().size()) +
           (PackageLayout::isPicture(entryName) ? size : 0);
}

} // namespace Internal
} // namespace ProjectFileCfg

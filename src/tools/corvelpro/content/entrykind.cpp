// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "entrykind.h"

#include "packagelayout.h"

namespace Corvelpro {

using namespace ProjectFileCfg::Internal::PackageLayout;

EntryKind kindOf(const QString &entryName)
{
    if (isFolder(entryName))
        return EntryKind::Folder;
    if (isDescription(entryName))
        return EntryKind::Description;
    const QString path = plainName(entryName);
    if (isGalleryPicture(path))
        return EntryKind::GalleryPicture;
    const bool isInPresetFolder = path.startsWith(presetFolder + QLatin1Char('/'));
    return isPreset(path) && isInPresetFolder ? EntryKind::Preset : EntryKind::Other;
}

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

class QString;

namespace Corvelpro {

/// What a load takes an entry for, by its name.
enum class EntryKind { Description, GalleryPicture, Preset, Folder, Other };

EntryKind kindOf(const QString &entryName);

} // namespace Corvelpro

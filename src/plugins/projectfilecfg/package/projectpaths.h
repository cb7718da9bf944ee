// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>

namespace ProjectFileCfg {
namespace Internal {

/// Where project files are kept.
namespace ProjectPaths {

/// The user's Documents folder, without a trailing separator.
QString documentsPath();

/// The one directory of all project files, with a trailing "/".
QString projectFilesPath();

} // namespace ProjectPaths

} // namespace Internal
} // namespace ProjectFileCfg

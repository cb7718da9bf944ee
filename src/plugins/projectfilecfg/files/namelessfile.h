// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QFile>

#include <memory>

namespace ProjectFileCfg {
namespace Internal {

/// Creates a private file without a path in the existing `folder`, so that no other program can change it, and opens it
/// for reading and writing. Null on failure. The file disappears with its last handle, even if the process is killed.
/// On systems without nameless files it has an unpredictable name and is removed with the object.
std::unique_ptr<QFile> openNamelessFile(const QString &folder, QString *reason = nullptr);

} // namespace Internal
} // namespace ProjectFileCfg

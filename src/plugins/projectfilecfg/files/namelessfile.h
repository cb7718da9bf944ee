// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QFile>

#include <memory>

namespace ProjectFileCfg {
namespace Internal {

/// Creates a private file without a path, so that no other program can change it, in the existing `folder`, and opens
/// it for reading and writing. Null on failure. The file disappears with its last handle, also when the process is
/// killed. On systems without nameless files it has an unpredictable name and is removed at the end.
std::unique_ptr<QFile> openNamelessFile(const QString &folder, QString *reason = nullptr);

} // namespace Internal
} // namespace ProjectFileCfg

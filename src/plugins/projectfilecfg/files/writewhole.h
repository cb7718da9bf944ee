// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

class QByteArray;
class QFile;
class QString;

namespace ProjectFileCfg {
namespace Internal {

/// Writes the whole content of a staged file that was just opened, and closes it. False if the file is incomplete, for
/// instance because the disk is full: then it must not be packed.
bool writeWhole(QFile &file, const QByteArray &content, QString *reason = nullptr);

} // namespace Internal
} // namespace ProjectFileCfg

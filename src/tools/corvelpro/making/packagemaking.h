// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "commandline/outcome.h"

#include "zippackagehandle.h"

#include <optional>

namespace Corvelpro {

/// What creates packages and changes their records, as the control application does. Nothing is ever overwritten.
namespace PackageMaking {

/// Packs `directory` into the new package `record.strFilePath` and sets the record's checksum. An empty name becomes
/// that of the file.
Outcome create(const QString &directory, ProjectFileCfg::Internal::EngineerPacketInfo &record);

/// Changes the record of the package `record.strFilePath`; what is not given stays. A new name renames the file too, in
/// its folder. Fills `record` with what the package has then, and its new path.
Outcome edit(ProjectFileCfg::Internal::EngineerPacketInfo &record, const std::optional<QString> &name,
             const std::optional<QString> &comment);

/// The record as the results of both have it.
QJsonObject toJson(const ProjectFileCfg::Internal::EngineerPacketInfo &record);

} // namespace PackageMaking

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "operationresultcodes.h"

#include <host/fwd.h>

#include <QString>

namespace ProjectFileCfg {
namespace Internal {

class PackageReader;

/// The directory of an offline device, with a trailing "/".
QString offlineFolder(const QString &ip);

/// Extracts everything but the descriptions of the package at `path` to an offline device's directory and flushes it to
/// disk, so that the pictures are there before the description that refers to them. LoadDecompressFailed if an entry
/// cannot be extracted, which is logged, or, before anything is written, if the directory would no longer fit into a
/// package; otherwise LoadSuccess.
LoadResultCode extractContent(PackageReader &package, const QString &path, const QString &folder, QString *reason);

/// Extracts the first description of the package at `path` to the directory of the device with that address.
/// LoadSuccess even if there is none; LoadDecompressFailed, after logging it, if it cannot be extracted.
LoadResultCode extractDescription(const QString &path, const QString &ip);

/// Replaces the model of an offline device with that of `description`.
void replaceModel(Model::Device &target, const Model::Device &description);

/// Makes the thumbnails of an offline device's backgrounds and logos from the pictures in its directory. If a picture
/// cannot be read, its thumbnail is empty.
void refreshThumbnails(const Model::Device &device, const QString &folder);

} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "operationresultcodes.h"

#include <host/fwd.h>

#include <QString>

#include <memory>

class QIODevice;

namespace ProjectFileCfg {
namespace Internal {

class PackageReader;

/// Has the host write the descriptions of its devices into their configuration directories. False, after logging it, if
/// that fails.
bool writeDeviceDescriptions();

/// Creates a device, which is not added to any list, from a description that the host has written. `device` is open for
/// reading as text. Null, with the parser's reason in `error`, if it is not a JSON document with content, or exceeds
/// PackageLimits.
std::shared_ptr<Model::Device> readDeviceDescription(QIODevice &device, QString &error);
/// The same for a file. `error` is empty if there is no file, or if it cannot be opened, which is logged.
std::shared_ptr<Model::Device> readDeviceDescription(const QString &path, QString &error);
/// The same for the description that an apply reads. Extracts all descriptions of the package to `folder`, where other
/// software expects them, but reads from the package. LoadJsonFileError if there is none: `device` is unchanged.
/// LoadGetDeviceFailed if it cannot be extracted or read: `device` is null.
LoadResultCode readDeviceDescription(PackageReader &package, const QString &folder,
                                     std::shared_ptr<Model::Device> &device, QString *reason);

/// Gives a description the identity of its target: id, network settings and protocol number.
void takeIdentity(Model::Device &description, const Model::Device &target, const QString &ip);

} // namespace Internal
} // namespace ProjectFileCfg

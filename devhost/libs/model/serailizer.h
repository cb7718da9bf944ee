// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/model_global.h>

#include <QString>

namespace Model {

/// Stands for the host's writer of device models to disk (the host's spelling). Any thread.
class HOST_MODEL_EXPORT Serailizer
{
public:
    /// `configPath` is the directory below which each device has its configuration directory.
    explicit Serailizer(const QString &configPath);

    /// Writes each known device as `configPath`/IP/IP.json. Returns false if one could not be written.
    bool serailize();

private:
    const QString m_configPath;
};

} // namespace Model

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <simulation/hardware.h>
#include <simulation/operation.h>

#include <QVector>

#include <optional>

namespace Simulation {

/// One model of device.
struct HOST_SIMULATION_EXPORT ModelDescription
{
    int modelId = 0;
    QString typeString;
    bool supportProjectFile = false;
    int exchangePos = 8;
};

/// How a picture is drawn.
struct HOST_SIMULATION_EXPORT PictureRecipe
{
    quint8 keyNo = 0;
    QString name;
    QString generator;
    QSize size;
    quint32 seed = 0;
    /// Logos only.
    QString text;
};

/// A device as the site describes it.
struct HOST_SIMULATION_EXPORT SiteDevice
{
    /// Without pictures.
    HardwareState state;
    QVector<PictureRecipe> backgrounds;
    QVector<PictureRecipe> logos;
    bool online = true;
};

/// A site as described in its file: models, devices and how fast they are.
struct HOST_SIMULATION_EXPORT Site
{
    QString name;
    QVector<ModelDescription> models;
    QVector<SiteDevice> devices;
    /// The address of the initially active device; empty if there is none.
    QString activeDevice;
    Pace pace;

    /// Reads a site. Returns nothing if the file is wrong; `error` then says where and why.
    static std::optional<Site> fromFile(const QString &path, QString &error);
    static std::optional<Site> fromJson(const QByteArray &json, QString &error);

    /// Multiplies all durations by `factor`; with 0, nothing waits.
    void scaleDurations(double factor);
    /// The hardware of every device, in order. Draws the pictures, which takes about 10 ms for a million pixels.
    QVector<HardwareState> buildHardware() const;
};

} // namespace Simulation

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

/// How a picture is made.
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

/// A site as its file describes it: models, devices and how fast they are.
struct HOST_SIMULATION_EXPORT Site
{
    QString name;
    QVector<ModelDescription> models;
    QVector<SiteDevice> devices;
    /// The address of the device that is active at first; empty when none is.
    QString activeDevice;
    Pace pace;

    /// Reads a site; nothing when it is wrong, and then `error` says where and why.
    static std::optional<Site> fromFile(const QString &path, QString &error);
    static std::optional<Site> fromJson(const QByteArray &json, QString &error);

    /// Makes everything take `factor` times as long; 0 makes nothing wait.
    void scaleDurations(double factor);
    /// The hardware of every device in order, pictures drawn: about 10 ms for a million pixels.
    QVector<HardwareState> buildHardware() const;
};

} // namespace Simulation

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <simulation/simulation_global.h>

#include <QImage>
#include <QString>
#include <QStringList>

namespace Simulation {

/// Draws pictures like those in a show. On one machine, the same recipe always gives the same pixels. Any thread.
namespace PictureGenerator {

/// The names of the generators of backgrounds (opaque, Format_RGB32, with fine grain like that of a camera or renderer)
/// and of logos (Format_ARGB32, soft edges).
HOST_SIMULATION_EXPORT QStringList backgroundNames();
HOST_SIMULATION_EXPORT QStringList logoNames();

/// A null image if the name is unknown or the size is empty. A logo's text needs a QGuiApplication; without one the
/// logo shows bars instead.
HOST_SIMULATION_EXPORT QImage background(const QString &name, const QSize &size, quint32 seed);
HOST_SIMULATION_EXPORT QImage logo(const QString &name, const QSize &size, quint32 seed, const QString &text);

} // namespace PictureGenerator

} // namespace Simulation

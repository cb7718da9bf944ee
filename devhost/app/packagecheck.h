// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <simulation/hardware.h>

#include <QString>

/// Compares a package with the state of the device at the time of the save: pictures pixel by pixel, presets byte by
/// byte, and the record in the archive comment. Returns the differences; empty if there are none.
QString packageDifference(const QString &packagePath, const Simulation::HardwareState &hardware,
                          const QString &projectName, const QString &comment);

#pragma once

#include <simulation/hardware.h>

#include <QString>

/// Compares a package with what a device held when it was saved: pictures pixel by pixel, presets byte by byte,
/// and the record in the archive's comment. Returns what differs, an empty string when nothing does.
QString packageDifference(const QString &packagePath, const Simulation::HardwareState &hardware,
                          const QString &projectName, const QString &comment);

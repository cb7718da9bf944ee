// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>
#include <QVector>

#include <functional>

namespace TestData {

/// The addresses built into the packages: the source is a device that no site has, and the packages fit both targets.
constexpr const char *sourceAddress = "10.0.0.77";
constexpr const char *onlineAddress = "10.0.0.11";
constexpr const char *offlineAddress = "10.0.0.12";

/// A package with one defect, named after it. README.md states the expected outcome.
struct HostilePackage
{
    QByteArray name;
    std::function<QByteArray()> bytes;
    /// The package itself is valid: the folders it is extracted into contain links.
    bool linksInTheWay = false;
    /// Qt 5.15 leaks the arrays and objects of a member that occurs twice in an object.
    bool libraryLeaks = false;
    /// Larger than another package, otherwise the same case: what counts is what it costs.
    bool onlyLarger = false;
};

/// All of them, in the order of README.md, always with the same bytes. Generating them all takes seconds: where the
/// environment variable HOSTILE_PACKAGES names a folder that exists, they are read from there. writepackages fills it.
QVector<HostilePackage> hostilePackages();
constexpr const char *writtenPackages = "HOSTILE_PACKAGES";

/// Every n-th of them, if HOSTILE_EVERY is n in the environment; under a sanitizer without those that are only larger.
QVector<HostilePackage> shareOfHostilePackages();

/// A valid package: a background, a logo and a preset, for the targets above.
QByteArray honestPackage();

/// Where a package of hostilePackages() would write if an absolute name let it escape.
constexpr const char *absoluteEscape = "/tmp/projectfilecfg-escaped.png";

} // namespace TestData

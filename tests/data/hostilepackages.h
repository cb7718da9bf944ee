#pragma once

#include <QByteArray>
#include <QVector>

#include <functional>

namespace TestData {

/// The addresses that the packages count on: they come from a device that no site has, and fit both targets.
constexpr const char *sourceAddress = "10.0.0.77";
constexpr const char *onlineAddress = "10.0.0.11";
constexpr const char *offlineAddress = "10.0.0.12";

/// A package with one defect, which its name tells. What has to come of it stands in README.md.
struct HostilePackage
{
    QByteArray name;
    std::function<QByteArray()> bytes;
    /// The package itself is in order: it meets links in the folders into which it is extracted.
    bool linksInTheWay = false;
    /// Qt 5.15 loses the arrays and objects of a member that stands in an object twice.
    bool libraryLeaks = false;
};

/// All of them, in the order of README.md. Made anew on every run and the same on every run.
QVector<HostilePackage> hostilePackages();

/// A package without defect: a background, a logo and a preset, for the targets above.
QByteArray honestPackage();

/// Where a package of hostilePackages() would write if it got out by an absolute name.
constexpr const char *absoluteEscape = "/tmp/projectfilecfg-escaped.png";

} // namespace TestData

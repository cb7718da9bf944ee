// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/hostsettings.h>
#include <simulation/network.h>
#include <simulation/session/session.h>

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <memory>

namespace TestSupport {

/// A simulated site for one test function with its own, initially empty directories.
class SimulatedSite
{
public:
    explicit SimulatedSite(const Simulation::Site &site)
    {
        Core::HostSettings settings = Core::hostSettings();
        settings.deviceConfigFilePath = configPath();
        settings.extractJsonPath = extractPath();
        Core::applySettings(settings);
        QDir().mkpath(configPath());
        QDir().mkpath(extractPath());
        m_session = std::make_unique<Simulation::Session>(site, configPath());
        if (!m_session->error().isEmpty())
            qFatal("The site cannot be brought up: %s", qPrintable(m_session->error()));
    }

    Simulation::Session *operator->() const { return m_session.get(); }

    /// A path in the site's private folder; that folder itself without a `name`.
    QString path(const QString &name = QString()) const { return name.isEmpty() ? m_dir.path() : m_dir.filePath(name); }
    QString configPath() const { return path(QStringLiteral("devices")); }
    QString extractPath() const { return path(QStringLiteral("extracted")); }
    /// A path in the device's configuration directory; that directory itself without a `name`.
    QString devicePath(const QString &ip, const QString &name = QString()) const
    {
        const QString directory = configPath() + QLatin1Char('/') + ip;
        return name.isEmpty() ? directory : directory + QLatin1Char('/') + name;
    }

    Simulation::HardwareState hardware(const QString &ip) const { return m_session->hardware(ip)->state(); }
    /// Changes the state of an online device; the host's model follows.
    void changeHardware(const QString &ip, const std::function<void(Simulation::HardwareState &)> &change) const
    {
        m_session->hardware(ip)->change(change);
        m_session->plug(ip);
    }
    /// Removes the device from the host's list. Any thread.
    static void removeFromDeviceList(const QString &ip) { Model::DeviceList::instance()->removeDevice(ip); }

private:
    QTemporaryDir m_dir;
    std::unique_ptr<Simulation::Session> m_session;
};

/// The built-in "small" site of five devices: `mainHall`, `sideStage` and `foyer` are online, `touringRack` is offline,
/// and the model of `boothSwitcher` does not support project files. `mainHall` is the active one.
class TestSite : public SimulatedSite
{
public:
    const QString mainHall = QStringLiteral("192.168.1.11");
    const QString sideStage = QStringLiteral("192.168.1.12");
    const QString foyer = QStringLiteral("192.168.1.20");
    const QString touringRack = QStringLiteral("192.168.1.30");
    const QString boothSwitcher = QStringLiteral("192.168.1.40");

    /// Tests may modify it before the site starts.
    explicit TestSite(const std::function<void(Simulation::Site &)> &change = {})
        : SimulatedSite(builtIn(change))
    {}

private:
    static Simulation::Site builtIn(const std::function<void(Simulation::Site &)> &change)
    {
        QString error;
        auto site = Simulation::Site::fromFile(Simulation::builtInSite(QStringLiteral("small")), error);
        if (!site)
            qFatal("The built-in site cannot be read: %s", qPrintable(error));
        if (change)
            change(*site);
        return *site;
    }
};

} // namespace TestSupport

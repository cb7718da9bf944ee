// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "serailizer.h"

#include "device.h"
#include "devicelist.h"

#include <simulation/journal.h>
#include <simulation/operation.h>
#include <simulation/operations.h>

#include <QDir>
#include <QJsonDocument>
#include <QSaveFile>

namespace Model {

namespace {

bool writeDevice(const Device &device, const QString &configPath)
{
    const QString ip = device.getIPAddress();
    const QDir directory(QStringLiteral("%1/%2").arg(configPath, ip));
    if (!QDir().mkpath(directory.path()))
        return false;
    QSaveFile file(directory.filePath(ip + QLatin1String(".json")));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray description = QJsonDocument(device.toJson()).toJson();
    // QSaveFile commits an empty file if flushing its buffer failed.
    return file.write(description) == description.size() && file.flush() && file.commit();
}

} // namespace

Serailizer::Serailizer(const QString &configPath)
    : m_configPath(configPath)
{}

bool Serailizer::serailize()
{
    const Simulation::Outcome outcome =
        Simulation::beginOperation(Simulation::Operations::serailize, {{QStringLiteral("configPath"), m_configPath}});
    const DeviceList *list = DeviceList::instance();
    if (outcome != Simulation::Outcome::Done || !list)
        return false;
    bool written = true;
    for (const std::shared_ptr<Device> &device : list->getDevices())
        written = writeDevice(*device, m_configPath) && written;
    if (written)
        Simulation::Journal::instance()->recordSuccess(Simulation::Operations::serailize);
    return written;
}

} // namespace Model

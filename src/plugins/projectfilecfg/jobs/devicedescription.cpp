// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "devicedescription.h"

#include "packagereader.h"
#include "parseddescription.h"
#include "reason.h"

#include <host/core.h>
#include <host/devices.h>

#include <QBuffer>
#include <QDebug>
#include <QFile>
#include <QJsonDocument>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// Id of a device that is in no list.
constexpr quint16 unlistedDeviceId = 65535;

} // namespace

bool writeDeviceDescriptions()
{
    if (Model::Serailizer(Core::ICore::deviceConfigFilePath()).serailize())
        return true;
    qDebug() << "Fail to serailize model data.";
    return false;
}

std::shared_ptr<Model::Device> readDeviceDescription(QIODevice &device, QString &error)
{
    QJsonParseError parseError{};
    const QJsonDocument document = parseDescription(device, parseError);
    error = parseError.errorString();
    if (document.isNull() || document.isEmpty())
        return nullptr;
    auto read = std::make_shared<Model::Device>(unlistedDeviceId, nullptr);
    read->fromJson(document.object());
    return read;
}

std::shared_ptr<Model::Device> readDeviceDescription(const QString &path, QString &error)
{
    error.clear();
    if (!QFile::exists(path))
        return nullptr;
    QFile file(path);
    if (file.open(QIODevice::ReadOnly | QIODevice::Text))
        return readDeviceDescription(file, error);
    qDebug().noquote() << QStringLiteral("Open file [%1] failed").arg(path);
    return nullptr;
}

LoadResultCode readDeviceDescription(PackageReader &package, const QString &folder,
                                     std::shared_ptr<Model::Device> &device, QString *reason)
{
    QString cause;
    const QStringList extracted = package.extractJsonFiles(folder, &cause);
    if (extracted.isEmpty()) {
        failBecause(reason, cause);
        return LoadJsonFileError;
    }
    const QString entry = findDescription(package.entries());
    QByteArray description =
        extracted.first().isEmpty() ? QByteArray() : package.read(entry, PackageReader::maxSizeOf(entry), &cause);
    QBuffer buffer(&description);
    QString error;
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    device = readDeviceDescription(buffer, error);
    if (device)
        return LoadSuccess;
    failBecause(reason,
                !cause.isEmpty()
                    ? cause
                    : QStringLiteral("the description %1 is empty, too large or not JSON: %2").arg(entry, error));
    return LoadGetDeviceFailed;
}

void takeIdentity(Model::Device &description, const Model::Device &target, const QString &ip)
{
    description.setIPAddress(ip);
    description.setNetMask(target.getNetMask());
    description.setGateWay(target.getGateWay());
    description.setMAC(target.getMAC());
    description.setId(target.getId());
    description.setCommunicationProtocol(target.getCommunicationProtocolNumber());
}

} // namespace Internal
} // namespace ProjectFileCfg

#include "devicedescription.h"

#include "contentscan.h"
#include "packagelimits.h"

#include <model/device.h>

#include <QIODevice>
#include <QJsonDocument>

namespace ProjectFileCfg {
namespace Internal {

/// Id of a device that is in no list.
static const quint16 unlistedDeviceId = 65535;

static QJsonDocument parseDescription(QIODevice &device, QJsonParseError &error)
{
    if (device.size() > PackageLimits::maxParsedDescriptionSize)
        return QJsonDocument();
    const QByteArray json = QString::fromUtf8(device.readAll()).toUtf8();
    DescriptionScan scan;
    scan.feed(json.constData(), json.size());
    return scan.parts() <= PackageLimits::maxDescriptionParts ? QJsonDocument::fromJson(json, &error) : QJsonDocument();
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

} // namespace Internal
} // namespace ProjectFileCfg

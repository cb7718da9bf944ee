#include "devicedescription.h"

#include <model/device.h>

#include <QIODevice>
#include <QJsonDocument>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {

/// Id of a device that is in no list.
static const quint16 unlistedDeviceId = 65535;

/// What a description may have, so that one from elsewhere does not fill the memory: each member, element or bracket
/// takes some eighty bytes once it is parsed.
static const qint64 maxDescriptionBytes = 16 * 1024 * 1024;
static const int maxDescriptionParts = 1024 * 1024;

static QJsonDocument parseDescription(QIODevice &device, QJsonParseError &error)
{
    if (device.size() > maxDescriptionBytes)
        return QJsonDocument();
    const QByteArray json = QString::fromUtf8(device.readAll()).toUtf8();
    const auto beginsPart = [](char c) { return c == ',' || c == ':' || c == '[' || c == '{'; };
    if (std::count_if(json.begin(), json.end(), beginsPart) > maxDescriptionParts)
        return QJsonDocument();
    return QJsonDocument::fromJson(json, &error);
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

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "parseddescription.h"

#include "contentscan.h"
#include "packagelayout.h"
#include "packagelimits.h"

#include <QIODevice>
#include <QJsonDocument>

#include <algorithm>

namespace ProjectFileCfg {
namespace Internal {

QString findDescription(const QStringList &entries)
{
    const auto found = std::find_if(entries.begin(), entries.end(), PackageLayout::isDescription);
    return found == entries.end() ? QString() : *found;
}

QJsonDocument parseDescription(QIODevice &device, QJsonParseError &error)
{
    if (device.size() > PackageLimits::maxParsedDescriptionSize)
        return QJsonDocument();
    const QByteArray json = QString::fromUtf8(device.readAll()).toUtf8();
    DescriptionScan scan;
    scan.feed(json.constData(), json.size());
    return scan.parts() <= PackageLimits::maxDescriptionParts ? QJsonDocument::fromJson(json, &error) : QJsonDocument();
}

} // namespace Internal
} // namespace ProjectFileCfg

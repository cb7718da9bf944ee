// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "zippackagehandle.h"

#include <support/customsite.h>
#include <unit/packagetesting.h>

#include <QDataStream>
#include <QRandomGenerator>
#include <QTemporaryDir>

/// Packages as a save makes them, written by the product.
namespace ToolTesting {

using PackageTesting::readFile;
using PackageTesting::writeFile;

inline QByteArray presetOf(const QByteArray &detail)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << detail;
    return bytes;
}

/// A device's directory: a description, and pictures, presets and other files as the seed wills.
inline void makeDevice(const QString &dir, quint32 seed)
{
    QRandomGenerator random(seed);
    const auto upTo = [&random](int most) { return random.bounded(most + 1); };
    writeFile(dir + "/192.168.0.10.json", "{\"name\": \"main\", \"seed\": " + QByteArray::number(seed) +
                                              ", \"slots\": [" + QByteArray("1, ").repeated(upTo(500)) + "1]}");
    QDir().mkpath(dir + "/BKG");
    for (int number = upTo(4); number > 0; --number) {
        const QSize size(1 + upTo(60), 1 + upTo(60));
        writeFile(dir + QString("/BKG/BKG_%1.png").arg(upTo(255)),
                  TestSupport::pngOf(TestSupport::noisePicture(size, seed)));
        writeFile(dir + QString("/LOGO/LOGO_%1.png").arg(upTo(255)),
                  TestSupport::pngOf(TestSupport::noisePicture(size, seed, QImage::Format_ARGB32)));
    }
    for (int number = upTo(5); number > 0; --number)
        writeFile(dir + QString("/Preset/%1.RPst").arg(upTo(65535)), presetOf(QByteArray(upTo(3000), char(number))));
    if (upTo(1) == 1)
        writeFile(dir + QString::fromUtf8("/设备/说明.txt"), QByteArray("notes\n").repeated(upTo(100)));
}

/// The package of such a device; empty if it could not be made.
inline QByteArray goodPackage(quint32 seed)
{
    const QTemporaryDir dir;
    makeDevice(dir.filePath("device"), seed);
    ProjectFileCfg::Internal::EngineerPacketInfo info;
    info.strFilePath = dir.filePath("good.corvelpro");
    info.strProjectName = QString("Project%1").arg(seed);
    info.strComment = QString::fromUtf8("演出 %1\nsecond line").arg(seed);
    return ProjectFileCfg::Internal::ZipPackageHandle::compressEngineerPacket(dir.filePath("device"), info)
               ? readFile(info.strFilePath)
               : QByteArray();
}

} // namespace ToolTesting

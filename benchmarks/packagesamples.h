// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "benchmark.h"

#include "packagereader.h"
#include "zippackagehandle.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <unistd.h>
#include <zlib.h>

/// Devices and packages to measure with.
namespace Benchmark {

using ProjectFileCfg::Internal::EngineerPacketInfo;

inline void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    require(QDir().mkpath(QFileInfo(path).absolutePath()) && file.open(QIODevice::WriteOnly) &&
                file.write(bytes) == bytes.size() && file.flush(),
            "cannot write " + path);
}

inline QByteArray chunkOfPng(const char *type, const QByteArray &data)
{
    const auto bigEndian = [](quint32 value) {
        return QByteArray{}
            .append(char(value >> 24))
            .append(char(value >> 16))
            .append(char(value >> 8))
            .append(char(value));
    };
    const QByteArray body = QByteArray(type, 4) + data;
    return bigEndian(quint32(data.size())) + body +
           bigEndian(quint32(crc32(0, reinterpret_cast<const Bytef *>(body.constData()), uInt(body.size()))));
}

/// A PNG of about `size` bytes of pixels, which are noise in the bits of `noise`. In all of them: as a camera delivers
/// it, so that deflating it again gains nothing.
inline QByteArray picture(int size, quint32 seed, quint32 noise = 0xFF)
{
    const int width = 640;
    const int height = std::max(1, size / (width * 3));
    QRandomGenerator random(seed);
    QByteArray rows;
    rows.reserve(height * (width * 3 + 1));
    for (int y = 0; y < height; ++y) {
        rows.append('\0');
        for (int x = 0; x < width * 3; ++x)
            rows.append(char(random.generate() & noise));
    }
    uLongf packedSize = compressBound(uLong(rows.size()));
    QByteArray packed(int(packedSize), Qt::Uninitialized);
    compress2(reinterpret_cast<Bytef *>(packed.data()), &packedSize, reinterpret_cast<const Bytef *>(rows.constData()),
              uLong(rows.size()), 1);
    packed.truncate(int(packedSize));
    QByteArray header;
    for (quint32 value : {quint32(width), quint32(height)})
        header.append(char(value >> 24)).append(char(value >> 16)).append(char(value >> 8)).append(char(value));
    header.append(QByteArray("\x08\x02\x00\x00\x00", 5));
    return QByteArray("\x89PNG\r\n\x1A\n", 8) + chunkOfPng("IHDR", header) + chunkOfPng("IDAT", packed) +
           chunkOfPng("IEND", QByteArray());
}

/// 264 entries, 95 MB: pictures, one description, presets.
inline void makeDevice(const QString &dir)
{
    QByteArray description("{\"slots\":[");
    for (int slot = 0; slot < 2000; ++slot) {
        description +=
            QByteArray("{\"position\":%1,\"type\":3,\"model\":\"card\"},").replace("%1", QByteArray::number(slot));
    }
    writeFile(dir + "/192.168.0.10.json", description + "{}]}");
    for (int number = 0; number < 160; ++number) {
        const QString name = number < 100 ? QStringLiteral("/BKG/BKG_%1.png") : QStringLiteral("/LOGO/LOGO_%1.png");
        writeFile(dir + name.arg(number), picture(590000, quint32(number)));
    }
    for (int number = 0; number < 100; ++number) {
        writeFile(dir + QStringLiteral("/Preset/%1.RPst").arg(number),
                  QByteArray("preset data ").repeated(100 + number));
    }
}

/// Noise.
inline void makeLargeFile(const QString &path, qint64 size)
{
    QVector<quint32> block(int(4 * MiB / 4));
    QRandomGenerator random(3);
    QFile file(path);
    require(QDir().mkpath(QFileInfo(path).absolutePath()) && file.open(QIODevice::WriteOnly), "cannot write " + path);
    for (qint64 left = size; left > 0; left -= 4 * MiB) {
        random.fillRange(block.data(), block.size());
        const qint64 count = std::min(left, 4 * MiB);
        require(file.write(reinterpret_cast<const char *>(block.constData()), count) == count, "cannot write " + path);
    }
    require(file.flush(), "cannot write " + path);
}

/// Backgrounds of that total size, each within a package's limit.
inline void makeLargePictures(const QString &device, qint64 size)
{
    constexpr qint64 largest = 250LL * 1000 * 1000;
    int number = 0;
    for (qint64 left = size; left > 0; left -= largest)
        makeLargeFile(device + QStringLiteral("/BKG/BKG_%1.png").arg(++number), std::min(left, largest));
}

inline EngineerPacketInfo packageAt(const QString &path)
{
    EngineerPacketInfo info;
    info.strFilePath = path;
    info.strProjectName = "Show";
    info.strComment = "20240229_101530";
    return info;
}

inline QString megabytes(qint64 size)
{
    return QString::number(qRound(double(size) / 1e6)) + " MB";
}

inline void run(const QString &program, const QStringList &arguments)
{
    require(QProcess::execute(program, arguments) == 0, program + " failed");
}

/// Waits until the files below the folder are on the disk.
inline void flushFiles(const QString &folder)
{
    run("find", {folder, "-type", "f", "-exec", "sync", "{}", "+"});
}

/// Extracts every entry as the load job does, and returns how many.
inline int extractAll(const QString &package, const QString &folder)
{
    int count = 0;
    ProjectFileCfg::Internal::PackageReader reader(package);
    for (const QString &name : reader.fileList())
        count += reader.extractFile(name, folder + '/' + name).isEmpty() ? 0 : 1;
    return count;
}

/// A group of rows that is measured in a folder of its own.
using Group = QPair<QString, void (*)(Report &, const QString &)>;

/// Measures the wanted groups, `onlyIfNamed` only if it is named. Returns the program's exit code.
inline int measureGroups(Report &report, const QVector<Group> &groups, const QString &onlyIfNamed = QString())
{
    for (const Group &group : groups) {
        if (report.isWanted(group.first) && (group.first != onlyIfNamed || !report.wantsAll())) {
            const QTemporaryDir folder;
            group.second(report, folder.path());
        }
    }
    return report.allMet() ? 0 : 1;
}

/// `count` packages of the same content: hard links, so that both ways read from memory and the disk stays free.
inline QString linkedPackages(const QString &folder, const QString &package, int count)
{
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    for (int number = 0; number < count; ++number) {
        const QString path = folder + QStringLiteral("/Project%1.corvelpro").arg(number);
        require(::link(QFile::encodeName(package).constData(), QFile::encodeName(path).constData()) == 0,
                "cannot link " + path);
    }
    return folder;
}

} // namespace Benchmark

// Paired benchmarks of the package handle: the plain way and ours, in turn, in one run, on the same data. A time
// counts only when both ways gave the same result. Exits with 1 when a target is missed.
//
//     bench_package [packing] [checksum] [extracting] [memory]      all four without arguments

#include "packagechecksum.h"
#include "packagereader.h"
#include "zippackagehandle.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QVector>

#include <JlCompress.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>

#include <zlib.h>

using namespace ProjectFileCfg::Internal;

namespace {

constexpr qint64 MiB = 1024 * 1024;
constexpr int pairCount = 5;

[[noreturn]] void fail(const QString &why)
{
    std::fprintf(stderr, "bench_package: %s\n", qPrintable(why));
    std::exit(1);
}

void require(bool condition, const QString &why)
{
    if (!condition) {
        fail(why);
    }
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    require(QDir().mkpath(QFileInfo(path).absolutePath()) && file.open(QIODevice::WriteOnly) &&
                file.write(bytes) == bytes.size() && file.flush(),
            "cannot write " + path);
}

QByteArray chunkOfPng(const char *type, const QByteArray &data)
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

/// A PNG of about `size` bytes as a camera picture gives one: its pixels are noise, so deflating it again is vain.
QByteArray picture(int size, quint32 seed)
{
    const int width = 640;
    const int height = std::max(1, size / (width * 3));
    QRandomGenerator random(seed);
    QByteArray rows;
    rows.reserve(height * (width * 3 + 1));
    for (int y = 0; y < height; ++y) {
        rows.append('\0');
        for (int x = 0; x < width * 3; ++x) {
            rows.append(char(random.generate()));
        }
    }
    uLongf packedSize = compressBound(uLong(rows.size()));
    QByteArray packed(int(packedSize), Qt::Uninitialized);
    compress2(reinterpret_cast<Bytef *>(packed.data()), &packedSize, reinterpret_cast<const Bytef *>(rows.constData()),
              uLong(rows.size()), 1);
    packed.truncate(int(packedSize));
    QByteArray header;
    for (quint32 value : {quint32(width), quint32(height)}) {
        header.append(char(value >> 24)).append(char(value >> 16)).append(char(value >> 8)).append(char(value));
    }
    header.append(QByteArray("\x08\x02\x00\x00\x00", 5));
    return QByteArray("\x89PNG\r\n\x1A\n", 8) + chunkOfPng("IHDR", header) + chunkOfPng("IDAT", packed) +
           chunkOfPng("IEND", QByteArray());
}

/// 264 entries, 95 MB: pictures, one description, presets.
void makeDevice(const QString &dir)
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

void makeLargeFile(const QString &path, qint64 size)
{
    QVector<quint32> block(int(4 * MiB / 4));
    QRandomGenerator random(3);
    QFile file(path);
    require(QDir().mkpath(QFileInfo(path).absolutePath()) && file.open(QIODevice::WriteOnly), "cannot write " + path);
    while (file.size() < size) {
        random.fillRange(block.data(), block.size());
        require(file.write(reinterpret_cast<const char *>(block.constData()), 4 * MiB) == 4 * MiB && file.flush(),
                "cannot write " + path);
    }
}

struct Times
{
    QVector<double> milliseconds;

    double median() const
    {
        QVector<double> sorted = milliseconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted.at(sorted.size() / 2);
    }
    double least() const { return *std::min_element(milliseconds.begin(), milliseconds.end()); }
    double most() const { return *std::max_element(milliseconds.begin(), milliseconds.end()); }
};

void measure(Times &times, const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    times.milliseconds.append(double(timer.nsecsElapsed()) / 1e6);
}

void print(const char *name, const Times &times)
{
    std::printf("  %-44s median %9.2f ms   (%.2f to %.2f)\n", name, times.median(), times.least(), times.most());
}

bool judge(const char *what, double value, const char *sign, double target)
{
    const bool met = sign[0] == '>' ? value >= target : value <= target;
    std::printf("  %-44s %10.3f   target %s %.2f   %s\n", what, value, sign, target, met ? "met" : "MISSED");
    return met;
}

QByteArray contentDigest(const QString &package)
{
    QTemporaryDir out;
    const QStringList paths = JlCompress::extractDir(package, out.path());
    QCryptographicHash digest(QCryptographicHash::Md5);
    for (const QString &path : paths) {
        QFile file(path);
        digest.addData(QDir(out.path()).relativeFilePath(path).toUtf8());
        if (file.open(QIODevice::ReadOnly)) {
            digest.addData(&file);
        }
    }
    return digest.result();
}

bool benchmarkPacking(const QString &folder)
{
    std::printf("packing a device directory of 95 MB in 264 entries\n");
    const QString device = folder + "/device";
    const QString plainPath = folder + "/plain.corvelpro";
    const QString ourPath = folder + "/ours.corvelpro";
    makeDevice(device);
    Times plain;
    Times ours;
    for (int pair = 0; pair < pairCount; ++pair) {
        measure(plain, [&] { require(JlCompress::compressDir(plainPath, device, true), "plain packing failed"); });
        EngineerPacketInfo info;
        info.strFilePath = ourPath;
        measure(ours, [&] { require(ZipPackageHandle::compressEngineerPacket(device, info), "packing failed"); });
        require(ZipPackageHandle::getFileList(ourPath) == JlCompress::getFileList(plainPath), "other names");
    }
    require(contentDigest(ourPath) == contentDigest(plainPath), "other contents");
    print("JlCompress::compressDir, no record, no flush", plain);
    print("compressEngineerPacket, verified and flushed", ours);
    std::printf("  entries %d, size %lld and %lld bytes\n", ZipPackageHandle::getFileList(ourPath).size(),
                QFileInfo(plainPath).size(), QFileInfo(ourPath).size());
    const bool fast = judge("times as fast", plain.median() / ours.median(), ">=", 7);
    const bool small =
        judge("times the size", double(QFileInfo(ourPath).size()) / double(QFileInfo(plainPath).size()), "<=", 1.01);
    return fast && small;
}

/// The checksum read as it is defined: every byte of every chunk.
QString plainChecksum(const QString &path, qint64 length)
{
    QFile file(path);
    QByteArray accumulator;
    QByteArray chunk(int(PackageChecksum::chunkSize), Qt::Uninitialized);
    require(file.open(QIODevice::ReadOnly), "cannot read " + path);
    while (length > 0) {
        const qint64 count = file.read(chunk.data(), std::min(length, PackageChecksum::chunkSize));
        length -= count;
        const int end = chunk.indexOf('\0');
        accumulator +=
            QCryptographicHash::hash(chunk.left(end < 0 || end > count ? int(count) : end), QCryptographicHash::Md5)
                .toHex();
    }
    return QString::fromLatin1(QCryptographicHash::hash(accumulator, QCryptographicHash::Md5).toHex());
}

bool benchmarkChecksum(const QString &folder)
{
    std::printf("checksum of a package of 1 GB\n");
    makeLargeFile(folder + "/large/BKG/BKG_1.png", 1000 * MiB);
    EngineerPacketInfo info;
    info.strFilePath = folder + "/large.corvelpro";
    require(ZipPackageHandle::compressEngineerPacket(folder + "/large", info), "packing failed");
    const qint64 length =
        QFileInfo(info.strFilePath).size() - ZipPackageHandle::getZipComment(info.strFilePath).toUtf8().size();
    Times plain;
    Times ours;
    for (int pair = 0; pair < 7; ++pair) {
        QString expected;
        QString actual;
        measure(plain, [&] { expected = plainChecksum(info.strFilePath, length); });
        measure(ours, [&] { actual = ZipPackageHandle::calcPacketChecksum(info.strFilePath); });
        require(!actual.isEmpty() && actual == expected, "other checksum");
    }
    print("every byte read", plain);
    print("calcPacketChecksum", ours);
    return judge("times as fast", plain.median() / ours.median(), ">=", 20);
}

bool benchmarkExtracting(const QString &folder)
{
    std::printf("extracting 4,000 entries one after another\n");
    const QString device = folder + "/many";
    for (int number = 0; number < 4000; ++number) {
        writeFile(device + QStringLiteral("/Preset/%1.RPst").arg(number), QByteArray::number(number).repeated(200));
    }
    EngineerPacketInfo info;
    info.strFilePath = folder + "/many.corvelpro";
    require(ZipPackageHandle::compressEngineerPacket(device, info), "packing failed");
    Times plain;
    Times ours;
    for (int pair = 0; pair < pairCount; ++pair) {
        QTemporaryDir plainOut;
        QTemporaryDir ourOut;
        int plainCount = 0;
        int ourCount = 0;
        measure(plain, [&] { plainCount = JlCompress::extractDir(info.strFilePath, plainOut.path()).size(); });
        measure(ours, [&] {
            PackageReader reader(info.strFilePath);
            for (const QString &name : reader.fileList()) {
                ourCount += reader.extractFile(name, ourOut.path() + '/' + name).isEmpty() ? 0 : 1;
            }
        });
        require(plainCount == 4001 && ourCount == 4001, "entries are missing");
    }
    print("JlCompress::extractDir", plain);
    print("PackageReader::extractFile", ours);
    return judge("times the time", ours.median() / plain.median(), "<=", 1.3);
}

qint64 peakMemory()
{
    QFile status("/proc/self/status");
    require(status.open(QIODevice::ReadOnly), "no /proc/self/status");
    const QByteArray text = status.readAll();
    return text.mid(text.indexOf("VmHWM:") + 6, 30).simplified().split(' ').first().toLongLong() * 1024;
}

/// Runs in a process of its own, since a peak never comes down again.
int memoryStep(const QString &step, const QString &folder)
{
    EngineerPacketInfo info;
    info.strFilePath = folder + "/memory.corvelpro";
    const qint64 before = peakMemory();
    bool done = false;
    if (step == "pack") {
        done = ZipPackageHandle::compressEngineerPacket(folder + "/memory", info);
    } else if (step == "read") {
        done = ZipPackageHandle::getZipFileEngineerInfo(info);
    } else if (step == "edit") {
        const QString record = ZipPackageHandle::getZipComment(info.strFilePath);
        done = ZipPackageHandle::setZipComment(info.strFilePath, record + ' ');
    } else if (step == "extract") {
        done = ZipPackageHandle().extractDir(info.strFilePath, folder + "/memory-out", true) == 0;
    }
    require(done, step + " failed");
    std::printf("%lld", peakMemory() - before);
    return 0;
}

bool benchmarkMemory(const QString &folder)
{
    bool met = true;
    for (int size : {10, 100, 900}) {
        std::printf("memory above the start, package of %d MiB\n", size);
        QDir(folder + "/memory").removeRecursively();
        makeLargeFile(folder + "/memory/BKG/BKG_1.png", size * MiB / 2);
        makeLargeFile(folder + "/memory/other.bin", size * MiB / 2);
        for (const char *step : {"pack", "read", "edit", "extract"}) {
            QProcess process;
            process.start(QCoreApplication::applicationFilePath(), {"--memory-step", step, folder});
            require(process.waitForFinished(600000) && process.exitCode() == 0, "the measured process failed");
            met = judge(step, process.readAllStandardOutput().toDouble() / double(MiB), "<=", 64) && met;
        }
    }
    return met;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QStringList wanted = application.arguments().mid(1);
    if (wanted.value(0) == "--memory-step") {
        return memoryStep(wanted.value(1), wanted.value(2));
    }
    const QVector<QPair<QString, bool (*)(const QString &)>> benchmarks{{"packing", benchmarkPacking},
                                                                        {"checksum", benchmarkChecksum},
                                                                        {"extracting", benchmarkExtracting},
                                                                        {"memory", benchmarkMemory}};
    bool met = true;
    for (const auto &benchmark : benchmarks) {
        if (wanted.isEmpty() || wanted.contains(benchmark.first)) {
            QTemporaryDir folder;
            met = benchmark.second(folder.path()) && met;
            std::fflush(stdout);
        }
    }
    return met ? 0 : 1;
}

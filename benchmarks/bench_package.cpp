// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// The package handle against the plain way: the steps of each work with the libraries' own calls, one after another.
// Both ways run in turn on the same data; their results are compared before a time counts.
//
//     bench_package [--quick] [--rows FILE] [extracting] [packing] [packing-large] [checksum] [listing] [editing]
//     all where none is named
//
//     bench_package [--quick] [--rows FILE] growth

#include "benchmark.h"
#include "packagesamples.h"

#include "packagechecksum.h"
#include "packagereader.h"
#include "projectlist.h"
#include "zippackagehandle.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextCodec>

#include <JlCompress.h>

#include <cmath>

using namespace Benchmark;
using namespace ProjectFileCfg::Internal;

namespace {

QByteArray contentDigest(const QString &package)
{
    QTemporaryDir out;
    const QStringList paths = JlCompress::extractDir(package, out.path());
    QCryptographicHash digest(QCryptographicHash::Md5);
    for (const QString &path : paths) {
        QFile file(path);
        digest.addData(QDir(out.path()).relativeFilePath(path).toUtf8());
        if (file.open(QIODevice::ReadOnly))
            digest.addData(&file);
    }
    return digest.result();
}

/// The checksum by its definition: every byte of every chunk.
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

// ---------------------------------------------------------------------------------------------------------------------
// The plain way

QString plainComment(const QString &path)
{
    QuaZip zip(path);
    if (!zip.open(QuaZip::mdUnzip))
        return QString();
    const QString comment = zip.getComment();
    zip.close();
    return comment;
}

QString plainChecksumOfPackage(const QString &path)
{
    QuaZip zip(path);
    if (!zip.open(QuaZip::mdUnzip))
        return QString();
    return plainChecksum(path, QFileInfo(path).size() - plainComment(path).toUtf8().size());
}

bool plainRecord(EngineerPacketInfo &info)
{
    return QFileInfo::exists(info.strFilePath) &&
           ZipPackageHandle::parseEngineerInfo(info, plainComment(info.strFilePath)) &&
           info.strChecksum == plainChecksumOfPackage(info.strFilePath);
}

QList<EngineerPacketInfo> plainList(const QString &folder)
{
    QList<EngineerPacketInfo> found;
    for (const QFileInfo &entry :
         QDir(folder).entryInfoList({"*.corvelpro"}, QDir::Dirs | QDir::Files | QDir::Drives, QDir::Time)) {
        EngineerPacketInfo info;
        info.strFilePath = entry.filePath();
        if (plainRecord(info)) {
            info.strProjectName = entry.baseName();
            found.append(info);
        }
    }
    return found;
}

bool plainPack(const QString &device, EngineerPacketInfo &info)
{
    if (!JlCompress::compressDir(info.strFilePath, device, true))
        return false;
    info.strChecksum = plainChecksumOfPackage(info.strFilePath);
    QuaZip zip(info.strFilePath);
    if (!zip.open(QuaZip::mdAdd))
        return false;
    zip.setComment(QString::fromUtf8(QJsonDocument(QJsonObject{{"Checksum", info.strChecksum},
                                                               {"projectName", info.strProjectName},
                                                               {"comment", info.strComment}})
                                         .toJson()));
    zip.close();
    return true;
}

// ---------------------------------------------------------------------------------------------------------------------

void packing(Report &report, const QString &folder, const QString &device, double faster)
{
    EngineerPacketInfo plain = packageAt(folder + "/plain.corvelpro");
    EngineerPacketInfo ours = packageAt(folder + "/ours.corvelpro");
    qint64 plainSize = 0;
    qint64 ourSize = 0;
    const Pair times = inTurn(
        report.pairs(), [&] { require(plainPack(device, plain), "plain packing failed"); },
        [&] { require(ZipPackageHandle::compressEngineerPacket(device, ours), "packing failed"); },
        [&] {
            // Each way accepts the other's record and checksum.
            EngineerPacketInfo read = packageAt(ours.strFilePath);
            require(plainRecord(read) && ZipPackageHandle::isValidEngineerPacket(plain.strFilePath),
                    "a checksum is wrong");
            require(ZipPackageHandle::getFileList(ours.strFilePath) == JlCompress::getFileList(plain.strFilePath),
                    "other names");
            if (ourSize == 0)
                require(contentDigest(ours.strFilePath) == contentDigest(plain.strFilePath), "other contents");
            ourSize = QFileInfo(ours.strFilePath).size();
            plainSize = QFileInfo(plain.strFilePath).size();
            QFile::remove(ours.strFilePath);
            QFile::remove(plain.strFilePath);
        });
    const QString what = "pack " + megabytes(ourSize);
    report.faster(what, "compressDir, then the record", times, faster);
    report.atMost("  its size, times that of the plain way", double(ourSize) / double(plainSize), "", 1.01);
}

void packing(Report &report, const QString &folder)
{
    makeDevice(folder + "/device");
    packing(report, folder, folder + "/device", 10);
}

void packingLarge(Report &report, const QString &folder)
{
    if (report.isQuick())
        return;
    makeLargePictures(folder + "/large", 925LL * 1000 * 1000);
    packing(report, folder, folder + "/large", 15);
}

/// Bytes this process has read so far, from cached files too.
qint64 bytesRead()
{
    QFile counters("/proc/self/io");
    require(counters.open(QIODevice::ReadOnly), "no /proc/self/io");
    return counters.readLine().split(' ').last().trimmed().toLongLong();
}

void checksum(Report &report, const QString &folder)
{
    const qint64 size = (report.isQuick() ? 92 : 925) * 1000LL * 1000;
    makeLargePictures(folder + "/large", size);
    EngineerPacketInfo info = packageAt(folder + "/large.corvelpro");
    require(ZipPackageHandle::compressEngineerPacket(folder + "/large", info), "packing failed");
    QString expected;
    QString actual;
    qint64 read = 0;
    const Pair times = inTurn(
        report.pairs() + 2, [&] { expected = plainChecksumOfPackage(info.strFilePath); },
        [&] {
            const qint64 before = bytesRead();
            actual = ZipPackageHandle::calcPacketChecksum(info.strFilePath);
            read = bytesRead() - before;
        },
        [&] { require(!actual.isEmpty() && actual == expected, "other checksum"); });
    const double chunks = std::ceil(double(QFileInfo(info.strFilePath).size()) / double(PackageChecksum::chunkSize));
    report.faster("checksum of " + megabytes(size), "every byte read", times, report.isQuick() ? 3 : 30);
    report.atMost("  read for each 10 MiB", double(read) / chunks / double(KiB), "KiB", 128);
}

void listing(Report &report, const QString &packages, const QString &what, int count, double faster)
{
    QList<EngineerPacketInfo> expected;
    QList<EngineerPacketInfo> actual;
    const auto content = [](const QList<EngineerPacketInfo> &list) {
        QStringList lines;
        for (const EngineerPacketInfo &info : list)
            lines << info.strFilePath << info.strProjectName << info.strComment << info.strChecksum;
        return lines;
    };
    const Pair times = inTurn(
        report.pairs(), [&] { expected = plainList(packages); },
        [&] {
            ProjectList list;
            list.scanProjectFiles(packages, list.beginScan());
            actual = list.listProjects;
        },
        [&] { require(actual.size() == count && content(actual) == content(expected), "another list"); });
    report.faster(what, "three times opened, every byte read", times, faster);
}

void listing(Report &report, const QString &folder)
{
    for (int number = 0; number < 2; ++number)
        writeFile(folder + QStringLiteral("/small/BKG/BKG_%1.png").arg(number), picture(600000, quint32(number)));
    EngineerPacketInfo small = packageAt(folder + "/small.zip");
    require(ZipPackageHandle::compressEngineerPacket(folder + "/small", small), "packing failed");
    listing(report, linkedPackages(folder + "/thousand", small.strFilePath, 1000),
            "list 1,000 packages of 1.2 MB, cold", 1000, 3);
    makeDevice(folder + "/device");
    EngineerPacketInfo large = packageAt(folder + "/large.zip");
    require(ZipPackageHandle::compressEngineerPacket(folder + "/device", large), "packing failed");
    const int count = report.isQuick() ? 20 : 100;
    listing(report, linkedPackages(folder + "/hundred", large.strFilePath, count),
            QStringLiteral("list %1 packages of 95 MB, cold").arg(count), count, 20);
}

void extracting(Report &report, const QString &folder, const QString &device, int files)
{
    EngineerPacketInfo info = packageAt(folder + "/package.corvelpro");
    require(ZipPackageHandle::compressEngineerPacket(device, info), "packing failed");
    int plainCount = 0;
    int ourCount = 0;
    // All copies stay until the end: ext4 creates files slowly right after many were removed.
    int pair = 1;
    const auto target = [&](const char *way) { return folder + '/' + way + QString::number(files * 100 + pair); };
    // As many in the quick form: the time to create files varies much, and a pair takes less than a second.
    constexpr int pairs = 5;
    const Pair times = inTurn(
        pairs, [&] { plainCount = JlCompress::extractDir(info.strFilePath, target("plain")).size(); },
        [&] { ourCount = extractAll(info.strFilePath, target("ours")); },
        [&] {
            require(plainCount == ourCount && ourCount > files, "entries are missing");
            run("diff", {"-r", target("plain"), target("ours")});
            ++pair;
        });
    report.within(QStringLiteral("extract %1 entries as the load job does").arg(ourCount), "one extractDir pass", times,
                  1.3);
}

void extracting(Report &report, const QString &folder)
{
    makeDevice(folder + "/device");
    extracting(report, folder, folder + "/device", 250);
    for (int number = 0; number < 4000; ++number)
        writeFile(folder + QStringLiteral("/many/Preset/%1.RPst").arg(number),
                  QByteArray::number(number).repeated(200));
    extracting(report, folder, folder + "/many", 4000);
}

void editing(Report &report, const QString &folder, qint64 size)
{
    makeLargePictures(folder + "/edited", size);
    EngineerPacketInfo info = packageAt(folder + "/edited.corvelpro");
    require(ZipPackageHandle::compressEngineerPacket(folder + "/edited", info), "packing failed");
    QDir(folder + "/edited").removeRecursively();
    const QString record = ZipPackageHandle::getZipComment(info.strFilePath);
    const QString copy = folder + "/copy.corvelpro";
    int round = 0;
    const auto edit = [&] {
        require(ZipPackageHandle::setZipComment(info.strFilePath, record + QString(++round, ' ')), "editing failed");
    };
    const auto check = [&] {
        QFile::remove(copy);
        require(ZipPackageHandle::getZipComment(info.strFilePath) == record + QString(round, ' ') &&
                    ZipPackageHandle::isValidEngineerPacket(info.strFilePath),
                "another comment");
    };
    const QString what = "edit the comment of " + megabytes(size);
    const auto copyWith = [&](const QString &command) {
        return [&, command] { run("sh", {"-c", command, info.strFilePath, copy}); };
    };
    const Pair times = inTurn(report.pairs(), copyWith("cp --reflink=never \"$0\" \"$1\" && sync \"$1\""), edit, check);
    report.faster(what + ", where it lies", "cp and sync of a copy", times, 10);
    // The window waits for an edit.
    report.atMost(what + ", where it lies", times.ours.median(), "ms", 10);
    QFile::remove(info.strFilePath);
}

void editing(Report &report, const QString &folder)
{
    editing(report, folder, 95 * 1000 * 1000);
    if (!report.isQuick())
        editing(report, folder, 925 * 1000 * 1000);
}

qint64 peakMemory()
{
    QFile status("/proc/self/status");
    require(status.open(QIODevice::ReadOnly), "no /proc/self/status");
    const QByteArray text = status.readAll();
    return text.mid(text.indexOf("VmHWM:") + 6, 30).simplified().split(' ').first().toLongLong() * 1024;
}

/// Half pictures, half compressible data; no file exceeds a reader's limit.
void makeMemoryFolder(const QString &folder, qint64 size)
{
    constexpr qint64 largest = 250LL * 1000 * 1000;
    QDir(folder + "/memory").removeRecursively();
    for (const QString &name : {QStringLiteral("/memory/BKG/BKG_%1.png"), QStringLiteral("/memory/%1.bin")}) {
        int number = 0;
        for (qint64 left = size / 2; left > 0; left -= largest)
            makeLargeFile(folder + name.arg(++number), std::min(left, largest));
    }
}

/// Runs in a process of its own: peak memory never goes down.
int memoryStep(const QString &step, const QString &folder)
{
    EngineerPacketInfo info = packageAt(folder + "/memory.corvelpro");
    const qint64 before = peakMemory();
    bool done = false;
    QElapsedTimer timer;
    timer.start();
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
    const double time = double(timer.nsecsElapsed()) / 1e6;
    require(done, step + " failed");
    std::printf("%lld %f", peakMemory() - before, time);
    return 0;
}

/// Memory above the start in MiB, and milliseconds.
QPair<double, double> measuredStep(const QString &step, const QString &folder)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {"--memory-step", step, folder});
    require(process.waitForFinished(600000) && process.exitCode() == 0,
            "the measured process failed: " + QString::fromLocal8Bit(process.readAllStandardError()));
    const QList<QByteArray> values = process.readAllStandardOutput().split(' ');
    return {values.value(0).toDouble() / double(MiB), values.value(1).toDouble()};
}

/// A plain copy of the same data: shows what the disk does to large files and what a virtual machine pays for memory
/// from its host.
struct PlainCopy
{
    const char *work;
    const char *command;
};
const PlainCopy copyOfPackage{"cp and sync of a package, for comparison",
                              "cp \"$0/memory.corvelpro\" \"$0/copy\" && sync \"$0/copy\""};
const PlainCopy copyOfContent{"cp -r of its content, for comparison", "cp -r \"$0/memory\" \"$0/copy\""};

using Points = QHash<QString, QVector<QVector<double>>>;

/// Adds a point of `size` MB to each work: the median time, and the most memory above the start.
void measureSteps(const QString &folder, int size, Points &points)
{
    QHash<QString, Times> times;
    QHash<QString, double> memory;
    const auto remove = [&folder] {
        QDir(folder + "/copy").removeRecursively();
        QFile::remove(folder + "/copy");
        QDir(folder + "/memory-out").removeRecursively();
    };
    const auto step = [&](const char *name) {
        ::sync();
        const QPair<double, double> measured = measuredStep(QLatin1String(name), folder);
        const QString work = QLatin1String(name) + QStringLiteral(" a package");
        memory[work] = std::max(memory.value(work), measured.first);
        times[work].milliseconds.append(measured.second);
    };
    const auto copy = [&](const PlainCopy &plain) {
        times[QLatin1String(plain.work)].milliseconds.append(settledMillisecondsOf([&] {
            run("sh", {"-c", plain.command, folder});
        }));
        remove();
    };
    constexpr int rounds = 3;
    step("pack");
    for (int round = 0; round < rounds; ++round) {
        step("read");
        step("edit");
        copy(copyOfPackage);
        step("extract");
        remove();
        copy(copyOfContent);
    }
    for (auto work = times.constBegin(); work != times.constEnd(); ++work)
        points[work.key()].append({double(size), work->median(), memory.value(work.key())});
}

/// The time to refuse an 8 GB tree of pictures, all of it sparse files.
double refusal(const QString &folder)
{
    for (int number = 0; number < 4; ++number) {
        const QString path = folder + QStringLiteral("/beyond/BKG/BKG_%1.png").arg(number);
        writeFile(path, QByteArray());
        require(QFile::resize(path, 2000LL * 1000 * 1000), "cannot write " + path);
    }
    EngineerPacketInfo info = packageAt(folder + "/beyond.corvelpro");
    const double time = millisecondsOf(
        [&] { require(!ZipPackageHandle::compressEngineerPacket(folder + "/beyond", info), "8 GB were packed"); });
    require(!QFileInfo::exists(info.strFilePath), "something was written");
    return time;
}

/// Time and memory from a small package up to one just below 4 GB, the limit of the format without ZIP64.
void growth(Report &report, const QString &folder)
{
    Points points;
    QVector<int> sizes{1, 10, 100, 400};
    if (!report.isQuick())
        sizes << 1000 << 4000;
    for (int size : sizes) {
        makeMemoryFolder(folder, size * 1000LL * 1000);
        measureSteps(folder, size, points);
    }
    QFile::remove(folder + "/memory.corvelpro");
    QDir(folder + "/memory").removeRecursively();
    double most = 0;
    for (const QString &work : {QStringLiteral("pack a package"), QStringLiteral("read a package"),
                                QStringLiteral("edit a package"), QString::fromLatin1(copyOfPackage.work),
                                QStringLiteral("extract a package"), QString::fromLatin1(copyOfContent.work)}) {
        for (const QVector<double> &point : points.value(work))
            most = std::max(most, point.last());
        report.growth(work, "MB", points.value(work));
    }
    report.atMost("a tree of 8 GB is refused after", refusal(folder), "ms", 1000);
    report.atMost("most memory above the start, package of any size", most, "MiB", 64);

    EngineerPacketInfo info = packageAt(folder + "/tiny.zip");
    writeFile(folder + "/tiny/device.json", "{}");
    require(ZipPackageHandle::compressEngineerPacket(folder + "/tiny", info), "packing failed");
    QVector<QVector<double>> lists;
    for (int count : {10, 100, 1000, 10000}) {
        const QString packages = linkedPackages(folder + "/list", info.strFilePath, count);
        Times times;
        for (int run = 0; run < 3; ++run) {
            times.milliseconds.append(millisecondsOf([&] {
                ProjectList list;
                list.scanProjectFiles(packages, list.beginScan());
                require(list.listProjects.size() == count, "packages are missing");
            }));
        }
        lists.append({double(count), times.median()});
    }
    report.growth("list packages, cold", "files", lists);

    QVector<QVector<double>> presets;
    // With the description and the folder, the most entries an archive without ZIP64 holds.
    constexpr int mostPresets = 65532;
    writeFile(folder + "/presets/device.json", "{}");
    QDir().mkpath(folder + "/presets/Preset");
    int made = 0;
    const auto makePresets = [&](int count) {
        for (; made < count; ++made)
            writeFile(folder + QStringLiteral("/presets/Preset/%1.RPst").arg(made), QByteArray(100, 'p'));
    };
    for (int count : {0, 1000, 10000, mostPresets}) {
        makePresets(count);
        presets.append({double(count), millisecondsOf([&] {
                            require(ZipPackageHandle::compressEngineerPacket(folder + "/presets", info),
                                    "packing failed");
                        })});
    }
    report.growth("pack presets", "presets", presets);
    makePresets(65535);
    require(!ZipPackageHandle::compressEngineerPacket(folder + "/presets", info), "65,535 presets were packed");
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == "--memory-step")
        return memoryStep(arguments.value(2), arguments.value(3));
    Report report(arguments);
    return measureGroups(report,
                         {{"extracting", extracting},
                          {"packing", packing},
                          {"packing-large", packingLarge},
                          {"checksum", checksum},
                          {"listing", listing},
                          {"editing", editing},
                          {"growth", growth}},
                         "growth");
}

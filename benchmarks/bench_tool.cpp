// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// The command-line tool against the programs that one would use without it, each as a process of its own. Both ways run
// in turn on the same files.
//
//     bench_tool [--quick] [--rows FILE] [verify] [list] [diff]      all where none is named

#include "benchmark.h"
#include "packagesamples.h"

#include "copying/dropfrommemory.h"
#include "projectlist.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QTextCodec>

using namespace Benchmark;
using namespace ProjectFileCfg::Internal;

namespace {

const QString tool = QStringLiteral(CORVELPRO_PROGRAM);

/// Runs the program without its output; that it ends with `code` is required.
std::function<void()> running(const QString &program, const QStringList &arguments, int code = 0)
{
    return [=] {
        QProcess process;
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(program, arguments);
        require(process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit &&
                    process.exitCode() == code,
                program + " failed");
    };
}

/// Reads the files as fast as the system can.
std::function<void()> reading(const QStringList &files)
{
    return running("cat", files);
}

/// Has the system forget the file, so that it is read from the disk. False if it cannot confirm that.
bool forget(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && Corvelpro::dropFromMemory(file.handle(), file.size());
}

/// As inTurn(), each time from the disk. No times if the system does not read it from there: in memory, for instance.
Pair inTurnFromDisk(int pairs, const QString &path, const std::function<void()> &plain,
                    const std::function<void()> &ours)
{
    Pair times;
    // What is written is flushed before it can be forgotten.
    for (::sync(); pairs > 0 && forget(path); --pairs) {
        times.plain.milliseconds.append(settledMillisecondsOf(plain));
        require(forget(path), "cannot forget " + path);
        times.ours.milliseconds.append(settledMillisecondsOf(ours));
    }
    return times;
}

/// The most memory that the program takes, in MiB. Measured by a small process: what this one has would count too.
double peakMemory(const QStringList &arguments)
{
    QProcess process;
    process.start("python3", QStringList{"-c",
                                         "import resource, subprocess, sys\n"
                                         "subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL)\n"
                                         "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)",
                                         tool} +
                                 arguments);
    require(process.waitForFinished(-1) && process.exitCode() == 0, "the measuring process failed");
    return process.readAllStandardOutput().trimmed().toDouble() / 1024;
}

/// A package of pictures with `size` bytes of pixels together, which are noise in the bits of `noise`.
QString packageOfPictures(const QString &folder, qint64 size, quint32 noise)
{
    const QString device = folder + "/device";
    constexpr int each = 1800 * 1000;
    writeFile(device + "/192.168.0.10.json", "{}");
    int number = 0;
    for (qint64 left = size; left > 0; left -= each, ++number) {
        const QString name = number < 256 ? QStringLiteral("/BKG/BKG_%1.png") : QStringLiteral("/LOGO/LOGO_%1.png");
        writeFile(device + name.arg(number % 256), picture(each, quint32(number), noise));
    }
    EngineerPacketInfo info = packageAt(folder + QStringLiteral("/%1.corvelpro").arg(noise));
    require(ZipPackageHandle::compressEngineerPacket(device, info), "packing failed");
    QDir(device).removeRecursively();
    return info.strFilePath;
}

void verify(Report &report, const QString &folder)
{
    const qint64 size = (report.isQuick() ? 92 : 920) * 1000LL * 1000;
    const QString file = packageOfPictures(folder, size, 0xFF);
    const QString what = "corvelpro verify, " + megabytes(QFileInfo(file).size());
    const auto ours = running(tool, {"verify", "--quiet", file});
    reading({file})();
    report.faster(what, "unzip -t", inTurn(report.pairs(), running("unzip", {"-tqq", file}), ours), 1);
    report.related(what, "7z t", inTurn(report.pairs(), running("7z", {"t", "-tzip", file}), ours));
    report.within(what + ", in memory", "two readings of it", inTurn(report.pairs(), reading({file, file}), ours), 1);
    const Pair fromDisk = inTurnFromDisk(report.pairs(), file, reading({file}), ours);
    if (fromDisk.ours.milliseconds.isEmpty()) {
        std::printf("%s from the disk: not measured, %s is on none\n", qPrintable(what), qPrintable(file));
    } else {
        report.within(what + ", from the disk", "one reading of it", fromDisk, 2);
        report.told("  two readings take longer from a disk below",
                    2 * double(QFileInfo(file).size()) / 1e3 / fromDisk.ours.median(), "MB/s");
    }
    report.atMost("  its memory above the start", peakMemory({"verify", "--quiet", file}) - peakMemory({"--version"}),
                  "MiB", 64);

    // Three random bits of eight.
    const QString soft = packageOfPictures(folder, size / 4, 7);
    report.related(
        QStringLiteral("corvelpro verify, %1 of pictures packed to %2")
            .arg(megabytes(size / 4), megabytes(QFileInfo(soft).size())),
        "unzip -t",
        inTurn(report.pairs(), running("unzip", {"-tqq", soft}), running(tool, {"verify", "--quiet", soft})));
}

void list(Report &report, const QString &folder)
{
    for (int number = 0; number < 2; ++number)
        writeFile(folder + QStringLiteral("/small/BKG/BKG_%1.png").arg(number), picture(600000, quint32(number)));
    EngineerPacketInfo small = packageAt(folder + "/small.zip");
    require(ZipPackageHandle::compressEngineerPacket(folder + "/small", small), "packing failed");
    const QString packages = linkedPackages(folder + "/thousand", small.strFilePath, 1000);
    const auto scan = [&] {
        ProjectList projects;
        projects.scanProjectFiles(packages, projects.beginScan());
        require(projects.listProjects.size() == 1000, "another list");
    };
    report.within("corvelpro list, 1,000 packages of 1.2 MB", "the panel's scan",
                  inTurn(report.pairs() + 2, scan, running(tool, {"list", packages})), 1.2);
}

void diff(Report &report, const QString &folder)
{
    makeDevice(folder + "/device");
    EngineerPacketInfo a = packageAt(folder + "/a.corvelpro");
    EngineerPacketInfo b = packageAt(folder + "/b.corvelpro");
    require(ZipPackageHandle::compressEngineerPacket(folder + "/device", a), "packing failed");
    writeFile(folder + "/device/192.168.0.10.json", "{\"slots\":[]}");
    require(ZipPackageHandle::compressEngineerPacket(folder + "/device", b), "packing failed");
    const QStringList both{a.strFilePath, b.strFilePath};
    const QString what = "corvelpro diff, two packages of " + megabytes(QFileInfo(a.strFilePath).size());
    const auto ours = running(tool, QStringList{"diff", "--quiet"} + both, 1);
    reading(both)();
    report.within(what, "reading both", inTurn(report.pairs(), reading(both), ours), 3);
    // cmp ends at the first difference, so it gets two equal files.
    const QString copy = folder + "/copy.corvelpro";
    require(QFile::copy(a.strFilePath, copy), "cannot copy");
    report.related(what, "cmp of a file and its copy",
                   inTurn(report.pairs(), running("cmp", {a.strFilePath, copy}), ours));
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    Report report(application.arguments());
    return measureGroups(report, {{"verify", verify}, {"list", list}, {"diff", diff}});
}

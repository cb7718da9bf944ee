// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// What the disk decides: packing, copying, extracting and editing against the system's own programs. Both ways run in
// turn and end when their files are on the disk; what they wrote is compared before a time counts.
//
//     bench_disk [--quick] [--rows FILE] [pack] [pack-large] [pack-library] [save-as] [import] [extract] [edit]
//     all where none is named
//
//     bench_disk [--rows FILE] slow      with TMPDIR on a slow disk: benchmarks/slow-disk makes one

#include "benchmark.h"
#include "packagesamples.h"

#include "projectcopies.h"

#include <QCoreApplication>
#include <QTextCodec>

#include <quazip.h>
#include <quazipfile.h>
#include <quazipnewinfo.h>

using namespace Benchmark;
using namespace ProjectFileCfg::Internal;

namespace {

constexpr qint64 largeSize = 925LL * 1000 * 1000;

/// Runs the command with these arguments as $0, $1 and so on.
void shell(const QString &command, const QStringList &arguments)
{
    run("sh", QStringList{"-c", command} + arguments);
}

void pack(const QString &folder, const QString &package)
{
    EngineerPacketInfo info = packageAt(package);
    require(ZipPackageHandle::compressEngineerPacket(folder, info), "packing failed");
}

/// A package of that size; the files in it are removed.
QString packageOf(const QString &folder, qint64 size)
{
    const QString content = folder + "/content";
    const QString package = folder + "/package.corvelpro";
    makeLargePictures(content, size);
    pack(content, package);
    QDir(content).removeRecursively();
    return package;
}

// ---------------------------------------------------------------------------------------------------------------------

/// For rows in which one way needs other parts of the machine than the other: a busy host does not slow both down at
/// the same moments, and the median of five pairs varied by a quarter from run to run.
constexpr int manyPairs = 15;

/// Packing against copying the same files. `limit` and `pairs` are for the copy that is on the disk when it ends, as
/// the package is.
void packing(Report &report, const QString &folder, const QString &device, const QString &what, double limit, int pairs)
{
    const QString package = folder + "/ours.corvelpro";
    // Copies stay until the end: ext4 creates files slowly right after many were removed.
    int copies = 0;
    const auto copyPath = [&] { return folder + "/copies/" + QString::number(copies); };
    QDir().mkpath(folder + "/copies");
    const auto copy = [&] {
        ++copies;
        run("cp", {"-r", device, copyPath()});
    };
    const auto ours = [&] { pack(device, package); };
    const auto check = [&] {
        // The ways do not differ from pair to pair, and unpacking empties the memory.
        if (copies == 1) {
            run("unzip", {"-q", package, "-d", folder + "/unpacked"});
            run("diff", {"-r", folder + "/unpacked", copyPath()});
            QDir(folder + "/unpacked").removeRecursively();
        }
        require(ZipPackageHandle::isValidEngineerPacket(package), "a checksum is wrong");
        QFile::remove(package);
    };
    const auto flushedCopy = [&] {
        copy();
        flushFiles(copyPath());
    };
    report.within(what, "cp -r and sync of the files", inTurn(pairs, flushedCopy, ours, check), limit);
    report.related(what, "cp -r, not flushed", inTurn(report.pairs(), copy, ours, check));
}

void packing(Report &report, const QString &folder)
{
    makeDevice(folder + "/device");
    packing(report, folder, folder + "/device", "pack 94 MB", 1, report.isQuick() ? report.pairs() : manyPairs);
}

void packingLarge(Report &report, const QString &folder)
{
    if (report.isQuick())
        return;
    makeLargePictures(folder + "/large", largeSize);
    packing(report, folder, folder + "/large", "pack " + megabytes(largeSize), 1, report.pairs());
}

/// Accepts everything written and keeps nothing.
class Nothing : public QIODevice
{
public:
    Nothing() { open(QIODevice::WriteOnly | QIODevice::Unbuffered); }

    bool isSequential() const override { return false; }
    qint64 size() const override { return m_size; }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 size) override
    {
        m_size = std::max(m_size, pos() + size);
        return size;
    }

private:
    qint64 m_size = 0;
};

/// The lower bound for every user of the zip library: the library alone, without a file to read or write.
void storeIntoNothing(qint64 size)
{
    const QByteArray block(int(256 * KiB), 'x');
    Nothing nothing;
    QuaZip zip(&nothing);
    zip.setAutoClose(false);
    require(zip.open(QuaZip::mdCreate), "the zip library failed");
    QuaZipFile entry(&zip);
    require(entry.open(QIODevice::WriteOnly, QuaZipNewInfo("BKG/BKG_1.png"), nullptr, 0, 0), "the zip library failed");
    for (qint64 left = size; left > 0; left -= block.size())
        entry.write(block.constData(), std::min<qint64>(left, block.size()));
    entry.close();
    zip.close();
    require(zip.getZipError() == UNZ_OK && nothing.size() > size, "the zip library failed");
}

void packingAgainstLibrary(Report &report, const QString &folder)
{
    if (report.isQuick())
        return;
    const QString large = folder + "/large";
    const QString package = folder + "/ours.corvelpro";
    makeLargePictures(large, largeSize);
    const auto library = [] { storeIntoNothing(largeSize); };
    const auto ours = [&] { pack(large, package); };
    const auto check = [&] {
        require(ZipPackageHandle::isValidEngineerPacket(package), "a checksum is wrong");
        QFile::remove(package);
    };
    report.within("pack " + megabytes(largeSize), "zip library alone, into nothing",
                  inTurn(manyPairs, library, ours, check), 1.4);
}

using CopyOne = QString (*)(const QString &source, const QString &folder);

QString saveAs(const QString &source, const QString &folder)
{
    return ProjectCopies::saveAsConcurrent({source}, folder, true, std::make_shared<TranslatedText>());
}

QString import(const QString &source, const QString &folder)
{
    return ProjectCopies::importProjectFiles({source}, folder + '/', std::make_shared<TranslatedText>());
}

void copying(Report &report, const QString &folder, const QString &what, qint64 size, CopyOne copyOne)
{
    const QString source = packageOf(folder, size);
    const QString plain = folder + "/plain.corvelpro";
    const QString ours = folder + "/copies/package.corvelpro";
    QDir().mkpath(folder + "/copies");
    report.within(what + ' ' + megabytes(size), "cp and sync of it",
                  inTurn(
                      report.pairs(),
                      [&] {
                          shell("cp --reflink=never \"$0\" \"$1\" && sync \"$1\"", {source, plain});
                      },
                      [&] { require(copyOne(source, folder + "/copies").isEmpty(), what + " failed"); },
                      [&] {
                          run("cmp", {source, plain});
                          run("cmp", {source, ours});
                          QFile::remove(plain);
                          QFile::remove(ours);
                      }),
                  1.1);
}

qint64 packageSize(const Report &report)
{
    return report.isQuick() ? largeSize / 10 : largeSize;
}

void savingAs(Report &report, const QString &folder)
{
    copying(report, folder, "save as of", packageSize(report), saveAs);
}

void importing(Report &report, const QString &folder)
{
    copying(report, folder, "import of", packageSize(report), import);
}

void extracting(Report &report, const QString &folder)
{
    const QString package = packageOf(folder, packageSize(report));
    const QString plain = folder + "/plain";
    const QString ours = folder + "/ours";
    const Pair times = inTurn(
        report.pairs(),
        [&] {
            run("unzip", {"-q", package, "-d", plain});
            flushFiles(plain);
        },
        // Extracting does not wait for the disk, since the files can be extracted again: this row has it wait.
        [&] {
            extractAll(package, ours);
            flushFiles(ours);
        },
        [&] {
            run("diff", {"-r", plain, ours});
            QDir(plain).removeRecursively();
            QDir(ours).removeRecursively();
        });
    report.within("extract " + megabytes(packageSize(report)) + ", then sync of the files",
                  "unzip and sync of the files", times, 1.2);
}

void editing(Report &report, const QString &folder)
{
    const QString package = packageOf(folder, packageSize(report));
    const QString copy = folder + "/copy.corvelpro";
    const QString record = ZipPackageHandle::getZipComment(package);
    int edits = 0;
    const auto edited = [&] { return record + QString(edits, ' '); };
    const Pair times = inTurn(
        report.pairs(),
        [&] {
            run("cp", {"--reflink=never", package, copy});
        },
        [&] {
            ++edits;
            require(ZipPackageHandle::setZipComment(package, edited()), "editing failed");
        },
        [&] {
            require(ZipPackageHandle::getZipComment(package) == edited() &&
                        ZipPackageHandle::isValidEngineerPacket(package),
                    "another comment");
            QFile::remove(copy);
        });
    const QString what = "edit the comment of " + megabytes(packageSize(report));
    // The three flushes of an edit take the same time at any size.
    if (report.isQuick())
        report.related(what, "cp of it, not flushed", times);
    else
        report.within(what, "cp of it, not flushed", times, 0.02);
}

/// On a slow disk the time is the disk's.
void onSlowDisk(Report &report, const QString &folder)
{
    makeDevice(folder + "/device");
    packing(report, folder, folder + "/device", "pack 94 MB", 1.1, report.pairs());
    QDir(folder + "/copies").removeRecursively();
    QDir(folder + "/device").removeRecursively();
    copying(report, folder, "save as of", largeSize / 10, saveAs);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    Report report(application.arguments());
    return measureGroups(report,
                         {{"pack", packing},
                          {"pack-large", packingLarge},
                          {"pack-library", packingAgainstLibrary},
                          {"save-as", savingAs},
                          {"import", importing},
                          {"extract", extracting},
                          {"edit", editing},
                          {"slow", onSlowDisk}},
                         "slow");
}

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// How much of the page cache large packages take from others. Only what the system tells is judged, not how long it
// takes.
//
//     bench_memory [--quick] [--rows FILE] [bounded] [kept] [crowded]      all where none is named; needs 13 GB of disk

#include "benchmark.h"
#include "cachedfiles.h"
#include "packagesamples.h"

#include "packagesnapshot.h"
#include "projectcopies.h"

#include <QCoreApplication>
#include <QTextCodec>

using namespace Benchmark;
using namespace ProjectFileCfg::Internal;

namespace {

/// The folder of a run: `content` is packed to `package.corvelpro`; what an operation makes lies in `made`.
class Ground
{
public:
    explicit Ground(const QString &folder)
        : m_folder(folder)
    {}

    QString folder() const { return m_folder; }
    QString content() const { return m_folder + "/content"; }
    QString package() const { return m_folder + "/package.corvelpro"; }
    QString made() const { return m_folder + "/made"; }

    /// Pictures of that size together, all of them the same: one is a real picture, and the system does not know.
    void fill(qint64 size) const
    {
        const QByteArray large = picture(int(8 * MiB), 1);
        writeFile(content() + "/192.168.0.10.json", "{}");
        int number = 0;
        for (qint64 left = size; left > 0; left -= large.size(), ++number) {
            const QString name = number < 256 ? QStringLiteral("/BKG/BKG_%1.png") : QStringLiteral("/LOGO/LOGO_%1.png");
            writeFile(content() + name.arg(number % 256), large);
        }
        EngineerPacketInfo info = packageAt(package());
        require(ZipPackageHandle::compressEngineerPacket(content(), info), "packing failed");
    }
    void clear() const
    {
        QDir(made()).removeRecursively();
        require(QDir().mkpath(made()), "cannot make " + made());
    }

private:
    const QString m_folder;
};

// ---------------------------------------------------------------------------------------------------------------------
// The operations

void pack(const Ground &ground)
{
    EngineerPacketInfo info = packageAt(ground.made() + "/packed.corvelpro");
    require(ZipPackageHandle::compressEngineerPacket(ground.content(), info), "packing failed");
}

void saveAs(const Ground &ground)
{
    const QString failure =
        ProjectCopies::saveAsConcurrent({ground.package()}, ground.made(), true, std::make_shared<TranslatedText>());
    require(failure.isEmpty(), failure);
}

void import(const Ground &ground)
{
    const QString failure =
        ProjectCopies::importProjectFiles({ground.package()}, ground.made() + '/', std::make_shared<TranslatedText>());
    require(failure.isEmpty(), failure);
}

void extract(const Ground &ground)
{
    require(extractAll(ground.package(), ground.made()) > 1, "extracting failed");
}

void takeSnapshot(const Ground &ground)
{
    PackageSnapshot snapshot;
    require(snapshot.take(ground.package(), {ground.made()}) == PackageSnapshot::Outcome::Taken, "no copy was taken");
}

void verifyWithTool(const Ground &ground)
{
    run(QStringLiteral(CORVELPRO_PROGRAM), {"verify", "--quiet", ground.package()});
}

void copyWithTool(const Ground &ground)
{
    run(QStringLiteral(CORVELPRO_PROGRAM), {"copy", "--quiet", ground.package(), ground.made()});
}

void extractWithTool(const Ground &ground)
{
    run(QStringLiteral(CORVELPRO_PROGRAM), {"extract", "--quiet", ground.package(), ground.made() + "/extracted"});
}

void plainCopy(const Ground &ground)
{
    run("cp", {"--reflink=never", ground.package(), ground.made() + "/copy"});
}

void plainCopyOfContent(const Ground &ground)
{
    run("cp", {"-r", ground.content(), ground.made() + "/copy"});
}

void plainExtract(const Ground &ground)
{
    run("unzip", {"-q", ground.package(), "-d", ground.made()});
}

struct Operation
{
    QString name;
    void (*work)(const Ground &ground);
    /// Ours are judged; those of others show the difference.
    bool isOurs;
};

const QVector<Operation> &operations()
{
    static const QVector<Operation> all{{"pack", pack, true},
                                        {"save as", saveAs, true},
                                        {"import", import, true},
                                        {"extract", extract, true},
                                        {"private copy before an apply", takeSnapshot, true},
                                        {"corvelpro verify", verifyWithTool, true},
                                        {"corvelpro copy", copyWithTool, true},
                                        {"corvelpro extract", extractWithTool, true},
                                        {"cp of the package", plainCopy, false},
                                        {"cp -r of the content", plainCopyOfContent, false},
                                        {"unzip", plainExtract, false}};
    return all;
}

// ---------------------------------------------------------------------------------------------------------------------

/// Bytes of the whole page cache, of all files of the system.
qint64 cacheOfSystem()
{
    QFile file("/proc/meminfo");
    require(file.open(QIODevice::ReadOnly), "no /proc/meminfo");
    const QByteArray text = file.readAll();
    return text.mid(text.indexOf("\nCached:") + 8, 30).simplified().split(' ').first().toLongLong() * KiB;
}

/// With nothing of the files in memory at the start: how much of them is there at the worst moment.
void bounded(Report &report, const QString &folder)
{
    const qint64 size = (report.isQuick() ? 400 : 4000) * 1000LL * 1000;
    const Ground ground(folder);
    const CachedFolder files(folder);
    ground.fill(size);
    for (const Operation &operation : operations()) {
        ground.clear();
        files.forget();
        require(files.cachedBytes() < MiB, "the system does not forget files: they are on no disk");
        const qint64 systemBefore = cacheOfSystem();
        qint64 mostOfSystem = 0;
        CacheSampler sampler([&] {
            mostOfSystem = std::max(mostOfSystem, cacheOfSystem());
            return files.cachedBytes();
        });
        const double time = millisecondsOf([&] { operation.work(ground); });
        const QString what = "page cache of its files, " + operation.name + ", " + megabytes(size);
        const double most = double(sampler.most()) / double(MiB);
        if (operation.isOurs)
            report.atMost(what, most, "MiB", 128);
        else
            report.told(what, most, "MiB");
        report.told("  that of the system grew by", double(mostOfSystem - systemBefore) / double(MiB), "MiB");
        report.told("  looked at every", time / sampler.samples(), "ms");
    }
}

template<typename Files>
double cachedPercent(const Files &files)
{
    return 100 * double(files.cachedBytes()) / double(files.size());
}

/// Reads until all of it is in memory: the system may take pages away at any time, for something else.
void readIntoMemory(const std::function<void()> &read, const std::function<double()> &percent)
{
    for (int attempt = 0; attempt < 10; ++attempt) {
        read();
        if (percent() == 100)
            return;
    }
    fail("the system does not keep files in memory");
}

/// What the program drops goes in each run, what the system needed for something else does not.
double bestOfThree(double limit, const std::function<double()> &run)
{
    double best = run();
    for (int more = 0; more < 2 && best < limit; ++more)
        best = std::max(best, run());
    return best;
}

/// What was in memory before and is only read stays there.
void kept(Report &report, const QString &folder)
{
    constexpr double limit = 99;
    const qint64 size = (report.isQuick() ? 100 : 1000) * 1000LL * 1000;
    const Ground ground(folder);
    const QString untouched = folder + "/untouched";
    makeLargeFile(untouched, size);
    ground.fill(size);
    const auto read = [&folder] { run("sh", {"-c", "find \"$0\" -type f -exec cat {} + >/dev/null", folder}); };
    const auto percent = [&ground] {
        return std::min(cachedPercent(CachedFolder(ground.content())), cachedPercent(CachedFile(ground.package())));
    };
    for (const Operation &operation : operations()) {
        if (!operation.isOurs)
            continue;
        const double best = bestOfThree(limit, [&] {
            ground.clear();
            readIntoMemory(read, percent);
            operation.work(ground);
            return percent();
        });
        report.atLeast("its source stays in memory, " + operation.name + ", " + megabytes(size), best, "%", limit);
        report.told("  of another file that nobody touched", cachedPercent(CachedFile(untouched)), "%");
    }
}

// ---------------------------------------------------------------------------------------------------------------------

/// A control group of the system whose processes together have that much memory, page cache included. Version 1 or 2,
/// whichever the system offers.
class MemoryGroup
{
public:
    explicit MemoryGroup(qint64 limit)
    {
        const QVector<QPair<QString, QString>> versions{{"/sys/fs/cgroup/memory", "memory.limit_in_bytes"},
                                                        {"/sys/fs/cgroup", "memory.max"}};
        for (const auto &version : versions) {
            removeUnused(version.first);
            m_path = version.first + '/' + groupName + QString::number(::getpid());
            if (!QDir().mkdir(m_path))
                continue;
            QFile file(m_path + '/' + version.second);
            if (file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) &&
                file.write(QByteArray::number(limit)) > 0 && file.flush())
                return;
            QDir().rmdir(m_path);
        }
        m_path.clear();
    }
    ~MemoryGroup()
    {
        if (isMade())
            QDir().rmdir(m_path);
    }

    bool isMade() const { return !m_path.isEmpty(); }

    void run(const QString &program, const QStringList &arguments) const
    {
        Benchmark::run("sh",
                       QStringList{"-c", "echo $$ >\"$0/cgroup.procs\" && exec \"$@\"", m_path, program} + arguments);
    }

private:
    Q_DISABLE_COPY(MemoryGroup)

    static constexpr const char *groupName = "bench_memory-";

    /// Those that a killed benchmark left: a group with processes cannot be removed.
    static void removeUnused(const QString &parent)
    {
        for (const QString &name : QDir(parent).entryList({QString(groupName) + '*'}, QDir::Dirs))
            QDir(parent).rmdir(name);
    }

    QString m_path;
};

/// Another program's file was read before; there is little more memory than it takes. How much of it is still there
/// afterwards, in percent.
double leftOfOther(const QString &other, const Ground &ground, const Operation &operation)
{
    const CachedFile file(other);
    const MemoryGroup group(file.size() + 300 * MiB);
    require(group.isMade(), "no control group for memory can be made");
    ground.clear();
    // Who reads a page first is charged for it.
    const auto read = [&] {
        CachedFolder(ground.folder()).forget();
        file.forget();
        group.run("sh", {"-c", "cat \"$0\" >/dev/null", other});
    };
    readIntoMemory(read, [&file] { return cachedPercent(file); });
    group.run(QCoreApplication::applicationFilePath(), {"--operation", operation.name, ground.folder()});
    return cachedPercent(file);
}

void crowded(Report &report, const QString &folder)
{
    constexpr double limit = 95;
    const qint64 size = (report.isQuick() ? 400 : 1000) * MiB;
    const Ground ground(folder + "/ground");
    const QString other = folder + "/other";
    makeLargeFile(other, size);
    ground.fill(size);
    for (const Operation &operation : operations()) {
        const QString what = "another's file stays in memory, " + operation.name + ", " + megabytes(size);
        if (!MemoryGroup(size).isMade()) {
            std::printf("%s: not measured, no control group for memory can be made\n", qPrintable(what));
            continue;
        }
        const auto left = [&] { return leftOfOther(other, ground, operation); };
        if (operation.isOurs)
            report.atLeast(what, bestOfThree(limit, left), "%", limit);
        else
            report.told(what, left(), "%");
    }
}

/// Runs in a process of its own: a control group has whole processes.
int runOperation(const QString &name, const QString &folder)
{
    for (const Operation &operation : operations()) {
        if (operation.name == name) {
            operation.work(Ground(folder));
            return 0;
        }
    }
    fail("no operation " + name);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == "--operation")
        return runOperation(arguments.value(2), arguments.value(3));
    Report report(arguments);
    return measureGroups(report, {{"bounded", bounded}, {"kept", kept}, {"crowded", crowded}});
}

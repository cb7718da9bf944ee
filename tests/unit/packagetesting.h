// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QStringList>
#include <QVector>

#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

/// Shared by the tests of the package classes: trees of files to pack, independent archivers, and ways to simulate a
/// full disk or an unreadable file.
namespace PackageTesting {

constexpr qint64 MiB = 1024 * 1024;

inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).absolutePath()) && file.open(QIODevice::WriteOnly) &&
           file.write(bytes) == bytes.size() && file.flush();
}

inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Sets the modification time of a file, a folder or a link two days back.
inline bool makeOld(const QString &path)
{
    constexpr time_t days = 2;
    const timespec then{time(nullptr) - days * 24 * 3600, 0};
    const timespec times[] = {then, then};
    return utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, AT_SYMLINK_NOFOLLOW) == 0;
}

/// Reproducible from the seed; incompressible.
inline QByteArray noise(qint64 size, quint32 seed = 1)
{
    QVector<quint32> words(int(size / 4 + 1));
    QRandomGenerator(seed).fillRange(words.data(), words.size());
    return QByteArray(reinterpret_cast<const char *>(words.constData()), int(size));
}

/// A small device directory: description, pictures, presets, an empty folder, a hidden file, names in several scripts.
inline bool makeDeviceTree(const QString &dir)
{
    return writeFile(dir + "/192.168.0.10.json", QByteArray("{\n    \"name\": \"device\"\n}\n").repeated(50)) &&
           writeFile(dir + "/BKG/BKG_0.png", noise(5000, 1)) && writeFile(dir + "/BKG/BKG_12.PNG", noise(3000, 2)) &&
           writeFile(dir + "/LOGO/LOGO_3.png", noise(100, 3)) &&
           writeFile(dir + "/Preset/1.RPst", QByteArray(64, 'p')) && writeFile(dir + "/Preset/10.RPst", QByteArray()) &&
           writeFile(dir + "/.hidden/.secret", "hidden") &&
           writeFile(dir + QString::fromUtf8("/设备/图片.txt"), "chinese") &&
           writeFile(dir + QString::fromUtf8("/emoji 🎬.txt"), "emoji") && QDir().mkpath(dir + "/Empty");
}

/// Every file and folder below `dir`, including hidden ones and links, relative and sorted.
inline QStringList contents(const QString &dir)
{
    QStringList paths;
    QDirIterator walk(dir, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (walk.hasNext())
        paths.append(QDir(dir).relativeFilePath(walk.next()));
    paths.sort();
    return paths;
}

struct Run
{
    int exitCode = -1;
    QByteArray output;
    QByteArray errors;
};

inline Run run(const QString &program, const QStringList &arguments, const QString &workingDirectory = QString())
{
    QProcess process;
    process.setWorkingDirectory(workingDirectory);
    process.start(program, arguments);
    Run result;
    if (process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit)
        result.exitCode = process.exitCode();
    result.output = process.readAllStandardOutput();
    result.errors = process.readAllStandardError();
    return result;
}

inline Run runPython(const QString &script, const QStringList &arguments)
{
    return run("python3", QStringList{"-W", "error", "-c", script} + arguments);
}

/// Complaints of independent unpackers about the archive; empty if they accept it.
inline QString complaints(const QString &archivePath)
{
    const QString python = "import sys, zipfile\n"
                           "z = zipfile.ZipFile(sys.argv[1])\n"
                           "sys.exit(1 if z.testzip() else 0)\n";
    QString all;
    const auto judge = [&](const QString &name, const Run &outcome, bool clean) {
        if (outcome.exitCode != 0 || !outcome.errors.isEmpty() || !clean) {
            all += name + ": " + QString::number(outcome.exitCode) + ' ' + outcome.output.right(500) + outcome.errors +
                   '\n';
        }
    };
    const Run unzip = run("unzip", {"-tqq", archivePath});
    judge("unzip", unzip, !unzip.output.contains("warning"));
    const Run sevenZip = run("7z", {"t", archivePath});
    judge("7z", sevenZip,
          sevenZip.output.contains("Everything is Ok") && !sevenZip.output.contains("Warning") &&
              !sevenZip.output.contains("WARNING"));
    judge("python", runPython(python, {archivePath}), true);
    judge("bsdtar", run("bsdtar", {"-tf", archivePath}), true);
    return all;
}

/// During its lifetime no file of this process can grow beyond `size` bytes: writes fail as on a full disk.
class FullDisk
{
public:
    explicit FullDisk(qint64 size)
    {
        m_oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_oldLimit);
        const rlimit limit{rlim_t(size), m_oldLimit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_oldLimit);
        std::signal(SIGXFSZ, m_oldHandler);
    }
    FullDisk(const FullDisk &) = delete;

private:
    rlimit m_oldLimit{};
    void (*m_oldHandler)(int) = SIG_DFL;
};

/// During its lifetime the process has no root privileges: permission bits count.
class OrdinaryUser
{
public:
    OrdinaryUser()
        : m_wasRoot(getuid() == 0)
    {
        constexpr uid_t nobody = 65534;
        if (m_wasRoot && setresuid(nobody, nobody, 0) != 0)
            qFatal("cannot give up the administrator's rights");
    }
    ~OrdinaryUser()
    {
        if (m_wasRoot && setresuid(0, 0, 0) != 0)
            qFatal("cannot take the administrator's rights back");
    }
    OrdinaryUser(const OrdinaryUser &) = delete;

private:
    bool m_wasRoot;
};

} // namespace PackageTesting

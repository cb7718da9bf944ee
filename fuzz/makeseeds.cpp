// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// Writes the seeds of the fuzzers: makeseeds FOLDER. All of them come from the recipe of the hostile packages.
#include "fuzzpackages.h"

#include <packagereader.h>
#include <zippackagehandle.h>

#include <data/hostilepackages.h>
#include <data/pngmaker.h>
#include <data/ziparchive.h>

#include <QCoreApplication>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

namespace {

/// Larger inputs slow fuzzing down and find nothing more.
constexpr int largestSeed = 64 * 1024;

bool write(const QDir &folder, const QString &name, const QByteArray &bytes)
{
    if (bytes.size() > largestSeed)
        return true;
    QFile file(folder.filePath(name));
    return folder.mkpath(QStringLiteral(".")) && file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() &&
           file.flush();
}

QString writtenTo(const QTemporaryDir &folder, const QByteArray &package)
{
    const QString path = folder.filePath(QStringLiteral("x.corvelpro"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(package) != package.size() || !file.flush())
        qFatal("%s", qPrintable(file.errorString()));
    return path;
}

/// Quick to unpack, a dozen times for each execution.
bool isSmall(const QByteArray &package)
{
    constexpr qint64 largest = 1024 * 1024;
    const QTemporaryDir folder;
    const ProjectFileCfg::Internal::PackageReader reader(writtenTo(folder, package));
    qint64 size = 0;
    for (const QString &entry : reader.entries())
        size += reader.entrySize(entry);
    return size <= largest;
}

QByteArray descriptionIn(const QByteArray &package)
{
    const QTemporaryDir folder;
    const QString path = writtenTo(folder, package);
    const QStringList paths =
        ProjectFileCfg::Internal::ZipPackageHandle::extractJsonFiles(path, folder.filePath(QStringLiteral("out")));
    QFile description(paths.value(0));
    return !description.fileName().isEmpty() && description.open(QIODevice::ReadOnly) ? description.readAll()
                                                                                      : QByteArray();
}

/// For the fuzzer of the tool: this description beside a picture and a preset.
QByteArray contentsOf(const QByteArray &description)
{
    QByteArray preset;
    QDataStream stream(&preset, QIODevice::WriteOnly);
    stream << QByteArray("preset");
    return '\2' + description + Fuzzing::contentSeparator + TestData::PngMaker::blank(4, 3) +
           Fuzzing::contentSeparator + preset;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        QTextStream(stderr) << "makeseeds FOLDER\n";
        return 2;
    }
    const QDir root(arguments.at(1));
    const QDir listing(root.filePath(QStringLiteral("listing")));
    const QDir record(root.filePath(QStringLiteral("record")));
    const QDir extraction(root.filePath(QStringLiteral("extraction")));
    const QDir description(root.filePath(QStringLiteral("description")));
    const QDir tool(root.filePath(QStringLiteral("tool")));

    QVector<TestData::HostilePackage> packages = TestData::hostilePackages();
    packages.prepend({"honest", TestData::honestPackage});
    bool written = true;
    for (const TestData::HostilePackage &package : qAsConst(packages)) {
        const QString name = QString::fromLatin1(package.name);
        const QByteArray bytes = package.bytes();
        written = write(listing, name, bytes) && write(extraction, name, QByteArray(1, '\0') + bytes) && written;
        const int end = TestData::ZipArchive(bytes).end();
        if (end >= 0)
            written = write(record, name, bytes.mid(end + 22)) && written;
        const QByteArray text = descriptionIn(bytes);
        if (!text.isEmpty())
            written = write(description, name, text) && written;
        if (isSmall(bytes))
            written = write(tool, name, QByteArray(1, '\0') + bytes) &&
                      write(tool, name + QStringLiteral("_text"), contentsOf(text)) && written;
    }
    const QByteArray names =
        "\1device.json\nBKG/\nBKG/BKG_1.png\nLOGO/LOGO_2.png\nPreset/1.RPst\n../x\n/x\nC:x\n..\\x\n"
        "other@\nother/x\nlinked/x\n./linked/x\nlinked//x\nlinked.png\n.\n./\n";
    written = write(extraction, QStringLiteral("names"), names) && write(tool, QStringLiteral("names"), names) &&
              write(tool, QStringLiteral("good_names"),
                    "\1device.json\nBKG/\nBKG/BKG_1.png\nLOGO/LOGO_2.png\nPreset/1.RPst\nnotes.txt") &&
              written;
    if (!written) {
        QTextStream(stderr) << "The seeds could not be written\n";
        return 1;
    }
    return 0;
}

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// Writes the seeds of the fuzzers: makeseeds FOLDER. All of them come from the recipe of the hostile packages.
#include <zippackagehandle.h>

#include <data/hostilepackages.h>
#include <data/ziparchive.h>

#include <QCoreApplication>
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

QByteArray descriptionIn(const QByteArray &package)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("x.corvelpro"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(package) != package.size() || !file.flush())
        qFatal("%s", qPrintable(file.errorString()));
    const QStringList paths =
        ProjectFileCfg::Internal::ZipPackageHandle::extractJsonFiles(path, folder.filePath(QStringLiteral("out")));
    QFile description(paths.value(0));
    return !description.fileName().isEmpty() && description.open(QIODevice::ReadOnly) ? description.readAll()
                                                                                      : QByteArray();
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
    }
    written = write(extraction, QStringLiteral("names"),
                    "\1device.json\nBKG/\nBKG/BKG_1.png\nLOGO/LOGO_2.png\nPreset/1.RPst\n../x\n/"
                    "x\nC:x\n..\\x\nother@\nother/x\n"
                    "linked/x\n./linked/x\nlinked//x\nlinked.png\n.\n./\n") &&
              written;
    if (!written) {
        QTextStream(stderr) << "The seeds could not be written\n";
        return 1;
    }
    return 0;
}

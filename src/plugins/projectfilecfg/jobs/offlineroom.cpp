// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "offlineroom.h"

#include "packagelayout.h"
#include "packagelimits.h"
#include "packagereader.h"
#include "packagesize.h"
#include "parseddescription.h"
#include "replacingfile.h"
#include "zipformat.h"

#include <QDir>
#include <QDirIterator>
#include <QHash>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// The sizes of a future package's entries, by name. Names of folders end in "/"; their size is 0.
using Contents = QHash<QString, qint64>;

Contents contentsOf(const QString &folder)
{
    Contents found;
    QDirIterator walk(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    const QDir root(folder);
    while (walk.hasNext()) {
        const QString name = root.relativeFilePath(walk.next());
        if (walk.fileInfo().isDir())
            found.insert(name + QLatin1Char('/'), 0);
        else if (!ReplacingFile::isFragment(walk.fileName()))
            found.insert(name, walk.fileInfo().size());
    }
    return found;
}

void addEntry(const QString &entry, qint64 size, Contents &contents)
{
    const QString name = PackageLayout::plainName(entry);
    contents.insert(name, size);
    // Deeper entries are not extracted, and the names of their folders could exhaust the memory.
    if (name.count(QLatin1Char('/')) >= PackageLimits::maxDepth)
        return;
    for (int end = name.indexOf(QLatin1Char('/')); end >= 0; end = name.indexOf(QLatin1Char('/'), end + 1))
        contents.insert(name.left(end + 1), 0);
}

/// As PackageWriter counts it.
bool fitsPackage(const Contents &contents)
{
    qint64 contentSize = 0;
    qint64 namesLength = 0;
    qint64 leastSize = ZipFormat::endRecordSize;
    for (auto it = contents.begin(); it != contents.end(); ++it) {
        contentSize += it.value();
        namesLength += it.key().toUtf8().size();
        leastSize += leastPackedSize(it.key(), it.value());
    }
    return contents.size() <= PackageLimits::maxPackedEntries && contentSize <= PackageLimits::maxContentSize &&
           namesLength <= PackageLimits::maxNamesLength && leastSize <= PackageLimits::maxArchiveSize;
}

} // namespace

bool fitsPackageAfterwards(const PackageReader &package, const QString &deviceFolder)
{
    Contents contents = contentsOf(deviceFolder);
    for (const QString &entry : package.entries()) {
        if (!PackageLayout::isDescription(entry))
            addEntry(entry, package.entrySize(entry), contents);
    }
    // The host will write one if there is none.
    if (findDescription(contents.keys()).isEmpty())
        contents.insert(PackageLayout::descriptionEntry(QDir(deviceFolder).dirName()), 0);
    return fitsPackage(contents);
}

} // namespace Internal
} // namespace ProjectFileCfg

#include "offlineroom.h"

#include "devicedescription.h"
#include "packagelayout.h"
#include "packagelimits.h"
#include "packagereader.h"
#include "replacingfile.h"

#include <QDir>
#include <QDirIterator>
#include <QHash>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// Sizes by the names of the entries that a package would have. Names of folders end in "/"; their size is 0.
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
    // None so deep is extracted; its folders' names together could fill the memory.
    if (name.count(QLatin1Char('/')) >= PackageLimits::maxDepth)
        return;
    for (int end = name.indexOf(QLatin1Char('/')); end >= 0; end = name.indexOf(QLatin1Char('/'), end + 1))
        contents.insert(name.left(end + 1), 0);
}

/// As PackageWriter counts it: what is stored takes its own size.
bool fitsPackage(const Contents &contents)
{
    constexpr qint64 headersSize = 30 + 46;
    constexpr qint64 endRecordSize = 22;
    qint64 contentSize = 0;
    qint64 namesLength = 0;
    qint64 leastSize = endRecordSize;
    for (auto it = contents.begin(); it != contents.end(); ++it) {
        const qint64 nameLength = it.key().toUtf8().size();
        contentSize += it.value();
        namesLength += nameLength;
        leastSize += headersSize + 2 * nameLength + (PackageLayout::isPicture(it.key()) ? it.value() : 0);
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
    // The host writes one where there is none.
    if (findDescription(contents.keys()).isEmpty())
        contents.insert(descriptionEntryOf(QDir(deviceFolder).dirName()), 0);
    return fitsPackage(contents);
}

} // namespace Internal
} // namespace ProjectFileCfg

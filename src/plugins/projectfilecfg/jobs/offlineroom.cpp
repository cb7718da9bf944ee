#include "offlineroom.h"

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

/// Sizes by path relative to the device's folder; folders have none.
using Contents = QHash<QString, qint64>;

Contents contentsOf(const QString &folder)
{
    Contents found;
    QDirIterator walk(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    const QDir root(folder);
    while (walk.hasNext()) {
        const QString path = walk.next();
        if (!ReplacingFile::isFragment(walk.fileName()))
            found.insert(root.relativeFilePath(path), walk.fileInfo().isDir() ? 0 : walk.fileInfo().size());
    }
    return found;
}

void addEntry(const QString &entry, qint64 size, Contents &contents)
{
    const QString path = PackageLayout::plainName(entry);
    contents.insert(path, size);
    // None so deep is extracted; its folders' names together could fill the memory.
    if (path.count(QLatin1Char('/')) >= PackageLimits::maxDepth)
        return;
    for (int end = path.lastIndexOf(QLatin1Char('/')); end > 0; end = path.lastIndexOf(QLatin1Char('/'), end - 1))
        contents.insert(path.left(end), 0);
}

/// As PackageWriter counts it: what is stored takes its own size.
bool fitsPackage(const Contents &contents)
{
    constexpr qint64 headersSize = 30 + 46;
    constexpr qint64 endRecordSize = 22;
    qint64 contentSize = 0;
    qint64 leastSize = endRecordSize;
    bool hasDescription = false;
    for (auto it = contents.begin(); it != contents.end(); ++it) {
        const bool isStored = PackageLayout::isPicture(it.key());
        contentSize += it.value();
        leastSize += headersSize + 2 * (it.key().toUtf8().size() + 1) + (isStored ? it.value() : 0);
        hasDescription = hasDescription || PackageLayout::isDescription(it.key());
    }
    // The host writes one where there is none.
    const int count = contents.size() + (hasDescription ? 0 : 1);
    return count <= PackageLimits::maxPackedEntries && contentSize <= PackageLimits::maxContentSize &&
           leastSize <= PackageLimits::maxArchiveSize;
}

} // namespace

bool fitsPackageAfterwards(const PackageReader &package, const QString &deviceFolder)
{
    Contents contents = contentsOf(deviceFolder);
    for (const QString &entry : package.entries()) {
        if (!PackageLayout::isDescription(entry))
            addEntry(entry, package.entrySize(entry), contents);
    }
    return fitsPackage(contents);
}

} // namespace Internal
} // namespace ProjectFileCfg

#include "offlineroom.h"

#include "packagereader.h"
#include "replacingfile.h"

#include <QDir>
#include <QDirIterator>
#include <QHash>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// What a package holds: see PackageWriter.
constexpr int maxPackedEntries = 0xFFFE;
constexpr qint64 maxArchiveSize = 0xFFFFFFFELL;

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

bool isDescription(const QString &path)
{
    return path.endsWith(QLatin1String(".json"), Qt::CaseInsensitive);
}

void addEntry(const QString &entry, qint64 size, Contents &contents)
{
    const QString path = QDir::cleanPath(entry);
    contents.insert(path, size);
    // None so deep is extracted; its folders' names together could fill the memory.
    constexpr int maxDepth = 64;
    if (path.count(QLatin1Char('/')) >= maxDepth)
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
        const bool isStored = it.key().endsWith(QLatin1String(".png"), Qt::CaseInsensitive);
        contentSize += it.value();
        leastSize += headersSize + 2 * (it.key().toUtf8().size() + 1) + (isStored ? it.value() : 0);
        hasDescription = hasDescription || isDescription(it.key());
    }
    // The host writes one where there is none.
    const int count = contents.size() + (hasDescription ? 0 : 1);
    return count <= maxPackedEntries && contentSize <= PackageReader::maxContentSize && leastSize <= maxArchiveSize;
}

} // namespace

bool fitsPackageAfterwards(const PackageReader &package, const QString &deviceFolder)
{
    Contents contents = contentsOf(deviceFolder);
    for (const QString &entry : package.entries()) {
        if (!isDescription(entry))
            addEntry(entry, package.entrySize(entry), contents);
    }
    return fitsPackage(contents);
}

} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "namecheck.h"

#include "archivedirectory.h"
#include "findings.h"

#include "packagelayout.h"

#include <QHash>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;

namespace {

using Entry = ArchiveDirectory::Entry;

/// Without a folder's "/", so that a file and a folder of one name are found, too.
QString pathOf(const Entry &entry)
{
    const QString path = PackageLayout::plainName(entry.name);
    return PackageLayout::isFolder(path) ? path.left(path.size() - 1) : path;
}

void checkName(const Entry &entry, Findings &findings)
{
    const auto isWrong = [&](const QString &text) { findings.add(entry.name, entry.offset, text); };
    if (!PackageLayout::isSafeName(entry.name))
        isWrong(QStringLiteral("its name could lead out of a folder, or is too deep"));
    else if (PackageLayout::blocksLaterPackages(entry.name))
        isWrong(QStringLiteral("its name would block the entries of other packages"));
    if (entry.name.toUtf8() != entry.rawName)
        isWrong(QStringLiteral("its name is not UTF-8"));
}

/// How two names that lead to one path on some system relate; `path` is that of both but for the case.
QString relation(const Entry &entry, const Entry &earlier)
{
    if (entry.rawName == earlier.rawName)
        return QStringLiteral("it has the name of an earlier entry");
    if (pathOf(entry) != pathOf(earlier))
        return QStringLiteral("its name and \"%1\" differ only in case").arg(earlier.name);
    return PackageLayout::isFolder(entry.name) == PackageLayout::isFolder(earlier.name)
               ? QStringLiteral("it leads to the same path as \"%1\"").arg(earlier.name)
               : QStringLiteral("\"%1\" is both a file and a folder").arg(pathOf(entry));
}

} // namespace

void checkNames(const ArchiveDirectory &directory, Findings &findings)
{
    QHash<QString, const Entry *> byPath;
    for (const Entry &entry : directory.entries()) {
        checkName(entry, findings);
        const Entry *&earlier = byPath[pathOf(entry).toCaseFolded()];
        if (earlier)
            findings.add(entry.name, entry.offset, relation(entry, *earlier));
        else
            earlier = &entry;
    }
    for (const Entry &entry : directory.entries()) {
        const QString path = pathOf(entry).toCaseFolded();
        for (int end = path.indexOf(QLatin1Char('/'), 1); end > 0; end = path.indexOf(QLatin1Char('/'), end + 1)) {
            const Entry *folder = byPath.value(path.left(end));
            if (folder && !PackageLayout::isFolder(folder->name))
                findings.add(entry.name, entry.offset,
                             QStringLiteral("its folder is the file \"%1\"").arg(folder->name));
        }
    }
}

} // namespace Corvelpro

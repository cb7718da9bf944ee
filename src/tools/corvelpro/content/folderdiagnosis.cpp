// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "folderdiagnosis.h"

#include "making/newdirectory.h"
#include "shortreason.h"

#include "packagelayout.h"
#include "projectlisting.h"
#include "replacingfile.h"
#include "undorecord.h"
#include "zippackagehandle.h"

#include <QDir>
#include <QHash>
#include <QSet>

namespace Corvelpro {

using namespace ProjectFileCfg::Internal;
using PackageLayout::packageExtension;

namespace {

/// A project name for which there is a file, whatever the panel shows, is refused for any other project.
QString blockedName(const QFileInfo &entry)
{
    const QString name = PackageLayout::withoutPackageExtension(entry.fileName());
    return QFile::exists(entry.dir().filePath(name + packageExtension)) ? name : QString();
}

Complaint aboutUnlisted(const QFileInfo &package, const QString &reason)
{
    return {package.filePath(), withoutPath(reason, package.filePath()),
            package.isFile() ? QStringLiteral("copy it here again from where it came; if it stays so, \"corvelpro "
                                              "verify\" says what is damaged")
                             : QStringLiteral("move it elsewhere"),
            blockedName(package)};
}

Complaint aboutFragment(const QFileInfo &file)
{
    const bool isOld = ReplacingFile::isStale(file);
    return {file.filePath(),
            isOld ? QStringLiteral("a save or a copy was interrupted here, and this is what it had written")
                  : QStringLiteral("a save or a copy is being written, or was interrupted less than a day ago"),
            isOld ? QStringLiteral("nothing: the control application removes it when it looks into the folder")
                  : QStringLiteral("nothing: the control application removes it when it is a day old"),
            {}};
}

Complaint aboutUnfinishedDirectory(const QFileInfo &folder)
{
    if (NewDirectory::isInUse(folder.filePath()))
        return {folder.filePath(),
                QStringLiteral("an extraction is running here"),
                QStringLiteral("nothing: it gives the folder its name, or removes it"),
                {}};
    if (ReplacingFile::isStale(folder))
        return {folder.filePath(),
                QStringLiteral("an extraction was interrupted here"),
                QStringLiteral("delete the folder; the next \"corvelpro extract\" to this place does so, too"),
                {}};
    return {
        folder.filePath(),
        QStringLiteral("an extraction was interrupted here, less than a day ago"),
        QStringLiteral("delete the folder, unless another computer is extracting here; \"corvelpro extract\" to this "
                       "place removes it when it is a day old"),
        {}};
}

Complaint aboutUndoRecord(const QFileInfo &file)
{
    UndoRecord record;
    const bool isWhole = record.read(file.filePath()) == UndoRecord::Reading::Whole;
    return {file.filePath(),
            isWhole ? QStringLiteral("the edit of \"%1\" is running or was interrupted").arg(record.strFileName)
                    : QStringLiteral("an edit was interrupted before it had begun to write; its package is unchanged"),
            QStringLiteral("open the project files in the control application: it finishes or undoes the edit"),
            {}};
}

Complaint aboutOther(const QFileInfo &file)
{
    const bool isNamedSo = PackageLayout::hasPackageExtension(file.fileName());
    const auto complaint = [&](const QString &reason, const QString &advice) {
        return Complaint{file.filePath(), reason, advice, isNamedSo ? blockedName(file) : QString()};
    };
    if (file.isSymLink() && !file.exists())
        return complaint(QStringLiteral("it is a link to something that is not there"),
                         QStringLiteral("remove it, or bring back what it leads to"));
    if (!file.isFile())
        return complaint(QStringLiteral("it is not a plain file"), QStringLiteral("move it elsewhere"));
    if (isNamedSo)
        return complaint(QStringLiteral("it is hidden"), QStringLiteral("rename it so that it begins with no dot"));
    if (ZipPackageHandle::isValidEngineerPacket(file.filePath()))
        return complaint(
            QStringLiteral("it is a project file, but its name does not end in \"%1\"").arg(packageExtension),
            QStringLiteral("rename it"));
    return complaint(QStringLiteral("it is no project file"), QStringLiteral("move it elsewhere if it disturbs"));
}

/// Also shown are packages under the first part of their name, which another one may have.
void lookAtListed(const QFileInfo &package, QHash<QString, QString> &listed, QVector<Complaint> &complaints)
{
    const QString name = ProjectListing::nameOf(package);
    const QString whole = PackageLayout::withoutPackageExtension(package.fileName());
    QString &earlier = listed[name.toCaseFolded()];
    const QString rename = QStringLiteral("rename it to a name without a dot that no other has");
    if (!earlier.isEmpty())
        complaints.append({package.filePath(),
                           QStringLiteral("it is listed as \"%1\", and so is \"%2\"").arg(name, earlier),
                           rename,
                           {}});
    else if (name != whole)
        complaints.append({package.filePath(), QStringLiteral("it is listed as \"%1\" only").arg(name), rename, {}});
    earlier = package.fileName();
}

} // namespace

QVector<Complaint> diagnoseFolder(const QString &directory)
{
    QVector<Complaint> complaints;
    QSet<QString> looked;
    QHash<QString, QString> listed;
    for (const QFileInfo &package : ProjectListing::packagesIn(directory)) {
        looked.insert(package.fileName());
        QString reason;
        if (ZipPackageHandle::isValidEngineerPacket(package.filePath(), &reason))
            lookAtListed(package, listed, complaints);
        else
            complaints.append(aboutUnlisted(package, reason));
    }
    const QFileInfoList all = QDir(directory).entryInfoList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &file : all) {
        const bool isFragment = ReplacingFile::isFragment(file.fileName());
        if (looked.contains(file.fileName()) || (file.isDir() && (!isFragment || file.isSymLink())))
            continue;
        complaints.append(isFragment && file.isDir()                  ? aboutUnfinishedDirectory(file)
                          : isFragment                                ? aboutFragment(file)
                          : UndoRecord::isUndoRecord(file.fileName()) ? aboutUndoRecord(file)
                                                                      : aboutOther(file));
    }
    return complaints;
}

} // namespace Corvelpro

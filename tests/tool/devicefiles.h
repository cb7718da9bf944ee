// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "toolrunner.h"

#include <support/packagebuilder.h>
#include <unit/packagetesting.h>

#include <QByteArray>
#include <QDir>
#include <QFileInfo>
#include <QMap>

/// A device's directory in memory, as packages and as a directory.
namespace ToolTesting {

using Files = QMap<QByteArray, QByteArray>;

using PackageTesting::FullDisk;
using PackageTesting::readFile;
using PackageTesting::writeFile;

inline bool writeDirectory(const QString &path, const Files &files)
{
    bool isWritten = QDir().mkpath(path);
    for (auto file = files.begin(); file != files.end(); ++file) {
        const QString target = path + '/' + QString::fromUtf8(file.key());
        isWritten = isWritten && (file.key().endsWith('/') ? QDir().mkpath(target) : writeFile(target, file.value()));
    }
    return isWritten;
}

inline TestSupport::PackageBuilder packed(const Files &files)
{
    TestSupport::PackageBuilder package;
    for (auto file = files.begin(); file != files.end(); ++file) {
        if (file.key().endsWith('/'))
            package.folder(file.key());
        else
            package.file(file.key(), file.value());
    }
    return package;
}

inline bool writePackage(const QString &path, const Files &files, const QString &comment = QString())
{
    return packed(files).record(QFileInfo(path).completeBaseName(), comment).write(path);
}

/// Everything in a folder, hidden or not: to find what an operation has left behind.
inline QStringList namesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace ToolTesting

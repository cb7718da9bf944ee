// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QDir>
#include <QFileInfo>

namespace TestSupport {

/// The number of this process's open files without a name, such as the copy of a package being applied.
inline int openNamelessFiles()
{
    int count = 0;
    for (const QFileInfo &link : QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::AllEntries | QDir::System))
        count += link.symLinkTarget().endsWith(QStringLiteral(" (deleted)"));
    return count;
}

} // namespace TestSupport

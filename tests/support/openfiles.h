#pragma once

#include <QDir>
#include <QFileInfo>

namespace TestSupport {

/// How many open files of this process have no name any more, as the copy of a package that is applied.
inline int openNamelessFiles()
{
    int count = 0;
    for (const QFileInfo &link : QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::AllEntries | QDir::System))
        count += link.symLinkTarget().endsWith(QStringLiteral(" (deleted)"));
    return count;
}

} // namespace TestSupport

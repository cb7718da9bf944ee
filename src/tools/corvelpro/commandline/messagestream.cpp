// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "messagestream.h"

#include <QLoggingCategory>

namespace Corvelpro {

FILE *messageStream()
{
    static FILE *const stream = stderr;
    return stream;
}

void silenceLibraries()
{
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
#ifdef __GLIBC__
    // Replaces the variable and not the descriptor, to which crashes and sanitizers report.
    messageStream();
    if (FILE *nowhere = std::fopen("/dev/null", "we"))
        stderr = nowhere;
#endif
}

} // namespace Corvelpro

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
    // The variable, not the descriptor behind it: there a crash or a sanitizer reports.
    messageStream();
    if (FILE *nowhere = std::fopen("/dev/null", "we"))
        stderr = nowhere;
#endif
}

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "commandline/program.h"

#include "localecodec.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <csignal>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

/// A standard stream that the caller has closed would become the next file that is opened, and what is printed would go
/// there. What stands in for it refuses to be written to, so that a result that nobody gets is noticed.
void occupyStandardStreams()
{
#ifdef Q_OS_UNIX
    int handle = STDIN_FILENO;
    while (handle >= 0 && handle <= STDERR_FILENO)
        handle = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (handle > STDERR_FILENO)
        ::close(handle);
#endif
}

} // namespace

int main(int count, char **values)
{
    occupyStandardStreams();
    // The names in a package are UTF-8, whatever the terminal's locale is.
    ProjectFileCfg::Internal::useUtf8LocaleCodec();
    // What the libraries log, about each odd chunk of a picture for instance, is no message to the user.
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
#ifdef __GLIBC__
    // The pixels of a large picture go back to the system when they are freed; by default they stay with the thread
    // that decoded them.
    constexpr int largePicture = 16 * 1024 * 1024;
    mallopt(M_MMAP_THRESHOLD, largePicture);
#endif
#ifdef SIGPIPE
    // A reader that goes early is a failed write, with its exit code, and no sudden end in the middle of an operation.
    std::signal(SIGPIPE, SIG_IGN);
#endif
    const QCoreApplication application(count, values);

    return Corvelpro::runProgram(count, values);
}

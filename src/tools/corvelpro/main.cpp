// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "commandline/messagestream.h"
#include "commandline/program.h"

#include "localecodec.h"

#include <QCoreApplication>

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
    Corvelpro::silenceLibraries();
#ifdef __GLIBC__
    // The pixels of a large picture go back to the system when they are freed; by default they stay with the thread
    // that decoded them.
    constexpr int largePicture = 16 * 1024 * 1024;
    mallopt(M_MMAP_THRESHOLD, largePicture);
    // Those of smaller ones stay: giving memory back after each picture and getting it again takes as long as decoding.
    constexpr int smallPictures = 64 * 1024 * 1024;
    mallopt(M_TRIM_THRESHOLD, smallPictures);
    // Without it the library looks four times for each file's date whether the time zone has changed.
    if (!qEnvironmentVariableIsSet("TZ"))
        qputenv("TZ", ":/etc/localtime");
#endif
#ifdef SIGPIPE
    // A reader that goes early is a failed write, with its exit code, and no sudden end in the middle of an operation.
    std::signal(SIGPIPE, SIG_IGN);
#endif
    const QCoreApplication application(count, values);

    return Corvelpro::runProgram(count, values);
}

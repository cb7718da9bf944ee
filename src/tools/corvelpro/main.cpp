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

/// If the caller has closed a standard stream, the next file to be opened would get its descriptor, and output would go
/// into that file. The stand-ins refuse to be written to, so that lost output is noticed.
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
    // The memory for smaller ones is kept: returning it after each picture and getting it again takes as long as
    // decoding.
    constexpr int smallPictures = 64 * 1024 * 1024;
    mallopt(M_TRIM_THRESHOLD, smallPictures);
    // Without TZ, the C library checks four times for each file's date whether the time zone has changed.
    if (!qEnvironmentVariableIsSet("TZ"))
        qputenv("TZ", ":/etc/localtime");
#endif
#ifdef SIGPIPE
    // If the reader closes a pipe early, the write fails and the exit code says so; the operation is not killed
    // halfway.
    std::signal(SIGPIPE, SIG_IGN);
#endif
    const QCoreApplication application(count, values);

    return Corvelpro::runProgram(count, values);
}

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "commandline/command.h"
#include "commandline/messagestream.h"
#include "commandline/output.h"
#include "commandline/parser.h"

#include "localecodec.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

int main(int count, char **values)
{
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

    const Corvelpro::Request request = Corvelpro::parse(count, values);
    if (!request.command) {
        const QByteArray text = request.text.toUtf8();
        std::fwrite(text.constData(), 1, size_t(text.size()),
                    request.isUsageError ? Corvelpro::messageStream() : stdout);
        return int(request.isUsageError ? Corvelpro::ExitCode::Unknown : Corvelpro::ExitCode::Yes);
    }

    Corvelpro::Output output(request.form);
    Corvelpro::ExitCode code = request.command->run(request.arguments, output);
    if (!output.flush()) {
        output.message(QStringLiteral("the result could not be written"));
        code = Corvelpro::ExitCode::Unknown;
    }
    return int(code);
}

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "program.h"

#include "command.h"
#include "messagestream.h"
#include "output.h"
#include "parser.h"

#include <cstdio>

namespace Corvelpro {

int runProgram(int count, const char *const *values)
{
    const Request request = parse(count, values);
    Output output(request.form);
    ExitCode code = request.isUsageError ? ExitCode::Unknown : ExitCode::Yes;
    if (request.command) {
        code = request.command->run(request.arguments, output);
    } else {
        const QByteArray text = request.text.toUtf8();
        std::fwrite(text.constData(), 1, size_t(text.size()), request.isUsageError ? messageStream() : stdout);
    }
    if (!output.flush()) {
        output.message(QStringLiteral("the result could not be written"));
        code = ExitCode::Unknown;
    }
    return int(code);
}

} // namespace Corvelpro

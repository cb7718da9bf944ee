// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "tooloutcome.h"

#include "commandline/program.h"

#include <QFile>
#include <QStringList>

#include <cstdio>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace ToolTesting {

/// Takes what this process writes to a standard stream while it lives.
class CapturedStream
{
public:
    CapturedStream(FILE *stream, int handle)
        : m_stream(stream)
        , m_handle(handle)
    {
        std::fflush(m_stream);
        if (!m_file.open(memfd_create("captured", MFD_CLOEXEC), QIODevice::ReadOnly, QFileDevice::AutoCloseHandle) ||
            dup2(m_file.handle(), m_handle) < 0)
            std::abort();
    }
    ~CapturedStream()
    {
        std::fflush(m_stream);
        dup2(m_original, m_handle);
        close(m_original);
    }
    Q_DISABLE_COPY(CapturedStream)

    QByteArray bytes()
    {
        std::fflush(m_stream);
        m_file.seek(0);
        return m_file.readAll();
    }

private:
    FILE *const m_stream;
    const int m_handle;
    const int m_original = dup(m_handle);
    QFile m_file;
};

/// Runs the tool in this process, so that the test's hooks and limits apply and no process has to start.
inline Outcome runInProcess(const QStringList &arguments)
{
    QByteArrayList words{"corvelpro"};
    for (const QString &argument : arguments)
        words.append(QFile::encodeName(argument));
    std::vector<const char *> values;
    for (const QByteArray &word : words)
        values.push_back(word.constData());
    CapturedStream out(stdout, STDOUT_FILENO);
    CapturedStream messages(stderr, STDERR_FILENO);
    Outcome outcome;
    outcome.code = Corvelpro::runProgram(int(values.size()), values.data());
    outcome.out = out.bytes();
    outcome.messages = messages.bytes();
    return outcome;
}

} // namespace ToolTesting

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "tooloutcome.h"

#include "commandline/program.h"

#include <QFile>
#include <QStringList>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace ToolTesting {

/// Takes what is printed to a stream of the C library while it lives.
class CapturedStream
{
public:
    explicit CapturedStream(FILE *&stream)
        : m_stream(stream)
        , m_original(stream)
    {
        std::fflush(m_original);
        m_stream = open_memstream(&m_bytes, &m_size);
        if (!m_stream)
            std::abort();
    }
    ~CapturedStream()
    {
        std::fclose(m_stream);
        m_stream = m_original;
        std::free(m_bytes);
    }
    Q_DISABLE_COPY(CapturedStream)

    QByteArray bytes() const
    {
        std::fflush(m_stream);
        return QByteArray(m_bytes, int(m_size));
    }

private:
    FILE *&m_stream;
    FILE *const m_original;
    char *m_bytes = nullptr;
    std::size_t m_size = 0;
};

/// Runs the tool in this process: hooks and limits of the test hold for it, and no process has to start.
inline Outcome runInProcess(const QStringList &arguments)
{
    QByteArrayList words{"corvelpro"};
    for (const QString &argument : arguments)
        words.append(QFile::encodeName(argument));
    std::vector<const char *> values;
    for (const QByteArray &word : words)
        values.push_back(word.constData());
    const CapturedStream out(stdout);
    const CapturedStream messages(stderr);
    Outcome outcome;
    outcome.code = Corvelpro::runProgram(int(values.size()), values.data());
    outcome.out = out.bytes();
    outcome.messages = messages.bytes();
    return outcome;
}

} // namespace ToolTesting

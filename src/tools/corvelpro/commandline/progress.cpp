// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "progress.h"

#include "messagestream.h"
#include "output.h"

#include <QByteArray>

#include <algorithm>
#include <cstdio>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace Corvelpro {

namespace {

bool isTerminal(FILE *stream)
{
#ifdef Q_OS_WIN
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

void show(const QByteArray &text)
{
    std::fwrite(text.constData(), 1, size_t(text.size()), messageStream());
    std::fflush(messageStream());
}

} // namespace

Progress::Progress(Output &output, qint64 total)
    : m_output(output)
    , m_total(total)
    , m_isShown(total > 0 && output.form() != Output::Form::Quiet && isTerminal(messageStream()))
{
    m_output.setProgress(this);
}

Progress::~Progress()
{
    hide();
    m_output.setProgress(nullptr);
}

void Progress::advance(qint64 bytes)
{
    constexpr int cellPercent = 4;
    constexpr int cells = 100 / cellPercent;
    m_done = std::min(m_total, m_done + bytes);
    // Not m_done * 100: it may be a disk full of packages.
    const int percent = m_isShown ? int(double(m_done) / double(m_total) * 100) : -1;
    if (percent == m_percent)
        return;
    m_percent = percent;
    const int full = percent / cellPercent;
    show("\r[" + QByteArray(full, '#') + QByteArray(cells - full, '.') + "] " + QByteArray::number(percent) + " %");
}

void Progress::hide()
{
    if (m_percent < 0)
        return;
    m_percent = -1;
    show("\r\x1b[K");
}

} // namespace Corvelpro

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

namespace Corvelpro {

class Output;

/// A progress bar on stderr while it lives. Shown only if stderr is a terminal and the form is not Output::Form::Quiet.
/// What `output` prints meanwhile appears above it. Main thread.
class Progress
{
public:
    /// `total`: bytes of the whole operation. There is at most one for an output at a time, and it goes before it.
    Progress(Output &output, qint64 total);
    /// Removes the bar.
    ~Progress();

    /// That many more bytes are done. More than the total are no harm.
    void advance(qint64 bytes);

    /// Takes the bar away until the next advance().
    void hide();

private:
    Q_DISABLE_COPY(Progress)

    Output &m_output;
    const qint64 m_total;
    const bool m_isShown;
    qint64 m_done = 0;
    /// What the bar says; -1 if it is hidden.
    int m_percent = -1;
};

} // namespace Corvelpro

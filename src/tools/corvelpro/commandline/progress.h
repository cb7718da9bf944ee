// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

namespace Corvelpro {

class Output;

/// A progress bar on stderr during the lifetime of this object. Shown only if stderr is a terminal and the form is not
/// Output::Form::Quiet. What `output` prints meanwhile appears above it. Main thread.
class Progress
{
public:
    /// `total` is the number of bytes of the whole operation. An output has at most one bar at a time, and must outlive
    /// it.
    Progress(Output &output, qint64 total);
    /// Removes the bar.
    ~Progress();

    /// Reports that many more bytes as done. More than the total do no harm.
    void advance(qint64 bytes);

    /// Hides the bar until the next advance().
    void hide();

private:
    Q_DISABLE_COPY(Progress)

    Output &m_output;
    const qint64 m_total;
    const bool m_isShown;
    qint64 m_done = 0;
    /// The percentage shown by the bar; -1 if it is hidden.
    int m_percent = -1;
};

} // namespace Corvelpro

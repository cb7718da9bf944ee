// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QFile>
#include <QString>

#include <cerrno>
#include <system_error>

namespace ProjectFileCfg {
namespace Internal {

/// An operation that can fail takes `QString *reason` as its last parameter. On failure it sets the text, unless the
/// pointer is null, to a short English sentence for the log, with the path and the system's error; on success it does
/// not change it. Nothing below the jobs and the panel's slots logs a failure that it returns: the job or the slot logs
/// it, once.
///
/// Sets the reason and returns false.
inline bool failBecause(QString *reason, const QString &text)
{
    if (reason)
        *reason = text;
    return false;
}

/// The text for `errno`, as the last failed system call set it.
inline QString systemError()
{
    return QString::fromLocal8Bit(std::generic_category().message(errno).c_str());
}

/// Why a write to the device failed. Qt has no text for a short write, which happens when the disk becomes full.
inline QString writeError(const QIODevice &device)
{
    const QString error = device.errorString();
    return error == QFile().errorString() ? QStringLiteral("only part of it was written, the disk may be full") : error;
}

} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "operationresultcodes.h"

#include <QString>

#include <atomic>
#include <functional>

namespace ProjectFileCfg {
namespace Internal {

/// How an apply ends, or a check before it: the code for the operator, and the reason for the log.
class LoadOutcome
{
public:
    /// Runs work that calls the host, on a package or a copy of it; `path` is the package for the log. Logs why the
    /// work failed, if it gave a reason, and if so whether `isCanceled` was set by then. After an exception, which is
    /// logged, fails with LoadImportFailed. True if the work returned true.
    bool guarded(const QString &path, const std::atomic<bool> &isCanceled, const std::function<bool()> &work);

    /// Sets the code and the reason, and returns false.
    bool fail(LoadResultCode code, const QString &reason = QString());
    /// True for LoadSuccess; fails with any other code.
    bool passes(LoadResultCode code, const QString &reason) { return code == LoadSuccess || fail(code, reason); }

    /// A LoadResultCode: that of the last failure. Any thread.
    int code() const { return m_nCode; }
    /// Why the work that is guarded now fails. For operations that set it without a code.
    QString *reason() { return &m_strReason; }

private:
    std::atomic<int> m_nCode{LoadSuccess};
    QString m_strReason;
};

} // namespace Internal
} // namespace ProjectFileCfg

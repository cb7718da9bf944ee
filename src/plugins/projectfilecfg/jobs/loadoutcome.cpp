// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "loadoutcome.h"

#include "exceptionguard.h"

#include <QDebug>

namespace ProjectFileCfg {
namespace Internal {

bool LoadOutcome::guarded(const QString &path, const std::atomic<bool> &isCanceled, const std::function<bool()> &work)
{
    bool isDone = false;
    m_strReason.clear();
    if (!runGuarded("Import project file failed, exception", [&] { isDone = work(); }))
        return fail(LoadImportFailed);
    if (!isDone && !m_strReason.isEmpty())
        qDebug().noquote() << "Apply of" << path << "failed:"
                           << (isCanceled ? m_strReason + QStringLiteral("; Cancel was pressed before") : m_strReason);
    return isDone;
}

bool LoadOutcome::fail(LoadResultCode code, const QString &reason)
{
    m_nCode = code;
    m_strReason = reason;
    return false;
}

} // namespace Internal
} // namespace ProjectFileCfg

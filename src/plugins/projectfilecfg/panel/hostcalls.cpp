// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "hostcalls.h"

#include "exceptionguard.h"

#include <QByteArray>

namespace ProjectFileCfg {
namespace Internal {

bool callHost(const char *operation, const std::function<void()> &call)
{
    return runGuarded(QByteArray("The host threw in ") + operation, call);
}

} // namespace Internal
} // namespace ProjectFileCfg

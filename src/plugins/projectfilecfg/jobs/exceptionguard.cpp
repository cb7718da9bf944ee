// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "exceptionguard.h"

#include <QDebug>

#include <exception>

namespace ProjectFileCfg {
namespace Internal {

bool runGuarded(const char *failure, const std::function<void()> &work)
{
    try {
        work();
        return true;
    } catch (const std::exception &error) {
        qCritical().nospace() << failure << ": " << error.what();
    } catch (...) {
        qCritical().nospace() << failure << ": not a std::exception";
    }
    return false;
}

} // namespace Internal
} // namespace ProjectFileCfg

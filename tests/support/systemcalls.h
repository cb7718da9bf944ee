// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QByteArray>

#include <functional>

namespace TestSupport {

/// Hooks functions of the C library, for Qt and the product alike, on any thread. Linked in through TestSystemCalls.
/// Set and reset it while no other thread works on files.
struct SystemCalls
{
    /// The error for opening that file; 0 opens it.
    std::function<int(const QByteArray &path, int flags)> onOpen;
    std::function<void(const QByteArray &path)> beforeMkdir;
    std::function<void(const QByteArray &path)> beforeUnlink;
};

SystemCalls &systemCalls();

} // namespace TestSupport

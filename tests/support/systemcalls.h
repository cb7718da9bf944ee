#pragma once

#include <QByteArray>

#include <functional>

namespace TestSupport {

/// What stands before functions of the C library, for Qt and the product alike, on whichever thread calls them.
/// Programs that link TestSystemCalls have it. Set and reset while no other thread works on files.
struct SystemCalls
{
    /// The error with which opening that file fails; 0 lets it be opened.
    std::function<int(const QByteArray &path, int flags)> onOpen;
    std::function<void(const QByteArray &path)> beforeMkdir;
    std::function<void(const QByteArray &path)> beforeUnlink;
};

SystemCalls &systemCalls();

} // namespace TestSupport

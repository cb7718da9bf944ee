#pragma once

#include <QtGlobal>

namespace TestSupport {

/// While it lives, every volume has that many bytes free, so that a test of the last byte does not depend on what
/// others write to the disk meanwhile. One at a time.
class FreeSpace
{
public:
    explicit FreeSpace(qint64 bytes);
    ~FreeSpace();
    Q_DISABLE_COPY(FreeSpace)
};

} // namespace TestSupport

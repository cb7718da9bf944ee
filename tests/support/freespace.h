// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

namespace TestSupport {

/// During its lifetime every volume has that many bytes free, so that tests at the last byte are independent of other
/// writers. One at a time.
class FreeSpace
{
public:
    explicit FreeSpace(qint64 bytes);
    ~FreeSpace();
    Q_DISABLE_COPY(FreeSpace)
};

} // namespace TestSupport

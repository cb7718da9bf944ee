// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QIODevice>

namespace Corvelpro {

/// A device that is open for writing alone. A subclass takes the bytes in writeData().
class WriteOnlyDevice : public QIODevice
{
protected:
    WriteOnlyDevice() { open(QIODevice::WriteOnly | QIODevice::Unbuffered); }

    qint64 readData(char *, qint64) override { return -1; }
};

} // namespace Corvelpro

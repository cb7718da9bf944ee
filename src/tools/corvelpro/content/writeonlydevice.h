// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QIODevice>

namespace Corvelpro {

/// A device open for writing only. A subclass implements writeData().
class WriteOnlyDevice : public QIODevice
{
protected:
    WriteOnlyDevice() { open(QIODevice::WriteOnly | QIODevice::Unbuffered); }

    qint64 readData(char *, qint64) override { return -1; }
};

} // namespace Corvelpro

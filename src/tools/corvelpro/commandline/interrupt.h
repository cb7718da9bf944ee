// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QtGlobal>

namespace Corvelpro {

/// During its lifetime, Ctrl-C and a request to terminate do not end the process: the operation checks came() between
/// its steps, and removes what it has begun. The destructor then ends the process as the signal would have. A second
/// signal ends it at once. Main thread, one at a time; declare it before what is to be removed.
class Interrupt
{
public:
    Interrupt();
    ~Interrupt();

    static bool came();

private:
    Q_DISABLE_COPY(Interrupt)
};

} // namespace Corvelpro

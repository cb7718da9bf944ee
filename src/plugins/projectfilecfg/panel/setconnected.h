// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QObject>

namespace ProjectFileCfg {
namespace Internal {

/// Makes or removes one connection.
template<typename Sender, typename Signal, typename Receiver, typename Slot>
void setConnected(bool bConnect, Sender *sender, Signal signal, Receiver *receiver, Slot slot)
{
    if (bConnect)
        QObject::connect(sender, signal, receiver, slot);
    else
        QObject::disconnect(sender, signal, receiver, slot);
}

} // namespace Internal
} // namespace ProjectFileCfg

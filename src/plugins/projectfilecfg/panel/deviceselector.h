// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <host/fwd.h>

#include <QStringList>

class QComboBox;

namespace ProjectFileCfg {
namespace Internal {

/// The entries of the device selector, each with a mark of four strings under the role Qt::UserRole + 1: info text,
/// type, name, IP address. User-interface thread.
class DeviceSelector
{
public:
    /// `combo` must outlive this object. The mouse wheel no longer changes its current entry; it only scrolls the open
    /// list.
    explicit DeviceSelector(QComboBox *combo);

    /// Lists the host's devices that support project files. Selects the active device; if there is none, the device
    /// with `address`; if that is not listed either, the entry shown before. `address` becomes that of the active
    /// device, even if it is not listed; without an active device it stays if its device is listed, and else becomes
    /// empty.
    ///
    /// Removes all connections of the selector's signals except destroyed(), including those made by others. False,
    /// with an empty selector and a line in the log, if the host has no device list or throws.
    bool refill(QString &address);

    /// Makes the info text of the current entry the selector's tool tip. True if the entry's mark is complete. An empty
    /// mark is logged, and the tool tip stays.
    bool showCurrent();
    /// The same, and sets `address` to that of the current entry: clears it, and logs that, if the mark is not
    /// complete; leaves it unchanged if the mark is empty.
    void changeDevice(QString &address);

private:
    QStringList currentMark() const;
    QString elidedInfo(const Model::Device &device) const;

    QComboBox *const m_pCombo;
};

} // namespace Internal
} // namespace ProjectFileCfg

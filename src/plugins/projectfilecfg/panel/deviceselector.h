// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <host/fwd.h>

#include <QStringList>

class QComboBox;

namespace ProjectFileCfg {
namespace Internal {

/// The entries of the device selector, and the mark of four strings that each carries under the role Qt::UserRole + 1:
/// info text, type, name, IP address. User-interface thread.
class DeviceSelector
{
public:
    /// `combo` must outlive this object. From now on the wheel no longer changes its device: only its open list
    /// scrolls.
    explicit DeviceSelector(QComboBox *combo);

    /// Offers the host's devices that support project files. Selects the active device; if there is none, the device at
    /// `address`; if that is not offered either, the entry shown before. `address` becomes that of the selected device,
    /// also if the active one is not offered, and empty if there is none.
    ///
    /// Cuts every connection of the selector's signals but destroyed(), whoever made it. False, with an empty selector
    /// and a line in the log, if the host has no device list.
    bool refill(QString &address);

    /// Makes the info text of the current entry the selector's tool tip. True if the entry's mark is complete; an empty
    /// one is logged, and changes no tool tip.
    bool showCurrent();
    /// The same, with `address` becoming that of the current entry: empty, and logged, if its mark is not complete; as
    /// before if its mark is empty.
    void changeDevice(QString &address);

private:
    QStringList currentMark() const;
    QString elidedInfo(const Model::Device &device) const;

    QComboBox *const m_pCombo;
};

} // namespace Internal
} // namespace ProjectFileCfg

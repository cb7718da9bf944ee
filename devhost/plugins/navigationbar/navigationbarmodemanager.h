// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <navigationbar/navigationbar_global.h>
#include <utils/id.h>

#include <QObject>
#include <QVector>

namespace NavigationBar {

class INavigationBarMode;

/// Stands for the manager of one navigation bar's modes. It owns no mode. User-interface thread only. The virtual
/// functions are in the order of the host's vtable.
class HOST_NAVIGATIONBAR_EXPORT NavigationBarModeManager : public QObject
{
    Q_OBJECT

public:
    explicit NavigationBarModeManager(QObject *parent = nullptr);
    ~NavigationBarModeManager() override;

    /// The id of the current mode; invalid if there is none.
    virtual HX::Utils::Id currentModeId() const;
    /// Shows that mode; unknown or disabled ones are ignored.
    virtual void activateMode(const HX::Utils::Id &id);
    virtual bool containsMode(const HX::Utils::Id &id) const;
    /// Registers a mode, sorted by its priority; a second registration of the same id is ignored.
    virtual void addMode(INavigationBarMode *mode);
    virtual void removeMode(INavigationBarMode *mode);

    /// The ids of the registered modes in display order.
    QVector<HX::Utils::Id> modes() const;
    /// The registered mode of that id; null if there is none.
    INavigationBarMode *mode(const HX::Utils::Id &id) const;

signals:
    void currentModeChanged(HX::Utils::Id current, HX::Utils::Id previous);
    void modesChanged();

private:
    void setCurrentMode(const HX::Utils::Id &id);

    QVector<INavigationBarMode *> m_modes;
    HX::Utils::Id m_currentModeId;
};

} // namespace NavigationBar

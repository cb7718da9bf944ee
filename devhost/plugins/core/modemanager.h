// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/core_global.h>
#include <utils/id.h>

#include <QHash>
#include <QObject>
#include <QVector>

namespace Core {

class IMode;

/// Stands for the host's top-level modes and its central-widget area. User-interface thread only.
class HOST_CORE_EXPORT ModeManager : public QObject
{
    Q_OBJECT

public:
    static ModeManager *instance();

    /// Registers a top-level mode, sorted by its priority; the first one becomes current. Never takes ownership.
    static void addMode(IMode *mode);
    /// Removes a top-level mode; if it was current, the first remaining one becomes current.
    static void removeMode(IMode *mode);
    /// The top-level modes in display order.
    static QVector<IMode *> modes();
    /// The id of the current top-level mode.
    static HX::Utils::Id currentMode();
    /// Switches to another top-level mode; unknown ids are ignored.
    static void activateMode(const HX::Utils::Id &id);

    /// True while a central widget of that id is registered.
    static bool existCenterWidget(const HX::Utils::Id &id);
    /// Registers the central widget of that id, which is looked up in the object pool.
    static void addCenterWidget(const HX::Utils::Id &id);
    /// Removes it from the central area; the owner keeps the widget.
    static void removeCenterWidget(const HX::Utils::Id &id);
    /// Shows it.
    static void setActivateCenterWidget(const HX::Utils::Id &id);
    /// The id of the visible central widget; invalid if there is none.
    static HX::Utils::Id activeCenterWidget();

signals:
    void modesChanged();
    void currentModeChanged(const HX::Utils::Id &current, const HX::Utils::Id &previous);
    void centerWidgetAdded(const HX::Utils::Id &id);
    void centerWidgetRemoved(const HX::Utils::Id &id);
    void centerWidgetActivated(const HX::Utils::Id &id);

private:
    ModeManager() = default;
    void setCurrentMode(const HX::Utils::Id &id);
    void setActive(const HX::Utils::Id &id);

    QVector<IMode *> m_modes;
    HX::Utils::Id m_currentMode;
    QVector<HX::Utils::Id> m_centerWidgets;
    HX::Utils::Id m_activeCenterWidget;
    /// The last central widget of each top-level mode.
    QHash<HX::Utils::Id, HX::Utils::Id> m_lastCenterWidget;
};

} // namespace Core

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/modemanager.h>

#include <core/imode.h>
#include <simulation/journal.h>

#include <QDebug>

#include <algorithm>

namespace Core {

namespace {

void record(QLatin1String operation, const HX::Utils::Id &id)
{
    Simulation::Journal::instance()->record(operation, {{QStringLiteral("id"), id.toString()}});
}

} // namespace

ModeManager *ModeManager::instance()
{
    static ModeManager manager;
    return &manager;
}

void ModeManager::addMode(IMode *mode)
{
    QVector<IMode *> &modes = instance()->m_modes;
    if (modes.contains(mode))
        return;
    const auto position = std::upper_bound(
        modes.begin(), modes.end(), mode, [](const IMode *a, const IMode *b) { return a->priority() < b->priority(); });
    modes.insert(position, mode);
    emit instance()->modesChanged();
    if (!currentMode().isValid())
        instance()->setCurrentMode(mode->id());
}

void ModeManager::removeMode(IMode *mode)
{
    QVector<IMode *> &modes = instance()->m_modes;
    if (!modes.removeOne(mode))
        return;
    instance()->m_lastCenterWidget.remove(mode->id());
    emit instance()->modesChanged();
    if (currentMode() == mode->id())
        instance()->setCurrentMode(modes.isEmpty() ? HX::Utils::Id() : modes.first()->id());
}

QVector<IMode *> ModeManager::modes()
{
    return instance()->m_modes;
}

HX::Utils::Id ModeManager::currentMode()
{
    return instance()->m_currentMode;
}

void ModeManager::activateMode(const HX::Utils::Id &id)
{
    record(Simulation::Operations::activateMode, id);
    const QVector<IMode *> &modes = instance()->m_modes;
    const bool known = std::any_of(modes.begin(), modes.end(),
                                   [&id](const IMode *mode) { return mode->id() == id && mode->enabled(); });
    if (known && id != currentMode())
        instance()->setCurrentMode(id);
}

void ModeManager::setCurrentMode(const HX::Utils::Id &id)
{
    const HX::Utils::Id previous = m_currentMode;
    if (previous.isValid())
        m_lastCenterWidget.insert(previous, m_activeCenterWidget);
    m_currentMode = id;
    for (IMode *mode : qAsConst(m_modes))
        mode->setVisible(mode->id() == id);
    const HX::Utils::Id last = m_lastCenterWidget.value(id);
    setActive(m_centerWidgets.contains(last) ? last : HX::Utils::Id());
    emit currentModeChanged(id, previous);
}

bool ModeManager::existCenterWidget(const HX::Utils::Id &id)
{
    record(Simulation::Operations::existCenterWidget, id);
    return instance()->m_centerWidgets.contains(id);
}

void ModeManager::addCenterWidget(const HX::Utils::Id &id)
{
    record(Simulation::Operations::addCenterWidget, id);
    if (instance()->m_centerWidgets.contains(id))
        return;
    instance()->m_centerWidgets.append(id);
    emit instance()->centerWidgetAdded(id);
}

void ModeManager::removeCenterWidget(const HX::Utils::Id &id)
{
    record(Simulation::Operations::removeCenterWidget, id);
    if (!instance()->m_centerWidgets.removeOne(id))
        return;
    emit instance()->centerWidgetRemoved(id);
    if (activeCenterWidget() == id)
        instance()->setActive(HX::Utils::Id());
}

void ModeManager::setActivateCenterWidget(const HX::Utils::Id &id)
{
    record(Simulation::Operations::setActivateCenterWidget, id);
    if (!instance()->m_centerWidgets.contains(id)) {
        qWarning() << "There is no central widget" << id << "to show";
        return;
    }
    instance()->setActive(id);
}

HX::Utils::Id ModeManager::activeCenterWidget()
{
    return instance()->m_activeCenterWidget;
}

void ModeManager::setActive(const HX::Utils::Id &id)
{
    m_activeCenterWidget = id;
    emit centerWidgetActivated(id);
}

} // namespace Core

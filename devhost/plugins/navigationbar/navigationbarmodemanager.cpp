// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <navigationbar/navigationbarmodemanager.h>

#include <core/icore.h>
#include <navigationbar/inavigationbarmode.h>
#include <simulation/journal.h>

#include <algorithm>

namespace NavigationBar {

namespace {

void record(QLatin1String operation, const HX::Utils::Id &id)
{
    Simulation::Journal::instance()->record(operation, {{QStringLiteral("id"), id.toString()}});
}

} // namespace

NavigationBarModeManager::NavigationBarModeManager(QObject *parent)
    : QObject(parent)
{
    connect(Core::ICore::instance(), &Core::ICore::languageChanged, this, [this]() {
        for (INavigationBarMode *mode : qAsConst(m_modes))
            mode->retranslateUi();
        emit modesChanged();
    });
}

NavigationBarModeManager::~NavigationBarModeManager() = default;

HX::Utils::Id NavigationBarModeManager::currentModeId() const
{
    return m_currentModeId;
}

void NavigationBarModeManager::activateMode(const HX::Utils::Id &id)
{
    record(Simulation::Operations::activateNavigationMode, id);
    const INavigationBarMode *wanted = mode(id);
    if (wanted && wanted->enabled() && id != m_currentModeId)
        setCurrentMode(id);
}

bool NavigationBarModeManager::containsMode(const HX::Utils::Id &id) const
{
    return mode(id) != nullptr;
}

void NavigationBarModeManager::addMode(INavigationBarMode *mode)
{
    record(Simulation::Operations::addNavigationMode, mode->id());
    if (containsMode(mode->id()))
        return;
    const auto position = std::upper_bound(
        m_modes.begin(), m_modes.end(), mode,
        [](const INavigationBarMode *a, const INavigationBarMode *b) { return a->priority() < b->priority(); });
    m_modes.insert(position, mode);
    emit modesChanged();
}

void NavigationBarModeManager::removeMode(INavigationBarMode *mode)
{
    record(Simulation::Operations::removeNavigationMode, mode->id());
    if (!m_modes.removeOne(mode))
        return;
    mode->setVisible(false);
    emit modesChanged();
    if (mode->id() == m_currentModeId)
        setCurrentMode(m_modes.isEmpty() ? HX::Utils::Id() : m_modes.first()->id());
}

QVector<HX::Utils::Id> NavigationBarModeManager::modes() const
{
    QVector<HX::Utils::Id> ids;
    for (const INavigationBarMode *mode : m_modes)
        ids.append(mode->id());
    return ids;
}

INavigationBarMode *NavigationBarModeManager::mode(const HX::Utils::Id &id) const
{
    const auto found = std::find_if(m_modes.begin(), m_modes.end(),
                                    [&id](const INavigationBarMode *mode) { return mode->id() == id; });
    return found == m_modes.end() ? nullptr : *found;
}

void NavigationBarModeManager::setCurrentMode(const HX::Utils::Id &id)
{
    const HX::Utils::Id previous = m_currentModeId;
    m_currentModeId = id;
    for (INavigationBarMode *mode : qAsConst(m_modes))
        mode->setVisible(mode->id() == id);
    emit currentModeChanged(id, previous);
}

} // namespace NavigationBar

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectfilecfgmode.h"

#include <host/theme.h>

using Corvel::Utils::Icon;

namespace ProjectFileCfg {
namespace Internal {

ProjectFileCfgMode::ProjectFileCfgMode(QObject *parent)
    : SettingCfg::ISettingCfgMode(parent)
{
    setObjectName(QStringLiteral("ProjectFileCfgMode"));
    setPriority(594);
    setId("ProjectFileCfg");
    setIcon(Icon::fromTheme(QStringLiteral("project_normal"), QString()));
    setEnabled(true);
    setVisible(false);
    addStateIcon(HostNumbers::buttonNormal, Icon::fromTheme(QStringLiteral("project_normal"), QString()));
    addStateIcon(HostNumbers::buttonHover, Icon::fromTheme(QStringLiteral("project_hover_normal"), QString()));
    // Spelt so in the host's theme.
    addStateIcon(HostNumbers::buttonPressed, Icon::fromTheme(QStringLiteral("projecte_pressed_normal"), QString()));
    ProjectFileCfgMode::retranslateUi();
}

ProjectFileCfgMode::~ProjectFileCfgMode() = default;

void ProjectFileCfgMode::retranslateUi()
{
    setDisplayName(tr("Project File"));
    setToolTip(tr("Switch to project file module"));
}

QWidget *ProjectFileCfgMode::toolBar() const
{
    return nullptr;
}

bool ProjectFileCfgMode::isSettingMode() const
{
    return true;
}

} // namespace Internal
} // namespace ProjectFileCfg

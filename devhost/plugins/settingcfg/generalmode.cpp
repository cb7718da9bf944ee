// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <settingcfg/generalmode.h>

#include <utils/icon.h>

namespace SettingCfg {

GeneralMode::GeneralMode(QObject *parent)
    : ISettingCfgMode(parent)
{
    using Corvel::Utils::Icon;
    setObjectName(QStringLiteral("GeneralMode"));
    setPriority(100);
    setId("General");
    setEnabled(true);
    setVisible(false);
    setIcon(Icon::fromTheme(QStringLiteral("general_normal"), QString()));
    addStateIcon(Normal, Icon::fromTheme(QStringLiteral("general_normal"), QString()));
    addStateIcon(Hover, Icon::fromTheme(QStringLiteral("general_hover"), QString()));
    addStateIcon(Pressed, Icon::fromTheme(QStringLiteral("general_pressed"), QString()));
    GeneralMode::retranslateUi();
}

void GeneralMode::retranslateUi()
{
    setDisplayName(tr("General"));
    setToolTip(tr("Settings of the program itself"));
}

QWidget *GeneralMode::toolBar() const
{
    return nullptr;
}

bool GeneralMode::isSettingMode() const
{
    return true;
}

} // namespace SettingCfg

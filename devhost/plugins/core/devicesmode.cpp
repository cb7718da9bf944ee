// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/devicesmode.h>

#include <utils/icon.h>

namespace Core {

DevicesMode::DevicesMode(QObject *parent)
    : IMode(parent)
{
    setObjectName(QStringLiteral("DevicesMode"));
    setPriority(100);
    setId("Devices");
    setEnabled(true);
    setVisible(false);
    using Corvel::Utils::Icon;
    setIcon(Icon::fromStates(Icon::fromTheme(QStringLiteral("device_normal"), QString()),
                             Icon::fromTheme(QStringLiteral("device_hover"), QString()),
                             Icon::fromTheme(QStringLiteral("device_pressed"), QString())));
    DevicesMode::retranslateUi();
}

void DevicesMode::retranslateUi()
{
    setDisplayName(tr("Devices"));
}

QWidget *DevicesMode::toolBar() const
{
    return nullptr;
}

bool DevicesMode::hasNavigationBar() const
{
    return false;
}

} // namespace Core

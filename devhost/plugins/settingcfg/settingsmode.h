// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/imode.h>

#include <QPointer>

#include <memory>

namespace NavigationBar {
class NavigationBarWidget;
}

namespace SettingCfg {

/// The top-level mode of the settings area; its tool bar is the navigation between the sub-modes.
class SettingsMode : public Core::IMode
{
    Q_OBJECT

public:
    explicit SettingsMode(QObject *parent = nullptr);
    ~SettingsMode() override;

    void retranslateUi() override;
    QWidget *toolBar() const override;

private:
    QPointer<NavigationBar::NavigationBarWidget> m_navigation;
};

} // namespace SettingCfg

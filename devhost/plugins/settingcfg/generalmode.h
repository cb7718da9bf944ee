// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <settingcfg/isettingcfgmode.h>

namespace SettingCfg {

/// The settings' sub-mode for the program itself.
class GeneralMode : public ISettingCfgMode
{
    Q_OBJECT

public:
    explicit GeneralMode(QObject *parent = nullptr);

    void retranslateUi() override;
    QWidget *toolBar() const override;
    bool isSettingMode() const override;
};

} // namespace SettingCfg

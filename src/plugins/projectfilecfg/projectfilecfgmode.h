// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <host/modes.h>

namespace ProjectFileCfg {
namespace Internal {

/// The "Project File" entry of the host's settings area: its button's text and icons, and the id by which the host
/// reports it as current. The panel is registered separately as "ProjectFileCfg.Central".
class ProjectFileCfgMode : public SettingCfg::ISettingCfgMode
{
    Q_OBJECT

public:
    explicit ProjectFileCfgMode(QObject *parent);
    ~ProjectFileCfgMode() override;

    void retranslateUi() override;
    QWidget *toolBar() const override;
    bool isSettingMode() const override;
};

} // namespace Internal
} // namespace ProjectFileCfg

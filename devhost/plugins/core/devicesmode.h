// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/imode.h>

namespace Core {

/// The top-level mode that shows every device in full.
class DevicesMode : public IMode
{
    Q_OBJECT

public:
    explicit DevicesMode(QObject *parent = nullptr);

    void retranslateUi() override;
    QWidget *toolBar() const override;
    bool hasNavigationBar() const override;
};

} // namespace Core

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <widgets/icenterwidget.h>

class QLabel;
class QTableWidget;

namespace Core {

/// The page of the Devices mode: the model's contents for each device.
class DevicesWidget : public Corvel::Widgets::ICenterWidget
{
    Q_OBJECT

public:
    explicit DevicesWidget(QWidget *parent = nullptr);

    void retranslateUi() override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    void refresh();

    QLabel *m_title;
    QTableWidget *m_table;
};

} // namespace Core

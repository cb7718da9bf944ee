// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <model/device.h>

#include <QWidget>

class QHBoxLayout;
class QLabel;

namespace Core {

class DeviceCard;

/// The bar with a card for each known device: type, name, whether it is online and whether it is active. Pressing a
/// card activates its device.
class DeviceBar : public QWidget
{
    Q_OBJECT

public:
    explicit DeviceBar(QWidget *parent = nullptr);

    /// Updates the cards.
    void refresh();

protected:
    void changeEvent(QEvent *event) override;

private:
    void retranslateUi();
    void makeActive(const QString &ip);

    QHBoxLayout *m_cardLayout;
    QLabel *m_emptyLabel;
    QVector<DeviceCard *> m_cards;
};

} // namespace Core

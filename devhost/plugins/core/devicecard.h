// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QPushButton>

class QLabel;

namespace Core {

class ElidedLabel;

/// The contents of a card in the device bar.
struct DeviceSummary
{
    QString ip;
    QString type;
    QString name;
    bool online = false;
    bool active = false;

    friend bool operator==(const DeviceSummary &a, const DeviceSummary &b)
    {
        return a.ip == b.ip && a.type == b.type && a.name == b.name && a.online == b.online && a.active == b.active;
    }
};

/// One device in the device bar.
class DeviceCard : public QPushButton
{
    Q_OBJECT

public:
    explicit DeviceCard(QWidget *parent);

    DeviceSummary summary() const { return m_summary; }
    void setSummary(const DeviceSummary &summary);
    void retranslateUi();

protected:
    bool event(QEvent *event) override;

private:
    void fixSize();

    DeviceSummary m_summary;
    ElidedLabel *m_name;
    ElidedLabel *m_details;
    QLabel *m_dot;
    QLabel *m_state;
    QLabel *m_active;
};

} // namespace Core

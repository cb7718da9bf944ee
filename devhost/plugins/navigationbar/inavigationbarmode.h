// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <core/imode.h>
#include <navigationbar/navigationbar_global.h>

#include <QPair>
#include <QVector>

namespace NavigationBar {

/// Stands for a mode with a button in a navigation bar.
class HOST_NAVIGATIONBAR_EXPORT INavigationBarMode : public Core::IMode
{
    Q_OBJECT

public:
    /// The states of a button; they index stateIcons().
    enum ButtonState { Normal = 0, Pressed = 1, Hover = 2 };

    explicit INavigationBarMode(QObject *parent = nullptr);
    ~INavigationBarMode() override;

    QWidget *toolBar() const override = 0;

    QString toolTip() const { return m_toolTip; }
    void setToolTip(const QString &toolTip) { m_toolTip = toolTip; }
    QVector<QPair<int, QIcon>> stateIcons() const { return m_stateIcons; }
    void addStateIcon(int state, const QIcon &icon) { m_stateIcons.append(qMakePair(state, icon)); }

private:
    QString m_toolTip;
    QVector<QPair<int, QIcon>> m_stateIcons;
};

} // namespace NavigationBar

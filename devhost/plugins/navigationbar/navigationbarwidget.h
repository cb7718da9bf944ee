// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <navigationbar/navigationbar_global.h>
#include <utils/id.h>

#include <QHash>
#include <QPointer>
#include <QWidget>

class QLabel;
class QToolButton;
class QVBoxLayout;

namespace NavigationBar {

class NavigationBarModeManager;

/// A column with a button for each mode of a manager.
class HOST_NAVIGATIONBAR_EXPORT NavigationBarWidget : public QWidget
{
    Q_OBJECT

public:
    explicit NavigationBarWidget(NavigationBarModeManager *manager, QWidget *parent = nullptr);

    /// The heading above the buttons.
    void setTitle(const QString &title);
    /// The button of that mode; null if there is none.
    QToolButton *button(const HX::Utils::Id &id) const;

private:
    void rebuild();
    void showCurrent();

    const QPointer<NavigationBarModeManager> m_manager;
    QLabel *m_title;
    QVBoxLayout *m_layout;
    QHash<HX::Utils::Id, QToolButton *> m_buttons;
};

} // namespace NavigationBar

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <widgets/widgets_global.h>

#include <QPoint>
#include <QWidget>

class QHBoxLayout;
class QLabel;
class QMenu;
class QToolButton;

namespace HX {
namespace Widgets {

/// The title bar of a frameless window: shows the window's title, moves the window when dragged and has a close button.
/// User-interface thread only.
class HOST_WIDGETS_EXPORT TitleBar : public QWidget
{
    Q_OBJECT

public:
    explicit TitleBar(QWidget *window);

    /// Adds a button in front of the close button. The caller sets its tool tip and accessible name.
    QToolButton *addButton(const QString &iconName);
    /// Adds a text button that opens `menu`, which the caller owns. Reachable by keyboard.
    QToolButton *addMenuButton(QMenu *menu);
    QToolButton *closeButton() const { return m_closeButton; }

signals:
    void closeRequested();
    void doubleClicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void insert(QToolButton *button);
    void retranslateUi();

    QHBoxLayout *m_layout;
    QToolButton *m_closeButton = nullptr;
    bool m_dragging = false;
    QPoint m_grip;
};

} // namespace Widgets
} // namespace HX

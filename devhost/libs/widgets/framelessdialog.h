// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <widgets/widgets_global.h>

#include <QDialog>

namespace HX {
namespace Widgets {

/// Stands for the host's dialog with its own title bar: drag it to move, press Escape to close.
class HOST_WIDGETS_EXPORT FramelessDialog : public QDialog
{
    Q_OBJECT

public:
    explicit FramelessDialog(QWidget *parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    ~FramelessDialog() override;

    /// Shows or hides the bar with the dialog's own OK and Cancel; it is visible at first.
    void setBottomBarVisible(bool visible);

    /// Puts `layout` between the title bar and the bottom bar. Hides QWidget::setLayout on purpose:
    /// the dialog's outermost layout belongs to its frame.
    void setLayout(QLayout *layout);

protected:
    void changeEvent(QEvent *event) override;

private:
    void retranslateUi();

    class Private;
    Private *const d;
};

} // namespace Widgets
} // namespace HX

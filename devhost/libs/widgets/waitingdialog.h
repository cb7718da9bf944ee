// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <widgets/widgets_global.h>

#include <QDialog>

namespace Corvel {
namespace Widgets {

/// Stands for the host's one waiting dialog: modal, with a spinner, a text and an optional cancel button.
///
/// It never runs a nested event loop: the caller continues at once. Tab reaches Cancel, Space and Escape press it;
/// after that the dialog says that it is stopping and ignores other texts until it is hidden. The button is enabled
/// while something is connected to signal_canelLoad. Each text is announced to assistive technology. User-interface
/// thread only.
class HOST_WIDGETS_EXPORT WaitingDialog : public QDialog
{
    Q_OBJECT

public:
    enum TooltipLevel { LevelNormal = 0 };

    /// The one dialog. `parent` and `level` only take effect in the call that creates it.
    static WaitingDialog *instance(QWidget *parent = nullptr, int level = LevelNormal);

    /// Shows the dialog, or changes its text. The text is on the screen before this returns, since callers continue
    /// with work that blocks the event loop.
    void showWaitingDialog(const QString &text, int level);
    /// Hides the dialog and resets the cancel state for the next operation.
    void hideWaitingDialog();
    /// Shows or hides the cancel button. The setting stays until it is changed (the host's spelling).
    void setCanelVisible(bool visible);
    void setButtonText(const QString &text);

    /// The displayed text.
    QString text() const;
    bool isCanelVisible() const;

    /// Ignored on purpose: only hideWaitingDialog closes the dialog, neither Escape nor the window system.
    void reject() override;

signals:
    /// The cancel button was pressed (the host's spelling).
    void signal_canelLoad();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;
    void connectNotify(const QMetaMethod &signal) override;
    void disconnectNotify(const QMetaMethod &signal) override;

private:
    explicit WaitingDialog(QWidget *parent);
    ~WaitingDialog() override;

    static void deleteInstance();
    bool isObeyed() const;
    void refreshCancelButton();
    void refreshCancelButtonLater();
    void cancel();
    void refreshText();
    void fitToText();
    void paintNow();

    class Private;
    Private *const d;
};

} // namespace Widgets
} // namespace Corvel

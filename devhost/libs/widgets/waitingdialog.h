#pragma once

#include <widgets/widgets_global.h>

#include <QDialog>

namespace Corvel {
namespace Widgets {

/// Stands for the host's one waiting dialog: modal, with a spinner, a text and an optional cancel button.
///
/// It never runs an event loop of its own: the caller goes on at once. Cancel is reached by Tab and pressed by Space or
/// Escape; as soon as it is pressed the dialog says that it stops, and says nothing else until it is hidden. The button
/// is enabled while something is connected to signal_canelLoad. Each text is announced to assistive technology.
/// User-interface thread only.
class HOST_WIDGETS_EXPORT WaitingDialog : public QDialog
{
    Q_OBJECT

public:
    enum TooltipLevel { LevelNormal = 0 };

    /// The one dialog. `parent` and `level` matter only in the call that creates it.
    static WaitingDialog *instance(QWidget *parent = nullptr, int level = LevelNormal);

    /// Shows the dialog, or changes its text when it is already shown. The text is on the screen before it returns,
    /// since callers go on with work that blocks the event loop.
    void showWaitingDialog(const QString &text, int level);
    /// Hides the dialog; the next operation that shows it can be cancelled anew.
    void hideWaitingDialog();
    /// Shows or hides the cancel button. The setting stays until it is changed (the host's spelling).
    void setCanelVisible(bool visible);
    void setButtonText(const QString &text);

    /// What the dialog shows.
    QString text() const;
    bool isCanelVisible() const;

    /// Does nothing: neither Escape nor the window system closes the dialog, only hideWaitingDialog.
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

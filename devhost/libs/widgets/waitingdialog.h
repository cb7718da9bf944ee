#pragma once

#include <widgets/widgets_global.h>

#include <QDialog>

namespace Corvel {
namespace Widgets {

/// Stands for the host's one waiting dialog: modal, with a spinner, a text and an optional cancel button.
///
/// It never runs an event loop of its own: the caller goes on at once. User-interface thread only.
class HOST_WIDGETS_EXPORT WaitingDialog : public QDialog
{
    Q_OBJECT

public:
    enum TooltipLevel { LevelNormal = 0 };

    /// The one dialog. `parent` and `level` matter only in the call that creates it.
    static WaitingDialog *instance(QWidget *parent = nullptr, int level = LevelNormal);

    /// Shows the dialog, or changes its text when it is already shown, and paints it before it returns,
    /// since callers go on with work that blocks the event loop.
    void showWaitingDialog(const QString &text, int level);
    void hideWaitingDialog();
    /// Shows or hides the cancel button. The setting stays until it is changed (the host's spelling).
    void setCanelVisible(bool visible);
    void setButtonText(const QString &text);

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

private:
    explicit WaitingDialog(QWidget *parent);
    ~WaitingDialog() override;

    static void deleteInstance();
    void fitToText();

    class Private;
    Private *const d;
};

} // namespace Widgets
} // namespace Corvel

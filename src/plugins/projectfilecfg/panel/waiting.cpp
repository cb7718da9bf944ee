#include "waiting.h"

#include <widgets/waitingdialog.h>

using Corvel::Widgets::WaitingDialog;

namespace ProjectFileCfg {
namespace Internal {

void Waiting::show(const QString &text)
{
    WaitingDialog::instance()->showWaitingDialog(text, WaitingDialog::LevelNormal);
}

void Waiting::offerCancel()
{
    WaitingDialog::instance()->setCanelVisible(true);
    WaitingDialog::instance()->setButtonText(tr("Cancel"));
}

void Waiting::hide()
{
    WaitingDialog::instance()->hideWaitingDialog();
}

} // namespace Internal
} // namespace ProjectFileCfg

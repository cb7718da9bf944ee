// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "waiting.h"

using Corvel::Widgets::WaitingDialog;

namespace ProjectFileCfg {
namespace Internal {

Waiting::Texts &Waiting::texts()
{
    static Texts texts;
    return texts;
}

void Waiting::show(const TranslatedText &text)
{
    texts().shown = text;
    showProgress(text());
}

void Waiting::showProgress(const QString &text)
{
    WaitingDialog::instance()->showWaitingDialog(text, HostNumbers::tooltipLevelNormal);
}

void Waiting::offerCancel()
{
    WaitingDialog::instance()->setCanelVisible(true);
    WaitingDialog::instance()->setButtonText(tr("Cancel"));
    texts().bCancelNamed = true;
}

void Waiting::hide()
{
    texts().shown = nullptr;
    WaitingDialog::instance()->hideWaitingDialog();
}

void Waiting::retranslate()
{
    // The button keeps its text for the next operation.
    if (texts().bCancelNamed)
        WaitingDialog::instance()->setButtonText(tr("Cancel"));
    if (texts().shown)
        showProgress(texts().shown());
}

} // namespace Internal
} // namespace ProjectFileCfg

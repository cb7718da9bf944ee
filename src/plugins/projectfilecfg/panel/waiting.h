// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "setconnected.h"
#include "translatedtext.h"

#include <widgets/waitingdialog.h>

#include <QCoreApplication>

namespace ProjectFileCfg {
namespace Internal {

/// The host's waiting dialog, as the panel uses it. User-interface thread.
class Waiting
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// Shows the dialog, or changes its text. Its cancel button stays as it is.
    static void show(const TranslatedText &text);
    /// Changes its text to a job's progress, which is in the language of the moment when the job reported it.
    static void showProgress(const QString &text);
    /// Shows the dialog's cancel button, with its translated text.
    static void offerCancel();
    /// Makes or removes the connection of a click on that button with `slot`.
    template<typename Receiver>
    static void connectCancel(bool bConnect, Receiver *receiver, void (Receiver::*slot)())
    {
        using Corvel::Widgets::WaitingDialog;
        setConnected(bConnect, WaitingDialog::instance(), &WaitingDialog::signal_canelLoad, receiver, slot);
    }
    static void hide();

    /// Shows its text again, and that of its button, in the current language. In place of progress it shows the text
    /// before, until the job reports the next one.
    static void retranslate();

private:
    struct Texts
    {
        /// None while the dialog is not shown.
        TranslatedText shown;
        bool bCancelNamed = false;
    };

    static Texts &texts();
};

} // namespace Internal
} // namespace ProjectFileCfg

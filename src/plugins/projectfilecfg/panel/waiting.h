// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "setconnected.h"
#include "translatedtext.h"

#include <host/dialogs.h>

#include <QCoreApplication>

namespace ProjectFileCfg {
namespace Internal {

/// The host's waiting dialog, as the panel uses it. User-interface thread.
class Waiting
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// Shows the dialog, or changes its text. Does not change the cancel button.
    static void show(const TranslatedText &text);
    /// Changes the text to a job's progress, which stays in the language in which the job reported it.
    static void showProgress(const QString &text);
    /// Shows the dialog's cancel button, with its translated text.
    static void offerCancel();
    /// Connects a click on that button to `slot`, or disconnects it.
    template<typename Receiver>
    static void connectCancel(bool bConnect, Receiver *receiver, void (Receiver::*slot)())
    {
        using Corvel::Widgets::WaitingDialog;
        setConnected(bConnect, WaitingDialog::instance(), &WaitingDialog::signal_canelLoad, receiver, slot);
    }
    static void hide();

    /// Shows the texts of the dialog and its button in the current language. Progress is replaced with the text before
    /// it, until the job reports the next.
    static void retranslate();

private:
    struct Texts
    {
        /// Empty while the dialog is hidden.
        TranslatedText shown;
        bool bCancelNamed = false;
    };

    static Texts &texts();
};

} // namespace Internal
} // namespace ProjectFileCfg

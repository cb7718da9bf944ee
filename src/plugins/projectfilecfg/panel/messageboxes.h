// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "translatedtext.h"

#include <QCoreApplication>
#include <QMessageBox>

namespace ProjectFileCfg {
namespace Internal {

/// The panel's message boxes, which follow a change of the language while they are open. User-interface thread. Each
/// function runs a modal box, and the panel may have been deleted when it returns.
class MessageBoxes
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// A warning under the title "Warning".
    static void warn(QWidget *panel, const TranslatedText &text);
    /// A warning under the title "Remind".
    static void remind(QWidget *panel, const TranslatedText &text);

    /// True if the operator answers Yes and the panel still exists.
    static bool confirm(QWidget *panel, const TranslatedText &question);
    /// Asks whether to save the device's configuration before another one is applied. Yes, No or Cancel; Cancel if the
    /// panel was deleted.
    static QMessageBox::StandardButton askForBackup(QWidget *panel);

    /// Shows the text of a BackupResultCode, if it has one; success has none.
    static void showBackupResult(QWidget *panel, int code);
    /// Shows the text of a LoadResultCode, if it has one; success has none.
    static void showLoadResult(QWidget *panel, int code);
    /// Shows the text of a failed copy or import, or `success` if there is no `failure`.
    static void showCopyResult(QWidget *panel, const TranslatedText &failure, const TranslatedText &success);

private:
    static QString remindTitle() { return tr("Remind"); }
};

} // namespace Internal
} // namespace ProjectFileCfg

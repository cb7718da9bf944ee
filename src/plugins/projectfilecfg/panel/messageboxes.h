// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "translatedtext.h"

#include <QCoreApplication>
#include <QMessageBox>

namespace ProjectFileCfg {
namespace Internal {

/// The panel's message boxes, which follow a change of the language while they are open. User-interface thread; each
/// runs modally, and the panel may have gone when it returns.
class MessageBoxes
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// A warning under the title "Warning".
    static void warn(QWidget *panel, const TranslatedText &text);
    /// A warning under the title "Remind".
    static void remind(QWidget *panel, const TranslatedText &text);

    /// True if the operator answers Yes and the panel is still there.
    static bool confirm(QWidget *panel, const TranslatedText &question);
    /// Whether to save the device's configuration before another is applied: Yes, No or Cancel; Cancel also if the
    /// panel has gone.
    static QMessageBox::StandardButton askForBackup(QWidget *panel);

    /// Shows the text of a BackupResultCode; nothing for one that has none, such as success.
    static void showBackupResult(QWidget *panel, int code);
    /// Shows the text of a LoadResultCode; nothing for one that has none, such as success.
    static void showLoadResult(QWidget *panel, int code);
    /// Shows the failure of copying or importing, or its success if there is no `failure`.
    static void showCopyResult(QWidget *panel, const TranslatedText &failure, const TranslatedText &success);

private:
    static QString remindTitle() { return tr("Remind"); }
};

} // namespace Internal
} // namespace ProjectFileCfg

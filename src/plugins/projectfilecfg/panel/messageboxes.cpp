// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "messageboxes.h"

#include "operationresultcodes.h"
#include "translatedbox.h"

#include <QPointer>

namespace ProjectFileCfg {
namespace Internal {

namespace {

struct ResultText
{
    int nCode;
    const char *pText;
};

/// Null if the code is not in the table.
template<int count>
const char *textOf(int code, const ResultText (&table)[count])
{
    for (const ResultText &entry : table) {
        if (entry.nCode == code)
            return entry.pText;
    }
    return nullptr;
}

} // namespace

void MessageBoxes::warn(QWidget *panel, const TranslatedText &text)
{
    TranslatedBox::warning(
        panel, [] { return tr("Warning"); }, text);
}

void MessageBoxes::remind(QWidget *panel, const TranslatedText &text)
{
    TranslatedBox::warning(panel, remindTitle, text);
}

bool MessageBoxes::confirm(QWidget *panel, const TranslatedText &question)
{
    const QPointer<QWidget> guard(panel);
    const QMessageBox::StandardButton answer =
        TranslatedBox::question(panel, remindTitle, question, QMessageBox::Yes | QMessageBox::No);
    return guard && answer == QMessageBox::Yes;
}

QMessageBox::StandardButton MessageBoxes::askForBackup(QWidget *panel)
{
    const QPointer<QWidget> guard(panel);
    const auto question = [] {
        return tr("Whether the current configuration needs to be backed up before the project file is imported?");
    };
    const QMessageBox::StandardButton answer =
        TranslatedBox::question(panel, remindTitle, question, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    return guard ? answer : QMessageBox::Cancel;
}

void MessageBoxes::showBackupResult(QWidget *panel, int code)
{
    static constexpr ResultText texts[] = {
        {BackupExportBkgFailed, QT_TR_NOOP("Failed to export bkg")},
        {BackupExportLogoFailed, QT_TR_NOOP("Failed to export logo")},
        {BackupOfflineResourceIncomplete, QT_TR_NOOP("Offline device resource file is incomplete")},
        {BackupUserCanceled, QT_TR_NOOP("User cancels current operation")},
        {BackupEncryptFailed, QT_TR_NOOP("Failed to encrypt file")},
        {BackupSaveJsonFailed, QT_TR_NOOP("Failed to save json file")},
        {BackupGetDeviceFailed, QT_TR_NOOP("Failed to get device information")},
    };
    if (const char *text = textOf(code, texts))
        TranslatedBox::information(panel, remindTitle, [text] { return tr(text); });
}

void MessageBoxes::showLoadResult(QWidget *panel, int code)
{
    static constexpr ResultText texts[] = {
        {LoadUserCanceled, QT_TR_NOOP("User cancels current operation")},
        {LoadFileContentError, QT_TR_NOOP("Incorrect file content")},
        {LoadCardMismatch, QT_TR_NOOP("Input or output card mismatch")},
        {LoadHardwareVersionMismatch, QT_TR_NOOP("Hardware version mismatch")},
        {LoadGetDeviceFailed, QT_TR_NOOP("Failed to get device information")},
        {LoadDecompressFailed, QT_TR_NOOP("Failed to decompress file")},
        {LoadImportFailed, QT_TR_NOOP("Project file import failed")},
        {LoadJsonFileError, QT_TR_NOOP("Incorrect JSON file")},
        {LoadDeviceTypeMismatch, QT_TR_NOOP("Device type mismatch")},
        {LoadImageContentError, QT_TR_NOOP("Incorrect file content")},
        {LoadProtocolVersionMismatch, QT_TR_NOOP("Protocol version mismatch")},
        {LoadApplyGalleryFailed, QT_TR_NOOP("apply gallery failed")},
        {LoadGalleryFileError, QT_TR_NOOP("Incorrect gallery file.")},
    };
    if (const char *text = textOf(code, texts))
        remind(panel, [text] { return tr(text); });
}

void MessageBoxes::showCopyResult(QWidget *panel, const TranslatedText &failure, const TranslatedText &success)
{
    if (failure)
        warn(panel, failure);
    else
        TranslatedBox::information(panel, remindTitle, success);
}

} // namespace Internal
} // namespace ProjectFileCfg

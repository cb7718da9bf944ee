#include "messageboxes.h"

#include "operationresultcodes.h"

#include <widgets/framelessmessagebox.h>

#include <QPointer>

using HX::Widgets::FramelessMessageBox;

namespace ProjectFileCfg {
namespace Internal {

namespace {

struct ResultText
{
    int nCode;
    const char *pText;
};

/// Null, which has no translation, if the table does not have the code.
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

void MessageBoxes::warn(QWidget *panel, const QString &text)
{
    FramelessMessageBox::warning(panel, tr("Warning"), text, QMessageBox::Ok);
}

void MessageBoxes::remind(QWidget *panel, const QString &text)
{
    FramelessMessageBox::warning(panel, tr("Remind"), text, QMessageBox::Ok);
}

bool MessageBoxes::confirm(QWidget *panel, const QString &question)
{
    const QPointer<QWidget> guard(panel);
    const QMessageBox::StandardButton answer =
        FramelessMessageBox::question(panel, tr("Remind"), question, QMessageBox::Yes | QMessageBox::No);
    return guard && answer == QMessageBox::Yes;
}

QMessageBox::StandardButton MessageBoxes::askForBackup(QWidget *panel)
{
    const QPointer<QWidget> guard(panel);
    const QMessageBox::StandardButton answer = FramelessMessageBox::question(
        panel, tr("Remind"),
        tr("Whether the current configuration needs to be backed up before the project file is imported?"),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
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
    const QString text = tr(textOf(code, texts));
    if (!text.isEmpty())
        FramelessMessageBox::information(panel, tr("Remind"), text, QMessageBox::Ok);
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
    const QString text = tr(textOf(code, texts));
    if (!text.isEmpty())
        remind(panel, text);
}

void MessageBoxes::showCopyResult(QWidget *panel, const QString &failure, const QString &success)
{
    if (failure.isEmpty())
        FramelessMessageBox::information(panel, tr("Remind"), success, QMessageBox::Ok);
    else
        warn(panel, failure);
}

} // namespace Internal
} // namespace ProjectFileCfg

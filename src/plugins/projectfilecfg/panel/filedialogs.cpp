#include "filedialogs.h"

#include "messageboxes.h"
#include "packagelayout.h"

#include <QDebug>
#include <QFileDialog>
#include <QPointer>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// The parent may delete the dialog during exec(). QFileDialog's static functions have theirs on the stack.
QStringList chosenFiles(const QPointer<QFileDialog> &dialog)
{
    const int answer = dialog->exec();
    if (!dialog)
        return QStringList();
    dialog->deleteLater();
    return answer == QDialog::Accepted ? dialog->selectedFiles() : QStringList();
}

QString otherThan(const QString &documents, const QString &chosen)
{
    // Do not read `documents` after an empty answer: its owner, the panel, may have been deleted.
    return chosen.isEmpty() || chosen == documents ? QString() : chosen;
}

} // namespace

QString FileDialogs::projectFileFilter()
{
    return QStringLiteral("%1(*%2)").arg(tr("file"), PackageLayout::packageExtension);
}

QStringList FileDialogs::selectProjectFiles(QWidget *parent, bool bMulti)
{
    auto *dialog = new QFileDialog(parent);
    dialog->setWindowTitle(tr("Project file"));
    dialog->setDirectory(QStringLiteral("."));
    dialog->setNameFilter(projectFileFilter());
    dialog->setFileMode(bMulti ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
    dialog->setViewMode(QFileDialog::Detail);
    return chosenFiles(dialog);
}

QString FileDialogs::selectTarget(QWidget *parent, const QString &documents, const QString &path)
{
    const QString suggested = documents + QLatin1Char('/') + QFileInfo(path).fileName();
    auto *dialog = new QFileDialog(parent, tr("choose Des Directory"), suggested, projectFileFilter());
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    QString target = otherThan(documents, chosenFiles(dialog).value(0));
    if (target.isEmpty() || !QFile::exists(target))
        return target;
    const QString message =
        tr("Project File [%1] already exist. Please change file name and try again").arg(QFileInfo(target).baseName());
    qWarning().noquote() << message;
    MessageBoxes::remind(parent, message);
    return QString();
}

QString FileDialogs::selectFolder(QWidget *parent, const QString &documents)
{
    auto *dialog = new QFileDialog(parent, tr("choose Des Directory"), documents);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    return otherThan(documents, chosenFiles(dialog).value(0));
}

} // namespace Internal
} // namespace ProjectFileCfg

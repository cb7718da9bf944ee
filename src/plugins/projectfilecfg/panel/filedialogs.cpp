// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "filedialogs.h"

#include "messageboxes.h"
#include "packagelayout.h"
#include "translatedtext.h"

#include <QDebug>
#include <QFileDialog>
#include <QLineEdit>
#include <QPointer>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// Keeps the typed name, to which QFileDialog::setNameFilter() would add the filter's extension.
void changeNameFilter(QFileDialog *dialog, const QString &filter)
{
    auto *name = dialog->findChild<QLineEdit *>();
    const QString typed = name ? name->text() : QString();
    dialog->setNameFilter(filter);
    if (name)
        name->setText(typed);
}

/// Runs the dialog, whose title and filter follow a change of the language. Dialogs for folders have no filter.
///
/// Not QFileDialog's static functions: their dialog is on the stack, but the parent may delete it during exec().
QStringList chosenFiles(const QPointer<QFileDialog> &dialog, const TranslatedText &title,
                        const TranslatedText &filter = nullptr)
{
    const LanguageFollower follower(dialog, [&] {
        dialog->setWindowTitle(title());
        if (filter)
            changeNameFilter(dialog, filter());
    });
    const int answer = dialog->exec();
    if (!dialog)
        return QStringList();
    dialog->deleteLater();
    return answer == QDialog::Accepted ? dialog->selectedFiles() : QStringList();
}

/// The dialog adds its default suffix only to names without a dot.
QString withExtension(const QString &path)
{
    return path.isEmpty() || path.endsWith(PackageLayout::packageExtension, Qt::CaseInsensitive)
               ? path
               : path + PackageLayout::packageExtension;
}

QString otherThan(const QString &documents, const QString &chosen)
{
    // Do not read `documents` after an empty answer: its owner, the panel, may have been deleted.
    return chosen.isEmpty() || chosen == documents ? QString() : chosen;
}

} // namespace

QString FileDialogs::targetTitle()
{
    return tr("choose Des Directory");
}

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
    return chosenFiles(
        dialog, [] { return tr("Project file"); }, projectFileFilter);
}

QString FileDialogs::selectTarget(QWidget *parent, const QString &documents, const QString &path)
{
    const QString suggested = documents + QLatin1Char('/') + QFileInfo(path).fileName();
    auto *dialog = new QFileDialog(parent, targetTitle(), suggested, projectFileFilter());
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    dialog->setDefaultSuffix(PackageLayout::packageExtension);
    QString target = withExtension(otherThan(documents, chosenFiles(dialog, targetTitle, projectFileFilter).value(0)));
    if (target.isEmpty() || !QFile::exists(target))
        return target;
    const auto message = [name = QFileInfo(target).baseName()] {
        return tr("Project File [%1] already exist. Please change file name and try again").arg(name);
    };
    qWarning().noquote() << message();
    MessageBoxes::remind(parent, message);
    return QString();
}

QString FileDialogs::selectFolder(QWidget *parent, const QString &documents)
{
    auto *dialog = new QFileDialog(parent, targetTitle(), documents);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    return otherThan(documents, chosenFiles(dialog, targetTitle).value(0));
}

} // namespace Internal
} // namespace ProjectFileCfg

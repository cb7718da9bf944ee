// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "newproject.h"

#include "engineerpropertysettingwidget.h"
#include "packagelayout.h"

#include <QDateTime>
#include <QFile>
#include <QPointer>

namespace ProjectFileCfg {
namespace Internal {

namespace {

constexpr int lastNumber = 999;

} // namespace

QString NewProject::generateProjectName(const QString &directory)
{
    const QString base = tr("Project");
    for (int number = 1; number <= lastNumber; ++number) {
        QString name = base + QString::number(number);
        if (!QFile::exists(directory + name + PackageLayout::packageExtension))
            return name;
    }
    return QString();
}

QString NewProject::timeStamp()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd_hhmmss"));
}

std::optional<NewProject::Properties> NewProject::ask(QWidget *panel, const QString &directory)
{
    // The panel may be deleted during exec(), and the dialog with it.
    const QPointer<EngineerPropertySettingWidget> dialog =
        new EngineerPropertySettingWidget(panel, QString(), QString());
    dialog->setProjectName(generateProjectName(directory));
    dialog->setComment(timeStamp());
    const int answer = dialog->exec();
    if (!dialog)
        return std::nullopt;
    dialog->deleteLater();
    if (answer != QDialog::Accepted)
        return std::nullopt;
    return Properties{dialog->getProjectName(), dialog->getComment()};
}

} // namespace Internal
} // namespace ProjectFileCfg

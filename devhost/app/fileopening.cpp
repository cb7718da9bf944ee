// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "fileopening.h"

#include <core/modemanager.h>
#include <extensionsystem/objectpool.h>
#include <widgets/icenterwidget.h>

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>

namespace {

using Corvel::Widgets::ICenterWidget;

bool isInProjectFolder(const QString &file)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
                           QStringLiteral("/Velmora/Tarvo/ProjectFiles");
    return QFileInfo(file).canonicalPath() == QFileInfo(folder).canonicalFilePath();
}

/// True if a list on the page accepts them.
bool drop(const QStringList &files, const QWidget *page)
{
    QMimeData data;
    QList<QUrl> urls;
    for (const QString &file : files)
        urls.append(QUrl::fromLocalFile(file));
    data.setUrls(urls);
    const auto lists = page->findChildren<QAbstractItemView *>();
    return std::any_of(lists.begin(), lists.end(), [&data](const QAbstractItemView *list) {
        const QPoint centre = list->viewport()->rect().center();
        QDragEnterEvent enter(centre, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(list->viewport(), &enter);
        QDropEvent drop(centre, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        return enter.isAccepted() && QCoreApplication::sendEvent(list->viewport(), &drop) && drop.isAccepted();
    });
}

bool openOnPage(const QStringList &files, const HX::Utils::Id &id)
{
    const auto pages = HX::ExtensionSystem::ObjectPool::instance()->objectsOfType<ICenterWidget>();
    return std::any_of(pages.begin(), pages.end(),
                       [&files, &id](const ICenterWidget *page) { return page->id() == id && drop(files, page); });
}

} // namespace

QString FileOpening::otherThanProjectFile(const QStringList &files)
{
    const auto other = std::find_if(files.begin(), files.end(), [](const QString &path) {
        const QFileInfo file(path);
        return !file.isFile() || file.suffix().compare(QLatin1String("corvelpro"), Qt::CaseInsensitive) != 0;
    });
    return other == files.end() ? QString() : *other;
}

void FileOpening::open(const QStringList &files)
{
    QStringList foreign;
    std::copy_if(files.begin(), files.end(), std::back_inserter(foreign),
                 [](const QString &file) { return !isInProjectFolder(file); });
    if (foreign.isEmpty())
        return;
    auto *waiting = new QObject(QCoreApplication::instance());
    // Queued: the page itself is told after this signal that it is shown.
    QObject::connect(
        Core::ModeManager::instance(), &Core::ModeManager::centerWidgetActivated, waiting,
        [waiting, foreign](const HX::Utils::Id &id) {
            if (openOnPage(foreign, id))
                waiting->deleteLater();
        },
        Qt::QueuedConnection);
}

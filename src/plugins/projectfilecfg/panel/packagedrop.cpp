// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagedrop.h"

#include "packagelayout.h"

#include <QApplication>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QTableWidget>
#include <QTimer>
#include <QUrl>

namespace ProjectFileCfg {
namespace Internal {

PackageDrop::PackageDrop(QTableWidget *table)
    : QObject(table)
{
    // The viewport shows the rows; a drag over the header reaches the table itself.
    table->setAcceptDrops(true);
    table->installEventFilter(this);
    table->viewport()->installEventFilter(this);
}

PackageDrop::~PackageDrop() = default;

bool PackageDrop::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
        // Looks at the files once, not at each move.
        m_listFiles = packagesIn(static_cast<QDropEvent *>(event)->mimeData());
        answer(static_cast<QDropEvent *>(event));
        return true;
    case QEvent::DragMove:
        answer(static_cast<QDropEvent *>(event));
        return true;
    case QEvent::Drop:
        if (answer(static_cast<QDropEvent *>(event)))
            QTimer::singleShot(0, this, [this, files = m_listFiles] { announce(files); });
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

QStringList PackageDrop::packagesIn(const QMimeData *data)
{
    QStringList files;
    const QList<QUrl> urls = data->urls();
    for (const QUrl &url : urls) {
        const QString path = url.toLocalFile();
        if (!path.endsWith(PackageLayout::packageExtension, Qt::CaseInsensitive) || QFileInfo(path).isDir())
            return QStringList();
        files.append(path);
    }
    return files;
}

bool PackageDrop::isBlocked()
{
    return QApplication::activeModalWidget();
}

bool PackageDrop::answer(QDropEvent *event) const
{
    const bool isWelcome = !m_listFiles.isEmpty() && !isBlocked() && (event->possibleActions() & Qt::CopyAction);
    event->setDropAction(isWelcome ? Qt::CopyAction : Qt::IgnoreAction);
    event->setAccepted(isWelcome);
    return isWelcome;
}

void PackageDrop::announce(const QStringList &files)
{
    if (!isBlocked())
        emit signal_dropped(files);
}

} // namespace Internal
} // namespace ProjectFileCfg

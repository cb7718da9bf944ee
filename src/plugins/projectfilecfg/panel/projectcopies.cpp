// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "projectcopies.h"

#include "replacingfile.h"
#include "zippackagehandle.h"

#include <QDebug>
#include <QFileInfo>
#include <QtConcurrentRun>

namespace ProjectFileCfg {
namespace Internal {

namespace {

QString pathIn(const QString &folder, const QFileInfo &file)
{
    return QStringLiteral("%1/%2").arg(folder, file.fileName());
}

} // namespace

QString ProjectCopies::saveAsConcurrent(const QStringList &files, const QString &destination, bool bDestIsDir,
                                        const std::shared_ptr<TranslatedText> &failure)
{
    qDebug() << "file save path is " << destination;
    QStringList failed;
    for (const QString &file : files) {
        const QFileInfo source(file);
        QString reason;
        if (copyToFreeName(file, bDestIsDir ? pathIn(destination, source) : destination, &reason))
            continue;
        qDebug().noquote() << "Save as failed:" << reason;
        failed.append(source.baseName());
    }
    return failed.isEmpty() ? QString() : report(failure, [names = failed.join(QStringLiteral(", "))] {
        return tr("save as [%1] failed").arg(names);
    });
}

QString ProjectCopies::importProjectFiles(const QStringList &files, const QString &dirPath,
                                          const std::shared_ptr<TranslatedText> &failure)
{
    QStringList failed;
    for (const QString &file : files) {
        const QFileInfo source(file);
        // Never true, since `dirPath` ends in a separator: a file of the directory itself is not skipped; copying it
        // fails, which is reported.
        if (source.path() == dirPath)
            continue;
        QString reason;
        const bool isValid = ZipPackageHandle::isValidEngineerPacket(file, &reason);
        if (isValid && copyToFreeName(file, pathIn(dirPath, source), &reason))
            continue;
        qDebug().noquote() << "Import failed:" << reason;
        if (!isValid)
            return report(failure, [file] { return tr("The file[%1] context is invalid.").arg(file); });
        failed.append(source.baseName());
    }
    return failed.isEmpty() ? QString() : report(failure, [names = failed.join(QStringLiteral(", "))] {
        return tr("Import project file [%1] failed").arg(names);
    });
}

QString ProjectCopies::report(const std::shared_ptr<TranslatedText> &failure, const TranslatedText &text)
{
    *failure = text;
    return text();
}

QFutureWatcher<QString> *ProjectCopies::startSaveAs(const QStringList &files, const QString &destination,
                                                    bool bDestIsDir, QObject *panel, const Finished &finished)
{
    const auto failure = std::make_shared<TranslatedText>();
    return watch(QtConcurrent::run(&ProjectCopies::saveAsConcurrent, files, destination, bDestIsDir, failure), panel,
                 [finished, failure] { finished(*failure); });
}

QFutureWatcher<QString> *ProjectCopies::startImport(const QStringList &files, const QString &dirPath, QObject *panel,
                                                    const Finished &finished)
{
    const auto failure = std::make_shared<TranslatedText>();
    return watch(QtConcurrent::run(&ProjectCopies::importProjectFiles, files, dirPath, failure), panel,
                 [finished, failure] { finished(*failure); });
}

QFutureWatcher<QString> *ProjectCopies::watch(const QFuture<QString> &work, QObject *panel,
                                              const std::function<void()> &finished)
{
    auto *watcher = new QFutureWatcher<QString>;
    QObject::connect(watcher, &QFutureWatcher<QString>::finished, panel, finished);
    watcher->setFuture(work);
    return watcher;
}

bool ProjectCopies::isAwaited(const QFutureWatcher<QString> *watcher)
{
    return watcher && !watcher->isFinished();
}

} // namespace Internal
} // namespace ProjectFileCfg

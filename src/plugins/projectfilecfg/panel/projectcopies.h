// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "translatedtext.h"

#include <QCoreApplication>
#include <QFutureWatcher>
#include <QStringList>

#include <functional>
#include <memory>

namespace ProjectFileCfg {
namespace Internal {

/// Copies packages out of the project-files directory and into it, in the global thread pool.
class ProjectCopies
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    // The work. Any thread: uses only its arguments and the disk. Returns an empty string, or on failure the text for
    // the operator in the current language; `failure` then composes the same text in the language at the time of its
    // call.

    /// Copies `files` into the folder `destination`, or a single file to the path `destination`. Replaces nothing; the
    /// text names all files that could not be copied.
    static QString saveAsConcurrent(const QStringList &files, const QString &destination, bool bDestIsDir,
                                    const std::shared_ptr<TranslatedText> &failure);

    /// Copies `files` into `dirPath`. Replaces nothing; the text names all files that could not be copied. The first
    /// one that is not a valid package ends the import, and the text names only that one.
    static QString importProjectFiles(const QStringList &files, const QString &dirPath,
                                      const std::shared_ptr<TranslatedText> &failure);

    // Its start and end. User-interface thread.

    /// Called with the composer of the failure's text, which is empty after a success.
    using Finished = std::function<void(const TranslatedText &failure)>;

    /// Starts saveAsConcurrent() in the global thread pool. Calls `finished` from the event loop after it has returned,
    /// unless `panel` was deleted. The caller owns the watcher.
    static QFutureWatcher<QString> *startSaveAs(const QStringList &files, const QString &destination, bool bDestIsDir,
                                                QObject *panel, const Finished &finished);
    /// The same for importProjectFiles().
    static QFutureWatcher<QString> *startImport(const QStringList &files, const QString &dirPath, QObject *panel,
                                                const Finished &finished);
    /// False if the panel was notified of the end, or if there is no watcher. The future cannot tell: it is finished
    /// before the panel is notified.
    static bool isAwaited(const QFutureWatcher<QString> *watcher);

private:
    static QFutureWatcher<QString> *watch(const QFuture<QString> &work, QObject *panel,
                                          const std::function<void()> &finished);
    static QString report(const std::shared_ptr<TranslatedText> &failure, const TranslatedText &text);
};

} // namespace Internal
} // namespace ProjectFileCfg

#include "namelessfile.h"

#include "reason.h"

#include <QTemporaryFile>

namespace ProjectFileCfg {
namespace Internal {

std::unique_ptr<QFile> openNamelessFile(const QString &folder, QString *reason)
{
    auto file = std::make_unique<QTemporaryFile>(folder + QStringLiteral("/.XXXXXX.part"));
    if (!file->open()) {
        failBecause(reason, QStringLiteral("cannot create a file in %1: %2").arg(folder, file->errorString()));
        return nullptr;
    }
#ifndef Q_OS_WIN
    // Behind the file's back: its own remove() would close it. From here on the name is anybody's.
    if (QFile::remove(file->fileName()))
        file->setAutoRemove(false);
#endif
    return file;
}

} // namespace Internal
} // namespace ProjectFileCfg

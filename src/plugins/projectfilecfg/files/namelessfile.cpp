#include "namelessfile.h"

#include <QTemporaryFile>

namespace ProjectFileCfg {
namespace Internal {

std::unique_ptr<QFile> openNamelessFile(const QString &folder)
{
    auto file = std::make_unique<QTemporaryFile>(folder + QStringLiteral("/.XXXXXX.part"));
    if (!file->open())
        return nullptr;
#ifndef Q_OS_WIN
    // Behind the file's back: its own remove() would close it. From here on the name is anybody's.
    if (QFile::remove(file->fileName()))
        file->setAutoRemove(false);
#endif
    return file;
}

} // namespace Internal
} // namespace ProjectFileCfg

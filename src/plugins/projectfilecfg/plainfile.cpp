#include "plainfile.h"

#include <QFile>
#include <QFileInfo>

#ifndef Q_OS_WIN
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace ProjectFileCfg {
namespace Internal {

bool openPlainFile(QFile &file, const QString &path)
{
    // Asked first, since opening some devices does something.
    if (!QFileInfo(path).isFile())
        return false;
#ifdef Q_OS_WIN
    file.setFileName(path);
    return file.open(QIODevice::ReadOnly);
#else
    const int handle = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (handle < 0)
        return false;
    struct stat status;
    if (fstat(handle, &status) == 0 && S_ISREG(status.st_mode) &&
        file.open(handle, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return true;
    ::close(handle);
    return false;
#endif
}

} // namespace Internal
} // namespace ProjectFileCfg

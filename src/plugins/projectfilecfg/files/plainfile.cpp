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

bool openPlainFile(QFile &file, bool unbuffered)
{
    const QIODevice::OpenMode mode =
        unbuffered ? QIODevice::ReadOnly | QIODevice::Unbuffered : QIODevice::OpenMode(QIODevice::ReadOnly);
#ifdef Q_OS_WIN
    return QFileInfo(file).isFile() && file.open(mode);
#else
    const int handle =
        ::open(QFile::encodeName(file.fileName()).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    struct stat found;
    if (handle >= 0 && ::fstat(handle, &found) == 0 && S_ISREG(found.st_mode) &&
        file.open(handle, mode, QFileDevice::AutoCloseHandle))
        return true;
    if (handle >= 0)
        ::close(handle);
    return false;
#endif
}

} // namespace Internal
} // namespace ProjectFileCfg

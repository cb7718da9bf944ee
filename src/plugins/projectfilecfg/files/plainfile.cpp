#include "plainfile.h"

#include "reason.h"

#include <QFile>
#include <QFileInfo>

#ifndef Q_OS_WIN
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace ProjectFileCfg {
namespace Internal {

static bool cannotOpen(QString *reason, const QString &path, const QString &error)
{
    return failBecause(reason, QStringLiteral("cannot open %1: %2").arg(path, error));
}

bool openPlainFile(QFile &file, bool unbuffered, QString *reason)
{
    const QString noPlainFile = QStringLiteral("it is no plain file");
    const QIODevice::OpenMode mode =
        unbuffered ? QIODevice::ReadOnly | QIODevice::Unbuffered : QIODevice::OpenMode(QIODevice::ReadOnly);
#ifdef Q_OS_WIN
    if (QFileInfo(file).exists() && !QFileInfo(file).isFile())
        return cannotOpen(reason, file.fileName(), noPlainFile);
    return file.open(mode) || cannotOpen(reason, file.fileName(), file.errorString());
#else
    const int handle =
        ::open(QFile::encodeName(file.fileName()).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (handle < 0)
        return cannotOpen(reason, file.fileName(), systemError());
    struct stat found;
    const bool isPlain = ::fstat(handle, &found) == 0 && S_ISREG(found.st_mode);
    if (isPlain && file.open(handle, mode, QFileDevice::AutoCloseHandle))
        return true;
    ::close(handle);
    return cannotOpen(reason, file.fileName(), isPlain ? file.errorString() : noPlainFile);
#endif
}

} // namespace Internal
} // namespace ProjectFileCfg

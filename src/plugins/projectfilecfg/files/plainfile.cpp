// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

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

namespace {

bool cannotOpen(QString *reason, const QString &path, const QString &error)
{
    return failBecause(reason, QStringLiteral("cannot open %1: %2").arg(path, error));
}

} // namespace

bool openPlainFile(QFile &file, bool unbuffered, QString *reason)
{
    const QString noPlainFile = QStringLiteral("it is not a plain file");
    // QFile::open() with a handle clears the file's name.
    const QString path = file.fileName();
    const QIODevice::OpenMode mode =
        unbuffered ? QIODevice::ReadOnly | QIODevice::Unbuffered : QIODevice::OpenMode(QIODevice::ReadOnly);
#ifdef Q_OS_WIN
    if (QFileInfo(file).exists() && !QFileInfo(file).isFile())
        return cannotOpen(reason, path, noPlainFile);
    return file.open(mode) || cannotOpen(reason, path, file.errorString());
#else
    const int handle = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (handle < 0)
        return cannotOpen(reason, path, systemError());
    struct stat found;
    const bool isPlain = ::fstat(handle, &found) == 0 && S_ISREG(found.st_mode);
    if (isPlain && file.open(handle, mode, QFileDevice::AutoCloseHandle))
        return true;
    ::close(handle);
    return cannotOpen(reason, path, isPlain ? file.errorString() : noPlainFile);
#endif
}

} // namespace Internal
} // namespace ProjectFileCfg

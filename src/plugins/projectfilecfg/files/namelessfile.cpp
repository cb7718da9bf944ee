// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "namelessfile.h"

#include "flushbehind.h"
#include "reason.h"

#include <QTemporaryFile>

namespace ProjectFileCfg {
namespace Internal {

namespace {

/// Owns what it is written with.
struct OwnFlushBehind
{
    FlushBehind flushBehind{FlushBehind::Begin::BeyondDistance};
};

class NamelessFile : private OwnFlushBehind, public FlushedBehind<QTemporaryFile>
{
public:
    explicit NamelessFile(const QString &pattern)
        : FlushedBehind(&flushBehind, pattern)
    {}
};

} // namespace

std::unique_ptr<QFile> openNamelessFile(const QString &folder, QString *reason)
{
    auto file = std::make_unique<NamelessFile>(folder + QStringLiteral("/.XXXXXX.part"));
    if (!file->open()) {
        failBecause(reason, QStringLiteral("cannot create a file in %1: %2").arg(folder, file->errorString()));
        return nullptr;
    }
    // A job on another thread takes it over, and destroys it there.
    file->moveToThread(nullptr);
#ifndef Q_OS_WIN
    // Not QTemporaryFile::remove(): it closes the file. No auto-remove: another program may use the name by then.
    if (QFile::remove(file->fileName()))
        file->setAutoRemove(false);
#endif
    return file;
}

} // namespace Internal
} // namespace ProjectFileCfg

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "testhome.h"

#include <QDir>
#include <QFile>

#include <clocale>

namespace TestSupport {

TestHome::TestHome()
    : m_dir(QDir::tempPath() + QStringLiteral("/projectfilecfg-test-XXXXXX"))
{
    if (!m_dir.isValid())
        qFatal("No private home for this test: %s", qPrintable(m_dir.errorString()));

    const QDir home(m_dir.path());
    for (const char *folder : {"Documents", ".config", ".local/share", ".cache", "runtime"})
        home.mkpath(QLatin1String(folder));
    QFile::setPermissions(home.filePath(QStringLiteral("runtime")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QFile userDirs(home.filePath(QStringLiteral(".config/user-dirs.dirs")));
    if (!userDirs.open(QIODevice::WriteOnly) || userDirs.write("XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\n") < 0)
        qFatal("No private Documents folder for this test: %s", qPrintable(userDirs.errorString()));

    qputenv("HOME", QFile::encodeName(m_dir.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.filePath(QStringLiteral(".config"))));
    qputenv("XDG_DATA_HOME", QFile::encodeName(home.filePath(QStringLiteral(".local/share"))));
    qputenv("XDG_CACHE_HOME", QFile::encodeName(home.filePath(QStringLiteral(".cache"))));
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(home.filePath(QStringLiteral("runtime"))));
    qputenv("LC_ALL", "C.UTF-8");
    setlocale(LC_ALL, "C.UTF-8");
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

QString TestHome::documentsPath() const
{
    return m_dir.filePath(QStringLiteral("Documents"));
}

} // namespace TestSupport

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "hostilepackages.h"

#include <support/costs.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTextStream>

/// Writes the hostile packages into a folder, from which hostilePackages() then reads them; under a sanitizer without
/// those that its tests leave out.
int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        QTextStream(stderr) << "writepackages FOLDER\n";
        return 2;
    }
    qunsetenv(TestData::writtenPackages);
    const QDir folder(arguments.at(1));
    bool isWritten = folder.mkpath(QStringLiteral("."));
    for (const TestData::HostilePackage &package : TestData::hostilePackages()) {
        if (package.onlyLarger && !TestSupport::costsCount)
            continue;
        const QByteArray bytes = package.bytes();
        QFile file(folder.filePath(QString::fromLatin1(package.name)));
        isWritten = isWritten && file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
    }
    if (!isWritten)
        QTextStream(stderr) << "The packages could not be written\n";
    return isWritten ? 0 : 1;
}

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "hostilepackages.h"

#include "ingredients.h"

#include <support/costs.h>

#include <QFile>
#include <QFileInfo>

namespace TestData {

namespace {

Bytes contentOf(const QString &path)
{
    return [path] {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
        return file.readAll();
    };
}

} // namespace

QVector<HostilePackage> hostilePackages()
{
    Corpus corpus;
    corpus.addNames();
    corpus.addLinksAndModes();
    corpus.addSizes();
    corpus.addTruncations();
    corpus.addEndRecords();
    corpus.addHeaders();
    corpus.addMethods();
    corpus.addPictures();
    corpus.addRecords();
    corpus.addDescriptions();
    corpus.addOtherFiles();
    corpus.addAliases();
    corpus.addLargeNumbers();
    corpus.addOtherWriters();
    const QString folder = qEnvironmentVariable(writtenPackages);
    if (QFileInfo::exists(folder)) {
        for (HostilePackage &package : corpus.packages)
            package.bytes = contentOf(folder + QLatin1Char('/') + QString::fromLatin1(package.name));
    }
    return corpus.packages;
}

QVector<HostilePackage> shareOfHostilePackages()
{
    const QVector<HostilePackage> all = hostilePackages();
    const int distance = qMax(1, qEnvironmentVariableIntValue("HOSTILE_EVERY"));
    QVector<HostilePackage> share;
    for (int number = 0; number < all.size(); number += distance) {
        if (TestSupport::costsCount || !all.at(number).onlyLarger)
            share.append(all.at(number));
    }
    return share;
}

QByteArray honestPackage()
{
    return sealed(honest());
}

} // namespace TestData

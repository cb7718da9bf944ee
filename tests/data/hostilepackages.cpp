// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "hostilepackages.h"

#include "ingredients.h"

namespace TestData {

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
    return corpus.packages;
}

QByteArray honestPackage()
{
    return sealed(honest());
}

} // namespace TestData

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <support/packagebuilder.h>

#include <QByteArray>
#include <QByteArrayList>

namespace Fuzzing {

/// An archive with these entries, one a line. A name that ends in "@" is a link.
inline QByteArray archiveOfNames(const QByteArray &names)
{
    using TestSupport::PackageBuilder;
    PackageBuilder package;
    for (const QByteArray &name : names.split('\n')) {
        if (name.endsWith('@'))
            package.symbolicLink(name.chopped(1), "../victim");
        else if (name.endsWith('/'))
            package.folder(name);
        else
            package.file(name.left(0xffff), "content", PackageBuilder::Stored);
    }
    return package.record("names", "").build();
}

/// What separates the contents of archiveOfContents().
constexpr const char *contentSeparator = "\n--\n";

/// An archive whose lengths and CRCs are right: a description, a picture and a preset with these contents.
inline QByteArray archiveOfContents(const QByteArray &contents)
{
    using TestSupport::PackageBuilder;
    PackageBuilder package;
    int begin = 0;
    for (const char *name : {"device.json", "BKG/BKG_1.png", "Preset/1.RPst"}) {
        const int end = contents.indexOf(contentSeparator, begin);
        package.file(name, contents.mid(begin, end < 0 ? -1 : end - begin));
        begin = end < 0 ? contents.size() : end + int(qstrlen(contentSeparator));
    }
    return package.record("contents", "").build();
}

} // namespace Fuzzing

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "devicefiles.h"
#include "tooloutcome.h"

#include "commandline/command.h"

#include <data/pngmaker.h>

#include <QTemporaryDir>

namespace ToolTesting {

/// A folder with input for each command, including those added to the table later.
class Workplace
{
public:
    Workplace()
    {
        const Files files{{"10.0.0.1.json", R"({"name": "main", "id": 7})"},
                          {"BKG/", {}},
                          {"BKG/BKG_1.png", TestData::PngMaker::blank(40, 30)},
                          {"Preset/", {}},
                          {"Preset/1.RPst", QByteArray("\0\0\0\3abc", 7)}};
        // The same content under another name, for comparisons.
        const bool isWritten =
            QDir().mkpath(path("folder")) && QDir().mkpath(path("stick")) &&
            writePackage(path("show.corvelpro"), files, "old") && writePackage(path("same.corvelpro"), files, "old") &&
            writePackage(path("folder/show.corvelpro"), files, "old") && writeDirectory(path("device"), files);
        if (!isWritten)
            qFatal("No workplace");
    }

    QString root() const { return m_dir.path(); }
    QString path(const QString &name) const { return m_dir.filePath(name); }

    /// A value with which the command does its work. For what a command creates, a path that does not exist.
    QString valueOf(const Corvelpro::Command &command, const Corvelpro::Positional &positional) const
    {
        const QString name = QString::fromLatin1(positional.name);
        const QString both = QString::fromLatin1(command.name) + ' ' + name;
        if (both == "create DIR")
            return path("device");
        if (both == "create FILE")
            return path("new.corvelpro");
        if (both == "extract DIR")
            return path("new");
        if (both == "copy DIR")
            return path("stick");
        if (name == "DIR")
            return path("folder");
        if (name == "FILE" || name == "A")
            return path("show.corvelpro");
        if (name == "B")
            return path("same.corvelpro");
        return path("new.png");
    }

    /// A command line that does its work.
    QStringList words(const Corvelpro::Command &command) const
    {
        QStringList words{QString::fromLatin1(command.name)};
        for (const Corvelpro::Positional &positional : command.positionals)
            words.append(valueOf(command, positional));
        if (words.first() == "edit")
            words += {"--comment", "new"};
        return words;
    }

private:
    QTemporaryDir m_dir;
};

} // namespace ToolTesting

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "toolinprocess.h"

#include "commandline/command.h"
#include "packagereader.h"

#include <data/hostilepackages.h>

#include <QByteArrayList>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <algorithm>

namespace ToolTesting {

/// Sends one package after the other through every command, in a folder of its own. Only its "out" may change, and an
/// edit may change "edited".
class AllCommands
{
public:
    /// `root` is empty, and stays the current directory's parent.
    explicit AllCommands(const QString &root)
        : m_root(root)
    {
        for (const char *folder : {"in", "out", "edited", "victim", "current"})
            require(QDir(m_root).mkdir(QLatin1String(folder)), "a folder can be made");
        write("good.corvelpro", TestData::honestPackage());
        write("victim/file", "untouched");
        // Where a relative name taken literally would end.
        require(QDir::setCurrent(path("current")), "the folder can be entered");
    }
    Q_DISABLE_COPY(AllCommands)

    /// The expectation that failed for this package; empty if all hold. Results are printed as lines or as JSON.
    /// `number` selects the entry that is extracted alone.
    QByteArray complaintAbout(const QByteArray &package, bool isJson, int number)
    {
        m_package = package;
        m_isJson = isJson;
        m_complaint.clear();
        QDir(path("out")).removeRecursively();
        QDir(path("edited")).removeRecursively();
        require(QDir(m_root).mkdir("out") && QDir(m_root).mkdir("edited"), "a folder can be made");
        write("in/a.corvelpro", package);
        write("edited/a.corvelpro", package);
        look();
        compare();
        extractOne(number);
        extractAll();
        copy();
        edit();
        runOthers();
        require(namesIn("out").filter(".part").isEmpty(), "nothing unfinished is left");
        return m_complaint;
    }

private:
    using Words = QStringList;

    void require(bool holds, const char *text)
    {
        if (!holds && m_complaint.isEmpty())
            m_complaint = m_command + ": does not hold: " + text;
    }

    QString path(const char *name) const { return m_root + '/' + QLatin1String(name); }

    QStringList namesIn(const char *folder) const
    {
        return QDir(path(folder))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    }

    QByteArray content(const char *name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    void write(const char *name, const QByteArray &bytes)
    {
        QFile file(path(name));
        require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush(),
                "a file can be written");
    }

    /// Nothing that commands the terminal.
    static bool isPrintable(const QByteArray &text)
    {
        return std::none_of(text.begin(), text.end(),
                            [](char c) { return (c >= 0 && c < ' ' && c != '\n') || c == '\x7f'; });
    }

    /// The exit code. Whatever the command: nothing outside changes, and a code without a result has its message.
    int run(Words words)
    {
        m_command = words.join(' ').toUtf8();
        if (m_isJson)
            words.insert(1, "--json");
        const Outcome outcome = runInProcess(words);
        require(outcome.code >= yes && outcome.code <= unknown, "the exit code is 0, 1 or 2");
        require(outcome.code != unknown || !outcome.messages.isEmpty(), "a failure has a message");
        require(isPrintable(outcome.messages) && (m_isJson || isPrintable(outcome.out)),
                "control characters are escaped");
        require(!m_isJson || outcome.code == unknown || !outcome.json().isEmpty(), "the result is JSON");
        require(namesIn(".") == QStringList({"current", "edited", "good.corvelpro", "in", "out", "victim"}) &&
                    namesIn("current").isEmpty() && namesIn("in") == QStringList("a.corvelpro") &&
                    namesIn("victim") == QStringList("file") && content("victim/file") == "untouched" &&
                    !QFile::exists(QLatin1String(TestData::absoluteEscape)),
                "nothing appears outside the target");
        require(content("in/a.corvelpro") == m_package, "the original stays as it is");
        return outcome.code;
    }

    void look()
    {
        const QString file = path("in/a.corvelpro");
        const bool isValid = run({"check", file}) == yes;
        require((run({"info", file}) == yes) == isValid, "info and check agree");
        require((run({"doctor", path("in")}) == yes) == isValid, "doctor and check agree");
        require(run({"verify", file}) != yes || isValid, "what is sound is valid");
        require(run({"list", path("in")}) == yes, "the folder can be listed");
    }

    void compare()
    {
        const QString file = path("in/a.corvelpro");
        require(run({"diff", file, file}) != no, "it does not differ from itself");
        run({"diff", path("good.corvelpro"), file, "--sheet", path("out/sheet.png")});
    }

    void extractOne(int number)
    {
        const QStringList entries = ProjectFileCfg::Internal::PackageReader(path("in/a.corvelpro")).entries();
        const QString name = entries.isEmpty() ? QString() : entries.at(number % entries.size());
        // A word of a command line cannot contain a NUL.
        if (name.isEmpty() || name.contains(QChar::Null))
            return;
        const bool isExtracted = run({"extract", path("in/a.corvelpro"), path("out/one"), "--entry=" + name}) == yes;
        require(QFileInfo(path("out/one")).isDir() == isExtracted, "the directory is there if it was said");
    }

    void extractAll()
    {
        const QString file = path("in/a.corvelpro");
        const QString tree = path("out/tree");
        const bool isExtracted = run({"extract", file, tree}) == yes;
        require(QFileInfo::exists(tree) == isExtracted, "the directory is there if it was said");
        if (!isExtracted)
            return;
        QDirIterator written(tree, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (written.hasNext()) {
            written.next();
            require(!written.fileInfo().isSymLink(), "no link is made");
        }
        require(run({"diff", file, tree}) != no, "what was extracted is what it holds");
        const QString made = path("out/made.corvelpro");
        const bool isMade = run({"create", tree, made}) == yes;
        require(QFileInfo::exists(made) == isMade, "the package is there if it was said");
        require(!isMade || run({"check", made}) == yes, "what was made is valid");
    }

    void copy()
    {
        const bool isCopied = run({"copy", path("in/a.corvelpro"), path("out")}) == yes;
        require(QFileInfo::exists(path("out/a.corvelpro")) == isCopied, "the copy is there if it was said");
        require(!isCopied || content("out/a.corvelpro") == m_package, "the copy is equal");
    }

    void edit()
    {
        const bool isEdited = run({"edit", path("edited/a.corvelpro"), "--comment", "new", "--name", "b"}) == yes;
        require(namesIn("edited") == QStringList(isEdited ? "b.corvelpro" : "a.corvelpro"),
                "it has its new name if it was edited");
        require(isEdited || content("edited/a.corvelpro") == m_package, "what was not edited stays as it is");
        require(!isEdited || run({"check", path("edited/b.corvelpro")}) == yes, "what was edited is valid");
    }

    /// Commands that came later, with what their arguments are called.
    void runOthers()
    {
        const QByteArrayList known{"list", "info",    "check",  "verify", "doctor",
                                   "diff", "extract", "create", "edit",   "copy"};
        for (const Corvelpro::Command &command : Corvelpro::commandTable()) {
            if (known.contains(command.name))
                continue;
            Words words{command.name};
            for (const Corvelpro::Positional &positional : command.positionals) {
                const QByteArray name = positional.name;
                words.append(path(name == "FILE" ? "in/a.corvelpro" : name == "DIR" ? "in" : "out/new.png"));
            }
            run(words);
        }
    }

    const QString m_root;
    QByteArray m_package;
    bool m_isJson = false;
    QByteArray m_command;
    QByteArray m_complaint;
};

} // namespace ToolTesting

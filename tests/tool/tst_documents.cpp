// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "commandline/command.h"
#include "documentation/completions.h"
#include "documentation/manualpage.h"

#include <support/testmain.h>

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>

using namespace Corvelpro;

namespace {

/// What the program prints on both channels, or "did not end well" with it.
QByteArray outputOf(const QString &program, const QStringList &arguments, const QByteArray &input = QByteArray())
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    const bool isWell = process.waitForFinished(TestSupport::patience) &&
                        process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return (isWell ? "" : "did not end well: ") + process.readAll();
}

bool isInstalled(const QString &program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

/// A value of the table that its user gives, so that a text of the manual is not compared with markup in it.
QByteArray withoutMarkup(QByteArray roff)
{
    for (const char *markup : {"\\fB", "\\fI", "\\fR", "\\&"})
        roff.replace(markup, "");
    return roff.replace("\\-", "-").replace("\\(rs", "\\").simplified();
}

} // namespace

/// The manual page and the completions, which are made from the table of commands.
class TstDocuments : public QObject
{
    Q_OBJECT

private slots:
    void manual_page_has_the_whole_table();
    void manual_page_is_clean_for_mandoc();
    void manual_page_is_clean_for_groff();
    void bash_offers_commands_and_options();
    void bash_offers_folders_and_project_files();
    void bash_offers_values_of_options();
    void zsh_loads_its_completions();
    void fish_offers_commands_and_options();

private:
    /// What bash offers when Tab is pressed behind the last of the words, one offer a line, sorted.
    QByteArrayList offersOfBash(const QByteArrayList &words, const QString &folder = QDir::rootPath());
};

void TstDocuments::manual_page_has_the_whole_table()
{
    const QByteArray page = withoutMarkup(manualPage());
    QVERIFY(!commandTable().isEmpty());
    for (const Command &command : commandTable()) {
        QVERIFY2(page.contains(QByteArray("corvelpro ") + command.name), command.name);
        QVERIFY2(page.contains(QByteArray(command.summary).simplified()), command.summary);
        const QByteArrayList sentences = QByteArray(command.description).split('\n');
        for (const QByteArray &sentence : sentences)
            QVERIFY2(page.contains(sentence.simplified()), sentence);
        for (const Positional &positional : command.positionals)
            QVERIFY2(page.contains(positional.help), positional.help);
        for (const Option &option : command.options) {
            const QByteArray usage = option.name + (option.value ? ' ' + QByteArray(option.value) : QByteArray());
            QVERIFY2(page.contains(usage), usage);
            QVERIFY2(page.contains(option.help), option.help);
        }
    }
}

void TstDocuments::manual_page_is_clean_for_mandoc()
{
    if (!isInstalled("mandoc"))
        QSKIP("mandoc is not installed");
    QCOMPARE(outputOf("mandoc", {"-T", "lint", "-W", "style"}, manualPage()), QByteArray());
}

void TstDocuments::manual_page_is_clean_for_groff()
{
    if (!isInstalled("groff"))
        QSKIP("groff is not installed");
    QCOMPARE(outputOf("groff", {"-man", "-Tutf8", "-ww", "-z"}, manualPage()), QByteArray());
}

QByteArrayList TstDocuments::offersOfBash(const QByteArrayList &words, const QString &folder)
{
    QByteArray script = bashCompletions() + "\ncd '" + folder.toUtf8() + "'\nCOMP_WORDS=(";
    for (const QByteArray &word : words)
        script += " '" + word + '\'';
    script += ")\nCOMP_CWORD=" + QByteArray::number(words.size() - 1) +
              "\n_corvelpro\nprintf '%s\\n' \"${COMPREPLY[@]}\" | LC_ALL=C sort\n";
    QByteArrayList offers = outputOf("bash", {"--norc", "-u"}, script).split('\n');
    offers.removeAll(QByteArray());
    return offers;
}

void TstDocuments::bash_offers_commands_and_options()
{
    QByteArrayList commands;
    for (const Command &command : commandTable()) {
        commands.append(command.name);
        QByteArrayList options{"--help", "--json", "--quiet"};
        for (const Option &option : command.options)
            options.append(option.name);
        std::sort(options.begin(), options.end());
        QCOMPARE(offersOfBash({"corvelpro", command.name, "--"}), options);
    }
    std::sort(commands.begin(), commands.end());
    QCOMPARE(offersOfBash({"corvelpro", ""}), QByteArrayList({"--help", "--version"}) + commands);
    QCOMPARE(offersOfBash({"corvelpro", "chec"}), QByteArrayList{"check"});
    QCOMPARE(offersOfBash({"corvelpro", "frobnicate", ""}), QByteArrayList());
}

void TstDocuments::bash_offers_folders_and_project_files()
{
    QTemporaryDir dir;
    for (const char *name : {"my show.corvelpro", "OLD.CorvelPro", "notes.txt"}) {
        QFile file(dir.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QVERIFY(QDir(dir.path()).mkpath("stick"));
    QCOMPARE(offersOfBash({"corvelpro", "check", ""}, dir.path()),
             QByteArrayList({"OLD.CorvelPro", "my show.corvelpro", "stick"}));
    QCOMPARE(offersOfBash({"corvelpro", "check", "--json", "my"}, dir.path()), QByteArrayList{"my show.corvelpro"});
}

void TstDocuments::bash_offers_values_of_options()
{
    QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkpath("stick"));
    for (const Command &command : commandTable()) {
        for (const Option &option : command.options) {
            if (!option.value)
                continue;
            const QByteArray value(option.value);
            const bool isPath = value == "DIR" || value.startsWith("FILE");
            QCOMPARE(offersOfBash({"corvelpro", command.name, option.name, ""}, dir.path()),
                     isPath ? QByteArrayList{"stick"} : QByteArrayList());
        }
    }
}

void TstDocuments::zsh_loads_its_completions()
{
    if (!isInstalled("zsh"))
        QSKIP("zsh is not installed");
    QTemporaryDir dir;
    QFile file(dir.filePath("_corvelpro"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(zshCompletions());
    file.close();
    QCOMPARE(outputOf("zsh", {"-f", "-n", file.fileName()}), QByteArray());
    QCOMPARE(outputOf("zsh",
                      {"-f", "-c", "fpath=($1 $fpath); autoload -U compinit; compinit -D -u; print $_comps[corvelpro]",
                       "zsh", dir.path()}),
             QByteArray("_corvelpro\n"));
}

void TstDocuments::fish_offers_commands_and_options()
{
    if (!isInstalled("fish"))
        QSKIP("fish is not installed");
    const auto offers = [](const QByteArray &line) {
        return outputOf("fish", {"--no-config"}, fishCompletions() + "\ncomplete -C '" + line + "'\n");
    };
    for (const Command &command : commandTable()) {
        QCOMPARE(offers(QByteArray("corvelpro ") + command.name),
                 QByteArray(command.name) + '\t' + command.summary + '\n');
        const QByteArray options = offers(QByteArray("corvelpro ") + command.name + " --");
        QVERIFY2(options.contains("--json\tPrint the result as one JSON document\n"), options);
        for (const Option &option : command.options)
            QVERIFY2(options.contains(QByteArray(option.name) + '\t' + option.help + '\n'), options);
    }
}

TEST_MAIN_CORE(TstDocuments)
#include "tst_documents.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "toolinprocess.h"
#include "toolrunner.h"
#include "workplace.h"

#include <QJsonArray>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace ToolTesting;
using Corvelpro::Command;
using Corvelpro::commandTable;
using Corvelpro::Option;
using Corvelpro::Positional;
using PackageTesting::OrdinaryUser;

namespace {

/// Runs the tool with another standard output.
class ToolWithOutput : public QProcess
{
public:
    /// A handle of this process; -1: the output is closed.
    explicit ToolWithOutput(int out)
        : m_out(out)
    {}

    Outcome run(const QStringList &arguments)
    {
        Outcome outcome;
        start(QStringLiteral(CORVELPRO_PROGRAM), arguments, QIODevice::ReadOnly);
        if (waitForFinished(TestSupport::patience) && exitStatus() == QProcess::NormalExit)
            outcome.code = exitCode();
        outcome.out = readAllStandardOutput();
        outcome.messages = readAllStandardError();
        return outcome;
    }

protected:
    void setupChildProcess() override
    {
        if (m_out < 0)
            ::close(STDOUT_FILENO);
        else
            dup2(m_out, STDOUT_FILENO);
    }

private:
    const int m_out;
};

/// What may be in place of the expected file or folder.
enum Thing { Nothing, File, Folder, Pipe, Socket, Device, BrokenLink };

struct NamedThing
{
    Thing thing;
    const char *name;
};
constexpr NamedThing things[] = {{Nothing, "nothing"}, {File, "file"},     {Folder, "folder"},         {Pipe, "pipe"},
                                 {Socket, "socket"},   {Device, "device"}, {BrokenLink, "broken link"}};

bool makeSocket(const QByteArray &path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (std::size_t(path.size()) >= sizeof address.sun_path)
        return false;
    std::copy(path.begin(), path.end(), address.sun_path);
    const int handle = socket(AF_UNIX, SOCK_STREAM, 0);
    const bool isMade = bind(handle, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    close(handle);
    return isMade;
}

/// The device is a link, since only an administrator can create one. The pipe has neither reader nor writer, so opening
/// it would block.
bool make(Thing thing, const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    switch (thing) {
    case Nothing:
        return true;
    case File:
        return writeFile(path, "text");
    case Folder:
        return QDir().mkpath(path);
    case Pipe:
        return mkfifo(name.constData(), 0600) == 0;
    case Socket:
        return makeSocket(name);
    case Device:
        return QFile::link("/dev/null", path);
    case BrokenLink:
        return QFile::link("gone", path);
    }
    return false;
}

/// Type, size and times.
QByteArray stateOf(const QString &path)
{
    struct stat status;
    if (lstat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return QByteArray::number(status.st_mode, 8) + ' ' + QByteArray::number(qint64(status.st_size)) + ' ' +
           QByteArray::number(qint64(status.st_mtim.tv_sec)) + '.' + QByteArray::number(qint64(status.st_mtim.tv_nsec));
}

} // namespace

/// What holds for every command: the rows come from the table of commands, so that none is forgotten.
class TstEveryCommand : public QObject
{
    Q_OBJECT

private slots:
    void help_has_all_arguments_data() { addCommands(); }
    void help_has_all_arguments();
    void result_is_lines_or_one_document_data() { addCommands(); }
    void result_is_lines_or_one_document();
    void quiet_leaves_only_the_exit_code_data() { addCommands(); }
    void quiet_leaves_only_the_exit_code();
    void json_and_quiet_exclude_each_other_data() { addCommands(); }
    void json_and_quiet_exclude_each_other();
    void unwritable_result_is_an_error_data() { addCommands(); }
    void unwritable_result_is_an_error();
    void wrong_things_are_told_in_one_line_data();
    void wrong_things_are_told_in_one_line();
    void unreadable_things_are_told_in_one_line_data() { addCommands(); }
    void unreadable_things_are_told_in_one_line();
    void options_replace_nothing_data();
    void options_replace_nothing();

private:
    void addCommands();
    const Command &command() const;
};

void TstEveryCommand::addCommands()
{
    QTest::addColumn<int>("row");
    for (int row = 0; row < commandTable().size(); ++row)
        QTest::newRow(commandTable().at(row).name) << row;
}

const Command &TstEveryCommand::command() const
{
    const int row = *static_cast<int *>(QTest::qData("row", QMetaType::Int));
    return commandTable().at(row);
}

void TstEveryCommand::help_has_all_arguments()
{
    const Outcome outcome = runTool({command().name, "--help"});
    QCOMPARE(outcome.code, yes);
    QCOMPARE(outcome.messages, QByteArray());
    QList<QByteArray> expected{command().summary, "--help", "--json", "--quiet"};
    for (const Positional &positional : command().positionals)
        expected += {positional.name, positional.help};
    for (const Option &option : command().options)
        expected += {option.name, option.help};
    for (const QByteArray &text : qAsConst(expected))
        QVERIFY2(outcome.out.contains(text), text + "\nis not in\n" + outcome.out);
}

void TstEveryCommand::result_is_lines_or_one_document()
{
    const Workplace one;
    const Outcome lines = runTool(one.words(command()));
    QCOMPARE(lines.code, yes);
    QVERIFY(!lines.out.isEmpty());
    QCOMPARE(lines.messages, QByteArray());

    const Workplace another;
    const Outcome document = runTool(another.words(command()) << "--json");
    QCOMPARE(document.code, yes);
    QVERIFY2(!document.json().isEmpty(), document.out);
    QCOMPARE(document.messages, QByteArray());
}

void TstEveryCommand::quiet_leaves_only_the_exit_code()
{
    const Workplace place;
    const Outcome outcome = runTool(place.words(command()) << "--quiet");
    QCOMPARE(outcome.code, yes);
    QCOMPARE(outcome.out + outcome.messages, QByteArray());
}

void TstEveryCommand::json_and_quiet_exclude_each_other()
{
    const Workplace place;
    const Outcome outcome = runTool(place.words(command()) << "--quiet"
                                                           << "--json");
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.out, QByteArray());
    QVERIFY(!QFileInfo::exists(place.path("new")) && !QFileInfo::exists(place.path("new.corvelpro")));
}

void TstEveryCommand::unwritable_result_is_an_error()
{
    int gone[2];
    QVERIFY(pipe(gone) == 0 && close(gone[0]) == 0);
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    constexpr int closed = -1;
    for (const int out : {full, gone[1], closed}) {
        for (const bool isJson : {false, true}) {
            const Workplace place;
            const QStringList words = place.words(command()) + (isJson ? QStringList{"--json"} : QStringList());
            const Outcome outcome = ToolWithOutput(out).run(words);
            QCOMPARE(outcome.messages, QByteArray("corvelpro: the result could not be written\n"));
            QCOMPARE(outcome.code, unknown);
        }
    }
    const Workplace place;
    QCOMPARE(ToolWithOutput(full).run(place.words(command()) << "--quiet").code, yes);
    QCOMPARE(ToolWithOutput(full).run({command().name, "--help"}).code, unknown);
    close(full);
    close(gone[1]);
}

void TstEveryCommand::wrong_things_are_told_in_one_line_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("thing");
    const Workplace place;
    for (int row = 0; row < commandTable().size(); ++row) {
        const Command &command = commandTable().at(row);
        for (int position = 0; position < command.positionals.size(); ++position) {
            const Positional &positional = command.positionals.at(position);
            const QFileInfo right(place.valueOf(command, positional));
            for (const NamedThing &wrong : things) {
                // A comparison also takes a device's directory, and a missing project-files folder simply has no
                // projects.
                const bool isRight = (wrong.thing == File && right.isFile()) ||
                                     (wrong.thing == Folder && (right.isDir() || !qstrcmp(command.name, "diff"))) ||
                                     (wrong.thing == Nothing && !right.exists());
                if (!isRight)
                    QTest::addRow("%s: %s as %s", command.name, wrong.name, positional.name)
                        << row << position << int(wrong.thing);
            }
        }
    }
}

void TstEveryCommand::wrong_things_are_told_in_one_line()
{
    QFETCH(int, position);
    QFETCH(int, thing);
    const Workplace place;
    QStringList words = place.words(command());
    const QString right = words.at(1 + position);
    const bool isTarget = !QFileInfo::exists(right);
    // With the extension that the command wants.
    const QString wrong = place.path("wrong.") + QFileInfo(right).suffix();
    words[1 + position] = wrong;
    QVERIFY(make(Thing(thing), wrong));
    const QByteArray state = stateOf(wrong);
    const QStringList names = namesIn(place.root());

    const Outcome outcome = runInProcess(words);
    QVERIFY2(outcome.code == unknown || (isTarget && outcome.code == no), QByteArray::number(outcome.code));
    QCOMPARE(outcome.out, QByteArray());
    QCOMPARE(outcome.messages.count('\n'), 1);
    QVERIFY2(outcome.messages.startsWith("corvelpro: ") && outcome.messages.contains(QFile::encodeName(wrong)),
             outcome.messages);
    QCOMPARE(stateOf(wrong), state);
    QCOMPARE(namesIn(place.root()), names);
    QCOMPARE(namesIn(place.path("stick")), QStringList());
}

void TstEveryCommand::unreadable_things_are_told_in_one_line()
{
    for (int position = 0; position < command().positionals.size(); ++position) {
        const Workplace place;
        const QStringList words = place.words(command());
        const QString path = words.at(1 + position);
        QVERIFY(chmod(QFile::encodeName(place.root()).constData(), 0777) == 0);
        if (!QFileInfo::exists(path))
            continue;
        QVERIFY(chmod(QFile::encodeName(path).constData(), 0) == 0);
        const OrdinaryUser user;
        const Outcome outcome = runInProcess(words);
        QCOMPARE(outcome.code, unknown);
        QCOMPARE(outcome.out, QByteArray());
        QCOMPARE(outcome.messages.count('\n'), 1);
        QVERIFY2(outcome.messages.contains(QFile::encodeName(path)), outcome.messages);
    }
}

void TstEveryCommand::options_replace_nothing_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("option");
    QTest::addColumn<int>("thing");
    for (int row = 0; row < commandTable().size(); ++row) {
        const Command &command = commandTable().at(row);
        for (int option = 0; option < command.options.size(); ++option) {
            const QByteArray value = command.options.at(option).value;
            for (const NamedThing &wrong : things) {
                if (value.startsWith("FILE") && wrong.thing != Nothing)
                    QTest::addRow("%s: %s as %s", command.name, wrong.name, command.options.at(option).name)
                        << row << option << int(wrong.thing);
            }
        }
    }
}

void TstEveryCommand::options_replace_nothing()
{
    QFETCH(int, option);
    QFETCH(int, thing);
    const Workplace place;
    const QString wrong = place.path("wrong.png");
    QVERIFY(make(Thing(thing), wrong));
    const QByteArray state = stateOf(wrong);
    const Outcome outcome = runInProcess(place.words(command()) << command().options.at(option).name << wrong);
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.out, QByteArray());
    QCOMPARE(outcome.messages, "corvelpro: " + wrong.toUtf8() + ": already exists\n");
    QCOMPARE(stateOf(wrong), state);
}

TEST_MAIN_CORE(TstEveryCommand)
#include "tst_everycommand.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "toolrunner.h"

#include <support/packagebuilder.h>

#include <QTemporaryDir>

using namespace ToolTesting;

/// What the tool does without a command, and how it reads and prints names; see also tst_everycommand.
class TstCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void help_lists_the_commands();
    void version_is_printed();
    void wrong_usage_is_explained_on_stderr_data();
    void wrong_usage_is_explained_on_stderr();
    void control_characters_are_escaped();
    void file_names_may_be_chinese();
};

void TstCommandLine::help_lists_the_commands()
{
    const Outcome outcome = runTool({"--help"});
    QCOMPARE(outcome.code, yes);
    QVERIFY2(outcome.out.contains("\n  check "), outcome.out);
    QCOMPARE(outcome.messages, QByteArray());
}

void TstCommandLine::version_is_printed()
{
    const Outcome outcome = runTool({"--version"});
    QCOMPARE(outcome.code, yes);
    QCOMPARE(outcome.out, QByteArray("corvelpro " CORVELPRO_VERSION "\n"));
}

void TstCommandLine::wrong_usage_is_explained_on_stderr_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("no command") << QStringList();
    QTest::newRow("unknown command") << QStringList{"frobnicate"};
    QTest::newRow("no file") << QStringList{"check"};
    QTest::newRow("unknown option") << QStringList{"check", "--frobnicate", "x.corvelpro"};
}

void TstCommandLine::wrong_usage_is_explained_on_stderr()
{
    QFETCH(QStringList, arguments);
    const Outcome outcome = runTool(arguments);
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.out, QByteArray());
    QVERIFY(!outcome.messages.isEmpty());
}

void TstCommandLine::control_characters_are_escaped()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("a\x1b[2J\nb.corvelpro");
    QVERIFY(TestSupport::PackageBuilder().file("a.json", "{}").record("a", "").write(path));
    const Outcome outcome = runTool({"check", path});
    QCOMPARE(outcome.code, yes);
    QVERIFY2(outcome.out.endsWith("/a\\u001b[2J\\nb.corvelpro: valid\n"), outcome.out);
}

void TstCommandLine::file_names_may_be_chinese()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QString::fromUtf8("演出.corvelpro"));
    QVERIFY(TestSupport::PackageBuilder().file("a.json", "{}").record("a", "").write(path));
    // Also where the locale is that of a bare script.
    qputenv("LC_ALL", "C");
    const Outcome outcome = runTool({"check", path});
    qputenv("LC_ALL", "C.UTF-8");
    QCOMPARE(outcome.code, yes);
    QVERIFY2(outcome.out.endsWith("/演出.corvelpro: valid\n"), outcome.out);
}

TEST_MAIN_CORE(TstCommandLine)
#include "tst_commandline.moc"

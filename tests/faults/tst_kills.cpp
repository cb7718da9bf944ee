// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "operations.h"

#include <support/testmain.h>

#include <QProcess>

#include <csignal>

using namespace FaultTesting;
using FaultPoints::Plan;

/// Kills a process at each step of each operation in turn, until one runs to its end, and checks what it left.
class TstKills : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void kill_leaves_complete_packages_data();
    void kill_leaves_complete_packages();

private:
    enum End { Killed, Succeeded, Failed };
    static End runToStep(Operation operation, int step);

    Workplace m_place;
    Inspector m_inspector{m_place};
    QMap<QString, int> m_points;
};

namespace {

const QString performOption = QStringLiteral("--perform");

/// The process to be killed, unless the operation has fewer steps.
int performAndDie(const QStringList &arguments)
{
    const Workplace place;
    Workshop workshop(place);
    Plan plan;
    plan.effect = Plan::Kill;
    plan.number = arguments.value(3).toInt();
    const Outcome outcome = workshop.perform(Operation(arguments.value(2).toInt()), plan, place.all());
    return outcome.isSuccess && !outcome.report.struck ? 0 : 1;
}

} // namespace

TstKills::End TstKills::runToStep(Operation operation, int step)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(QCoreApplication::applicationFilePath(),
                  {performOption, QString::number(operation), QString::number(step)});
    constexpr int minute = 60000;
    if (!process.waitForFinished(5 * minute))
        return Failed;
    // QProcess reports a process ended by a signal as crashed, with the signal as its exit code.
    if (process.exitStatus() == QProcess::CrashExit)
        return process.exitCode() == SIGKILL ? Killed : Failed;
    return process.exitCode() == 0 ? Succeeded : Failed;
}

void TstKills::initTestCase()
{
    QCOMPARE(runToStep(Save, 0), Succeeded);
    m_inspector.setReference(m_place.target(Save));
    QVERIFY(m_inspector.hasReference());
}

void TstKills::cleanupTestCase()
{
    printPoints("kill", m_points);
}

void TstKills::kill_leaves_complete_packages_data()
{
    QTest::addColumn<int>("operation");
    for (int operation = 0; operation < OperationCount; ++operation)
        QTest::newRow(qPrintable(operationName(Operation(operation)))) << operation;
}

void TstKills::kill_leaves_complete_packages()
{
    QFETCH(int, operation);
    // More steps than any operation has; beyond it the test itself is broken.
    constexpr int tooMany = 1000;
    for (int step = 1; step < tooMany; ++step) {
        const End end = runToStep(Operation(operation), step);
        QVERIFY2(end != Failed, qPrintable(QStringLiteral("at step %1").arg(step)));
        const QStringList complaints = m_inspector.complaintsAfter(Operation(operation), end == Killed);
        QVERIFY2(complaints.isEmpty(),
                 qPrintable(QStringLiteral("at step %1: ").arg(step) + complaints.join(QStringLiteral("; "))));
        if (end == Succeeded) {
            QVERIFY(m_inspector.isDone(Operation(operation)));
            return;
        }
        ++m_points[operationName(Operation(operation))];
    }
    QFAIL("The operation does not end");
}

int main(int argc, char *argv[])
{
    if (argc == 4 && QString::fromLocal8Bit(argv[1]) == performOption) {
        // In the parent process's home.
        QApplication application(argc, argv);
        return performAndDie(application.arguments());
    }
    TestSupport::TestHome home;
    QApplication application(argc, argv);
    TstKills test;
    QTEST_SET_MAIN_SOURCE_PATH
    return TestSupport::runTest(&test, argc, argv);
}

#include "tst_kills.moc"

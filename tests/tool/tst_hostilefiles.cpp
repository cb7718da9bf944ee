// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "allcommands.h"

#include <data/hostilepackages.h>
#include <support/costs.h>
#include <support/testmain.h>

#include <QByteArrayList>
#include <QLoggingCategory>
#include <QTemporaryDir>

using namespace ToolTesting;

/// Each odd and hostile package goes through every command of the tool.
class TstHostileFiles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void commands_do_no_harm_at_a_bounded_cost_data();
    void commands_do_no_harm_at_a_bounded_cost();

private:
    QVector<TestData::HostilePackage> m_packages;
    QTemporaryDir m_dir;
    AllCommands m_commands{m_dir.path()};
    /// The highest so far.
    double m_seconds = 0;
    qint64 m_mebibytes = 0;
};

void TstHostileFiles::initTestCase()
{
    m_packages = TestData::shareOfHostilePackages();
    // As in the program: what the libraries log is no part of the result.
    QLoggingCategory::setFilterRules("*=false");
}

void TstHostileFiles::cleanupTestCase()
{
    if (TestSupport::costsCount)
        qInfo("At most %.1f s and %lld MiB for one package", m_seconds, static_cast<long long>(m_mebibytes));
}

void TstHostileFiles::commands_do_no_harm_at_a_bounded_cost_data()
{
    QTest::addColumn<int>("package");
    // 33,000 entries are no other case for the tool than 65,000. What Qt leaks is not forgiven: the tool also parses on
    // other threads, where it cannot be told from leaks of the tool.
    const QByteArrayList repeated{"entries_are_33000", "other_entries_are_33000"};
    for (int number = 0; number < m_packages.size(); ++number) {
        const TestData::HostilePackage &package = m_packages.at(number);
        if (!repeated.contains(package.name) && !package.libraryLeaks)
            QTest::newRow(package.name.constData()) << number;
    }
}

void TstHostileFiles::commands_do_no_harm_at_a_bounded_cost()
{
    QFETCH(int, package);
    const QByteArray bytes = m_packages.at(package).bytes();
    TestSupport::Costs costs;
    const QByteArray complaint = m_commands.complaintAbout(bytes, package % 2 == 0, package);
    costs.stop();
    QVERIFY2(complaint.isEmpty(), complaint);
    m_seconds = std::max(m_seconds, costs.seconds);
    m_mebibytes = std::max(m_mebibytes, costs.mebibytes);
    // All commands together; a comparison decodes two pictures at a time, each up to the limit of a picture.
    QVERIFY2(!TestSupport::costsCount || costs.seconds <= 20, qPrintable(QString::number(costs.seconds)));
    QVERIFY2(!TestSupport::costsCount || costs.mebibytes <= 448, qPrintable(QString::number(costs.mebibytes)));
}

TEST_MAIN_CORE(TstHostileFiles)
#include "tst_hostilefiles.moc"

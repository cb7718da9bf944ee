// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <engineerdocbackup.h>
#include <filesystem.h>
#include <unit/packagetesting.h>
#include <zippackagehandle.h>

#include <simulation/faults.h>
#include <support/testmain.h>
#include <support/testsite.h>

#include <QSemaphore>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;
using namespace Simulation::Operations;
using Simulation::Fault;
using Simulation::Faults;

namespace {

constexpr int rounds = 200;

/// Saves that run at the same time.
class Save
{
public:
    Save(const QString &ip, const QString &projects, const QString &name, const QString &comment)
        : m_job(nullptr, ip)
    {
        m_job.setProjectPath(projects);
        m_job.setProjectInfo(name, comment);
        m_job.start();
    }
    /// Waits for its end: whether it reported success with a package.
    bool succeeded()
    {
        return m_job.wait(60000) && m_job.resultCode() == BackupSuccess && !m_job.savedPackagePath().isEmpty();
    }
    /// Success, or the one code that another program can cause.
    bool endedOrderly() { return succeeded() || m_job.resultCode() == BackupEncryptFailed; }

private:
    EngineerDocBackup m_job;
};

QString commentOf(const QString &path)
{
    EngineerPacketInfo info;
    info.strFilePath = path;
    return ZipPackageHandle::getZipFileEngineerInfo(info) ? info.strComment : QString();
}

} // namespace

/// Saves in parallel with each other and with a rename, as two programs would in one folder, repeatedly.
class TstMeetingSaves : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_site.reset(); }

    void one_of_two_saves_under_one_name_succeeds_data();
    void one_of_two_saves_under_one_name_succeeds();
    void rename_and_save_lose_no_package();
    void two_saves_of_one_device_lack_nothing();

private:
    QString packagePath(const QString &name = QStringLiteral("Show")) const { return m_projects + name + ".corvelpro"; }

    QScopedPointer<TestSite> m_site;
    QString m_projects;
};

void TstMeetingSaves::init()
{
    m_site.reset(new TestSite);
    m_projects = m_site->path("projects/");
}

void TstMeetingSaves::one_of_two_saves_under_one_name_succeeds_data()
{
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("new name") << false;
    QTest::newRow("over a package") << true;
}

void TstMeetingSaves::one_of_two_saves_under_one_name_succeeds()
{
    QFETCH(bool, isTaken);
    for (int round = 0; round < rounds; ++round) {
        QFile::remove(packagePath());
        QVERIFY(!isTaken || writeFile(packagePath(), "there when both began"));
        // By now each has listed the folder.
        QSemaphore arrived;
        QSemaphore go;
        const auto meet = [&] {
            arrived.release();
            go.acquire();
        };
        Faults::instance()->arm(serailize, Fault::run(meet));
        Faults::instance()->arm(serailize, Fault::run(meet, 2));
        Save one(m_site->touringRack, m_projects, "Show", "one");
        Save other(m_site->boothSwitcher, m_projects, "Show", "other");
        arrived.acquire(2);
        go.release(2);
        QVERIFY(one.endedOrderly() && other.endedOrderly());
        QVERIFY(one.succeeded() != other.succeeded());
        QCOMPARE(commentOf(packagePath()), QString(one.succeeded() ? "one" : "other"));
        QCOMPARE(contents(m_projects), QStringList{"Show.corvelpro"});
    }
}

void TstMeetingSaves::rename_and_save_lose_no_package()
{
    QVERIFY(Save(m_site->touringRack, m_projects, "Pattern", "renamed").succeeded());
    const QByteArray pattern = readFile(packagePath("Pattern"));
    int renamings = 0;
    for (int round = 0; round < rounds; ++round) {
        QVERIFY(QDir(m_projects).removeRecursively());
        QVERIFY(writeFile(packagePath("Old name"), pattern));
        // The later ones arrive while the package is written.
        constexpr int moments = 4;
        QSemaphore isTime;
        const int moment = round % moments;
        Faults::instance()->arm(moment == 0 ? serailize : presetFullDetail2Binary,
                                Fault::run([&] { isTime.release(); }, qMax(1, moment)));
        Save saving(m_site->touringRack, m_projects, "Show", "saved");
        isTime.acquire();
        const bool isRenamed = FileSystem::renameDurably(packagePath("Old name"), packagePath());
        QVERIFY(saving.endedOrderly());
        QVERIFY(saving.succeeded() != isRenamed);
        QVERIFY(readFile(isRenamed ? packagePath() : packagePath("Old name")) == pattern);
        QVERIFY(isRenamed || commentOf(packagePath()) == "saved");
        renamings += isRenamed ? 1 : 0;
    }
    QVERIFY(renamings > 0);
}

void TstMeetingSaves::two_saves_of_one_device_lack_nothing()
{
    QVERIFY(Save(m_site->mainHall, m_projects, "Alone", QString()).succeeded());
    const QStringList expected = ZipPackageHandle::getFileList(packagePath("Alone"));
    QCOMPARE(expected.size(), 4 + 7 + 4 + 6);
    for (int round = 0; round < rounds; ++round) {
        Save one(m_site->mainHall, m_projects, "One", QString());
        Save other(m_site->mainHall, m_projects, "Other", QString());
        QVERIFY(one.endedOrderly() && other.endedOrderly());
        for (const char *name : {"One", "Other"}) {
            const bool succeeded = name == QLatin1String("One") ? one.succeeded() : other.succeeded();
            QCOMPARE(QFile::exists(packagePath(name)), succeeded);
            if (succeeded)
                QCOMPARE(ZipPackageHandle::getFileList(packagePath(name)), expected);
            QFile::remove(packagePath(name));
        }
    }
    QVERIFY(Save(m_site->mainHall, m_projects, "Alone", QString()).succeeded());
}

TEST_MAIN_GUI(TstMeetingSaves)
#include "tst_meetingsaves.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "encodedpictures.h"
#include "engineerdocbackup.h"
#include "operationresultcodes.h"
#include "packagetesting.h"

#include <simulation/faults.h>
#include <support/signalrecorder.h>
#include <support/systemcalls.h>
#include <support/testmain.h>
#include <support/testsite.h>

#include <optional>

/// Shared by the tests of the backup job: a site whose devices are saved, and an independent unpacker.
class BackupTesting
{
protected:
    using EncodedPictures = ProjectFileCfg::Internal::EncodedPictures;
    using EngineerDocBackup = ProjectFileCfg::Internal::EngineerDocBackup;

    void setUp()
    {
        m_site.emplace();
        m_encoded = std::make_shared<EncodedPictures>();
        m_projects = m_site->path("projects/");
        m_progress.clear();
        m_leftOver.clear();
        TestSupport::WarningGuard::clear();
    }
    void tearDown()
    {
        TestSupport::systemCalls() = TestSupport::SystemCalls();
        m_site.reset();
        QCOMPARE(m_leftOver, QStringList());
    }

    /// The operation repeated that often.
    static QStringList times(int count, const QStringList &operations)
    {
        QStringList all;
        for (int i = 0; i < count; ++i)
            all += operations;
        return all;
    }

    /// Runs a job to its end and returns its result code, -1 on a timeout.
    int save(const QString &ip, const QString &name = QStringLiteral("Show"), const QString &comment = QString())
    {
        EngineerDocBackup job(nullptr, QString());
        job.setProjectPath(m_projects);
        job.setDeviceIp(ip);
        job.setProjectInfo(name, comment);
        job.setEncodedPictures(m_encoded);
        const TestSupport::SignalRecorder<QString> progress(&job, &EngineerDocBackup::signal_operatoerChanged);
        const TestSupport::SignalRecorder<> finished(&job, &QThread::finished);
        m_job = &job;
        job.start(QThread::InheritPriority);
        const bool ended = QTest::qWaitFor([&finished] { return !finished.isEmpty(); }, 60000);
        job.wait();
        m_job = nullptr;
        m_progress = progress.values();
        m_savedPath = job.savedPackagePath();
        for (const char *folder : {"BKG", "LOGO", "Preset"})
            m_leftOver += PackageTesting::contents(m_site->devicePath(m_site->mainHall, folder));
        return ended ? job.resultCode() : -1;
    }
    /// A fault that asks the running job to cancel.
    Simulation::Fault cancelJob(int call = 1)
    {
        return Simulation::Fault::run([this] { m_job->cancel(); }, call);
    }
    /// Unpacks with an independent program and returns the entries' names, sorted.
    QStringList unpack(const QString &packagePath)
    {
        const QString python = "import sys, zipfile\n"
                               "z = zipfile.ZipFile(sys.argv[1])\n"
                               "z.extractall(sys.argv[2])\n"
                               "print('\\n'.join(z.namelist()))\n";
        QDir(m_site->path("unpacked")).removeRecursively();
        const PackageTesting::Run outcome = PackageTesting::runPython(python, {packagePath, m_site->path("unpacked")});
        if (outcome.exitCode != 0)
            return {QStringLiteral("cannot be unpacked: ") + outcome.errors};
        QStringList names = QString::fromUtf8(outcome.output).split('\n', Qt::SkipEmptyParts);
        names.sort();
        return names;
    }
    QString packagePath(const QString &name = QStringLiteral("Show")) const { return m_projects + name + ".corvelpro"; }
    QString unpacked(const QString &entry) const { return m_site->path("unpacked/" + entry); }
    QString stage(const QString &name) const { return m_site->devicePath(m_site->mainHall, name); }

    std::optional<TestSupport::TestSite> m_site;
    QString m_projects;
    std::shared_ptr<EncodedPictures> m_encoded;
    EngineerDocBackup *m_job = nullptr;
    QVector<QString> m_progress;
    /// The messages of the last job.
    QString m_savedPath;
    /// Stage folders left behind by saves of the main hall.
    QStringList m_leftOver;
};

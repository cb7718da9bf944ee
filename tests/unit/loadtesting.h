// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "engineerdocload.h"
#include "operationresultcodes.h"
#include "packagetesting.h"

#include <support/customsite.h>
#include <support/signalrecorder.h>
#include <support/testmain.h>

#include <simulation/faults.h>
#include <simulation/journal.h>

#include <QJsonDocument>
#include <QJsonObject>

#include <functional>
#include <memory>
#include <optional>

/// Shared by the tests of the load job: an online and an offline device, real packages, a real thread.
namespace LoadTesting {

inline const QString onlineIp = QStringLiteral("10.0.0.11");
inline const QString offlineIp = QStringLiteral("10.0.0.12");
/// The source of the packages; no device of the site.
inline const QString sourceIp = QStringLiteral("10.0.0.77");

inline const QString sendConfig = QStringLiteral("Send Config to Device");

/// A description, modified by hand for states that hardware cannot have.
inline QByteArray changedDescription(const Simulation::HardwareState &state,
                                     const std::function<void(QJsonObject &)> &change)
{
    QJsonObject object = QJsonDocument::fromJson(TestSupport::descriptionOf(state)).object();
    change(object);
    return QJsonDocument(object).toJson();
}

inline TestSupport::PackageBuilder descriptionOnly(const QByteArray &description)
{
    TestSupport::PackageBuilder package;
    package.file("device.json", description);
    return package;
}

class Loading
{
protected:
    using EngineerDocLoad = ProjectFileCfg::Internal::EngineerDocLoad;

    void setUp()
    {
        Simulation::HardwareState online = TestSupport::plainDevice(onlineIp);
        online.mvrEnabled = false;
        online.mvrItems = QJsonArray();
        m_site.emplace(
            QVector<TestSupport::CustomDevice>{{online, true}, {TestSupport::plainDevice(offlineIp), false}});
        TestSupport::WarningGuard::clear();
    }
    void tearDown() { m_site.reset(); }

    QString write(TestSupport::PackageBuilder package, const QString &name = QStringLiteral("show.corvelpro")) const
    {
        QString path = m_packages.filePath(name);
        if (!package.record(QStringLiteral("show"), QStringLiteral("for tests")).write(path))
            qFatal("The package could not be written");
        return path;
    }
    /// A job for that package; its checks must pass.
    std::unique_ptr<EngineerDocLoad> checkedJob(const QString &packagePath, const QString &ip) const
    {
        auto job = std::make_unique<EngineerDocLoad>(nullptr);
        job->setDeviceIp(ip);
        job->setPackagePath(packagePath);
        if (!job->checkPackageFile() || !job->checkDevice())
            QTest::qFail(qPrintable(QStringLiteral("The checks failed with %1").arg(job->resultCode())), __FILE__,
                         __LINE__);
        return job;
    }
    /// Runs the thread to its end and returns the result code.
    int runJob(EngineerDocLoad &job) const
    {
        TestSupport::SignalRecorder<> finished(&job, &QThread::finished);
        job.start(QThread::InheritPriority);
        if (!QTest::qWaitFor([&finished] { return finished.count() == 1; }, 60000))
            qFatal("The job does not end");
        job.wait();
        return job.resultCode();
    }
    /// Both checks and, if they pass, the thread; returns the resulting code.
    int apply(const TestSupport::PackageBuilder &package, const QString &ip) const
    {
        EngineerDocLoad job(nullptr);
        job.setDeviceIp(ip);
        job.setPackagePath(write(package));
        return job.checkPackageFile() && job.checkDevice() ? runJob(job) : job.resultCode();
    }
    int check(const TestSupport::PackageBuilder &package, const QString &ip) const
    {
        EngineerDocLoad job(nullptr);
        job.setDeviceIp(ip);
        job.setPackagePath(write(package));
        const bool passed = job.checkPackageFile() && job.checkDevice();
        if (passed != (job.resultCode() == ProjectFileCfg::Internal::LoadSuccess))
            QTest::qFail("The answer of the checks contradicts the code", __FILE__, __LINE__);
        return job.resultCode();
    }
    Simulation::HardwareState onlineState() const { return (*m_site)->hardware(onlineIp)->state(); }

    std::optional<TestSupport::CustomSite> m_site;
    QTemporaryDir m_packages;
};

} // namespace LoadTesting

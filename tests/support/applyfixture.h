// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "panelfixture.h"

#include <model/objectbrige.h>
#include <simulation/faults.h>

#include <functional>

namespace PanelTesting {

inline const QString targetIp = QStringLiteral("10.0.0.11");  ///< online, with pictures and presets; the active one
inline const QString secondIp = QStringLiteral("10.0.0.12");  ///< online, without
inline const QString offlineIp = QStringLiteral("10.0.0.13"); ///< offline
/// The source of the packages; no device of the site.
inline const QString sourceIp = QStringLiteral("10.0.0.77");

inline const QString syncWarning = QStringLiteral("Import project file failed, as sync device from hardware failed.");

/// Runs on a job's thread.
inline void onMainThread(const std::function<void()> &act)
{
    QMetaObject::invokeMethod(qApp, act, Qt::BlockingQueuedConnection);
}

/// Clicks the waiting dialog's "Cancel" from the thread of a job.
inline Simulation::Fault cancelling(int call = 1)
{
    return Simulation::Fault::run(
        [] {
            onMainThread([] {
                TestSupport::click(Corvel::Widgets::WaitingDialog::instance()->findChild<QPushButton *>(
                    QStringLiteral("WaitingDialogCancel")));
            });
        },
        call);
}

/// An operator who applies packages to the devices above. Every step starts with an empty journal.
class Applying : public PanelOnSite<TestSupport::CustomSite>
{
protected:
    void setUp()
    {
        using namespace TestSupport;
        PanelOnSite::setUp(QVector<CustomDevice>{
            {richDevice(targetIp), true}, {plainDevice(secondIp), true}, {plainDevice(offlineIp), false}});
        Corvel::Widgets::WaitingDialog::instance()->setCanelVisible(false);
        Simulation::Journal::instance()->clear();
    }

    Simulation::HardwareState hardware(const QString &ip) const { return (*m_site)->hardware(ip)->state(); }

    void clickApply(const QString &project = QStringLiteral("show")) { clickRow(project, QStringLiteral("Apply")); }
    /// The question whether to save the current configuration first.
    void expectQuestion(QMessageBox::StandardButton answer)
    {
        m_book->expectQuestion(
            QStringLiteral("Remind"),
            QStringLiteral(
                "Whether the current configuration needs to be backed up before the project file is imported?"),
            answer);
    }
    /// Presses "Apply" and answers the question.
    void apply(QMessageBox::StandardButton answer = QMessageBox::No, const QString &project = QStringLiteral("show"))
    {
        expectQuestion(answer);
        clickApply(project);
    }
    /// The same without a backup, for an apply that ends with a warning.
    void applyAndExpect(const QString &warning)
    {
        expectQuestion(QMessageBox::No);
        m_book->expectWarning(QStringLiteral("Remind"), warning);
        clickApply();
    }
    void waitForEndOfLoad(int loads = 1)
    {
        QTRY_COMPARE(Simulation::Journal::instance()->count(Simulation::Operations::clearScreenList), loads);
        QVERIFY(!Corvel::Widgets::WaitingDialog::instance()->isVisible());
    }
    /// Lists the package and applies it without a backup; returns after the load has ended.
    void applyAndWait(const TestSupport::PackageBuilder &package)
    {
        list(package);
        apply();
        waitForEndOfLoad();
    }
};

} // namespace PanelTesting

#define COMPARE_STATES(actual, expected)                                                                               \
    do {                                                                                                               \
        const QStringList differences = (actual).differencesTo(expected);                                              \
        QVERIFY2(differences.isEmpty(), qPrintable(differences.join(QLatin1Char('\n'))));                              \
    } while (false)

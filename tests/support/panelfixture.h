// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "answerbook.h"
#include "customsite.h"
#include "journalmatchers.h"
#include "paneltesting.h"
#include "testmain.h"
#include "warningguard.h"

#include <simulation/journal.h>
#include <simulation/operation.h>
#include <widgets/waitingdialog.h>

#include <QTemporaryDir>

#include <optional>
#include <utility>

namespace PanelTesting {

/// A shown panel on a simulated site with an empty list of projects, and an operator: the second base class, besides
/// QObject, of tests of the panel's operations. `Site` is TestSite or CustomSite.
///
///     void init() { setUp(); }
///     void cleanup() { tearDown(); }
template<typename Site>
class PanelOnSite
{
protected:
    /// The arguments are passed to the site. The journal is empty afterwards.
    template<typename... Arguments>
    void setUp(Arguments &&...ofTheSite)
    {
        QVERIFY(clearProjectFilesDirectory());
        m_elsewhere.emplace();
        m_site.emplace(std::forward<Arguments>(ofTheSite)...);
        m_panel.emplace();
        (*m_panel)->resize(1200, 700);
        (*m_panel)->show();
        settle();
        m_book.emplace();
        TestSupport::WarningGuard::clear();
        Simulation::Journal::instance()->clear();
    }
    void tearDown()
    {
        settle();
        m_book.reset();
        m_panel.reset();
        // After a failed test a job may still be waiting for the device.
        Simulation::cancelRunningOperations();
        settle();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Corvel::Widgets::WaitingDialog::instance()->hideWaitingDialog();
        m_site.reset();
        m_elsewhere.reset();
    }

    /// Adds a package with that name to the list.
    void list(const QString &name, const QString &comment = QStringLiteral("a comment"))
    {
        QVERIFY(writePackage(projectFile(name), comment));
        rescanFor(name);
    }
    /// The same with those entries. The journal is empty afterwards.
    void list(TestSupport::PackageBuilder package, const QString &name = QStringLiteral("show"))
    {
        QVERIFY(package.record(name, QStringLiteral("listed")).write(projectFile(name)));
        rescanFor(name);
        Simulation::Journal::instance()->clear();
    }
    /// A path in a folder outside the panel's directories.
    QString elsewhere(const QString &fileName) const { return m_elsewhere->filePath(fileName); }
    /// Writes the package to such a path and returns it.
    QString elsewhere(TestSupport::PackageBuilder package, const QString &name) const
    {
        const QString path = elsewhere(name);
        if (!package.record(name, QString()).write(path))
            qFatal("The package could not be written");
        return path;
    }

    QWidget *row(const QString &project) const { return m_panel->projectRow(project); }
    /// Clicks that button in the project's row.
    void clickRow(const QString &project, const QString &button) const
    {
        QVERIFY2(row(project), qPrintable(project));
        TestSupport::click(row(project), button);
    }
    /// Selects the device with that address. The journal is empty afterwards.
    void selectDevice(const QString &ip) const
    {
        QVERIFY2(m_panel->selectDevice(ip), qPrintable(ip));
        Simulation::Journal::instance()->clear();
    }

    /// Expects the property dialog, fills it in and accepts it.
    void expectProperties(const QString &name, const QString &comment)
    {
        m_book->expectDialog(propertyDialog, [=](QDialog *dialog) { answerProperties(dialog, name, comment); });
    }
    static QStringList waitingTexts()
    {
        return QVariant(TestSupport::journalArguments(Simulation::Operations::showWaitingDialog, "text"))
            .toStringList();
    }
    /// True if the host was told that a job started and ended, and the waiting dialog is hidden.
    static bool hasJobEnded()
    {
        const QVariantList types = TestSupport::journalArguments(Simulation::Operations::setOperatorType, "type");
        return !types.isEmpty() && types.last() == QStringLiteral("OperatorNone") &&
               !Corvel::Widgets::WaitingDialog::instance()->isVisible();
    }
    /// Presses "Save Project" and OK in the dialog with these texts.
    bool pressSave(const QString &name, const QString &comment = QString())
    {
        expectProperties(name, comment);
        return TestSupport::click(m_panel->saveProject()) && m_book->isSatisfied();
    }
    /// Presses "Save Project", accepts the proposed properties and waits for the end. The journal then holds this save
    /// only.
    void saveAsProposed()
    {
        m_book->expectDialog(propertyDialog, [](QDialog *dialog) { TestSupport::click(dialog, QStringLiteral("OK")); });
        Simulation::Journal::instance()->clear();
        TestSupport::click(m_panel->saveProject());
        QTRY_VERIFY(hasJobEnded());
        settle();
    }
    void waitForAnswers() { QTRY_VERIFY2(m_book->isSatisfied(), qPrintable(m_book->report())); }

    /// Whether a package copied into the directory from outside comes to be listed. Waits for it: where the system has
    /// no more watches for directories, Qt looks at them once a second.
    bool isFollowingTheDirectory()
    {
        return copiedByHand(
            [this] { return QTest::qWaitFor([this] { return isCopyListed(); }, TestSupport::patience); });
    }
    /// Whether it is not listed although the system has reported the change.
    bool isIgnoringTheDirectory()
    {
        const DirectoryObserver observer;
        return copiedByHand([&] {
            const bool isReported = QTest::qWaitFor([&] { return observer.changes() > 0; }, TestSupport::patience);
            settle();
            return isReported && !isCopyListed();
        });
    }

    std::optional<Site> m_site;
    std::optional<Panel> m_panel;
    std::optional<TestSupport::AnswerBook> m_book;
    std::optional<QTemporaryDir> m_elsewhere;

private:
    bool isCopyListed() const { return m_panel->names().contains(QStringLiteral("copied by hand")); }
    template<typename Check>
    bool copiedByHand(const Check &check)
    {
        const QString path = projectFile(QStringLiteral("copied by hand"));
        if (!writePackage(path, QString()))
            qFatal("The package could not be written");
        const bool result = check();
        QFile::remove(path);
        m_panel->rescan();
        return result;
    }
    void rescanFor(const QString &name)
    {
        m_panel->rescan();
        QVERIFY2(m_panel->names().contains(name), qPrintable(m_panel->names().join(QLatin1Char(' '))));
    }
};

} // namespace PanelTesting

#define VERIFY_BOOK() QVERIFY2(m_book->isSatisfied(), qPrintable(m_book->report()))

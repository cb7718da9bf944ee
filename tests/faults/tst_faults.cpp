// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "operations.h"

#include <filesystem.h>
#include <support/testmain.h>

#include <cerrno>

using namespace FaultTesting;
using FaultPoints::Plan;

Q_DECLARE_METATYPE(FaultPoints::Plan)

/// Lets each step of each operation fail in turn until the operation runs undisturbed and succeeds.
class TstFaults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void each_package_is_whole_and_success_is_true_data();
    void each_package_is_whole_and_success_is_true();
    void an_edit_writes_behind_a_flushed_undo_record();
    void copies_and_edits_work_without_exclusive_rename();
    void without_an_exclusive_rename_nothing_is_replaced();
    void unsupported_folder_flush_is_no_failure();

private:
    void verify(Operation operation, const Plan &plan, const Outcome &outcome);

    Workplace m_place;
    std::unique_ptr<Workshop> m_workshop;
    Inspector m_inspector{m_place};
    QMap<QString, int> m_points;
};

namespace {

/// By design, pictures that cannot be opened are left out of a package, with their folder if that caused it; the log
/// names them.
QStringList leftOut()
{
    static const QRegularExpression logged(QStringLiteral("^Save picture failed: \".*/((BKG|LOGO)/[^\"]*)\""));
    QStringList names;
    for (const auto &message : TestSupport::WarningGuard::messages()) {
        const QRegularExpressionMatch match = logged.match(message.text);
        if (match.hasMatch())
            names << match.captured(1) << match.captured(2) + '/';
    }
    return names;
}

/// Whether the disturbance can keep the operation from removing its own fragment.
bool mayLeaveFragment(const Plan &plan)
{
    return plan.effect == Plan::ReadOnly || plan.effect == Plan::Gone ||
           (plan.effect == Plan::FailOnce && plan.kind == FaultPoints::Remove);
}

} // namespace

void TstFaults::initTestCase()
{
    m_workshop = std::make_unique<Workshop>(m_place);
    QVERIFY(m_workshop->perform(Save, Plan(), m_place.all()).isSuccess);
    m_inspector.setReference(m_place.target(Save));
    QVERIFY(m_inspector.hasReference());
}

void TstFaults::cleanupTestCase()
{
    m_workshop.reset();
    printPoints("fault", m_points);
}

void TstFaults::each_package_is_whole_and_success_is_true_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<Plan>("plan");
    // Projects and devices may be on different disks.
    QTest::addColumn<bool>("onlyDevices");
    struct Disturbance
    {
        const char *name;
        Plan plan;
        bool onlyDevices;
    };
    const auto once = [](FaultPoints::Kind kind, int error) {
        Plan plan;
        plan.kind = kind;
        plan.error = error;
        return plan;
    };
    const auto lasting = [](Plan::Effect effect) {
        Plan plan;
        plan.effect = effect;
        return plan;
    };
    const Disturbance disturbances[] = {
        {"open: no permission", once(FaultPoints::Open, EACCES), false},
        {"open: gone", once(FaultPoints::Open, ENOENT), false},
        {"write: full disk", once(FaultPoints::Write, ENOSPC), false},
        {"write: read-only", once(FaultPoints::Write, EROFS), false},
        {"flush: full disk", once(FaultPoints::Flush, ENOSPC), false},
        {"flush: input/output error", once(FaultPoints::Flush, EIO), false},
        {"rename: no permission", once(FaultPoints::Rename, EACCES), false},
        {"rename: gone", once(FaultPoints::Rename, ENOENT), false},
        {"rename: full disk", once(FaultPoints::Rename, ENOSPC), false},
        {"mkdir: full disk", once(FaultPoints::MakeFolder, ENOSPC), false},
        {"mkdir: no permission", once(FaultPoints::MakeFolder, EACCES), false},
        {"remove: no permission", once(FaultPoints::Remove, EACCES), false},
        {"the disk is full from then on", lasting(Plan::FullDisk), false},
        {"the disk is read-only from then on", lasting(Plan::ReadOnly), false},
        {"the disk is gone from then on", lasting(Plan::Gone), false},
        {"the devices' disk is full for a while", lasting(Plan::FullForAWhile), true},
        {"read: input/output error", once(FaultPoints::Read, EIO), false},
        {"seek: input/output error", once(FaultPoints::Seek, EIO), false},
        {"ftruncate: input/output error", once(FaultPoints::Truncate, EIO), false},
        {"close: input/output error", once(FaultPoints::Close, EIO), false},
        {"chmod: no permission", once(FaultPoints::SetMode, EPERM), false},
        {"utimens: no permission", once(FaultPoints::SetTimes, EPERM), false},
        {"sync_file_range: not there", once(FaultPoints::FlushRange, ENOSYS), false},
    };
    for (int operation = 0; operation < OperationCount; ++operation) {
        for (const Disturbance &disturbance : disturbances)
            QTest::newRow(qPrintable(operationName(Operation(operation)) + ", " + disturbance.name))
                << operation << disturbance.plan << disturbance.onlyDevices;
    }
}

void TstFaults::verify(Operation operation, const Plan &plan, const Outcome &outcome)
{
    const QByteArray where = "at step " + QByteArray::number(plan.number) + ": ";
    const QStringList missing = leftOut();
    const QStringList complaints = m_inspector.complaintsAfter(operation, mayLeaveFragment(plan), missing);
    QVERIFY2(complaints.isEmpty(), where + complaints.join("; ").toUtf8());
    QVERIFY2(outcome.report.namedBeforeFlushed.isEmpty(),
             where + "renamed before it was flushed: " + outcome.report.namedBeforeFlushed.join(' ').toUtf8());
    if (!outcome.isSuccess)
        return;
    QVERIFY2(m_inspector.isDone(operation, missing), where + "success was reported, but it is not done");
    const QStringList unflushed = m_inspector.unflushed(operation);
    QVERIFY2(unflushed.isEmpty(),
             where + "success was reported before this was on disk: " + unflushed.join(' ').toUtf8());
}

void TstFaults::each_package_is_whole_and_success_is_true()
{
    QFETCH(int, operation);
    QFETCH(Plan, plan);
    QFETCH(bool, onlyDevices);
    const QStringList folders = onlyDevices ? QStringList{m_place.devices()} : m_place.all();
    // An upper bound for the steps of an operation; beyond it the test itself is broken.
    constexpr int tooMany = 2000;
    for (plan.number = 1; plan.number < tooMany; ++plan.number) {
        const Outcome outcome = m_workshop->perform(Operation(operation), plan, folders);
        verify(Operation(operation), plan, outcome);
        if (QTest::currentTestFailed())
            return;
        if (!outcome.report.struck) {
            QVERIFY(outcome.isSuccess);
            break;
        }
    }
    QVERIFY(plan.number < tooMany);
    const QString kind =
        plan.effect == Plan::FailOnce ? FaultPoints::kindName(plan.kind) : QStringLiteral("lasting failures");
    m_points[operationName(Operation(operation)) + ", " + kind] += plan.number - 1;
}

void TstFaults::an_edit_writes_behind_a_flushed_undo_record()
{
    const Outcome outcome = m_workshop->perform(Edit, Plan(), m_place.all());
    QVERIFY(outcome.isSuccess);
    QCOMPARE(outcome.report.changedInPlace, QStringList{m_place.show()});
    QCOMPARE(outcome.report.unflushedBefore, 0);
    // Removed by the time the operator gets the result.
    QCOMPARE(outcome.report.calls.at(FaultPoints::Remove), 1);
}

void TstFaults::copies_and_edits_work_without_exclusive_rename()
{
    for (const Operation operation : {Edit, SaveAs, Import}) {
        Plan plan;
        plan.kind = FaultPoints::Rename;
        plan.number = 1;
        plan.error = EINVAL;
        const Outcome outcome = m_workshop->perform(operation, plan, m_place.all());
        QVERIFY(outcome.report.struck);
        QVERIFY2(outcome.isSuccess, qPrintable(operationName(operation) + ' ' + outcome.message));
        verify(operation, plan, outcome);
    }
}

void TstFaults::without_an_exclusive_rename_nothing_is_replaced()
{
    m_place.reset();
    const QString from = m_place.travelled();
    const QString link = m_place.stick() + "/link";
    QVERIFY(QFile::link(m_place.stick() + "/missing", link));
    Plan plan;
    plan.kind = FaultPoints::Rename;
    plan.number = 1;
    plan.error = EINVAL;
    for (const QString &to : {m_place.show(), link}) {
        FaultPoints::arm(m_place.all(), plan);
        const bool renamed = ProjectFileCfg::Internal::FileSystem::renameToFreeName(from, to);
        QVERIFY(FaultPoints::disarm().struck);
        QVERIFY(!renamed);
        QVERIFY(QFile::exists(from));
    }
    QVERIFY(QFileInfo(link).isSymLink());
}

void TstFaults::unsupported_folder_flush_is_no_failure()
{
    Plan plan;
    plan.kind = FaultPoints::Flush;
    // Behind the file's own flushing and its closing.
    plan.number = 3;
    for (const int error : {EINVAL, ENOTSUP}) {
        plan.error = error;
        const Outcome outcome = m_workshop->perform(SaveAs, plan, m_place.all());
        QVERIFY(outcome.report.struck);
        QVERIFY2(outcome.isSuccess, qPrintable(outcome.message));
        QVERIFY(m_inspector.isDone(SaveAs));
    }
}

TEST_MAIN(TstFaults)
#include "tst_faults.moc"

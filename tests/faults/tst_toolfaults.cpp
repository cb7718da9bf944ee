// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "faultpoints.h"

#include "inplacefile.h"
#include "replacingfile.h"
#include "undorecord.h"
#include "zippackagehandle.h"

#include <support/testmain.h>
#include <tool/childprocess.h>
#include <tool/toolinprocess.h>
#include <tool/workplace.h>

#include <QLoggingCategory>

#include <algorithm>
#include <cerrno>
#include <csignal>

using namespace ToolTesting;
using FaultPoints::Plan;
using ProjectFileCfg::Internal::EngineerPacketInfo;
using ProjectFileCfg::Internal::InPlaceFile;
using ProjectFileCfg::Internal::ReplacingFile;
using ProjectFileCfg::Internal::UndoRecord;
using ProjectFileCfg::Internal::ZipPackageHandle;

namespace {

/// How a run under a plan ended. In the exit code of a process: code, plus these.
constexpr int struck = 8;
constexpr int noLine = 16;
constexpr int unflushed = 32;

bool isFragment(const QString &name)
{
    return ReplacingFile::isFragment(name) || UndoRecord::isUndoRecord(name);
}

} // namespace

/// Each call of the commands that write fails, is interrupted by Ctrl-C or kills the process, in turn.
class TstToolFaults : public QObject
{
    Q_OBJECT

private slots:
    void kill_leaves_nothing_unfinished_data() { addCommands(); }
    void kill_leaves_nothing_unfinished();
    void interrupt_leaves_nothing_unfinished_data() { addCommands(); }
    void interrupt_leaves_nothing_unfinished();
    void failure_is_told_and_leaves_nothing_data() { addCommands(); }
    void failure_is_told_and_leaves_nothing();
    void success_means_flushed_to_disk_data() { addCommands(); }
    void success_means_flushed_to_disk();

private:
    static void addCommands();
    /// What the row's command creates or edits; of a directory, also one of its files.
    QStringList changedPaths() const;
    /// Runs the row's command in a process of its own, in a new workplace. The result is that of inChild().
    int run(const Plan &plan);
    /// What is wrong in the workplace after the command has ended, in whatever way.
    QStringList complaints(bool isDone, bool mayLeaveFragment) const;
    QStringList complaintsAboutEdited(bool isDone) const;

    QScopedPointer<Workplace> m_place;
    QByteArray m_package;
};

void TstToolFaults::addCommands()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("target");
    QTest::newRow("extract") << QStringList{"extract", "show.corvelpro", "new"} << "new";
    QTest::newRow("extract one") << QStringList{"extract", "show.corvelpro", "new", "--entry=Preset/1.RPst"} << "new";
    QTest::newRow("create") << QStringList{"create", "device", "new.corvelpro"} << "new.corvelpro";
    QTest::newRow("copy") << QStringList{"copy", "show.corvelpro", "stick"} << "stick/show.corvelpro";
    QTest::newRow("edit") << QStringList{"edit", "show.corvelpro", "--comment=new"} << QString();
    QTest::newRow("rename") << QStringList{"edit", "show.corvelpro", "--name=new"} << QString();
}

QStringList TstToolFaults::changedPaths() const
{
    const QString target = *static_cast<QString *>(QTest::qData("target", QMetaType::QString));
    const QString renamed = m_place->path("new.corvelpro");
    if (target.isEmpty())
        return {QFileInfo::exists(renamed) ? renamed : m_place->path("show.corvelpro")};
    if (target == "new")
        return {m_place->path("new"), m_place->path("new/Preset/1.RPst")};
    return {m_place->path(target)};
}

int TstToolFaults::run(const Plan &plan)
{
    m_place.reset(new Workplace);
    m_package = readFile(m_place->path("show.corvelpro"));
    QStringList words = *static_cast<QStringList *>(QTest::qData("words", QMetaType::QStringList));
    for (int i = 1; i < words.size(); ++i) {
        if (!words.at(i).startsWith("--"))
            words[i] = m_place->path(words.at(i));
    }
    return inChild([&] {
        // As in the program: Qt Test would catch the one and fail for the other.
        std::signal(SIGINT, SIG_DFL);
        QLoggingCategory::setFilterRules("*=false");
        FaultPoints::arm({m_place->root()}, plan);
        const Outcome outcome = runInProcess(words);
        const bool isStruck = FaultPoints::disarm().struck;
        const QStringList changed = changedPaths();
        const bool isAtRisk =
            outcome.code == yes && !isStruck && std::any_of(changed.begin(), changed.end(), FaultPoints::isUnflushed);
        const bool hasLine = outcome.messages.count('\n') == 1 && outcome.messages.startsWith("corvelpro: ");
        return outcome.code + (isStruck ? struck : 0) + (outcome.code != yes && !hasLine ? noLine : 0) +
               (isAtRisk ? unflushed : 0);
    });
}

QStringList TstToolFaults::complaints(bool isDone, bool mayLeaveFragment) const
{
    QStringList found;
    const QString target = *static_cast<QString *>(QTest::qData("target", QMetaType::QString));
    const bool isMade = !target.isEmpty() && QFileInfo::exists(m_place->path(target));
    if (isDone && !target.isEmpty() && !isMade)
        found.append("it said yes, and nothing is there");
    if (isMade && target == "stick/show.corvelpro" && readFile(m_place->path(target)) != m_package)
        found.append("the copy differs");
    if (isMade && target == "new.corvelpro" &&
        runInProcess({"diff", m_place->path(target), m_place->path("device")}).code != yes)
        found.append("the package differs from the directory");
    if (isMade && target == "new" && QFileInfo(m_place->path("new/BKG")).exists() &&
        runInProcess({"diff", m_place->path("show.corvelpro"), m_place->path(target)}).code != yes)
        found.append("the directory differs from the package");
    if (isMade && target == "new" && readFile(m_place->path("new/Preset/1.RPst")).isEmpty())
        found.append("the directory lacks a preset");
    if (target.isEmpty())
        found += complaintsAboutEdited(isDone);
    else if (readFile(m_place->path("show.corvelpro")) != m_package)
        found.append("the package changed");
    for (const QString &folder : {m_place->root(), m_place->path("stick")}) {
        for (const QString &name : namesIn(folder)) {
            const QString path = folder + '/' + name;
            const bool isKnown =
                QStringList{"device", "folder", "same.corvelpro", "show.corvelpro", "stick"}.contains(name) ||
                path == m_place->path(target) || (target.isEmpty() && name == "new.corvelpro");
            if (!isKnown && !(mayLeaveFragment && isFragment(name)))
                found.append(path + " is left");
        }
    }
    return found;
}

QStringList TstToolFaults::complaintsAboutEdited(bool isDone) const
{
    // What the control application does first when it looks into the folder.
    InPlaceFile::recover(m_place->root());
    const bool isRenamed = QFileInfo::exists(m_place->path("new.corvelpro"));
    if (isRenamed && QFileInfo::exists(m_place->path("show.corvelpro")))
        return {"it is there under both names"};
    EngineerPacketInfo info{m_place->path(isRenamed ? "new.corvelpro" : "show.corvelpro"), "", "", ""};
    if (!ZipPackageHandle::getZipFileEngineerInfo(info))
        return {"the package is not valid"};
    const bool isNew = info.strComment == "new" || info.strProjectName == "new";
    const bool isOld = info.strComment == "old" && info.strProjectName == "show";
    return isNew || (isOld && !isDone && !isRenamed) ? QStringList() : QStringList{"the record is another one"};
}

void TstToolFaults::kill_leaves_nothing_unfinished()
{
    Plan plan;
    plan.effect = Plan::Kill;
    int end = -SIGKILL;
    while (end == -SIGKILL) {
        ++plan.number;
        end = run(plan);
        QCOMPARE(complaints(end == yes, end == -SIGKILL), QStringList());
    }
    QCOMPARE(end, yes);
    QVERIFY2(plan.number > 6, qPrintable(QString::number(plan.number)));
}

void TstToolFaults::interrupt_leaves_nothing_unfinished()
{
    const QString command = QTest::currentDataTag();
    const bool isHandled = command.startsWith("extract") || command == "copy";
    Plan plan;
    plan.effect = Plan::Interrupt;
    int end = -SIGINT;
    while (end == -SIGINT) {
        ++plan.number;
        end = run(plan);
        // A command that does not handle the signal ends at once, as by a kill.
        QCOMPARE(complaints(end == yes, end == -SIGINT && !isHandled), QStringList());
    }
    QCOMPARE(end, yes);
    QVERIFY2(plan.number > 6, qPrintable(QString::number(plan.number)));
}

void TstToolFaults::failure_is_told_and_leaves_nothing()
{
    QList<Plan> plans;
    for (const Plan::Effect effect : {Plan::FullDisk, Plan::FullForAWhile, Plan::ReadOnly, Plan::Gone}) {
        Plan plan;
        plan.effect = effect;
        plans.append(plan);
    }
    for (int kind = 0; kind < FaultPoints::KindCount; ++kind) {
        Plan plan;
        plan.kind = FaultPoints::Kind(kind);
        plan.error = EIO;
        plans.append(plan);
    }
    for (Plan &plan : plans) {
        // On a medium that can no longer be written to, nothing can be removed either.
        const bool mayLeaveFragment = plan.effect == Plan::ReadOnly || plan.effect == Plan::Gone ||
                                      (plan.effect == Plan::FailOnce && plan.kind == FaultPoints::Remove);
        for (int end = struck; (end & struck) != 0;) {
            ++plan.number;
            end = run(plan);
            const QString at = QStringLiteral("plan %1 %2, step %3: %4")
                                   .arg(int(plan.effect))
                                   .arg(FaultPoints::kindName(plan.kind))
                                   .arg(plan.number)
                                   .arg(end);
            QVERIFY2(end >= 0 && (end & noLine) == 0, qPrintable(at));
            const int code = end & ~struck;
            // What cannot be read to its end is no valid package for the control application, nor for the tool.
            const bool mayBeInvalid = plan.effect == Plan::Gone || plan.effect == Plan::FailOnce;
            QVERIFY2(code == yes || code == unknown || (code == no && mayBeInvalid), qPrintable(at));
            const QStringList wrong = complaints(code == yes, mayLeaveFragment);
            QVERIFY2(wrong.isEmpty(), qPrintable(at + '\n' + wrong.join('\n')));
        }
    }
}

void TstToolFaults::success_means_flushed_to_disk()
{
    QCOMPARE(run({}), int(yes));
}

TEST_MAIN_CORE(TstToolFaults)
#include "tst_toolfaults.moc"

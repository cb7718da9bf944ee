// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "faultpoints.h"

#include <support/paneltesting.h>
#include <unit/packagetesting.h>

#include <engineerdocbackup.h>
#include <projectlist.h>
#include <support/answerbook.h>
#include <support/customsite.h>
#include <support/warningguard.h>
#include <zippackagehandle.h>

#include <simulation/journal.h>
#include <widgets/waitingdialog.h>

#include <QMap>
#include <QThreadPool>
#include <QTimer>

#include <cstdio>
#include <memory>

/// The operations on project files with their setting: the files before, the operation with the real panel or job, its
/// reported result, and the conditions on the files afterwards.
namespace FaultTesting {

using namespace PackageTesting;
using namespace PanelTesting;
using ProjectFileCfg::Internal::EngineerDocBackup;
using ProjectFileCfg::Internal::EngineerPacketInfo;
using ProjectFileCfg::Internal::ProjectList;
using ProjectFileCfg::Internal::ZipPackageHandle;

enum Operation { Save, SaveOver, Edit, SaveAs, Import, ApplyOffline, Delete, OperationCount };

inline QString operationName(Operation operation)
{
    static const char *const names[] = {"save",   "save over an older one", "edit",  "save as",
                                        "import", "apply offline",          "delete"};
    return QLatin1String(names[operation]);
}

inline const QString onlineIp = QStringLiteral("10.0.0.11");
inline const QString offlineIp = QStringLiteral("10.0.0.13");
/// The source of the packages; no device of the site.
inline const QString sourceIp = QStringLiteral("10.0.0.77");

/// Longer than the new one, so that an edit also shortens the file.
inline const QString oldComment = QStringLiteral("before, in many more words");
inline const QString newComment = QStringLiteral("after");
inline const QByteArray oldDeviceFile = "the device's own";

using Files = QMap<QString, QByteArray>;

/// Bypasses Qt Test, which stops printing after some thousand lines.
inline void printPoints(const char *what, const QMap<QString, int> &points)
{
    int sum = 0;
    for (auto point = points.begin(); point != points.end(); ++point) {
        std::printf("%s points, %s: %d\n", what, qPrintable(point.key()), point.value());
        sum += point.value();
    }
    std::printf("%s points in all: %d\n", what, sum);
    std::fflush(stdout);
}

/// The folders and files. Needs no application object and does not touch the host.
class Workplace
{
public:
    Workplace()
    {
        const Simulation::HardwareState source = TestSupport::richDevice(sourceIp);
        TestSupport::PackageBuilder package;
        package.file(sourceIp.toUtf8() + ".json", TestSupport::descriptionOf(source));
        for (auto preset = source.presets.begin(); preset != source.presets.end(); ++preset)
            m_payload.insert(QStringLiteral("Preset/%1.RPst").arg(preset.key()), preset->bytes);
        for (auto picture = source.backgrounds.begin(); picture != source.backgrounds.end(); ++picture)
            m_payload.insert(QStringLiteral("BKG/BKG_%1.png").arg(picture.key()), TestSupport::pngOf(picture->pixels));
        for (auto picture = source.logos.begin(); picture != source.logos.end(); ++picture)
            m_payload.insert(QStringLiteral("LOGO/LOGO_%1.png").arg(picture.key()),
                             TestSupport::pngOf(picture->pixels));
        for (auto file = m_payload.begin(); file != m_payload.end(); ++file)
            package.file(file.key().toUtf8(), file.value());
        m_package = package.record(QStringLiteral("show"), oldComment).build();
    }

    QString projects() const { return projectFilesPath(); }
    QString devices() const { return QDir::homePath() + QStringLiteral("/devices"); }
    QString extracted() const { return QDir::homePath() + QStringLiteral("/extracted"); }
    QString stick() const { return QDir::homePath() + QStringLiteral("/stick"); }
    QString deviceFile(const QString &name) const { return devices() + '/' + offlineIp + '/' + name; }
    QStringList all() const
    {
        return {QDir::homePath() + QStringLiteral("/Documents"), devices(), extracted(), stick()};
    }

    /// The package that the operation writes, or else the one it works on.
    QString target(Operation operation) const
    {
        switch (operation) {
        case Save:
            return projectFile(QStringLiteral("new"));
        case Edit:
            return projectFile(QStringLiteral("renamed"));
        case SaveAs:
            return stick() + QStringLiteral("/copy.corvelpro");
        case Import:
            return projectFile(QStringLiteral("travelled"));
        default:
            return show();
        }
    }
    QString show() const { return projectFile(QStringLiteral("show")); }
    QString other() const { return projectFile(QStringLiteral("other")); }
    QString travelled() const { return stick() + QStringLiteral("/travelled.corvelpro"); }

    /// The package before each operation.
    const QByteArray &package() const { return m_package; }
    /// The expected contents of an offline device after applying it.
    const Files &payload() const { return m_payload; }

    /// Two packages in the list, one on the stick; half of the offline device's files exist already.
    void reset() const
    {
        bool done = clearProjectFilesDirectory();
        for (const QString &folder : {extracted(), stick(), devices() + '/' + onlineIp, devices() + '/' + offlineIp})
            done = QDir(folder).removeRecursively() && QDir().mkpath(folder) && done;
        for (const QString &path : {show(), other(), travelled()})
            done = writeFile(path, m_package) && done;
        bool isOdd = false;
        for (auto file = m_payload.begin(); file != m_payload.end(); ++file) {
            isOdd = !isOdd;
            done = (!isOdd || writeFile(deviceFile(file.key()), oldDeviceFile)) && done;
        }
        if (!done)
            qFatal("The files could not be put back");
    }

private:
    QByteArray m_package;
    Files m_payload;
};

/// What the operator was told.
struct Outcome
{
    bool isSuccess = false;
    QString message;
    FaultPoints::Report report;
};

/// The host with one small online and one offline device, and the panel.
class Workshop
{
public:
    explicit Workshop(const Workplace &place)
        : m_place(place)
    {
        Core::HostSettings settings = Core::hostSettings();
        settings.deviceConfigFilePath = place.devices();
        settings.extractJsonPath = place.extracted();
        Core::applySettings(settings);
        Simulation::Site site;
        site.models = {{TestSupport::mainModel, QStringLiteral("ST-1600"), true, 8}};
        site.devices.resize(2);
        site.devices[0].state = TestSupport::richDevice(onlineIp);
        site.devices[0].online = true;
        site.devices[1].state = TestSupport::plainDevice(offlineIp);
        site.devices[1].online = false;
        site.activeDevice = onlineIp;
        m_session = std::make_unique<Simulation::Session>(site, place.devices());
        if (!m_session->error().isEmpty())
            qFatal("The site cannot be brought up: %s", qPrintable(m_session->error()));
        place.reset();
        m_panel = std::make_unique<Panel>();
        (*m_panel)->resize(1200, 700);
        (*m_panel)->show();
        settle();
    }
    ~Workshop()
    {
        settle();
        m_panel.reset();
        settle();
    }
    Q_DISABLE_COPY(Workshop)

    /// Restores the files and runs the operation with the plan armed below the watched folders, from the operator's
    /// decision until the operation's own work has ended.
    Outcome perform(Operation operation, const FaultPoints::Plan &plan, const QStringList &watchedFolders)
    {
        m_watchedFolders = watchedFolders;
        m_place.reset();
        m_panel->selectDevice(operation == ApplyOffline ? offlineIp : onlineIp);
        m_panel->rescan();
        TestSupport::WarningGuard::clear();
        Simulation::Journal::instance()->clear();
        // Disturbed operations may log anything.
        const TestSupport::ExpectMessage warnings(QtWarningMsg, QRegularExpression(),
                                                  TestSupport::ExpectMessage::AnyNumber);
        const TestSupport::ExpectMessage errors(QtCriticalMsg, QRegularExpression(),
                                                TestSupport::ExpectMessage::AnyNumber);

        m_outcome = Outcome();
        m_plan = plan;
        m_book = std::make_unique<TestSupport::AnswerBook>();
        switch (operation) {
        case Save:
            save();
            break;
        case SaveOver:
            saveOver();
            break;
        case Edit:
            edit();
            break;
        case SaveAs:
            saveAs();
            break;
        case Import:
            import();
            break;
        case ApplyOffline:
            applyOffline();
            break;
        case Delete:
            deleteOne();
            break;
        case OperationCount:
            break;
        }
        // The result box is optional.
        m_book->clear();
        m_book.reset();
        settle();
        return m_outcome;
    }

private:
    void arm() { FaultPoints::arm(m_watchedFolders, m_plan); }
    void disarm() { m_outcome.report = FaultPoints::disarm(); }

    void expectResult()
    {
        m_book->expectDialog(QStringLiteral("HX::Widgets::FramelessMessageBox"), [this](QDialog *dialog) {
            m_outcome.message = qobject_cast<HX::Widgets::FramelessMessageBox *>(dialog)->text();
            TestSupport::click(dialog, QStringLiteral("OK"));
        });
    }
    void expectProperties(const QString &name)
    {
        m_book->expectDialog(propertyDialog, [this, name](QDialog *dialog) {
            enterProperties(dialog, name, newComment);
            arm();
            TestSupport::click(dialog, QStringLiteral("OK"));
        });
    }
    void expectQuestion(QMessageBox::StandardButton answer)
    {
        m_book->expectDialog(QStringLiteral("HX::Widgets::FramelessMessageBox"), [this, answer](QDialog *dialog) {
            arm();
            TestSupport::click(qobject_cast<HX::Widgets::FramelessMessageBox *>(dialog)->button(answer));
        });
    }

    /// Whether the started job, if any, has ended and the panel has processed its end.
    static bool isIdle()
    {
        const auto types = Simulation::Journal::instance()->entries(Simulation::Operations::setOperatorType);
        return types.isEmpty() ||
               types.last().arguments.value(QStringLiteral("type")) == QStringLiteral("OperatorNone");
    }
    /// QTest::qWaitFor pauses between checks, which would dominate the time of a thousand operations.
    template<typename Condition>
    static void waitFor(Condition isMet)
    {
        constexpr int patience = 120000;
        QTimer guard;
        guard.setSingleShot(true);
        guard.start(patience);
        while (!isMet()) {
            if (!guard.isActive())
                qFatal("The operation does not end");
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }
    static bool logged(const QString &text)
    {
        for (const auto &message : TestSupport::WarningGuard::messages()) {
            if (message.text.contains(text))
                return true;
        }
        return false;
    }

    void save()
    {
        // Scans would count as steps.
        const HeldThreadPool held;
        expectProperties(QStringLiteral("new"));
        expectResult();
        TestSupport::click(m_panel->saveProject());
        waitFor(&isIdle);
        disarm();
        // By design, a preset file that cannot be opened ends a save silently and without a package.
        m_outcome.isSuccess = m_outcome.message.isEmpty() && !logged(QStringLiteral("serailize error,reason"));
    }

    void saveOver()
    {
        EngineerDocBackup job(nullptr, onlineIp);
        job.setProjectPath(m_place.projects());
        job.setProjectInfo(QStringLiteral("show"), newComment);
        const HeldThreadPool held;
        arm();
        job.start(QThread::InheritPriority);
        job.wait();
        disarm();
        m_outcome.isSuccess = job.resultCode() == ProjectFileCfg::Internal::BackupSuccess &&
                              !logged(QStringLiteral("serailize error,reason"));
    }

    void edit()
    {
        const HeldThreadPool held;
        expectProperties(QStringLiteral("renamed"));
        expectResult();
        TestSupport::click(m_panel->projectRow(QStringLiteral("show")), QStringLiteral("Edit"));
        disarm();
        const int number = m_panel->names().indexOf(QStringLiteral("renamed"));
        m_outcome.isSuccess = number >= 0 && m_panel->table()->item(number, 1)->text() == newComment;
    }

    void copy(const std::function<void()> &press, const QString &success)
    {
        QThreadPool::globalInstance()->setMaxThreadCount(1);
        expectResult();
        arm();
        press();
        // After the copy and before the following scan.
        QtConcurrent::run([this] { disarm(); });
        waitFor([this] { return !m_outcome.message.isEmpty(); });
        QThreadPool::globalInstance()->waitForDone();
        QThreadPool::globalInstance()->setMaxThreadCount(QThread::idealThreadCount());
        m_outcome.isSuccess = m_outcome.message == success;
    }
    void saveAs()
    {
        m_book->expectFileDialog(QStringLiteral("choose Des Directory"), {m_place.target(SaveAs)});
        copy([this] { TestSupport::click(m_panel->projectRow(QStringLiteral("show")), QStringLiteral("Save as")); },
             QStringLiteral("save as success"));
    }
    void import()
    {
        m_book->expectFileDialog(QStringLiteral("Project file"), {m_place.travelled()});
        copy([this] { TestSupport::click(m_panel->importProject()); }, QStringLiteral("Import as success"));
    }

    void applyOffline()
    {
        const HeldThreadPool held;
        expectQuestion(QMessageBox::No);
        expectResult();
        TestSupport::click(m_panel->projectRow(QStringLiteral("show")), QStringLiteral("Apply"));
        waitFor(&isIdle);
        disarm();
        const bool hasRun = Simulation::Journal::instance()->count(Simulation::Operations::setOperatorType) > 0;
        // By design, a package that became invalid is not applied, and a failure of the host to write the device
        // description is not reported: both silently.
        m_outcome.isSuccess =
            hasRun && m_outcome.message.isEmpty() && !logged(QStringLiteral("Fail to serialize model data."));
    }

    void deleteOne()
    {
        const HeldThreadPool held;
        expectQuestion(QMessageBox::Yes);
        expectResult();
        TestSupport::click(m_panel->projectRow(QStringLiteral("show")), QStringLiteral("Delete"));
        disarm();
        m_outcome.isSuccess = m_outcome.message.isEmpty();
    }

    const Workplace &m_place;
    std::unique_ptr<Simulation::Session> m_session;
    std::unique_ptr<Panel> m_panel;
    std::unique_ptr<TestSupport::AnswerBook> m_book;
    FaultPoints::Plan m_plan;
    QStringList m_watchedFolders;
    Outcome m_outcome;
};

/// Checks the files afterwards, with the product's readers and with another program.
class Inspector
{
public:
    explicit Inspector(const Workplace &place)
        : m_place(place)
    {}

    /// The expected contents of a save of the online device, taken from an undisturbed one.
    void setReference(const QString &path) { m_saved = contentOf(path); }
    bool hasReference() const { return !m_saved.isEmpty(); }

    /// The violations after the operation; empty if there are none. `leftOut`: entries that a package may lack because
    /// they could not be opened and the save logged it.
    QStringList complaintsAfter(Operation operation, bool mayLeaveFragment, const QStringList &leftOut = QStringList())
    {
        m_complaints.clear();
        lookAtFolders(mayLeaveFragment);
        if (readFile(m_place.other()) != m_place.package())
            complain(QStringLiteral("the other package was changed"));
        if (readFile(m_place.travelled()) != m_place.package())
            complain(QStringLiteral("the package on the stick was changed"));

        const QString target = m_place.target(operation);
        const bool showIsOld = readFile(m_place.show()) == m_place.package();
        switch (operation) {
        case Save:
            if (!showIsOld)
                complain(QStringLiteral("another package was changed"));
            if (QFile::exists(target) && !isSaved(target, leftOut))
                complain(QStringLiteral("the new package is not whole"));
            break;
        case SaveOver:
            if (!showIsOld && !isSaved(target, leftOut))
                complain(QStringLiteral("neither the old nor the new package is there"));
            break;
        case Edit:
            if (QFile::exists(m_place.show()) == QFile::exists(target))
                complain(QStringLiteral("the package is there twice or not at all"));
            else if (!showIsOld && !isEdited(m_place.show()) && !isEdited(target))
                complain(QStringLiteral("the package has neither its old nor its new record"));
            break;
        case SaveAs:
        case Import:
            if (!showIsOld)
                complain(QStringLiteral("the source was changed"));
            if (QFile::exists(target) && readFile(target) != m_place.package())
                complain(QStringLiteral("the copy is not whole"));
            break;
        case ApplyOffline:
            if (!showIsOld)
                complain(QStringLiteral("the package was changed"));
            for (auto file = m_place.payload().begin(); file != m_place.payload().end(); ++file) {
                const QString path = m_place.deviceFile(file.key());
                const QByteArray bytes = readFile(path);
                if (QFile::exists(path) && bytes != oldDeviceFile && bytes != file.value())
                    complain(file.key() + QStringLiteral(" is neither the old nor the new one"));
            }
            break;
        case Delete:
            if (QFile::exists(target) && !showIsOld)
                complain(QStringLiteral("the package was changed"));
            break;
        case OperationCount:
            break;
        }
        return m_complaints;
    }

    /// Whether the operation did what a success message claims.
    bool isDone(Operation operation, const QStringList &leftOut = QStringList()) const
    {
        const QString target = m_place.target(operation);
        switch (operation) {
        case Save:
        case SaveOver:
            return isSaved(target, leftOut);
        case Edit:
            return isEdited(target);
        case SaveAs:
        case Import:
            return readFile(target) == m_place.package();
        case ApplyOffline:
            for (auto file = m_place.payload().begin(); file != m_place.payload().end(); ++file) {
                if (readFile(m_place.deviceFile(file.key())) != file.value())
                    return false;
            }
            return true;
        case Delete:
            return !QFile::exists(target);
        case OperationCount:
            break;
        }
        return false;
    }

    /// The results that a power failure could still lose.
    QStringList unflushed(Operation operation) const
    {
        QStringList paths;
        if (operation == ApplyOffline) {
            for (const QString &name : m_place.payload().keys())
                paths.append(m_place.deviceFile(name));
        } else if (operation != Delete) {
            paths.append(m_place.target(operation));
        }
        QStringList found;
        for (const QString &path : paths) {
            if (FaultPoints::isUnflushed(path))
                found.append(path);
        }
        return found;
    }

private:
    void complain(const QString &text) { m_complaints.append(text); }

    static bool isFragment(const QString &name)
    {
        static const QRegularExpression pattern(QStringLiteral("^\\.[-0-9a-f]{36}\\.(part|undo)$"));
        return pattern.match(name).hasMatch();
    }

    /// Project folders hold valid packages, all of them listed, and at most fragments. No undo record remains after a
    /// scan.
    void lookAtFolders(bool mayLeaveFragment)
    {
        ProjectList list;
        list.scanProjectFiles(m_place.projects(), list.beginScan());
        QStringList listed;
        for (const EngineerPacketInfo &info : list.listProjects)
            listed.append(info.strFilePath);
        for (const QString &folder : {m_place.projects(), m_place.stick() + '/'}) {
            for (const QString &name : contents(folder)) {
                const QString path = folder + name;
                if (isFragment(name)) {
                    if (!mayLeaveFragment)
                        complain(QStringLiteral("a fragment was left: ") + path);
                    if (listed.contains(path))
                        complain(QStringLiteral("a fragment is listed: ") + path);
                } else if (!name.endsWith(QStringLiteral(".corvelpro"))) {
                    complain(QStringLiteral("unknown: ") + path);
                } else if (!isValid(path)) {
                    complain(QStringLiteral("invalid: ") + path);
                } else if (folder == m_place.projects() && !listed.contains(path)) {
                    complain(QStringLiteral("not listed: ") + path);
                }
            }
        }
    }

    bool isValid(const QString &path) const
    {
        return readFile(path) == m_place.package() ||
               (ZipPackageHandle::isValidEngineerPacket(path) && run("unzip", {"-tqq", path}).exitCode == 0);
    }

    /// Sizes and checksums of the entries, read by another program.
    static Files contentOf(const QString &path)
    {
        static const QRegularExpression line(
            QStringLiteral("^ *(\\d+) +\\S+ +\\d+ +\\S+ +\\S+ +\\S+ +([0-9a-f]{8}) +(\\S.*)$"));
        Files content;
        const QString output = QString::fromUtf8(run("unzip", {"-v", path}).output);
        for (const QString &text : output.split(QLatin1Char('\n'))) {
            const QRegularExpressionMatch match = line.match(text);
            if (match.hasMatch())
                content.insert(match.captured(3), (match.captured(1) + ' ' + match.captured(2)).toLatin1());
        }
        return content;
    }

    static QString commentOf(const QString &path)
    {
        EngineerPacketInfo info;
        info.strFilePath = path;
        return ZipPackageHandle::getZipFileEngineerInfo(info) ? info.strComment : QString();
    }

    bool isSaved(const QString &path, const QStringList &leftOut) const
    {
        Files found = contentOf(path);
        for (auto entry = m_saved.begin(); entry != m_saved.end(); ++entry) {
            if (!found.contains(entry.key()) && leftOut.contains(entry.key()))
                found.insert(entry.key(), entry.value());
        }
        return commentOf(path) == newComment && found == m_saved;
    }

    bool isEdited(const QString &path) const
    {
        if (m_edited.isEmpty()) {
            const QString pristine = QDir::homePath() + QStringLiteral("/pristine.zip");
            if (!writeFile(pristine, m_place.package()))
                qFatal("No room for the package to compare with");
            m_edited = contentOf(pristine);
        }
        return commentOf(path) == newComment && contentOf(path) == m_edited;
    }

    const Workplace &m_place;
    Files m_saved;
    mutable Files m_edited;
    QStringList m_complaints;
};

} // namespace FaultTesting

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "engineerdocoperwidget.h"

#include "deviceoperations.h"
#include "deviceselector.h"
#include "encodedpictures.h"
#include "engineerdocbackup.h"
#include "engineerdocload.h"
#include "filedialogs.h"
#include "loadpreparation.h"
#include "messageboxes.h"
#include "newproject.h"
#include "packagedrop.h"
#include "panellayout.h"
#include "prechecks.h"
#include "pressedbutton.h"
#include "projectcopies.h"
#include "projectdeletion.h"
#include "projectediting.h"
#include "projectpaths.h"
#include "projectrowwidget.h"
#include "projectscans.h"
#include "projecttable.h"
#include "release.h"
#include "runningjob.h"
#include "setconnected.h"
#include "waiting.h"

#include <host/devices.h>

#include <QComboBox>
#include <QFileSystemWatcher>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTableWidget>
#include <QToolButton>

namespace ProjectFileCfg {
namespace Internal {

// ---- Construction

EngineerDocOperWidget::EngineerDocOperWidget(QWidget *parent)
    : Corvel::Widgets::ICenterWidget("ProjectFileCfg.Central", parent)
    , m_pProjects(std::make_shared<ProjectList>())
    , m_listProjectInfo(m_pProjects->listProjects)
    , m_strDefaultPath(ProjectPaths::projectFilesPath())
    , m_strDocumentsPath(ProjectPaths::documentsPath())
    , m_mutex(m_pProjects->mutex)
    , m_pEncodedPictures(std::make_shared<EncodedPictures>())
{
    m_pFileWatcher = new QFileSystemWatcher;
    m_pFileWatcher->addPath(m_strDefaultPath);
    m_pScans.reset(new ProjectScans(m_pProjects, m_strDefaultPath, this, [this] {
        updateProjectTable();
        updateButtonState();
    }));
    setProperty("EngineerFile", true);
    initUI();
    EngineerDocOperWidget::retranslateUi();
    initConnects(true);
    slot_projectFilesChanged();
}

EngineerDocOperWidget::~EngineerDocOperWidget()
{
    release(m_pFileWatcher, this);

    // After this, nobody can tell the host that the operation is over, or hide the modal waiting dialog.
    const bool copying = ProjectCopies::isAwaited(m_pSaveasWatcher) || ProjectCopies::isAwaited(m_pImportWatcher);
    if (m_nOperatorType != OperatorNone)
        RunningJob::announce(HostNumbers::operatorNone);
    if (m_nOperatorType != OperatorNone || copying)
        Waiting::hide();

    if (m_pDocLoad && m_nOperatorType == OperatorLoad)
        RunningJob::endAfterPanel(*m_pDocLoad);
    abandonJob(m_pDocBackup, this);
    abandonJob(m_pDocLoad, this);
    release(m_pSaveasWatcher, this);
    release(m_pImportWatcher, this);
}

void EngineerDocOperWidget::initUI()
{
    m_pDeviceLabel = new QLabel;
    m_pDeviceCombo = new QComboBox(this);
    m_pSaveProjectBtn = new QPushButton;
    m_pImportProjectBtn = new QPushButton;
    m_pApplyOthersBtn = new QPushButton;
    m_pAllSaveasBtn = new QPushButton;
    m_pAllDeleteBtn = new QPushButton;
    m_pProjectTable = new QTableWidget;
    m_pPanelLayout.reset(new PanelLayout(this, {m_pDeviceLabel, m_pDeviceCombo, m_pSaveProjectBtn, m_pImportProjectBtn,
                                                m_pApplyOthersBtn, m_pAllSaveasBtn, m_pAllDeleteBtn, m_pProjectTable}));
    m_pDeviceSelector.reset(new DeviceSelector(m_pDeviceCombo));
    m_pTableRows.reset(new ProjectTable(m_pProjectTable, [this](const ProjectRowWidget &row) { connectRow(row); }));
    connect(new PackageDrop(m_pProjectTable), &PackageDrop::signal_dropped, this, &EngineerDocOperWidget::startImport);
}

void EngineerDocOperWidget::retranslateUi()
{
    m_pPanelLayout->retranslate();
    m_pTableRows->retranslate();
    Waiting::retranslate();
    slot_projectFilesChanged();
    initDevice();
}

void EngineerDocOperWidget::initConnects(bool bConnect)
{
    const auto wire = [this, bConnect](QPushButton *button, void (EngineerDocOperWidget::*slot)()) {
        setConnected(bConnect, button, &QAbstractButton::clicked, this, slot);
    };
    wire(m_pSaveProjectBtn, &EngineerDocOperWidget::slot_saveProject);
    wire(m_pImportProjectBtn, &EngineerDocOperWidget::slot_importProject);
    wire(m_pApplyOthersBtn, &EngineerDocOperWidget::slot_applyOtherProject);
    wire(m_pAllSaveasBtn, &EngineerDocOperWidget::slot_saveasProject);
    wire(m_pAllDeleteBtn, &EngineerDocOperWidget::slot_deleteAllProject);

    // retranslateUi() may have connected it already, and with a second connection the slot would be called twice.
    connectSelector(false);
    connectSelector(bConnect);
    connectFileWatcher(bConnect);
}

void EngineerDocOperWidget::connectSelector(bool bConnect)
{
    setConnected(bConnect, m_pDeviceCombo, &QComboBox::currentTextChanged, this,
                 &EngineerDocOperWidget::slot_changeDevice);
}

void EngineerDocOperWidget::connectFileWatcher(bool bConnect)
{
    setConnected(bConnect, m_pFileWatcher, &QFileSystemWatcher::directoryChanged, this,
                 &EngineerDocOperWidget::slot_projectFilesChanged);
}

void EngineerDocOperWidget::connectRow(const ProjectRowWidget &row)
{
    connect(row.editButton(), &QAbstractButton::clicked, this, &EngineerDocOperWidget::slot_editProjectInfo);
    connect(row.applyButton(), &QAbstractButton::clicked, this, &EngineerDocOperWidget::slot_applyPoject);
    connect(row.saveAsButton(), &QAbstractButton::clicked, this, &EngineerDocOperWidget::slot_singleFileSaveas);
    connect(row.deleteButton(), &QAbstractButton::clicked, this, &EngineerDocOperWidget::slot_deleteProject);
}

// ---- Listing

void EngineerDocOperWidget::slot_projectFilesChanged()
{
    m_pScans->start();
}

void EngineerDocOperWidget::updateProjectTable()
{
    m_pTableRows->show(m_pProjects->snapshot());
}

void EngineerDocOperWidget::updateButtonState()
{
    const bool isAnyListed = !m_pProjects->snapshot().isEmpty();
    m_pAllDeleteBtn->setEnabled(isAnyListed);
    m_pAllSaveasBtn->setEnabled(isAnyListed);
}

// ---- Selecting a device

void EngineerDocOperWidget::initDevice()
{
    connectSelector(false);
    if (m_pDeviceSelector->refill(m_strDeviceIP))
        connectSelector(true);
}

void EngineerDocOperWidget::slot_changeDevice(const QString &)
{
    m_pDeviceSelector->changeDevice(m_strDeviceIP);
}

bool EngineerDocOperWidget::selectAgain(const QString &address)
{
    if (m_strDeviceIP != address && DeviceOperations::activate(address))
        initDevice();
    return PreChecks::isStillSelected(address, m_strDeviceIP);
}

// ---- Saving

void EngineerDocOperWidget::slot_saveProject()
{
    if (!PreChecks::isDeviceSelected(this, m_strDeviceIP) || !DeviceOperations::activate(m_strDeviceIP) ||
        !m_pDeviceSelector->showCurrent() || !PreChecks::isRoomForProject(this, m_strDeviceIP, m_strDefaultPath))
        return;
    const QString selected = m_strDeviceIP;
    const std::optional<NewProject::Properties> answer = NewProject::ask(this, m_strDefaultPath);
    if (answer && selectAgain(selected))
        startBackup(answer->strName, answer->strComment);
}

bool EngineerDocOperWidget::startBackup(const QString &name, const QString &comment)
{
    releaseJob(m_pDocBackup, this);
    const std::shared_ptr<Model::Device> device = DeviceOperations::active();
    if (!device)
        return false;
    // Settled now: another program may save under the name while the host frees the channel.
    const auto replaceable = EngineerDocBackup::fileAt(m_strDefaultPath, name);
    DeviceOperations::freeChannel(device);
    RunningJob::announce(HostNumbers::operatorBackup);
    m_nOperatorType = OperatorBackup;

    m_pDocBackup = new EngineerDocBackup(nullptr, QString());
    m_pDocBackup->setProjectPath(m_strDefaultPath);
    m_pDocBackup->setDeviceIp(m_strDeviceIP);
    m_pDocBackup->setProjectInfo(name, comment);
    m_pDocBackup->setReplaceable(replaceable);
    m_pDocBackup->setEncodedPictures(m_pEncodedPictures);

    Waiting::offerCancel();
    Waiting::show([] { return tr("Please wait while the project file is exported"); });
    Waiting::connectCancel(true, this, &EngineerDocOperWidget::slot_cancelOperator);
    connect(m_pDocBackup, &QThread::finished, this, &EngineerDocOperWidget::slot_backupFinished);
    connect(m_pDocBackup, &EngineerDocBackup::signal_operatoerChanged, this,
            &EngineerDocOperWidget::slot_backupOperatorChanged);
    m_pDocBackup->start(QThread::InheritPriority);
    return RunningJob::hasStarted(*m_pDocBackup, [this] { slot_backupFinished(); });
}

void EngineerDocOperWidget::slot_backupOperatorChanged(const QString &strOperInfo)
{
    Waiting::showProgress(strOperInfo);
    Waiting::offerCancel();
}

void EngineerDocOperWidget::slot_cancelOperator()
{
    if (m_nOperatorType == OperatorLoad && m_pDocLoad) {
        m_pDocLoad->cancel();
        DeviceOperations::cancelLoad(DeviceOperations::find(m_strDeviceIP));
    } else if (m_nOperatorType == OperatorBackup && m_pDocBackup) {
        m_pDocBackup->cancel();
        m_strApplyAfterBackup.clear();
        DeviceOperations::cancelSave(DeviceOperations::find(m_strDeviceIP));
    }
}

void EngineerDocOperWidget::slot_backupFinished()
{
    Waiting::connectCancel(false, this, &EngineerDocOperWidget::slot_cancelOperator);
    Waiting::hide();
    RunningJob::announce(HostNumbers::operatorNone);
    m_nOperatorType = OperatorNone;
    slot_projectFilesChanged();

    const QPointer<EngineerDocOperWidget> guard(this);
    if (RunningJob::isApplyDue(m_pDocBackup, m_strApplyAfterBackup)) {
        if (selectAgain(m_pDocBackup->deviceIp()))
            startLoad(m_strApplyAfterBackup);
        if (guard)
            m_strApplyAfterBackup.clear();
    } else {
        m_strApplyAfterBackup.clear();
        MessageBoxes::showBackupResult(this, m_pDocBackup ? m_pDocBackup->resultCode() : int(BackupSuccess));
    }
    if (!guard)
        return;

    slot_projectFilesChanged();
    updateButtonState();
    DeviceOperations::freeChannel(DeviceOperations::active());
}

// ---- Applying

void EngineerDocOperWidget::slot_applyPoject()
{
    const PressedButton pressed(sender());
    if (pressed && PreChecks::isDeviceSelected(this, m_strDeviceIP) && PreChecks::isFileThere(this, pressed.filePath()))
        askBackupBeforeApply(pressed.filePath());
}

void EngineerDocOperWidget::slot_applyOtherProject()
{
    if (!PreChecks::isDeviceSelected(this, m_strDeviceIP))
        return;
    const QString selected = m_strDeviceIP;
    const QStringList files = FileDialogs::selectProjectFiles(this, false);
    if (!files.isEmpty() && selectAgain(selected) && PreChecks::isPackage(this, files.first()))
        askBackupBeforeApply(files.first());
}

void EngineerDocOperWidget::askBackupBeforeApply(const QString &path)
{
    const QString selected = m_strDeviceIP;
    const QMessageBox::StandardButton answer = MessageBoxes::askForBackup(this);
    if (answer == QMessageBox::Cancel || !selectAgain(selected))
        return;
    if (answer != QMessageBox::Yes)
        startLoad(path);
    else if (startBackup(NewProject::generateProjectName(m_strDefaultPath), NewProject::timeStamp()))
        m_strApplyAfterBackup = path;
}

bool EngineerDocOperWidget::startLoad(const QString &path)
{
    releaseJob(m_pDocLoad, this);
    const std::shared_ptr<Model::Device> device = DeviceOperations::activate(m_strDeviceIP);
    if (!device)
        return false;
    m_pDocLoad = new EngineerDocLoad(nullptr);
    m_pDocLoad->setDeviceIp(m_strDeviceIP);
    m_pDocLoad->setPackagePath(path);
    if (!LoadPreparation::prepare(this, *m_pDocLoad, device))
        return false;

    m_nOperatorType = OperatorLoad;
    // Keep "save" although a load starts: operators and translations know this text.
    Waiting::show([] { return tr("Start save project file"); });
    RunningJob::announce(HostNumbers::operatorLoad);
    RunningJob::startThenConnect(*m_pDocLoad, [this] {
        Waiting::connectCancel(true, this, &EngineerDocOperWidget::slot_cancelOperator);
        connect(m_pDocLoad, &EngineerDocLoad::signal_operatoerChanged, this,
                &EngineerDocOperWidget::slot_operatorChanged);
        connect(m_pDocLoad, &QThread::finished, this, &EngineerDocOperWidget::slot_loadFinished);
    });
    return RunningJob::hasStarted(*m_pDocLoad, [this] { slot_loadFinished(); });
}

void EngineerDocOperWidget::slot_operatorChanged(const QString &strOperType)
{
    Waiting::showProgress(strOperType);
}

void EngineerDocOperWidget::slot_loadFinished()
{
    RunningJob::announce(HostNumbers::operatorNone);
    Waiting::connectCancel(false, this, &EngineerDocOperWidget::slot_cancelOperator);
    if (m_pDocLoad)
        disconnect(m_pDocLoad, &EngineerDocLoad::signal_operatoerChanged, this,
                   &EngineerDocOperWidget::slot_operatorChanged);
    m_nOperatorType = OperatorNone;
    Waiting::hide();

    const QPointer<EngineerDocOperWidget> guard(this);
    const int code = m_pDocLoad ? m_pDocLoad->resultCode() : int(LoadSuccess);
    const std::shared_ptr<Model::Device> device = DeviceOperations::find(m_strDeviceIP);
    const bool online = device && device->getDeviceOnlineFlag();
    DeviceOperations::freeChannel(device);
    RunningJob::freeChannelOfLoad(m_pDocLoad, m_strDeviceIP);
    MessageBoxes::showLoadResult(this, code);
    if (!guard || !device)
        return;
    if (online)
        DeviceOperations::syncActiveDeviceData();
    DeviceOperations::makeActive(device);
    initDevice();
    DeviceOperations::activateFirstScreen(*device);
}

// ---- Copying out and importing

void EngineerDocOperWidget::slot_singleFileSaveas()
{
    const PressedButton pressed(sender());
    if (!pressed || !PreChecks::isFileThere(this, pressed.filePath()))
        return;
    const QString target = FileDialogs::selectTarget(this, m_strDocumentsPath, pressed.filePath());
    if (!target.isEmpty())
        startSaveas({pressed.filePath()}, target, false);
}

void EngineerDocOperWidget::slot_saveasProject()
{
    const QString target = FileDialogs::selectFolder(this, m_strDocumentsPath);
    if (target.isEmpty())
        return;
    const QStringList paths = m_pProjects->paths();
    if (PreChecks::isRoomForCopies(this, paths, target))
        startSaveas(paths, target, true);
}

void EngineerDocOperWidget::startSaveas(const QStringList &files, const QString &destination, bool bDestIsDir)
{
    Waiting::show([] { return tr("save as project file,please wait..."); });
    release(m_pSaveasWatcher, this);
    m_pSaveasWatcher = ProjectCopies::startSaveAs(files, destination, bDestIsDir, this,
                                                  [this](const auto &failure) { onSaveasFinished(failure); });
    m_saveasFuture = m_pSaveasWatcher->future();
}

void EngineerDocOperWidget::onSaveasFinished(const TranslatedText &failure)
{
    Waiting::hide();
    MessageBoxes::showCopyResult(this, failure, [] { return tr("save as success"); });
}

void EngineerDocOperWidget::slot_importProject()
{
    const QStringList files = FileDialogs::selectProjectFiles(this, true);
    if (!files.isEmpty())
        startImport(files);
}

void EngineerDocOperWidget::startImport(const QStringList &files)
{
    if (!PreChecks::isRoomForImport(this, files, m_strDefaultPath))
        return;
    Waiting::show([] { return tr("Import project files,please wait..."); });
    // No mix-up: the save-as watcher decides whether the previous import watcher goes now or with the panel.
    if (m_pSaveasWatcher)
        release(m_pImportWatcher, this);
    else if (m_pImportWatcher)
        m_pImportWatcher->setParent(this);
    connectFileWatcher(false);
    m_pImportWatcher = ProjectCopies::startImport(files, m_strDefaultPath, this,
                                                  [this](const auto &failure) { onImportFinished(failure); });
    m_importFuture = m_pImportWatcher->future();
}

void EngineerDocOperWidget::onImportFinished(const TranslatedText &failure)
{
    slot_projectFilesChanged();
    Waiting::hide();
    const QPointer<EngineerDocOperWidget> guard(this);
    MessageBoxes::showCopyResult(this, failure, [] { return tr("Import as success"); });
    if (!guard)
        return;
    connectFileWatcher(true);
    // The directory was not watched while the box was open.
    slot_projectFilesChanged();
}

// ---- Editing and deleting

void EngineerDocOperWidget::slot_editProjectInfo()
{
    const PressedButton pressed(sender());
    if (!pressed)
        return;
    const QPointer<EngineerDocOperWidget> guard(this);
    const std::shared_ptr<ProjectList> projects = m_pProjects;
    {
        // Keeps scans from replacing the entry while the dialog is open. The panel may be deleted meanwhile.
        const ProjectList::Hold hold(*projects);
        const std::optional<EngineerPacketInfo> edited =
            ProjectEditing::edit(this, *projects, pressed.filePath(), m_strDefaultPath);
        if (edited) {
            pressed.setFilePath(edited->strFilePath);
            if (projects->rename(pressed.filePath(), *edited))
                slot_projectFilesChanged();
            updateProjectTable();
        }
    }
    if (guard && projects->takeMissedScan())
        slot_projectFilesChanged();
}

void EngineerDocOperWidget::slot_deleteProject()
{
    const PressedButton pressed(sender());
    if (!pressed || !ProjectDeletion::isConfirmed(this, pressed.filePath()))
        return;
    connectFileWatcher(false);
    // After a failure the directory stays unwatched until the next import or deletion.
    if (!ProjectDeletion::remove(this, pressed.filePath()))
        return;
    connectFileWatcher(true);
    if (m_pProjects->remove(pressed.filePath()))
        slot_projectFilesChanged();
    updateProjectTable();
    updateButtonState();
}

void EngineerDocOperWidget::slot_deleteAllProject()
{
    if (!ProjectDeletion::isConfirmedForAll(this))
        return;
    connectFileWatcher(false);
    if (m_pProjects->clear())
        slot_projectFilesChanged();
    m_pTableRows->clear();
    updateButtonState();
    connectFileWatcher(true);
}

} // namespace Internal
} // namespace ProjectFileCfg

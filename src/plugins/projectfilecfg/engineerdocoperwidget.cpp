#include "engineerdocoperwidget.h"

#include "devicelookup.h"
#include "durablefile.h"
#include "encodedpictures.h"
#include "engineerdocbackup.h"
#include "engineerdocload.h"
#include "engineerpropertysettingwidget.h"
#include "projectfilefacts.h"
#include "projectrowwidget.h"
#include "replacingfile.h"

#include <core/icore.h>
#include <model/devicelist.h>
#include <model/objectbrige.h>
#include <modelcontrol/devicecontroler.h>
#include <modelcontrol/operationadapter.h>
#include <widgets/framelessmessagebox.h>
#include <widgets/waitingdialog.h>

#include <QComboBox>
#include <QCoreApplication>
#include <QDateTime>
#include <QDebug>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QFutureWatcher>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMetaMethod>
#include <QMutexLocker>
#include <QPointer>
#include <QPushButton>
#include <QSemaphore>
#include <QSet>
#include <QStandardItemModel>
#include <QStorageInfo>
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QTextDocument>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtConcurrentRun>

#include <algorithm>
#include <exception>

using Core::ICore;
using Corvel::Widgets::WaitingDialog;
using HX::Widgets::FramelessMessageBox;
using ModelControl::DeviceControler;
namespace Facts = ProjectFileCfg::Internal::ProjectFileFacts;

namespace ProjectFileCfg {
namespace Internal {

/// Role of the four strings that each entry of the device selector carries: info text, type, name, IP address.
static const int deviceMarkRole = Qt::UserRole + 1;
static const int deviceMarkCount = 4;
static const int deviceMarkInfo = 0;
static const int deviceMarkAddress = 3;

static const int maxProjectNumber = 999;
static const unsigned long long bytesPerMebibyte = 1024 * 1024;

static QString timeStamp()
{
    return QDateTime::currentDateTime().toString(Facts::timeStampFormat);
}

static void showWaiting(const QString &text)
{
    WaitingDialog::instance()->showWaitingDialog(text, WaitingDialog::LevelNormal);
}

/// Lets go of a job or a watcher that belongs to nobody else, and of what it tells the panel.
template<typename T>
static void release(T *&object, QObject *panel)
{
    if (!object)
        return;
    QObject::disconnect(object, nullptr, panel, nullptr);
    object->deleteLater();
    object = nullptr;
}

/// The same for a job, which must not be deleted while its thread runs.
template<typename Job>
static void releaseJob(Job *&job, QObject *panel)
{
    if (!job)
        return;
    QObject::disconnect(job, nullptr, panel, nullptr);
    QObject::connect(job, &QThread::finished, job, &QObject::deleteLater);
    if (!job->isRunning())
        job->deleteLater();
    job = nullptr;
}

/// Calls the host from a slot. What the host throws must not leave the slot: Qt's event loop would end the process.
/// False, and a line in the log, when it threw.
template<typename Call>
static bool callHost(const char *operation, const Call &call)
{
    try {
        call();
        return true;
    } catch (const std::exception &error) {
        qCritical().nospace() << "The host threw in " << operation << ": " << error.what();
    } catch (...) {
        qCritical().nospace() << "The host threw in " << operation << ": something that is no std::exception";
    }
    return false;
}

static void setChannelExclusive(const std::shared_ptr<Model::Device> &device, bool exclusive)
{
    callHost("setChannelExclusive", [&] { DeviceControler(device).setChannelExclusive(exclusive); });
}

static void freeChannel(const std::shared_ptr<Model::Device> &device)
{
    if (device && device->getDeviceOnlineFlag())
        setChannelExclusive(device, false);
}

/// How often a job was started in this process: tells whether one that ends late is still the last.
static int s_startedJobs = 0;

static void tellOperation(ICore::OperatorDeviceType type)
{
    if (type != ICore::OperatorNone)
        ++s_startedJobs;
    callHost("setOperatorType", [type] { ICore::setOperatorType(type, QString()); });
}

/// Tool tips show rich text. What comes from a device is shown as it is, and nothing in it is loaded.
static QString asToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}

/// Cuts every connection of the widget's signals but those of destroyed(), by which the style sheet's cache of widgets
/// lives.
static void cutConnections(QWidget *widget)
{
    const QMetaMethod destroyed = QMetaMethod::fromSignal(&QObject::destroyed);
    const QMetaObject *meta = widget->metaObject();
    for (int i = 0; i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.methodType() == QMetaMethod::Signal && method.name() != destroyed.name())
            QObject::disconnect(widget, method, nullptr, QMetaMethod());
    }
}

/// False when nobody waits for that copying or importing any more. Its future would not do: the work may be over and
/// the panel not yet know of it.
static bool isAwaited(const QFutureWatcher<QString> *watcher)
{
    return watcher && !watcher->isFinished();
}

EngineerDocOperWidget::EngineerDocOperWidget(QWidget *parent)
    : ICenterWidget("ProjectFileCfg.Central", parent)
    , m_pProjects(std::make_shared<ProjectList>())
    , m_listProjectInfo(m_pProjects->projects)
    , m_strDefaultPath(Facts::projectFilesPath())
    , m_strDocumentsPath(Facts::documentsPath())
    , m_mutex(m_pProjects->mutex)
    , m_pEncodedPictures(std::make_shared<EncodedPictures>())
    , m_projectIcon(QStringLiteral(":resource/images/icon_project_normal.png"))
{
    m_pFileWatcher = new QFileSystemWatcher;
    m_pFileWatcher->addPath(m_strDefaultPath);
    m_pScanTimer = new QTimer(this);
    m_pScanTimer->setSingleShot(true);
    connect(m_pScanTimer, &QTimer::timeout, this, &EngineerDocOperWidget::slot_projectFilesChanged);
    setProperty("EngineerFile", true);
    initUI();
    retranslateUi();
    initConnects(true);
    slot_projectFilesChanged();
}

EngineerDocOperWidget::~EngineerDocOperWidget()
{
    release(m_pFileWatcher, this);

    // Nobody is left to end what the host believes to be running, nor to hide its modal dialog.
    const bool copying = isAwaited(m_pSaveasWatcher) || isAwaited(m_pImportWatcher);
    if (m_nOperatorType != OperatorNone)
        tellOperation(ICore::OperatorNone);
    if (m_nOperatorType != OperatorNone || copying)
        WaitingDialog::instance()->hideWaitingDialog();

    if (m_pDocBackup)
        m_pDocBackup->cancel();
    releaseJob(m_pDocBackup, this);
    if (m_pDocLoad) {
        m_pDocLoad->cancel();
        // The job is destroyed when its thread has ended. Only then may others use the device again, and until then it
        // may have told the host of one more picture.
        if (m_nOperatorType == OperatorLoad)
            connect(m_pDocLoad, &QObject::destroyed, qApp, [address = m_pDocLoad->deviceIp(), number = s_startedJobs] {
                if (number == s_startedJobs)
                    tellOperation(ICore::OperatorNone);
                freeChannel(findDeviceByAddress(address));
            });
    }
    releaseJob(m_pDocLoad, this);
    release(m_pSaveasWatcher, this);
    release(m_pImportWatcher, this);
}

void EngineerDocOperWidget::initUI()
{
    m_pDeviceLabel = new QLabel;
    m_pDeviceCombo = new QComboBox(this);
    m_pDeviceCombo->setItemDelegate(new QStyledItemDelegate(this));
    m_pDeviceCombo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    m_pDeviceCombo->setFixedSize(300, 36);
    m_pDeviceCombo->setMaximumWidth(300);
    QHBoxLayout *deviceRow = new QHBoxLayout;
    deviceRow->setSpacing(16);
    deviceRow->addSpacing(25);
    deviceRow->addWidget(m_pDeviceLabel);
    deviceRow->addWidget(m_pDeviceCombo);
    deviceRow->addStretch(1);

    m_pSaveProjectBtn = new QPushButton;
    m_pImportProjectBtn = new QPushButton;
    m_pApplyOthersBtn = new QPushButton;
    m_pAllSaveasBtn = new QPushButton;
    m_pAllDeleteBtn = new QPushButton;
    QHBoxLayout *commandRow = new QHBoxLayout;
    commandRow->setSpacing(16);
    commandRow->addSpacing(25);
    commandRow->addWidget(m_pSaveProjectBtn);
    commandRow->addStretch(0);
    commandRow->addWidget(m_pAllSaveasBtn);
    commandRow->addWidget(m_pAllDeleteBtn);
    commandRow->addSpacing(24);

    m_pProjectTable = new QTableWidget;
    m_pProjectTable->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
    m_pProjectTable->verticalHeader()->setVisible(false);
    m_pProjectTable->setFrameShape(QFrame::NoFrame);
    m_pProjectTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pProjectTable->setSelectionMode(QAbstractItemView::NoSelection);
    m_pProjectTable->verticalHeader()->setDefaultSectionSize(48);
    m_pProjectTable->setFocusPolicy(Qt::NoFocus);
    m_pProjectTable->setColumnCount(3);
    m_pProjectTable->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Fixed);
    m_pProjectTable->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    m_pProjectTable->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Fixed);
    m_pProjectTable->setColumnWidth(0, 340);
    m_pProjectTable->setColumnWidth(2, 340);
    m_pProjectTable->horizontalHeader()->setContentsMargins(15, 0, 15, 0);

    QFrame *separator = new QFrame(this);
    separator->setFrameShape(QFrame::HLine);
    separator->setFrameShadow(QFrame::Plain);
    separator->setMinimumHeight(1);
    separator->setMaximumHeight(1);
    separator->setStyleSheet(QStringLiteral("border-top: solid ; background-color:rgb(81, 84, 91)"));

    QHBoxLayout *tableRow = new QHBoxLayout;
    tableRow->setSpacing(16);
    tableRow->addSpacing(24);
    tableRow->addWidget(m_pProjectTable);
    tableRow->addSpacing(10);

    QHBoxLayout *importRow = new QHBoxLayout;
    importRow->setSpacing(16);
    importRow->addStretch(0);
    importRow->addWidget(m_pImportProjectBtn);
    importRow->addWidget(m_pApplyOthersBtn);
    importRow->addSpacing(24);

    QVBoxLayout *outerLayout = new QVBoxLayout;
    outerLayout->setSpacing(16);
    outerLayout->addSpacing(19);
    outerLayout->addLayout(deviceRow);
    outerLayout->addSpacing(8);
    outerLayout->addLayout(commandRow);
    outerLayout->addLayout(tableRow);
    outerLayout->addWidget(separator);
    outerLayout->addSpacing(10);
    outerLayout->addLayout(importRow);
    outerLayout->addSpacing(10);
    setLayout(outerLayout);
}

void EngineerDocOperWidget::retranslateUi()
{
    m_pDeviceLabel->setText(tr("Device"));
    m_pSaveProjectBtn->setText(tr("Save Project"));
    m_pImportProjectBtn->setText(tr("Import Project"));
    m_pApplyOthersBtn->setText(tr("Apply Others"));
    m_pAllSaveasBtn->setText(tr("ALL Save as"));
    m_pAllDeleteBtn->setText(tr("All Delete"));
    m_pProjectTable->setHorizontalHeaderLabels({tr("Project file"), tr("Comment"), tr("Operations")});

    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    m_pDeviceLabel->setFixedWidth(fontMetrics().width(m_pDeviceLabel->text()) + 15);

    QPushButton *const buttons[] = {m_pSaveProjectBtn, m_pImportProjectBtn, m_pApplyOthersBtn, m_pAllSaveasBtn,
                                    m_pAllDeleteBtn};
    int buttonWidth = 100;
    for (const QPushButton *button : buttons)
        buttonWidth = qMax(buttonWidth, fontMetrics().width(button->text()));
    QT_WARNING_POP
    for (QPushButton *button : buttons) {
        button->setFixedSize(buttonWidth + 25, 30);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    slot_projectFilesChanged();
    initDevice();
}

void EngineerDocOperWidget::initConnects(bool bConnect)
{
    const auto wire = [this, bConnect](QPushButton *button, void (EngineerDocOperWidget::*slot)()) {
        if (bConnect)
            connect(button, &QAbstractButton::clicked, this, slot);
        else
            disconnect(button, &QAbstractButton::clicked, this, slot);
    };
    wire(m_pSaveProjectBtn, &EngineerDocOperWidget::slot_saveProject);
    wire(m_pImportProjectBtn, &EngineerDocOperWidget::slot_importProject);
    wire(m_pApplyOthersBtn, &EngineerDocOperWidget::slot_applyOtherProject);
    wire(m_pAllSaveasBtn, &EngineerDocOperWidget::slot_saveasProject);
    wire(m_pAllDeleteBtn, &EngineerDocOperWidget::slot_deleteAllProject);

    // initDevice() may have made this connection already.
    disconnect(m_pDeviceCombo, &QComboBox::currentTextChanged, this, &EngineerDocOperWidget::slot_changeDevice);
    if (bConnect)
        connect(m_pDeviceCombo, &QComboBox::currentTextChanged, this, &EngineerDocOperWidget::slot_changeDevice);
    connectFileWatcher(bConnect);
}

void EngineerDocOperWidget::connectFileWatcher(bool bConnect)
{
    if (bConnect)
        connect(m_pFileWatcher, &QFileSystemWatcher::directoryChanged, this,
                &EngineerDocOperWidget::slot_projectFilesChanged);
    else
        disconnect(m_pFileWatcher, &QFileSystemWatcher::directoryChanged, this,
                   &EngineerDocOperWidget::slot_projectFilesChanged);
}

// ---------------------------------------------------------------------------------------------------------------------
// The list and its table

void EngineerDocOperWidget::slot_projectFilesChanged()
{
    if (m_pProjects->isHeldAgainstScan())
        return;
    const auto scan = [projects = m_pProjects, path = m_strDefaultPath, number = m_pProjects->beginScan()] {
        return projects->scanProjectFiles(path, number);
    };
    auto *watcher = new QFutureWatcher<int>;
    connect(watcher, &QFutureWatcher<int>::finished, this, [this, watcher] { onScanFinished(watcher->result()); });
    connect(watcher, &QFutureWatcher<int>::finished, watcher, &QObject::deleteLater);
    watcher->setFuture(QtConcurrent::run(scan));
}

void EngineerDocOperWidget::onScanFinished(int nextScan)
{
    updateProjectTable();
    updateButtonState();
    // The directory's watcher tells of new files, not of those that grow.
    if (nextScan >= 0 && !m_pScanTimer->isActive())
        m_pScanTimer->start(nextScan);
}

void EngineerDocOperWidget::updateProjectTable()
{
    const QMutexLocker locker(&m_mutex);

    // Rows are kept, since making them anew takes a hundred times longer than looking at them.
    QSet<QString> pending;
    for (const EngineerPacketInfo &info : qAsConst(m_listProjectInfo))
        pending.insert(info.strFilePath);

    const ProjectRowWidget::Texts texts{tr("Edit"), tr("Apply"), tr("Save as"), tr("Delete")};
    int row = 0;
    for (const EngineerPacketInfo &info : qAsConst(m_listProjectInfo)) {
        while (row < m_pProjectTable->rowCount() && rowWidget(row) && !pending.contains(rowWidget(row)->filePath()))
            m_pProjectTable->removeRow(row);
        // All that follow are new: made at once, since the view looks at all its rows for each that is inserted.
        if (row == m_pProjectTable->rowCount())
            m_pProjectTable->setRowCount(m_listProjectInfo.size());
        else if (rowWidget(row) && rowWidget(row)->filePath() != info.strFilePath)
            m_pProjectTable->insertRow(row);
        if (!rowWidget(row))
            fillTableRow(row);
        setTableRow(row, info, texts);
        pending.remove(info.strFilePath);
        ++row;
    }
    m_pProjectTable->setRowCount(row);
}

void EngineerDocOperWidget::fillTableRow(int row)
{
    m_pProjectTable->setItem(row, 0, new QTableWidgetItem(m_projectIcon, QString()));
    m_pProjectTable->setItem(row, 1, new QTableWidgetItem);

    auto *widget = new ProjectRowWidget(m_rowIcons, m_pProjectTable->viewport());
    connect(widget->editButton(), &QAbstractButton::clicked, this, &EngineerDocOperWidget::slot_editProjectInfo);
    connect(widget->applyButton(), &QAbstractButton::clicked, this, &EngineerDocOperWidget::slot_applyPoject);
    connect(widget->saveAsButton(), &QAbstractButton::clicked, this, &EngineerDocOperWidget::slot_singleFileSaveas);
    connect(widget->deleteButton(), &QAbstractButton::clicked, this, &EngineerDocOperWidget::slot_deleteProject);
    m_pProjectTable->setCellWidget(row, 2, widget);
}

void EngineerDocOperWidget::setTableRow(int row, const EngineerPacketInfo &info, const ProjectRowWidget::Texts &texts)
{
    QString name = QFileInfo(info.strFilePath).fileName();
    name.remove(Facts::packageExtension);
    m_pProjectTable->item(row, 0)->setText(name);
    m_pProjectTable->item(row, 1)->setText(info.strComment);
    rowWidget(row)->setFilePath(info.strFilePath);
    rowWidget(row)->setTexts(texts);
}

ProjectRowWidget *EngineerDocOperWidget::rowWidget(int row) const
{
    return static_cast<ProjectRowWidget *>(m_pProjectTable->cellWidget(row, 2));
}

void EngineerDocOperWidget::updateButtonState()
{
    const QMutexLocker locker(&m_mutex);
    m_pAllDeleteBtn->setEnabled(!m_listProjectInfo.isEmpty());
    m_pAllSaveasBtn->setEnabled(!m_listProjectInfo.isEmpty());
}

// ---------------------------------------------------------------------------------------------------------------------
// Devices

void EngineerDocOperWidget::showEvent(QShowEvent *)
{
    initDevice();
}

QString EngineerDocOperWidget::elidedDeviceInfo(const Model::Device &device) const
{
    return m_pDeviceCombo->fontMetrics().elidedText(device.getDeviceInfo(), Qt::ElideMiddle, 260);
}

void EngineerDocOperWidget::initDevice()
{
    if (!m_pDeviceCombo)
        return;
    disconnect(m_pDeviceCombo, &QComboBox::currentTextChanged, this, &EngineerDocOperWidget::slot_changeDevice);
    QString selection = m_pDeviceCombo->currentText();
    m_pDeviceCombo->clear();
    cutConnections(m_pDeviceCombo);

    const Model::DeviceList *devices = Model::DeviceList::instance();
    if (!devices) {
        qCritical() << "DeviceList::instance() is nullptr!!!";
        return;
    }

    auto *model = new QStandardItemModel(m_pDeviceCombo);
    QString matchedAddress;
    for (const std::shared_ptr<Model::Device> &device : devices->getDevices()) {
        if (!device || !device->deviceConfig().supportProjectFile)
            continue;
        auto *item = new QStandardItem(elidedDeviceInfo(*device));
        item->setToolTip(asToolTip(device->getDeviceInfo()));
        item->setData(
            QStringList{device->getDeviceInfo(), device->getTypeString(), device->getName(), device->getIPAddress()},
            deviceMarkRole);
        if (device->getIPAddress() == m_strDeviceIP) {
            matchedAddress = device->getIPAddress();
            selection = item->text();
        }
        model->appendRow(item);
    }
    m_pDeviceCombo->setModel(model);

    if (const std::shared_ptr<Model::Device> active = Model::object_brige::instance()->activeDevice()) {
        m_strDeviceIP = active->getIPAddress();
        selection = elidedDeviceInfo(*active);
    } else {
        m_strDeviceIP = matchedAddress;
    }
    m_pDeviceCombo->setCurrentText(selection);
    connect(m_pDeviceCombo, &QComboBox::currentTextChanged, this, &EngineerDocOperWidget::slot_changeDevice);
}

void EngineerDocOperWidget::slot_changeDevice(const QString &)
{
    if (!m_pDeviceCombo) {
        m_strDeviceIP.clear();
        return;
    }
    const QStringList mark = m_pDeviceCombo->currentData(deviceMarkRole).toStringList();
    if (mark.isEmpty()) {
        qCritical() << "parameter is empty!!!";
        return;
    }
    m_pDeviceCombo->setToolTip(asToolTip(mark.at(deviceMarkInfo)));
    if (mark.count() != deviceMarkCount) {
        m_strDeviceIP.clear();
        qCritical() << "device mark list count error.";
        return;
    }
    m_strDeviceIP = mark.at(deviceMarkAddress);
}

std::shared_ptr<Model::Device> EngineerDocOperWidget::activateSelectedDevice()
{
    std::shared_ptr<Model::Device> device = Model::object_brige::instance()->activeDevice();
    if (!device || device->getIPAddress() == m_strDeviceIP)
        return device;
    device = findDeviceByAddress(m_strDeviceIP);
    const bool isActive =
        device && callHost("setActiveDevice", [&device] { Model::object_brige::instance()->setActiveDevice(device); });
    return isActive ? device : nullptr;
}

unsigned long long EngineerDocOperWidget::wholeMebibytes(qint64 bytes)
{
    return static_cast<unsigned long long>(bytes / 1024 / 1024);
}

unsigned long long EngineerDocOperWidget::getDiskAvailableSize(const QString &path)
{
    QStorageInfo storage(path);
    storage.refresh();
    qDebug() << "QStorageInfo rootPath:" << storage.rootPath();
    return wholeMebibytes(storage.bytesAvailable());
}

// A folder that is missing, as before the first scan, tells of no free space.
unsigned long long EngineerDocOperWidget::availableForProjects() const
{
    DurableFile::makeFolder(m_strDefaultPath);
    return getDiskAvailableSize(m_strDefaultPath);
}

unsigned long long EngineerDocOperWidget::estimateProjectSize() const
{
    if (m_strDeviceIP.isEmpty())
        return 0;
    const std::shared_ptr<Model::Device> device = findDeviceByAddress(m_strDeviceIP);
    if (!device)
        return 0;
    const DeviceControler controler(device);
    const unsigned long long logos = controler.calLogoMaterailCapacity({}, Model::Materail::Logo, true);
    return ((logos + controler.usedCapacity()) >> 20) + 10;
}

bool EngineerDocOperWidget::syncDeviceData()
{
    return syncDevice(findDeviceByAddress(m_strDeviceIP));
}

bool EngineerDocOperWidget::syncActiveDeviceData()
{
    return syncDevice(Model::object_brige::instance()->activeDevice());
}

bool EngineerDocOperWidget::syncDevice(const std::shared_ptr<Model::Device> &device)
{
    if (!device)
        return false;
    const bool online = device->getDeviceOnlineFlag();
    if (online)
        showWaiting(tr("Sync device data , please wait."));
    bool synchronised = false;
    callHost("updateOnlineDevice", [&] {
        synchronised =
            OperationAdapter::instance()->updateOnlineDevice(device->getIPAddress(), device->getSN(),
                                                             ControlStruct::defaultCallBack) == ControlEnum::ErrorNone;
    });
    if (online)
        WaitingDialog::instance()->hideWaitingDialog();
    return synchronised;
}

bool EngineerDocOperWidget::restoreFactory()
{
    const std::shared_ptr<Model::Device> device = Model::object_brige::instance()->activeDevice();
    if (!device)
        return false;
    const std::map<Model::Device::ParameterType, std::any> parameters{
        {Model::Device::DeviceReset, Model::Device::ResetFactory}};
    if (device->getDeviceOnlineFlag())
        showWaiting(tr("Restore factory,please wait..."));
    bool restored = false;
    callHost("updateDeviceInfo", [&] { restored = DeviceControler(device).updateDeviceInfo(parameters); });
    WaitingDialog::instance()->hideWaitingDialog();
    return restored;
}

// ---------------------------------------------------------------------------------------------------------------------
// Saving

QString EngineerDocOperWidget::generateProjectName() const
{
    const QString base = tr("Project");
    for (int number = 1; number <= maxProjectNumber; ++number) {
        const QString name = base + QString::number(number);
        if (!QFile::exists(m_strDefaultPath + name + Facts::packageExtension))
            return name;
    }
    return QString();
}

void EngineerDocOperWidget::slot_saveProject()
{
    if (m_strDeviceIP.isEmpty()) {
        FramelessMessageBox::warning(this, tr("Warning"), tr("Please select a device."), QMessageBox::Ok);
        return;
    }
    if (!activateSelectedDevice() || !m_pDeviceCombo)
        return;
    const QStringList mark = m_pDeviceCombo->currentData(deviceMarkRole).toStringList();
    if (mark.isEmpty()) {
        qCritical() << "parameter is empty!!!";
        return;
    }
    m_pDeviceCombo->setToolTip(asToolTip(mark.at(deviceMarkInfo)));
    if (mark.count() != deviceMarkCount)
        return;

    const std::shared_ptr<Model::Device> device = Model::object_brige::instance()->activeDevice();
    if (device && device->getDeviceOnlineFlag()) {
        unsigned long long size = 0;
        if (!syncActiveDeviceData() || !callHost("the estimate of the size", [&] { size = estimateProjectSize(); })) {
            FramelessMessageBox::warning(this, tr("Warning"), tr("Failed to get device information"), QMessageBox::Ok);
            return;
        }
        const unsigned long long available = availableForProjects();
        if (size >= available) {
            qCritical() << "m_strDefaultPath:" << m_strDefaultPath << "  project file size:" << size
                        << "  available space size:" << available;
            FramelessMessageBox::warning(this, tr("Warning"),
                                         tr("Insufficient default path space to perform current operation"),
                                         QMessageBox::Ok);
            return;
        }
    }

    // The dialog is modal, but the panel may go while it is open, and the dialog with it.
    const QPointer<EngineerPropertySettingWidget> dialog =
        new EngineerPropertySettingWidget(this, QString(), QString());
    dialog->setProjectName(generateProjectName());
    dialog->setComment(timeStamp());
    const int answer = dialog->exec();
    if (!dialog)
        return;
    if (answer == QDialog::Accepted)
        startBackup(dialog->getProjectName(), dialog->getComment());
    dialog->deleteLater();
}

bool EngineerDocOperWidget::startBackup(const QString &name, const QString &comment)
{
    releaseJob(m_pDocBackup, this);
    const std::shared_ptr<Model::Device> device = Model::object_brige::instance()->activeDevice();
    if (!device)
        return false;
    freeChannel(device);
    tellOperation(ICore::OperatorBackup);
    m_nOperatorType = OperatorBackup;

    m_pDocBackup = new EngineerDocBackup(nullptr, QString());
    m_pDocBackup->setProjectPath(m_strDefaultPath);
    m_pDocBackup->setDeviceIp(m_strDeviceIP);
    m_pDocBackup->setProjectInfo(name, comment);
    m_pDocBackup->setEncodedPictures(m_pEncodedPictures);

    WaitingDialog *waiting = WaitingDialog::instance();
    waiting->setCanelVisible(true);
    waiting->setButtonText(tr("Cancel"));
    showWaiting(tr("Please wait while the project file is exported"));

    connect(waiting, &WaitingDialog::signal_canelLoad, this, &EngineerDocOperWidget::slot_cancelOperator);
    connect(m_pDocBackup, &QThread::finished, this, &EngineerDocOperWidget::slot_backupFinished);
    connect(m_pDocBackup, &EngineerDocBackup::signal_operatoerChanged, this,
            &EngineerDocOperWidget::slot_backupOperatorChanged);
    m_pDocBackup->start(QThread::InheritPriority);
    return true;
}

void EngineerDocOperWidget::slot_backupOperatorChanged(const QString &strOperInfo)
{
    showWaiting(strOperInfo);
    WaitingDialog::instance()->setCanelVisible(true);
    WaitingDialog::instance()->setButtonText(tr("Cancel"));
}

static bool hasSavedPackage(const EngineerDocBackup *backup)
{
    return backup && !backup->savedPackagePath().isEmpty() &&
           ZipPackageHandle::isValidEngineerPacket(backup->savedPackagePath());
}

void EngineerDocOperWidget::slot_backupFinished()
{
    disconnect(WaitingDialog::instance(), &WaitingDialog::signal_canelLoad, this,
               &EngineerDocOperWidget::slot_cancelOperator);
    WaitingDialog::instance()->hideWaitingDialog();
    tellOperation(ICore::OperatorNone);
    m_nOperatorType = OperatorNone;
    slot_projectFilesChanged();

    const QPointer<EngineerDocOperWidget> guard(this);
    const int code = m_pDocBackup ? m_pDocBackup->resultCode() : int(BackupSuccess);
    const bool applies = code == BackupSuccess && !m_strApplyAfterBackup.isEmpty();
    // A save may end with success and without a package; then there is nothing to come back to.
    if (applies && hasSavedPackage(m_pDocBackup)) {
        startLoad(m_strApplyAfterBackup);
        if (guard)
            m_strApplyAfterBackup.clear();
    } else {
        if (applies)
            qWarning() << "The backup left no valid package, so this one is not applied:" << m_strApplyAfterBackup;
        m_strApplyAfterBackup.clear();
        showBackupResult(code);
    }
    if (!guard)
        return;

    slot_projectFilesChanged();
    updateButtonState();
    freeChannel(Model::object_brige::instance()->activeDevice());
}

void EngineerDocOperWidget::slot_cancelOperator()
{
    const std::shared_ptr<Model::Device> device = findDeviceByAddress(m_strDeviceIP);
    if (m_nOperatorType == OperatorLoad && m_pDocLoad) {
        m_pDocLoad->cancel();
        if (device)
            callHost("cancelCurrentTask", [] { DeviceControler::cancelCurrentTask(); });
    } else if (m_nOperatorType == OperatorBackup && m_pDocBackup) {
        m_pDocBackup->cancel();
        m_strApplyAfterBackup.clear();
        if (device)
            callHost("cancelOperator", [&device] { DeviceControler(device).cancelOperator({4, 10}); });
    }
}

void EngineerDocOperWidget::showBackupResult(int code)
{
    QString message;
    switch (code) {
    case BackupExportBkgFailed:
        message = tr("Failed to export bkg");
        break;
    case BackupExportLogoFailed:
        message = tr("Failed to export logo");
        break;
    case BackupOfflineResourceIncomplete:
        message = tr("Offline device resource file is incomplete");
        break;
    case BackupUserCanceled:
        message = tr("User cancels current operation");
        break;
    case BackupEncryptFailed:
        message = tr("Failed to encrypt file");
        break;
    case BackupSaveJsonFailed:
        message = tr("Failed to save json file");
        break;
    case BackupGetDeviceFailed:
        message = tr("Failed to get device information");
        break;
    default:
        return;
    }
    FramelessMessageBox::information(this, tr("Remind"), message, QMessageBox::Ok);
}

// ---------------------------------------------------------------------------------------------------------------------
// Applying

void EngineerDocOperWidget::slot_applyPoject()
{
    const auto *button = qobject_cast<QToolButton *>(sender());
    if (!button)
        return;
    const QString path = button->property("FilePath").toString();
    if (m_strDeviceIP.isEmpty()) {
        FramelessMessageBox::warning(this, tr("Warning"), tr("Please select a device."), QMessageBox::Ok);
        return;
    }
    if (!QFile::exists(path)) {
        FramelessMessageBox::warning(this, tr("Remind"), tr("The file does not exist."), QMessageBox::Ok);
        return;
    }
    askBackupBeforeApply(path);
}

void EngineerDocOperWidget::slot_applyOtherProject()
{
    if (m_strDeviceIP.isEmpty()) {
        FramelessMessageBox::warning(this, tr("Warning"), tr("Please select a device."), QMessageBox::Ok);
        return;
    }
    const QPointer<EngineerDocOperWidget> guard(this);
    const QStringList files = selectProjectFiles(false);
    if (!guard || files.isEmpty())
        return;
    EngineerPacketInfo info;
    info.strFilePath = files.first();
    if (ZipPackageHandle::getZipFileEngineerInfo(info))
        askBackupBeforeApply(info.strFilePath);
    else
        FramelessMessageBox::warning(this, tr("Remind"), tr("The file does not exist or the file format is incorrect."),
                                     QMessageBox::Ok);
}

void EngineerDocOperWidget::askBackupBeforeApply(const QString &path)
{
    const QPointer<EngineerDocOperWidget> guard(this);
    const QMessageBox::StandardButton answer = FramelessMessageBox::question(
        this, tr("Remind"),
        tr("Whether the current configuration needs to be backed up before the project file is imported?"),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    if (!guard || answer == QMessageBox::Cancel)
        return;
    if (answer != QMessageBox::Yes)
        startLoad(path);
    else if (startBackup(generateProjectName(), timeStamp()))
        m_strApplyAfterBackup = path;
}

bool EngineerDocOperWidget::startLoad(const QString &path)
{
    releaseJob(m_pDocLoad, this);
    const std::shared_ptr<Model::Device> device = activateSelectedDevice();
    if (!device)
        return false;

    m_pDocLoad = new EngineerDocLoad(nullptr);
    m_pDocLoad->setDeviceIp(m_strDeviceIP);
    m_pDocLoad->setPackagePath(path);

    const bool online = device->getDeviceOnlineFlag();
    if (online && !syncDeviceData()) {
        qWarning() << "Import project file failed, as sync device from hardware failed.";
        return false;
    }
    if (!m_pDocLoad->checkPackageFile() || !m_pDocLoad->checkDevice()) {
        showLoadResult(m_pDocLoad->resultCode());
        return false;
    }
    if (online) {
        if (!restoreFactory()) {
            m_pDocLoad->releasePackage();
            FramelessMessageBox::warning(this, tr("Warning"), tr(" Restore factory failed "), QMessageBox::Ok);
            return false;
        }
        if (!syncDeviceData()) {
            m_pDocLoad->releasePackage();
            qWarning() << "Import project file failed, as sync device from hardware failed.";
            return false;
        }
        setChannelExclusive(device, true);
    }

    m_nOperatorType = OperatorLoad;
    // "save" although a load starts: operators know the text.
    showWaiting(tr("Start save project file"));
    tellOperation(ICore::OperatorLoad);
    // The job begins its work only when all connections are made: the end of one that failed at once would be told to
    // nobody, and the waiting dialog would stay for ever.
    const auto connected = std::make_shared<QSemaphore>();
    connect(
        m_pDocLoad, &QThread::started, m_pDocLoad, [connected] { connected->acquire(); }, Qt::DirectConnection);
    m_pDocLoad->start(QThread::InheritPriority);
    connect(WaitingDialog::instance(), &WaitingDialog::signal_canelLoad, this,
            &EngineerDocOperWidget::slot_cancelOperator);
    connect(m_pDocLoad, &EngineerDocLoad::signal_operatoerChanged, this, &EngineerDocOperWidget::slot_operatorChanged);
    connect(m_pDocLoad, &QThread::finished, this, &EngineerDocOperWidget::slot_loadFinished);
    connected->release();
    return true;
}

void EngineerDocOperWidget::slot_operatorChanged(const QString &strOperType)
{
    showWaiting(strOperType);
}

/// Null when it has none.
static std::shared_ptr<Model::Screen> firstScreen(const Model::Device &device)
{
    const std::vector<std::shared_ptr<Model::Screen>> screens = device.getScreens();
    const auto first = std::find_if(screens.begin(), screens.end(), [](const auto &screen) { return bool(screen); });
    return first == screens.end() ? nullptr : *first;
}

void EngineerDocOperWidget::slot_loadFinished()
{
    tellOperation(ICore::OperatorNone);
    disconnect(WaitingDialog::instance(), &WaitingDialog::signal_canelLoad, this,
               &EngineerDocOperWidget::slot_cancelOperator);
    if (m_pDocLoad)
        disconnect(m_pDocLoad, &EngineerDocLoad::signal_operatoerChanged, this,
                   &EngineerDocOperWidget::slot_operatorChanged);
    m_nOperatorType = OperatorNone;
    WaitingDialog::instance()->hideWaitingDialog();

    const QPointer<EngineerDocOperWidget> guard(this);
    const int code = m_pDocLoad ? m_pDocLoad->resultCode() : int(LoadSuccess);
    const std::shared_ptr<Model::Device> device = findDeviceByAddress(m_strDeviceIP);
    const bool online = device && device->getDeviceOnlineFlag();
    freeChannel(device);
    // The host may have made another device the active one, and so the selected one, since the load was started.
    if (m_pDocLoad && m_pDocLoad->deviceIp() != m_strDeviceIP)
        freeChannel(findDeviceByAddress(m_pDocLoad->deviceIp()));
    showLoadResult(code);
    if (!guard || !device)
        return;
    if (online)
        syncActiveDeviceData();

    Model::object_brige *bridge = Model::object_brige::instance();
    callHost("setActiveDevice", [&] { bridge->setActiveDevice(device); });
    initDevice();
    const std::shared_ptr<Model::Screen> screen = firstScreen(*device);
    callHost("clearScreenList", [&] { bridge->clearScreenList(!screen); });
    if (screen) {
        callHost("setActivedScreen", [&] { bridge->setActivedScreen(screen); });
        callHost("appendSelectedScreen", [&] { bridge->appendSelectedScreen(screen); });
    }
}

void EngineerDocOperWidget::showLoadResult(int code)
{
    QString message;
    switch (code) {
    case LoadUserCanceled:
        message = tr("User cancels current operation");
        break;
    case LoadFileContentError:
    case LoadImageContentError:
        message = tr("Incorrect file content");
        break;
    case LoadCardMismatch:
        message = tr("Input or output card mismatch");
        break;
    case LoadHardwareVersionMismatch:
        message = tr("Hardware version mismatch");
        break;
    case LoadGetDeviceFailed:
        message = tr("Failed to get device information");
        break;
    case LoadDecompressFailed:
        message = tr("Failed to decompress file");
        break;
    case LoadImportFailed:
        message = tr("Project file import failed");
        break;
    case LoadJsonFileError:
        message = tr("Incorrect JSON file");
        break;
    case LoadDeviceTypeMismatch:
        message = tr("Device type mismatch");
        break;
    case LoadProtocolVersionMismatch:
        message = tr("Protocol version mismatch");
        break;
    case LoadApplyGalleryFailed:
        message = tr("apply gallery failed");
        break;
    case LoadGalleryFileError:
        message = tr("Incorrect gallery file.");
        break;
    default:
        return;
    }
    FramelessMessageBox::warning(this, tr("Remind"), message, QMessageBox::Ok);
}

// ---------------------------------------------------------------------------------------------------------------------
// Copying out and importing

void EngineerDocOperWidget::startSaveas(const QStringList &files, const QString &destination, bool bDestIsDir)
{
    showWaiting(tr("save as project file,please wait..."));
    release(m_pSaveasWatcher, this);
    m_saveasFuture = QtConcurrent::run(&EngineerDocOperWidget::saveAsConcurrent, files, destination, bDestIsDir);
    m_pSaveasWatcher = new QFutureWatcher<QString>;
    connect(m_pSaveasWatcher, &QFutureWatcher<QString>::finished, this, [this] { onSaveasFinished(); });
    m_pSaveasWatcher->setFuture(m_saveasFuture);
}

QString EngineerDocOperWidget::saveAsConcurrent(const QStringList &files, const QString &destination, bool bDestIsDir)
{
    qDebug() << "file save path is " << destination;
    QStringList failed;
    for (const QString &file : files) {
        const QFileInfo source(file);
        const QString target = bDestIsDir ? QStringLiteral("%1/%2").arg(destination, source.fileName()) : destination;
        if (!copyToFreeName(file, target))
            failed.append(source.baseName());
    }
    return failed.isEmpty() ? QString() : tr("save as [%1] failed").arg(failed.join(QStringLiteral(", ")));
}

void EngineerDocOperWidget::onSaveasFinished()
{
    WaitingDialog::instance()->hideWaitingDialog();
    showCopyResult(m_saveasFuture.result(), tr("save as success"));
}

QString EngineerDocOperWidget::importProjectFiles(const QStringList &files, const QString &dirPath)
{
    QStringList failed;
    for (const QString &file : files) {
        const QFileInfo source(file);
        // Never true, since `dirPath` ends in a separator: a file from the directory itself fails to be
        // copied onto itself and is reported.
        if (source.path() == dirPath)
            continue;
        if (!ZipPackageHandle::isValidEngineerPacket(file))
            return tr("The file[%1] context is invalid.").arg(file);
        if (!copyToFreeName(file, QStringLiteral("%1/%2").arg(dirPath, source.fileName())))
            failed.append(source.baseName());
    }
    return failed.isEmpty() ? QString() : tr("Import project file [%1] failed").arg(failed.join(QStringLiteral(", ")));
}

void EngineerDocOperWidget::onImportFinished()
{
    slot_projectFilesChanged();
    WaitingDialog::instance()->hideWaitingDialog();
    const QPointer<EngineerDocOperWidget> guard(this);
    showCopyResult(m_importFuture.result(), tr("Import as success"));
    if (!guard)
        return;
    connectFileWatcher(true);
    // Others may have changed the directory while the box was open.
    slot_projectFilesChanged();
}

void EngineerDocOperWidget::showCopyResult(const QString &failure, const QString &success)
{
    if (failure.isEmpty())
        FramelessMessageBox::information(this, tr("Remind"), success, QMessageBox::Ok);
    else
        FramelessMessageBox::warning(this, tr("Warning"), failure, QMessageBox::Ok);
}

// ---------------------------------------------------------------------------------------------------------------------
// Managing project files

static QString projectFileFilter(const QString &fileWord)
{
    return QStringLiteral("%1(*%2)").arg(fileWord, Facts::packageExtension);
}

/// What the user chose; nothing when he cancelled, or when the panel has gone meanwhile and the dialog with it. Such a
/// dialog must be on the heap, which those of QFileDialog's static functions are not.
static QStringList chosenFiles(const QPointer<QFileDialog> &dialog)
{
    const int answer = dialog->exec();
    if (!dialog)
        return QStringList();
    dialog->deleteLater();
    return answer == QDialog::Accepted ? dialog->selectedFiles() : QStringList();
}

QStringList EngineerDocOperWidget::selectProjectFiles(bool bMulti)
{
    auto *dialog = new QFileDialog(this);
    dialog->setWindowTitle(tr("Project file"));
    dialog->setDirectory(QStringLiteral("."));
    dialog->setNameFilter(projectFileFilter(tr("file")));
    dialog->setFileMode(bMulti ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
    dialog->setViewMode(QFileDialog::Detail);
    return chosenFiles(dialog);
}

void EngineerDocOperWidget::slot_importProject()
{
    const QPointer<EngineerDocOperWidget> guard(this);
    const QStringList files = selectProjectFiles(true);
    if (!guard || files.isEmpty())
        return;

    const unsigned long long available = availableForProjects();
    unsigned long long total = 0;
    for (const QString &file : files)
        total += static_cast<unsigned long long>(QFileInfo(file).size());
    if (available * bytesPerMebibyte <= total) {
        FramelessMessageBox::warning(this, tr("Remind"), tr("Not enough space to import all selected files."),
                                     QMessageBox::Ok);
        return;
    }

    showWaiting(tr("Import project files,please wait..."));
    // It is the save-as watcher that decides whether the watcher of the import before goes now or with the panel.
    if (m_pSaveasWatcher)
        release(m_pImportWatcher, this);
    else if (m_pImportWatcher)
        m_pImportWatcher->setParent(this);
    connectFileWatcher(false);
    m_importFuture = QtConcurrent::run(&EngineerDocOperWidget::importProjectFiles, files, m_strDefaultPath);
    m_pImportWatcher = new QFutureWatcher<QString>;
    connect(m_pImportWatcher, &QFutureWatcher<QString>::finished, this, [this] { onImportFinished(); });
    m_pImportWatcher->setFuture(m_importFuture);
}

void EngineerDocOperWidget::slot_singleFileSaveas()
{
    const auto *button = qobject_cast<QToolButton *>(sender());
    if (!button)
        return;
    const QString path = button->property("FilePath").toString();
    if (!QFile::exists(path)) {
        FramelessMessageBox::warning(this, tr("Remind"), tr("The file does not exist."), QMessageBox::Ok);
        return;
    }

    const QPointer<EngineerDocOperWidget> guard(this);
    const QString suggested = m_strDocumentsPath + QLatin1Char('/') + QFileInfo(path).fileName();
    auto *dialog = new QFileDialog(this, tr("choose Des Directory"), suggested, projectFileFilter(tr("file")));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    const QString target = chosenFiles(dialog).value(0);
    if (!guard || target.isEmpty() || target == m_strDocumentsPath)
        return;
    if (QFile::exists(target)) {
        const QString message = tr("Project File [%1] already exist. Please change file name and try again")
                                    .arg(QFileInfo(target).baseName());
        qWarning().noquote() << message;
        FramelessMessageBox::warning(this, tr("Remind"), message, QMessageBox::Ok);
        return;
    }
    startSaveas({path}, target, false);
}

void EngineerDocOperWidget::slot_saveasProject()
{
    const QPointer<EngineerDocOperWidget> guard(this);
    auto *dialog = new QFileDialog(this, tr("choose Des Directory"), m_strDocumentsPath);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    const QString target = chosenFiles(dialog).value(0);
    if (!guard || target.isEmpty() || target == m_strDocumentsPath)
        return;

    const unsigned long long available = getDiskAvailableSize(target);
    unsigned long long total = 0;
    QStringList paths;
    {
        const QMutexLocker locker(&m_mutex);
        for (const EngineerPacketInfo &info : qAsConst(m_listProjectInfo)) {
            total += static_cast<unsigned long long>(QFileInfo(info.strFilePath).size());
            paths.append(info.strFilePath);
        }
    }
    if (total < available * bytesPerMebibyte)
        startSaveas(paths, target, true);
    else
        FramelessMessageBox::warning(this, tr("Warning"),
                                     tr("Cannot save the file because there is not enough storage available."),
                                     QMessageBox::Ok);
}

void EngineerDocOperWidget::slot_deleteProject()
{
    const auto *button = qobject_cast<QToolButton *>(sender());
    if (!button)
        return;
    const QString path = button->property("FilePath").toString();

    const QPointer<EngineerDocOperWidget> guard(this);
    const QMessageBox::StandardButton answer = FramelessMessageBox::question(
        this, tr("Remind"), tr("Confirm to delete the selected project file?"), QMessageBox::Yes | QMessageBox::No);
    if (!guard || answer != QMessageBox::Yes)
        return;
    if (!QFile::exists(path)) {
        qCritical() << "File not exist . path:" << path;
        return;
    }
    connectFileWatcher(false);
    if (!QFile::remove(path)) {
        // The directory is not followed any more from here on, until the panel's own operations do it again.
        FramelessMessageBox::warning(this, tr("Warning"), tr("Delete project file failed!"), QMessageBox::Ok);
        return;
    }
    connectFileWatcher(true);
    {
        const QMutexLocker locker(&m_mutex);
        for (int i = m_listProjectInfo.count() - 1; i >= 0; --i) {
            if (m_listProjectInfo.at(i).strFilePath == path)
                m_listProjectInfo.removeAt(i);
        }
    }
    if (m_pProjects->supersedeScans())
        slot_projectFilesChanged();
    updateProjectTable();
    updateButtonState();
}

void EngineerDocOperWidget::slot_deleteAllProject()
{
    const QPointer<EngineerDocOperWidget> guard(this);
    const QMessageBox::StandardButton answer = FramelessMessageBox::question(
        this, tr("Remind"), tr("Confirm to delete all project file?"), QMessageBox::Yes | QMessageBox::No);
    if (!guard || answer != QMessageBox::Yes)
        return;
    connectFileWatcher(false);
    {
        const QMutexLocker locker(&m_mutex);
        for (const EngineerPacketInfo &info : qAsConst(m_listProjectInfo)) {
            if (QFile::exists(info.strFilePath))
                QFile::remove(info.strFilePath);
        }
        m_listProjectInfo.clear();
    }
    if (m_pProjects->supersedeScans())
        slot_projectFilesChanged();
    m_pProjectTable->clearContents();
    m_pProjectTable->setRowCount(0);
    updateButtonState();
    connectFileWatcher(true);
}

void EngineerDocOperWidget::slot_editProjectInfo()
{
    auto *button = qobject_cast<QToolButton *>(sender());
    if (!button)
        return;
    const QPointer<EngineerDocOperWidget> guard(this);
    const std::shared_ptr<ProjectList> projects = m_pProjects;
    {
        // While the dialog is open no scan replaces the entry; the panel may go meanwhile.
        const ProjectList::Hold hold(*projects);
        editProject(button);
    }
    if (guard && projects->takeMissedScan())
        slot_projectFilesChanged();
}

void EngineerDocOperWidget::editProject(QToolButton *pressed)
{
    const QPointer<QToolButton> button(pressed);
    const QPointer<ProjectRowWidget> row = qobject_cast<ProjectRowWidget *>(button->parentWidget());
    const QString path = button->property("FilePath").toString();
    const auto findEntry = [this, &path] {
        return std::find_if(m_listProjectInfo.begin(), m_listProjectInfo.end(),
                            [&path](const EngineerPacketInfo &info) { return info.strFilePath == path; });
    };
    auto entry = findEntry();
    if (entry == m_listProjectInfo.end())
        return;

    // Not released: it stays a child of the panel.
    const QPointer<EngineerPropertySettingWidget> dialog =
        new EngineerPropertySettingWidget(this, QString(), QString());
    dialog->setProjectName(entry->strProjectName);
    dialog->setComment(entry->strComment);
    const int answer = dialog->exec();
    if (!dialog)
        return;
    entry = findEntry();
    if (answer != QDialog::Accepted || entry == m_listProjectInfo.end())
        return;

    EngineerPacketInfo edited = *entry;
    edited.strProjectName = dialog->getProjectName();
    edited.strComment = dialog->getComment();
    // A kill between here and the renaming leaves the new name in the record alone; the list shows file names.
    if (!ZipPackageHandle::setEngineerInfo(edited))
        return;

    edited.strFilePath = m_strDefaultPath + edited.strProjectName + Facts::packageExtension;
    if (edited.strFilePath != path && !DurableFile::renameDurably(path, edited.strFilePath)) {
        qWarning() << "File rename failed.";
        FramelessMessageBox::warning(this, tr("Remind"), tr("File rename failed"), QMessageBox::Ok);
        return;
    }
    if (button)
        button->setProperty("FilePath", edited.strFilePath);
    // With its other buttons, so that it is still the entry's row.
    if (row)
        row->setFilePath(edited.strFilePath);
    *entry = edited;
    if (m_pProjects->supersedeScans())
        slot_projectFilesChanged();
    updateProjectTable();
}

} // namespace Internal
} // namespace ProjectFileCfg

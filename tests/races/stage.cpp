// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "stage.h"

#include <support/testmain.h>

#include <model/deviceeditor.h>
#include <model/objectbrige.h>
#include <modelcontrol/hardwareaccess.h>
#include <simulation/journal.h>
#include <widgets/waitingdialog.h>

#include <QDeadlineTimer>
#include <QFutureWatcher>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtEndian>

using namespace TestSupport;
using namespace PanelTesting;
using Corvel::Widgets::WaitingDialog;
using HX::Widgets::FramelessMessageBox;
using Simulation::Journal;

namespace Races {

const QString richIp = QStringLiteral("10.0.0.11");
const QString plainIp = QStringLiteral("10.0.0.12");
const QString offlineIp = QStringLiteral("10.0.0.13");
const QString foreignIp = QStringLiteral("10.0.0.14");
namespace {

/// Not at the site initially.
const QString addedIp = QStringLiteral("10.0.0.15");
/// The source of the packages made elsewhere.
const QString elsewhereIp = QStringLiteral("10.0.0.78");

const QStringList allIps{richIp, plainIp, offlineIp, foreignIp};
constexpr char backupClass[] = "ProjectFileCfg::Internal::EngineerDocBackup";
constexpr char loadClass[] = "ProjectFileCfg::Internal::EngineerDocLoad";
constexpr char panelClass[] = "ProjectFileCfg::Internal::EngineerDocOperWidget";
constexpr char watcherClass[] = "QFutureWatcherBase";

} // namespace

QString nameOf(Operation operation)
{
    static const char *const names[] = {
        "save", "apply",  "apply with backup", "apply others", "import", "save as", "save all as",
        "edit", "delete", "delete all",        "scan"};
    return QString::fromLatin1(names[operation]);
}

QString nameOf(Disturbance disturbance)
{
    static const char *const names[] = {"panel closed",
                                        "panel closed and reopened",
                                        "panel hidden and shown",
                                        "device unplugged",
                                        "device unplugged and plugged in",
                                        "device forgotten",
                                        "device added",
                                        "another device active",
                                        "no device active",
                                        "language switched",
                                        "package deleted",
                                        "package replaced",
                                        "package truncated",
                                        "package added",
                                        "cancel pressed",
                                        "package touched",
                                        "package edited in place",
                                        "package overwritten in place",
                                        "extracted files replaced"};
    return QString::fromLatin1(names[disturbance]);
}

bool isOfFiles(Disturbance disturbance)
{
    switch (disturbance) {
    case PackageDeleted:
    case PackageReplaced:
    case PackageTruncated:
    case PackageAdded:
    case PackageTouched:
    case PackageEdited:
    case PackageOverwritten:
    case ExtractedFilesReplaced:
        return true;
    default:
        return false;
    }
}

Simulation::HardwareState replacementDevice()
{
    Simulation::HardwareState state = richDevice(elsewhereIp);
    state.settings = QJsonObject{{QStringLiteral("brightness"), 13}};
    for (Simulation::PresetState &preset : state.presets)
        preset.bytes.append(" of another show");
    return state;
}

// ---------------------------------------------------------------------------------------------------------------------
// Packages, checked without the product

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Offset of the archive's end record, whose comment must reach the end of the file; -1 if there is none.
int endRecord(const QByteArray &bytes)
{
    constexpr int size = 22;
    for (int at = bytes.size() - size; at >= 0; --at) {
        if (qFromLittleEndian<quint32>(bytes.constData() + at) == 0x06054b50)
            return at + size + qFromLittleEndian<quint16>(bytes.constData() + at + 20) == bytes.size() ? at : -1;
    }
    return -1;
}

} // namespace

bool isValidPackage(const QString &path)
{
    const QByteArray bytes = contentOf(path);
    const int end = endRecord(bytes);
    if (end < 0)
        return false;
    const QByteArray comment = bytes.mid(end + 22);
    const QJsonObject record = QJsonDocument::fromJson(comment).object();
    return record.count() >= 3 &&
           record.value(QStringLiteral("Checksum")).toString().toLatin1() ==
               PackageBuilder::checksum(bytes, comment.size()) &&
           !entriesOf(path).isEmpty();
}

QStringList entriesOf(const QString &path)
{
    const QByteArray bytes = contentOf(path);
    const int end = endRecord(bytes);
    if (end < 0)
        return QStringList();
    QStringList names;
    int at = int(qFromLittleEndian<quint32>(bytes.constData() + end + 16));
    for (int i = qFromLittleEndian<quint16>(bytes.constData() + end + 10); i > 0; --i) {
        if (at + 46 > end || qFromLittleEndian<quint32>(bytes.constData() + at) != 0x02014b50)
            return QStringList();
        const auto length = [&](int field) { return int(qFromLittleEndian<quint16>(bytes.constData() + at + field)); };
        names.append(QString::fromUtf8(bytes.mid(at + 46, length(28))));
        at += 46 + length(28) + length(30) + length(32);
    }
    return names;
}

QStringList packageNames()
{
    QStringList names = QDir(projectFilesPath()).entryList({QStringLiteral("*.corvelpro")}, QDir::Files);
    for (QString &name : names)
        name.chop(int(qstrlen(".corvelpro")));
    return names;
}

// ---------------------------------------------------------------------------------------------------------------------
// The stage

Stage::Stage()
{
    for (const char *pattern :
         {"^Import project file failed, as sync device from hardware failed\\.$", "^Not reset: ", "^Not begun for ",
          "^enable\\(disable\\) MVR failed: ", "^set slot data failed\\.$", "^File rename failed\\.$"})
        m_expected.push_back(std::make_unique<ExpectMessage>(
            QtWarningMsg, QRegularExpression(QString::fromLatin1(pattern)), ExpectMessage::AnyNumber));
    for (const char *pattern : {"^File not exist \\. path:", "^parameter is empty!!!$"})
        m_expected.push_back(std::make_unique<ExpectMessage>(
            QtCriticalMsg, QRegularExpression(QString::fromLatin1(pattern)), ExpectMessage::AnyNumber));

    if (!clearProjectFilesDirectory())
        qFatal("The projects directory cannot be emptied");
    m_site.emplace(QVector<CustomDevice>{{richDevice(richIp), true},
                                         {plainDevice(plainIp), true},
                                         {richDevice(offlineIp), false},
                                         {plainDevice(foreignIp, otherModel), true}});
    for (const QString &ip : allIps)
        m_devices.push_back((*m_site)->device(ip));
    // As a save leaves it, so that loads can be cancelled too.
    WaitingDialog::instance()->setCanelVisible(true);
    m_book.answerOthers([this](QDialog *dialog) { answer(dialog); });
}

Stage::~Stage()
{
    closePanel();
    m_points.forget();
    comesToRest();
    m_chinese.reset();
    QCoreApplication::sendPostedEvents();
}

void Stage::openPanel()
{
    m_panel.emplace();
    panel()->resize(1200, 700);
    panel()->show();
    m_damagedWhileListed.clear();
}

void Stage::closePanel()
{
    m_panel.reset();
}

namespace {

/// Larger than what a reader of an archive keeps in memory, its end: else no change of the file would reach it.
PackageBuilder largePackageOf(const Simulation::HardwareState &state, quint16 versionNeeded = 20)
{
    PackageBuilder package = packageOf(state, versionNeeded);
    return package.file("large.bin", QByteArray(128 * 1024, 'x'), PackageBuilder::Stored);
}

} // namespace

void Stage::addPackage(const QString &name, const Simulation::HardwareState &state)
{
    const QString aside = elsewhere(QStringLiteral("aside.zip"));
    // The checksum of a small package covers little more than this number: without it all packages would have the same
    // one.
    if (!largePackageOf(state, ++m_added % 2 == 0 ? 20 : 10).record(name, name).write(aside))
        qFatal("No package can be written");
    const QString path = projectFile(name);
    if (::rename(QFile::encodeName(aside).constData(), QFile::encodeName(path).constData()) != 0)
        qFatal("No package can be put in its place");
    m_damaged.remove(name);
    m_damagedWhileListed.remove(name);
}

QString Stage::packageElsewhere(const QString &fileName, const Simulation::HardwareState &state)
{
    const QString path = elsewhere(fileName);
    if (!largePackageOf(state).record(fileName, fileName).write(path))
        qFatal("No package can be written");
    return path;
}

QStringList Stage::filesFor(Operation operation, const Simulation::HardwareState &state)
{
    switch (operation) {
    case Import:
        return {packageElsewhere(QStringLiteral("first.corvelpro"), state),
                packageElsewhere(QStringLiteral("second.corvelpro"), state)};
    case SaveAs:
        return {elsewhere(QStringLiteral("copy.corvelpro"))};
    case SaveAllAs:
        return {elsewhere(QString())};
    default:
        return {};
    }
}

void Stage::select(const QString &ip)
{
    panel().selectDevice(ip);
}

void Stage::pressLater(QAbstractButton *button)
{
    // Not with a mouse click: the clicked widget may be deleted when its slot returns.
    QMetaObject::invokeMethod(button, "click", Qt::QueuedConnection);
}

bool Stage::press(Operation operation, const Answers &answers, const QString &row)
{
    m_answers = answers;
    m_boxes.clear();
    Journal::instance()->clear();
    QAbstractButton *button = nullptr;
    const auto ofRow = [&](int index) -> QAbstractButton * {
        const int number = panel().names().indexOf(row);
        return number < 0 ? nullptr : panel().rowButtons(number).value(index);
    };
    switch (operation) {
    case Save:
        button = panel().saveProject();
        break;
    case Edit:
        button = ofRow(0);
        break;
    case Apply:
    case ApplyWithBackup:
        button = ofRow(1);
        m_answers.question = operation == Apply ? QMessageBox::No : QMessageBox::Yes;
        break;
    case SaveAs:
        button = ofRow(2);
        break;
    case Delete:
        button = ofRow(3);
        break;
    case ApplyOthers:
        button = panel().applyOthers();
        break;
    case Import:
        button = panel().importProject();
        break;
    case SaveAllAs:
        button = panel().allSaveAs();
        break;
    case DeleteAll:
        button = panel().allDelete();
        break;
    case Scan:
        // No button: somebody copies a package into the directory.
        addPackage(row, plainDevice(elsewhereIp));
        return true;
    }
    if (!button || !button->isEnabled() || !button->isVisible())
        return false;
    pressLater(button);
    return true;
}

void Stage::answer(QDialog *dialog)
{
    const QPointer<QDialog> open = dialog;
    m_points.pass();
    if (!open || !open->isVisible())
        return;

    if (auto *box = qobject_cast<FramelessMessageBox *>(dialog)) {
        if (box->kind() != FramelessMessageBox::Question) {
            m_boxes.append(box->text());
            pressLater(box->button(QMessageBox::Ok));
        } else {
            QAbstractButton *wanted = box->button(m_answers.question);
            pressLater(wanted ? wanted : box->button(QMessageBox::No));
        }
    } else if (dialog->inherits("EngineerPropertySettingWidget")) {
        enterProperties(dialog, m_answers.name.isNull() ? propertiesIn(dialog).name : m_answers.name,
                        m_answers.comment);
        // The frame's own buttons have object names. The first one without accepts; an existing name keeps the dialog
        // open.
        QPointer<QPushButton> accepting;
        for (QPushButton *button : dialog->findChildren<QPushButton *>(QString())) {
            if (!accepting && button->objectName().isEmpty())
                accepting = button;
        }
        QMetaObject::invokeMethod(
            dialog,
            [this, open, accepting] {
                if (accepting && m_answers.acceptsDialogs)
                    accepting->click();
                if (open && open->isVisible())
                    open->reject();
            },
            Qt::QueuedConnection);
    } else if (auto *files = qobject_cast<QFileDialog *>(dialog)) {
        if (m_answers.acceptsDialogs && !m_answers.paths.isEmpty())
            typePaths(files, m_answers.paths);
        if (open && open->isVisible())
            open->reject();
    } else {
        m_surprises.append(QStringLiteral("a dialog that nobody knows: ") + dialog->windowTitle());
        dialog->reject();
    }
}

bool Stage::isOfTheEventLoop(Disturbance disturbance)
{
    switch (disturbance) {
    case DeviceUnplugged:
    case DeviceUnpluggedAndPlugged:
    case DeviceForgotten:
    case DeviceAdded:
    case PackageDeleted:
    case PackageReplaced:
    case PackageTruncated:
    case PackageAdded:
    case PackageTouched:
    case PackageEdited:
    case PackageOverwritten:
    case ExtractedFilesReplaced:
        return false;
    default:
        return true;
    }
}

void Stage::disturb(Disturbance disturbance, const QString &ip, const QString &package)
{
    Model::DeviceList *list = Model::DeviceList::instance();
    switch (disturbance) {
    case PanelClosed:
        closePanel();
        break;
    case PanelReopened:
        closePanel();
        openPanel();
        break;
    case PanelHidden:
        if (hasPanel()) {
            panel()->hide();
            panel()->show();
        }
        break;
    case DeviceUnplugged:
        m_disturbedDevices.insert(ip);
        (*m_site)->unplug(ip);
        break;
    case DeviceUnpluggedAndPlugged:
        m_disturbedDevices.insert(ip);
        (*m_site)->unplug(ip);
        (*m_site)->plug(ip);
        break;
    case DeviceForgotten:
        m_disturbedDevices.insert(ip);
        list->removeDevice(ip);
        break;
    case DeviceAdded:
        if (!list->getDeviceByIPAddr(addedIp)) {
            const auto device = std::make_shared<Model::Device>(quint16(15));
            ModelControl::HardwareAccess::refreshModel(*device, plainDevice(addedIp));
            list->addDevice(device);
        }
        break;
    case OtherDeviceActive:
        Model::object_brige::instance()->setActiveDevice(list->getDeviceByIPAddr(ip == plainIp ? richIp : plainIp));
        break;
    case NoDeviceActive:
        Model::object_brige::instance()->setActiveDevice({});
        break;
    case LanguageSwitched:
        if (m_chinese) {
            m_chinese.reset();
        } else {
            m_chinese = std::make_unique<QTranslator>();
            if (!m_chinese->load(QStringLiteral("projectfilecfg_zh_CN"), QStringLiteral(TRANSLATION_DIRECTORY)))
                qFatal("There are no Chinese texts");
            QCoreApplication::installTranslator(m_chinese.get());
        }
        break;
    case PackageDeleted:
        m_disturbedPackages.insert(package);
        QFile::remove(projectFile(package));
        m_damaged.remove(package);
        m_damagedWhileListed.remove(package);
        break;
    case PackageReplaced:
        m_disturbedPackages.insert(package);
        addPackage(package, replacementDevice());
        break;
    case PackageTruncated:
        if (QFile::exists(projectFile(package))) {
            m_disturbedPackages.insert(package);
            m_damaged.insert(package);
            m_damagedWhileListed.insert(package);
            // Before the first picture.
            QFile::resize(projectFile(package), 100);
        }
        break;
    case PackageAdded: {
        const QString name = QStringLiteral("added %1").arg(m_added);
        m_disturbedPackages.insert(name);
        addPackage(name, plainDevice(elsewhereIp));
        break;
    }
    case CancelPressed:
        for (QPushButton *cancel : WaitingDialog::instance()->findChildren<QPushButton *>()) {
            if (cancel->isVisible())
                cancel->click();
        }
        break;
    case PackageTouched:
        if (QFile::exists(projectFile(package)) && !makeOld(projectFile(package), ++m_added))
            qFatal("The package cannot be touched");
        break;
    case PackageEdited:
        editInPlace(package);
        break;
    case PackageOverwritten:
        overwriteInPlace(package);
        break;
    case ExtractedFilesReplaced:
        replaceExtractedFiles();
        break;
    }
}

/// Toggles the case of the first letter in the comment, if it has one that is a single byte.
void Stage::editInPlace(const QString &package)
{
    QFile file(projectFile(package));
    if (m_damaged.contains(package) || !file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly))
        return;
    const QByteArray before = "\"comment\": \"";
    const QByteArray bytes = file.readAll();
    const int begin = bytes.lastIndexOf(before) + before.size();
    if (begin < before.size())
        qFatal("There is no comment");
    const char *const end = std::find(bytes.begin() + begin, bytes.end(), '"');
    const char *const letter = std::find_if(bytes.begin() + begin, end,
                                            [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); });
    if (letter == end)
        return;
    m_disturbedPackages.insert(package);
    const char other = char(*letter ^ 0x20);
    if (!file.seek(letter - bytes.begin()) || file.write(&other, 1) != 1)
        qFatal("The comment cannot be changed");
}

void Stage::overwriteInPlace(const QString &package)
{
    if (m_damaged.contains(package) || !QFile::exists(projectFile(package)))
        return;
    m_disturbedPackages.insert(package);
    const QByteArray bytes = contentOf(packageElsewhere(QStringLiteral("over.zip"), replacementDevice()));
    QFile file(projectFile(package));
    // Without truncating it first: a scan would find it empty, and hear of no further change.
    if (!file.open(QIODevice::ReadWrite) || file.write(bytes) != bytes.size() || !file.resize(bytes.size()))
        qFatal("The package cannot be overwritten");
}

/// As another device's load would extract it there, with the same sizes.
void Stage::replaceExtractedFiles()
{
    const Simulation::HardwareState other = replacementDevice();
    const auto write = [this](const QString &name, const QByteArray &bytes) {
        QFile file(m_site->extractPath() + QLatin1Char('/') + name);
        QDir().mkpath(QFileInfo(file).path());
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("An extracted file cannot be replaced");
    };
    for (auto it = other.backgrounds.begin(); it != other.backgrounds.end(); ++it)
        write(QStringLiteral("BKG/BKG_%1.png").arg(it.key()), pngOf(it->pixels));
    for (auto it = other.logos.begin(); it != other.logos.end(); ++it)
        write(QStringLiteral("LOGO/LOGO_%1.png").arg(it.key()), pngOf(it->pixels));
    for (const QString &name : QDir(m_site->extractPath()).entryList({QStringLiteral("*.json")}))
        write(name, descriptionOf(other));
}

void Stage::repairSite()
{
    Model::DeviceList *list = Model::DeviceList::instance();
    list->removeDevice(addedIp);
    for (const std::shared_ptr<Model::Device> &device : m_devices) {
        const QString ip = device->getIPAddress();
        if (!list->getDeviceByIPAddr(ip))
            list->addDevice(device);
        if (!m_disturbedDevices.contains(ip))
            continue;
        // A reservation ends with the connection.
        (*m_site)->hardware(ip)->setChannelExclusive(false);
        if (ip != offlineIp)
            (*m_site)->plug(ip);
        else
            (*m_site)->unplug(ip);
    }
    m_disturbedDevices.clear();
    if (!Model::object_brige::instance()->activeDevice())
        Model::object_brige::instance()->setActiveDevice(list->getDeviceByIPAddr(richIp));
}

// ---------------------------------------------------------------------------------------------------------------------
// At rest

bool Stage::isAtRest() const
{
    const QWidget *modal = QApplication::activeModalWidget();
    if (modal && modal != WaitingDialog::instance())
        return false;
    for (const char *job : {backupClass, loadClass}) {
        for (QObject *object : m_census.living(job)) {
            if (!qobject_cast<QThread *>(object)->wait(0))
                return false;
        }
    }
    for (QObject *watcher : m_census.living(watcherClass)) {
        if (!qobject_cast<QFutureWatcherBase *>(watcher)->isFinished())
            return false;
    }
    return QThreadPool::globalInstance()->activeThreadCount() == 0;
}

bool Stage::comesToRest()
{
    const QDeadlineTimer deadline(patience);
    // Repeated: one end may trigger more work, as a changed directory triggers a scan.
    for (int restful = 0; restful < 3; restful = isAtRest() ? restful + 1 : 0) {
        if (deadline.hasExpired())
            return false;
        if (restful == 0)
            QThread::yieldCurrentThread();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

QStringList Stage::brokenJobTruths() const
{
    QStringList broken = m_surprises;
    const QVector<Simulation::JournalEntry> types =
        Journal::instance()->entries(Simulation::Operations::setOperatorType);
    if (!types.isEmpty() && types.last().arguments.value(QStringLiteral("type")) != QStringLiteral("OperatorNone"))
        broken.append(QStringLiteral("the host still believes that an operation runs"));
    const int calls = Journal::instance()->operations().count();
    emit WaitingDialog::instance()->signal_canelLoad();
    if (Journal::instance()->operations().count() != calls)
        broken.append(QStringLiteral("a cancel request is still listened to"));
    if (WaitingDialog::instance()->isVisible())
        broken.append(QStringLiteral("the waiting dialog remains: ") + WaitingDialog::instance()->text());

    for (const char *job : {backupClass, loadClass}) {
        if (m_census.living(job).count() > (hasPanel() ? 1 : 0))
            broken.append(QStringLiteral("a job that nobody needs: ") + QLatin1String(job));
    }
    for (QObject *watcher : m_census.living(watcherClass)) {
        if (!hasPanel() || dynamic_cast<QFutureWatcher<void> *>(watcher))
            broken.append(QStringLiteral("a future watcher that nobody needs"));
    }
    if (m_census.living(panelClass).count() != (hasPanel() ? 1 : 0))
        broken.append(QStringLiteral("a panel that nobody needs"));

    for (const QString &ip : allIps) {
        if (!m_disturbedDevices.contains(ip) && (*m_site)->hardware(ip)->isChannelExclusive())
            broken.append(QStringLiteral("the channel of %1 is still reserved").arg(ip));
    }
    return broken;
}

QStringList Stage::brokenListTruths()
{
    QStringList broken;
    QStringList listed = panel().names();
    listed.sort();
    QStringList expected;
    for (const QString &name : packageNames()) {
        if (isValidPackage(projectFile(name)) || (m_damagedWhileListed.contains(name) && listed.contains(name)))
            expected.append(name);
    }
    expected.sort();
    if (listed != expected)
        broken.append(QStringLiteral("listed: %1; valid: %2")
                          .arg(listed.join(QStringLiteral(", ")), expected.join(QStringLiteral(", "))));
    if (panel().allDelete()->isEnabled() == listed.isEmpty() || panel().allSaveAs()->isEnabled() == listed.isEmpty())
        broken.append(QStringLiteral("the buttons for all packages do not fit the list"));
    return broken;
}

QStringList Stage::brokenPackageTruths(const QSet<QString> &touched)
{
    QStringList broken;
    const auto mayChange = [&](const QString &name) {
        return touched.contains(name) || m_disturbedPackages.contains(name);
    };
    std::map<QString, QByteArray> now;
    for (const QString &name : packageNames()) {
        now[name] = contentOf(projectFile(name));
        if (!isValidPackage(projectFile(name)) && !m_damaged.contains(name))
            broken.append(QStringLiteral("%1 is no valid package").arg(name));
        if (!m_known.count(name) && !mayChange(name))
            broken.append(QStringLiteral("%1 came from nowhere").arg(name));
    }
    for (const auto &[name, bytes] : m_known) {
        const auto found = now.find(name);
        if (!mayChange(name) && (found == now.end() || found->second != bytes))
            broken.append(QStringLiteral("%1 was not to be touched").arg(name));
    }
    for (const QString &other :
         QDir(projectFilesPath()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot)) {
        if (!other.endsWith(QStringLiteral(".corvelpro")) || other.startsWith(QLatin1Char('.')))
            broken.append(QStringLiteral("a fragment remains: ") + other);
    }
    m_known = now;
    m_disturbedPackages.clear();
    return broken;
}

QStringList Stage::brokenTruths(const QSet<QString> &touched)
{
    QStringList broken = brokenJobTruths();
    if (hasPanel())
        broken += brokenListTruths();
    return broken + brokenPackageTruths(touched);
}

QStringList Stage::brokenTruthsAfterClosing(const QSet<QString> &touched)
{
    QStringList broken = brokenTruths(touched);
    closePanel();
    if (!comesToRest())
        return broken << QStringLiteral("no rest after closing the panel");
    broken += brokenJobTruths();
    openPanel();
    if (!comesToRest())
        return broken << QStringLiteral("no rest after opening the panel");
    return broken + brokenListTruths();
}

} // namespace Races

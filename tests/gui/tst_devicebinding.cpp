// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "diskspace.h"
#include "translatedtexts.h"

#include <support/answerbook.h>
#include <support/journalmatchers.h>
#include <support/paneltesting.h>
#include <support/testmain.h>

#include <model/deviceeditor.h>
#include <model/objectbrige.h>
#include <simulation/faults.h>
#include <simulation/journal.h>
#include <widgets/waitingdialog.h>

#include <QStorageInfo>
#include <QTextDocument>
#include <QTextFormat>

using namespace PanelTesting;
using namespace TestSupport;
using namespace Simulation::Operations;
using Corvel::Widgets::WaitingDialog;
namespace DiskSpace = ProjectFileCfg::Internal::DiskSpace;
using Simulation::Fault;
using Simulation::Faults;
using Simulation::Journal;

namespace {

const QString mainHall = QStringLiteral("192.168.1.11");
const QString sideStage = QStringLiteral("192.168.1.12");
const QString foyer = QStringLiteral("192.168.1.20");
const QString touringRack = QStringLiteral("192.168.1.30");   // offline
const QString boothSwitcher = QStringLiteral("192.168.1.40"); // without project files

void activate(const std::shared_ptr<Model::Device> &device)
{
    Model::object_brige::instance()->setActiveDevice(device);
}

/// A site without an active device.
TestSite siteWithoutActiveDevice()
{
    return TestSite([](Simulation::Site &site) { site.activeDevice.clear(); });
}

void changeDevice(const std::shared_ptr<Model::Device> &device, const std::function<void(Model::DeviceData &)> &change)
{
    Model::DeviceEditor editor(*device);
    Model::DeviceData data = editor.data();
    change(data);
    editor.replace(data);
}

QStringList markedAddresses(const Panel &panel)
{
    QStringList addresses;
    for (int i = 0; i < panel.deviceCombo()->count(); ++i)
        addresses.append(panel.marks(i).value(3));
    return addresses;
}

/// Hiding and showing the panel refreshes its list of devices.
void showAgain(const Panel &panel)
{
    panel->hide();
    panel->show();
}

/// The address of the device that the panel's commands act on: "Save Project" activates that device before it asks for
/// a name, or asks for a device if there is none.
QString boundAddress(const Panel &panel, const TestSite &site)
{
    if (!Model::object_brige::instance()->activeDevice())
        activate(site->device(boothSwitcher));
    AnswerBook book;
    book.expectDialog(QStringLiteral("QDialog"), [](QDialog *dialog) { dialog->reject(); });
    click(panel.saveProject());
    if (book.seen().isEmpty())
        return QStringLiteral("no dialog came");
    if (book.seen().first().className.contains(QStringLiteral("FramelessMessageBox"))) {
        const QString text = book.seen().first().text;
        return text == QStringLiteral("Please select a device.") ? QString() : text;
    }
    return Model::object_brige::instance()->activeDevice()->getIPAddress();
}

/// The waiting dialog's state while a host operation ran.
struct SeenWhileRunning
{
    bool visible = false;
    QString text;
    bool onMainThread = false;

    Fault look()
    {
        return Fault::run([this] {
            onMainThread = QThread::currentThread() == qApp->thread();
            visible = WaitingDialog::instance()->isVisible();
            text = WaitingDialog::instance()->text();
        });
    }
};

} // namespace

class TstDeviceBinding : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void the_selector_lists_supported_devices_in_host_order();
    void entries_carry_tool_tip_and_mark_list();
    void long_texts_are_elided_to_260_pixels();
    void tool_tips_show_markup_as_it_is_data();
    void tool_tips_show_markup_as_it_is();
    void the_active_device_is_selected();
    void active_device_overrides_the_selection();
    void without_an_active_device_the_address_decides();
    void a_selection_no_longer_listed_binds_no_device();
    void an_unsupported_active_device_is_bound_but_unlisted();
    void showing_the_panel_refills_the_selector();
    void refilling_is_not_a_selection();
    void refilling_cuts_every_connection_but_destroyed();
    void without_a_device_list_the_selector_stays_empty();
    void a_host_that_throws_leaves_the_selector_empty_data();
    void a_host_that_throws_leaves_the_selector_empty();
    void null_devices_are_skipped();

    void choosing_a_device_binds_it();
    void an_entry_without_marks_changes_nothing();
    void an_entry_with_wrong_marks_unbinds_the_device();

    void bytes_are_whole_mebibytes_rounded_down_data();
    void bytes_are_whole_mebibytes_rounded_down();
    void free_space_is_that_of_the_volume();
    void a_path_without_a_volume_has_no_space();
    void the_estimate_adds_ten_mebibytes();
    void an_empty_device_fits();

    void synchronising_shows_the_waiting_dialog();
    void a_failed_synchronisation_ends_the_save();
    void an_offline_device_is_not_synchronised();
    void restoring_the_factory_state_shows_the_waiting_dialog();
};

void TstDeviceBinding::init()
{
    WarningGuard::clear();
    QVERIFY(clearProjectFilesDirectory());
}

void TstDeviceBinding::the_selector_lists_supported_devices_in_host_order()
{
    const TestSite site;
    const Panel panel;
    QCOMPARE(markedAddresses(panel), QStringList({mainHall, sideStage, foyer, touringRack}));
    QVERIFY(!site->device(boothSwitcher)->deviceConfig().supportProjectFile);
}

void TstDeviceBinding::entries_carry_tool_tip_and_mark_list()
{
    const TestSite site;
    const Panel panel;
    const QComboBox *combo = panel.deviceCombo();
    for (int i = 0; i < combo->count(); ++i) {
        const std::shared_ptr<Model::Device> device = site->device(panel.marks(i).value(3));
        QCOMPARE(combo->itemData(i, Qt::ToolTipRole).toString(), device->getDeviceInfo());
        QCOMPARE(panel.marks(i), QStringList({device->getDeviceInfo(), device->getTypeString(), device->getName(),
                                              device->getIPAddress()}));
    }
}

void TstDeviceBinding::long_texts_are_elided_to_260_pixels()
{
    const TestSite site;
    const std::shared_ptr<Model::Device> device = site->device(mainHall);
    changeDevice(device, [](Model::DeviceData &data) {
        data.name = QStringLiteral("The big hall on the ground floor, behind the foyer, left of the stairs");
    });
    const Panel panel;
    const QComboBox *combo = panel.deviceCombo();
    const QString info = device->getDeviceInfo();
    const QString text = combo->itemText(0);
    QCOMPARE(text, combo->fontMetrics().elidedText(info, Qt::ElideMiddle, 260));
    QVERIFY(text.length() < info.length());
    QVERIFY(info.startsWith(text.left(8)));
    QVERIFY(info.endsWith(text.right(8)));
    QVERIFY(combo->fontMetrics().horizontalAdvance(text) <= 260);
    QCOMPARE(combo->itemData(0, Qt::ToolTipRole).toString(), info);
    QCOMPARE(panel.marks(0).at(0), info);
    QCOMPARE(combo->currentIndex(), 0);
}

void TstDeviceBinding::tool_tips_show_markup_as_it_is_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("asItIs");
    QTest::newRow("plain") << "Main hall" << true;
    QTest::newRow("ampersand") << "R&D, A & B" << true;
    QTest::newRow("less than") << "1 < 2, a<b" << true;
    QTest::newRow("picture") << "<img src=\"%1\" width=\"20000\">" << false;
    QTest::newRow("bold") << "<b>Hall</b>" << false;
    QTest::newRow("spaces and lines") << "<i>a  b\nc</i>" << false;
    QTest::newRow("entity") << "&lt;b&gt; & <b>" << false;
    QTest::newRow("document") << "<!DOCTYPE html><p>Hall" << false;
    QTest::newRow("capitals") << "<IMG SRC='%1'>" << false;
}

void TstDeviceBinding::tool_tips_show_markup_as_it_is()
{
    QFETCH(QString, name);
    QFETCH(bool, asItIs);
    const QString picture = QDir::homePath() + QStringLiteral("/picture.png");
    QVERIFY(QImage(3000, 10, QImage::Format_RGB32).save(picture));
    name.replace(QStringLiteral("%1"), picture);
    const TestSite site;
    const std::shared_ptr<Model::Device> device = site->device(sideStage);
    // The information begins with what is put in here.
    changeDevice(device, [&](Model::DeviceData &data) { data.name = data.typeString = name; });
    const QString info = device->getDeviceInfo();
    QCOMPARE(Qt::mightBeRichText(info), !asItIs);

    const Panel panel;
    panel->show();
    panel.selectDevice(sideStage);
    const QString shownTips[] = {panel.deviceCombo()->itemData(1, Qt::ToolTipRole).toString(),
                                 panel.deviceCombo()->toolTip()};
    for (const QString &tip : shownTips) {
        if (asItIs) {
            QCOMPARE(tip, info);
            continue;
        }
        // A tool tip detects rich text by the beginning of its text.
        QVERIFY(Qt::mightBeRichText(tip));
        QTextDocument shown;
        shown.setHtml(tip);
        QCOMPARE(shown.toPlainText(), info);
        for (const QTextFormat &format : shown.allFormats())
            QVERIFY(!format.isImageFormat() && !format.hasProperty(QTextFormat::FontWeight));
    }
    // Saving sets it too, from the raw text.
    QCOMPARE(panel.marks(1), QStringList({info, name, name, sideStage}));
    panel.deviceCombo()->setToolTip(QString());
    QCOMPARE(boundAddress(panel, site), sideStage);
    QCOMPARE(panel.deviceCombo()->toolTip(), shownTips[1]);
}

void TstDeviceBinding::the_active_device_is_selected()
{
    const TestSite site;
    activate(site->device(foyer));
    const Panel panel;
    QCOMPARE(panel.selectedAddress(), foyer);
    panel->show();
    QCOMPARE(boundAddress(panel, site), foyer);
}

void TstDeviceBinding::active_device_overrides_the_selection()
{
    const TestSite site;
    const Panel panel;
    panel->show();
    panel.selectDevice(foyer);
    activate(site->device(sideStage));
    showAgain(panel);
    QCOMPARE(panel.selectedAddress(), sideStage);
    QCOMPARE(boundAddress(panel, site), sideStage);
}

void TstDeviceBinding::without_an_active_device_the_address_decides()
{
    const TestSite site = siteWithoutActiveDevice();
    const Panel panel;
    panel->show();
    panel.selectDevice(foyer);
    changeDevice(site->device(foyer), [](Model::DeviceData &data) { data.name = QStringLiteral("Renamed"); });
    showAgain(panel);
    QCOMPARE(panel.selectedAddress(), foyer);
    QCOMPARE(panel.deviceCombo()->currentData(Qt::ToolTipRole).toString(), site->device(foyer)->getDeviceInfo());
    QCOMPARE(site->device(foyer)->getName(), QStringLiteral("Renamed"));
    QCOMPARE(boundAddress(panel, site), foyer);
}

void TstDeviceBinding::a_selection_no_longer_listed_binds_no_device()
{
    const TestSite site = siteWithoutActiveDevice();
    // Two devices whose texts are the same once they are elided, although their addresses differ.
    const QString address = QString(40, QLatin1Char('4'));
    const auto addressWith = [&address](QChar digit) { return QString(address).replace(20, 1, digit); };
    const auto rename = [](const QString &ip) {
        return [ip](Model::DeviceData &data) {
            data.name = QStringLiteral("Twin");
            data.ip = ip;
        };
    };
    changeDevice(site->device(sideStage), [&](Model::DeviceData &data) {
        data.typeString = QStringLiteral("T");
        rename(addressWith(QLatin1Char('1')))(data);
    });
    changeDevice(site->device(foyer), [&](Model::DeviceData &data) {
        data.typeString = QStringLiteral("T");
        rename(addressWith(QLatin1Char('2')))(data);
    });
    const Panel panel;
    panel->show();
    QCOMPARE(panel.deviceCombo()->itemText(1), panel.deviceCombo()->itemText(2));
    panel.selectDevice(addressWith(QLatin1Char('1')));
    QCOMPARE(panel.deviceCombo()->currentIndex(), 1);

    Model::DeviceList::instance()->removeDevice(addressWith(QLatin1Char('1')));
    showAgain(panel);
    QCOMPARE(markedAddresses(panel), QStringList({mainHall, addressWith(QLatin1Char('2')), touringRack}));
    QCOMPARE(panel.deviceCombo()->currentIndex(), 1);
    QCOMPARE(boundAddress(panel, site), QString());
}

void TstDeviceBinding::an_unsupported_active_device_is_bound_but_unlisted()
{
    const TestSite site;
    activate(site->device(boothSwitcher));
    const Panel panel;
    panel->show();
    QVERIFY(!markedAddresses(panel).contains(boothSwitcher));
    QCOMPARE(boundAddress(panel, site), boothSwitcher);
}

void TstDeviceBinding::showing_the_panel_refills_the_selector()
{
    const TestSite site;
    const Panel panel;
    panel->show();
    Model::DeviceList::instance()->removeDevice(sideStage);
    QCOMPARE(panel.deviceCombo()->count(), 4);
    showAgain(panel);
    QCOMPARE(markedAddresses(panel), QStringList({mainHall, foyer, touringRack}));
    QCOMPARE(panel.selectedAddress(), mainHall);
}

void TstDeviceBinding::refilling_is_not_a_selection()
{
    // A choice gives the selector a tool tip.
    const TestSite site;
    const Panel panel;
    panel->show();
    activate(site->device(touringRack));
    showAgain(panel);
    panel->retranslateUi();
    QCOMPARE(panel.selectedAddress(), touringRack);
    QCOMPARE(panel.deviceCombo()->toolTip(), QString());

    panel.selectDevice(sideStage);
    QCOMPARE(panel.deviceCombo()->toolTip(), site->device(sideStage)->getDeviceInfo());
    showAgain(panel);
    QCOMPARE(panel.selectedAddress(), touringRack);
    QCOMPARE(panel.deviceCombo()->toolTip(), site->device(sideStage)->getDeviceInfo());
}

void TstDeviceBinding::refilling_cuts_every_connection_but_destroyed()
{
    const TestSite site;
    auto panel = std::make_unique<Panel>();
    QComboBox *combo = panel->deviceCombo();
    QObject other;
    int heard = 0;
    int destroyed = 0;
    const auto connectAll = [&] {
        connect(combo, &QComboBox::currentTextChanged, &other, [&] { ++heard; });
        connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), [&] { ++heard; });
        connect(combo, QOverload<int>::of(&QComboBox::activated), combo, [&] { ++heard; });
        connect(combo, &QComboBox::editTextChanged, &other, [&] { ++heard; });
        connect(combo, &QWidget::windowTitleChanged, &other, [&] { ++heard; });
        connect(combo, &QWidget::customContextMenuRequested, &other, [&] { ++heard; });
        connect(combo, &QObject::objectNameChanged, &other, [&] { ++heard; });
    };
    const auto speak = [&] {
        combo->setCurrentIndex(combo->currentIndex() == 1 ? 2 : 1);
        combo->setWindowTitle(combo->windowTitle() + QLatin1Char('x'));
        combo->setObjectName(combo->objectName() + QLatin1Char('x'));
        emit combo->activated(0);
        emit combo->editTextChanged(QString());
        emit combo->customContextMenuRequested(QPoint());
    };
    connectAll();
    connect(combo, &QObject::destroyed, &other, [&] { ++destroyed; });
    speak();
    QCOMPARE(heard, 7);
    heard = 0;
    connect(combo, &QComboBox::currentTextChanged, &other, [&] { ++heard; });
    (*panel)->show();
    // Refilling changes index and text before eliding.
    heard = 0;
    speak();
    QCOMPARE(heard, 0);
    // The panel's own connection is renewed.
    QCOMPARE(combo->toolTip(), combo->currentData(Qt::ToolTipRole).toString());
    // The style sheet's widget cache depends on this signal.
    panel.reset();
    QCOMPARE(destroyed, 1);
}

void TstDeviceBinding::without_a_device_list_the_selector_stays_empty()
{
    std::unique_ptr<Panel> panel;
    {
        const TestSite site;
        panel = std::make_unique<Panel>();
        QCOMPARE(panel->deviceCombo()->count(), 4);
    }
    QVERIFY(!Model::DeviceList::instance());
    const ExpectMessage complaint(QtCriticalMsg, QStringLiteral("DeviceList::instance() is nullptr!!!"), 1);
    panel->widget->show();
    QCOMPARE(panel->deviceCombo()->count(), 0);
    // If it were connected, the panel would warn about an entry without marks.
    panel->deviceCombo()->addItem(QStringLiteral("x"));
    QCOMPARE(panel->deviceCombo()->currentText(), QStringLiteral("x"));
}

void TstDeviceBinding::a_host_that_throws_leaves_the_selector_empty_data()
{
    QTest::addColumn<QString>("operation");
    QTest::newRow("devices") << QString(getDevices);
    QTest::newRow("active device") << QString(activeDevice);
}

void TstDeviceBinding::a_host_that_throws_leaves_the_selector_empty()
{
    QFETCH(QString, operation);
    const TestSite site;
    const Panel panel;
    panel->show();
    {
        const ExpectMessage logged(
            QtCriticalMsg, QStringLiteral("The host threw in %1: %2 throws").arg(operation.section('.', -1), operation),
            1);
        Faults::instance()->arm(operation, Fault::throwing());
        showAgain(panel);
    }
    QCOMPARE(panel.deviceCombo()->count(), 0);
    // If it were connected, the panel would warn about an entry without marks.
    panel.deviceCombo()->addItem(QStringLiteral("x"));
    showAgain(panel);
    QCOMPARE(markedAddresses(panel), QStringList({mainHall, sideStage, foyer, touringRack}));
}

void TstDeviceBinding::null_devices_are_skipped()
{
    const TestSite site;
    Model::DeviceList::instance()->addDevice(nullptr);
    const Panel panel;
    panel->show();
    QCOMPARE(markedAddresses(panel), QStringList({mainHall, sideStage, foyer, touringRack}));
    panel.selectDevice(foyer);
    QCOMPARE(boundAddress(panel, site), foyer);
}

void TstDeviceBinding::choosing_a_device_binds_it()
{
    const TestSite site;
    const Panel panel;
    panel->show();
    for (const QString &ip : {touringRack, sideStage, mainHall, foyer}) {
        panel.selectDevice(ip);
        QCOMPARE(panel.deviceCombo()->toolTip(), site->device(ip)->getDeviceInfo());
        QCOMPARE(boundAddress(panel, site), ip);
    }
}

void TstDeviceBinding::an_entry_without_marks_changes_nothing()
{
    const TestSite site;
    const Panel panel;
    panel->show();
    panel.selectDevice(sideStage);
    panel.deviceCombo()->setItemData(2, QVariant(), Panel::markRole);
    {
        const ExpectMessage complaint(QtCriticalMsg, QStringLiteral("parameter is empty!!!"), 1);
        panel.deviceCombo()->setCurrentIndex(2);
    }
    QCOMPARE(panel.deviceCombo()->toolTip(), site->device(sideStage)->getDeviceInfo());

    // The previously selected device stays: an apply still finds one.
    QVERIFY(writePackage(projectFile(QStringLiteral("Project1")), QString()));
    panel.rescan();
    AnswerBook book;
    book.expectQuestion(QStringLiteral("Remind"), QString(), QMessageBox::Cancel);
    QVERIFY(click(panel.rowButtons(0).at(1)));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
}

void TstDeviceBinding::an_entry_with_wrong_marks_unbinds_the_device()
{
    const TestSite site;
    const Panel panel;
    panel->show();
    const QStringList tooMany{QStringLiteral("tip"), QStringLiteral("b"), QStringLiteral("c"), sideStage,
                              QStringLiteral("e")};
    for (const QStringList &marks : {QStringList(tooMany.mid(0, 3)), tooMany}) {
        showAgain(panel);
        QCOMPARE(boundAddress(panel, site), mainHall);
        panel.deviceCombo()->setItemData(1, marks, Panel::markRole);
        {
            const ExpectMessage complaint(QtCriticalMsg, QStringLiteral("device mark list count error."), 1);
            panel.deviceCombo()->setCurrentIndex(1);
        }
        QCOMPARE(panel.deviceCombo()->toolTip(), QStringLiteral("tip"));
        QCOMPARE(boundAddress(panel, site), QString());
    }
}

void TstDeviceBinding::bytes_are_whole_mebibytes_rounded_down_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<quint64>("mebibytes");
    QTest::newRow("500 MiB") << Q_INT64_C(524288000) << Q_UINT64_C(500);
    QTest::newRow("just below 500") << Q_INT64_C(524287999) << Q_UINT64_C(499);
    QTest::newRow("just below 1") << Q_INT64_C(1048575) << Q_UINT64_C(0);
    QTest::newRow("1") << Q_INT64_C(1048576) << Q_UINT64_C(1);
    QTest::newRow("nothing") << Q_INT64_C(0) << Q_UINT64_C(0);
    QTest::newRow("unknown") << Q_INT64_C(-1) << Q_UINT64_C(0);
    QTest::newRow("more than 32 bits") << (Q_INT64_C(1) << 60) << (Q_UINT64_C(1) << 40);
}

void TstDeviceBinding::bytes_are_whole_mebibytes_rounded_down()
{
    QFETCH(qint64, bytes);
    QFETCH(quint64, mebibytes);
    QCOMPARE(quint64(DiskSpace::wholeMebibytes(bytes)), mebibytes);
}

void TstDeviceBinding::free_space_is_that_of_the_volume()
{
    // Other programs write to the volume too, so the expected value is read before and after.
    const QStorageInfo volume(projectFilesPath());
    const quint64 before = quint64(volume.bytesAvailable());
    const quint64 size = DiskSpace::getDiskAvailableSize(projectFilesPath()) << 20;
    const quint64 after = quint64(QStorageInfo(projectFilesPath()).bytesAvailable());
    const quint64 slack = 1024 * 1024 * 1024;
    QVERIFY(size + slack > qMin(before, after));
    QVERIFY(size < qMax(before, after) + slack);
    QCOMPARE(WarningGuard::texts(QtDebugMsg),
             QStringList(QStringLiteral("QStorageInfo rootPath: \"%1\"").arg(volume.rootPath())));
}

void TstDeviceBinding::a_path_without_a_volume_has_no_space()
{
    QCOMPARE(DiskSpace::getDiskAvailableSize(projectFilesPath() + QStringLiteral("missing/")), 0ULL);
}

void TstDeviceBinding::the_estimate_adds_ten_mebibytes()
{
    const TestSite site;
    const Panel panel;
    panel->show();
    // No volume has that much space, so the message shows the panel's calculation.
    const quint64 mebibyte = 1024 * 1024;
    const quint64 huge = Q_UINT64_C(1) << 60;
    const QVector<std::tuple<quint64, quint64, quint64>> cases{
        {huge, 0, (huge >> 20) + 10},
        {0, huge, (huge >> 20) + 10},
        {huge + mebibyte / 2, mebibyte / 2 - 1, (huge >> 20) + 10},
        {huge + mebibyte / 2, mebibyte / 2, (huge >> 20) + 11}};
    for (const auto &[logos, others, expected] : cases) {
        site->hardware(mainHall)->fixCounters(logos, others);
        Journal::instance()->clear();
        const ExpectMessage complaint(
            QtCriticalMsg,
            QRegularExpression(QStringLiteral("^m_strDefaultPath: \"%1\"   project file size: %2   "
                                              "available space size: \\d+$")
                                   .arg(QRegularExpression::escape(projectFilesPath()), QString::number(expected))),
            1);
        AnswerBook book;
        book.expectWarning(QStringLiteral("Warning"),
                           QStringLiteral("Insufficient default path space to perform current operation"));
        QVERIFY(click(panel.saveProject()));
        QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
        for (const QLatin1String operation : {calLogoMaterailCapacity, usedCapacity}) {
            const QVector<Simulation::JournalEntry> calls = Journal::instance()->entries(operation);
            QCOMPARE(calls.count(), 1);
            QCOMPARE(calls.first().arguments.value(QStringLiteral("ip")).toString(), mainHall);
        }
    }
}

void TstDeviceBinding::an_empty_device_fits()
{
    // Ten mebibytes are free; the refusals above state the parts.
    const TestSite site;
    const Panel panel;
    panel->show();
    site->hardware(mainHall)->fixCounters(0, 0);
    QVERIFY(DiskSpace::getDiskAvailableSize(projectFilesPath()) > 10);
    QCOMPARE(boundAddress(panel, site), mainHall);
}

void TstDeviceBinding::synchronising_shows_the_waiting_dialog()
{
    const TestSite site;
    const Panel panel;
    panel->show();
    Journal::instance()->clear();
    SeenWhileRunning seen;
    Faults::instance()->arm(updateOnlineDevice, seen.look());
    QCOMPARE(boundAddress(panel, site), mainHall);

    QVERIFY(seen.onMainThread);
    QVERIFY(seen.visible);
    QCOMPARE(seen.text, QStringLiteral("Sync device data , please wait."));
    QVERIFY(!WaitingDialog::instance()->isVisible());
    VERIFY_JOURNAL_ORDER({showWaitingDialog, updateOnlineDevice, hideWaitingDialog});
    const QVariantMap arguments = Journal::instance()->entries(updateOnlineDevice).value(0).arguments;
    QCOMPARE(arguments.value(QStringLiteral("ip")).toString(), mainHall);
    QCOMPARE(arguments.value(QStringLiteral("sn")).toString(), site->device(mainHall)->getSN());

    const TranslatedTexts chinese(QStringLiteral("zh_CN"));
    Faults::instance()->arm(updateOnlineDevice, seen.look());
    QCOMPARE(boundAddress(panel, site), mainHall);
    QCOMPARE(seen.text, QStringLiteral("正在同步设备数据，请稍候。"));
}

void TstDeviceBinding::a_failed_synchronisation_ends_the_save()
{
    const TestSite site;
    const Panel panel;
    panel->show();
    Faults::instance()->arm(updateOnlineDevice, Fault::fail());
    AnswerBook book;
    book.expectWarning(QStringLiteral("Warning"), QStringLiteral("Failed to get device information"));
    QVERIFY(click(panel.saveProject()));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QVERIFY(!WaitingDialog::instance()->isVisible());
}

void TstDeviceBinding::an_offline_device_is_not_synchronised()
{
    const TestSite site;
    const Panel panel;
    panel->show();
    panel.selectDevice(touringRack);
    Journal::instance()->clear();
    QCOMPARE(boundAddress(panel, site), touringRack);
    VERIFY_JOURNAL({setActiveDevice});
}

void TstDeviceBinding::restoring_the_factory_state_shows_the_waiting_dialog()
{
    const TestSite site;
    const Panel panel;
    panel->show();
    {
        AnswerBook book;
        book.expectDialog(QStringLiteral("EngineerPropertySettingWidget"),
                          [](QDialog *dialog) { click(dialog, QStringLiteral("OK")); });
        QVERIFY(click(panel.saveProject()));
        QTRY_COMPARE(panel.names(), QStringList(QStringLiteral("Project1")));
        QTRY_VERIFY(!WaitingDialog::instance()->isVisible());
        QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    }

    SeenWhileRunning seen;
    Faults::instance()->arm(updateDeviceInfo, seen.look());
    Faults::instance()->arm(updateDeviceInfo, Fault::fail());
    Journal::instance()->clear();
    AnswerBook book;
    book.expectQuestion(QStringLiteral("Remind"), QString(), QMessageBox::No);
    book.expectWarning(QStringLiteral("Warning"), QStringLiteral(" Restore factory failed "));
    QVERIFY(click(panel.rowButtons(0).at(1)));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));

    QVERIFY(seen.onMainThread);
    QVERIFY(seen.visible);
    QCOMPARE(seen.text, QStringLiteral("Restore factory,please wait..."));
    QVERIFY(!WaitingDialog::instance()->isVisible());
    QCOMPARE(Journal::instance()->entries(updateDeviceInfo).count(), 1);
    const QVariantMap arguments = Journal::instance()->entries(updateDeviceInfo).first().arguments;
    QCOMPARE(arguments.value(QStringLiteral("ip")).toString(), mainHall);
    QCOMPARE(arguments.value(QStringLiteral("reset")).toInt(), 3);
}

TEST_MAIN(TstDeviceBinding)
#include "tst_devicebinding.moc"

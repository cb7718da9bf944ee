// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <imagestorager/imagestorager.h>
#include <model/deviceconfigmanager.h>
#include <model/deviceeditor.h>
#include <model/devicelist.h>
#include <model/objectbrige.h>
#include <model/serailizer.h>
#include <simulation/faults.h>
#include <simulation/journal.h>

#include <support/signalrecorder.h>
#include <support/testmain.h>

#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

using namespace Model;

namespace {

std::shared_ptr<Device> makeDevice(const QString &ip)
{
    DeviceData data;
    data.modelId = 1600;
    data.id = 65535;
    data.typeString = QStringLiteral("ST-1600");
    data.name = QString::fromUtf8("Bühne 主屏");
    data.sn = QStringLiteral("SN-1");
    data.ip = ip;
    data.netMask = QStringLiteral("255.255.0.0");
    data.gateWay = QStringLiteral("10.0.0.254");
    data.mac = QStringLiteral("02:00:00:00:00:01");
    data.protocolNumber = 2.4;
    data.mvrEnabled = true;
    data.mvrItems = QJsonArray{1, QStringLiteral("Preview")};
    data.settings = QJsonObject{{QStringLiteral("brightness"), 80}};
    data.cards = {std::make_shared<Slot>(Slot{3, 8, 301, QJsonObject{{QStringLiteral("mode"), QStringLiteral("4K")}}})};
    data.screens = {std::make_shared<Screen>(Screen{4, QStringLiteral("Wall"), QRect(-10, 5, 1920, 1080)})};
    data.backgrounds = {
        std::make_shared<Materail>(Materail::Background, 255, QStringLiteral("Blue"), QSize(1920, 1080), ip)};
    data.logos = {std::make_shared<Materail>(Materail::Logo, 0, QStringLiteral("Badge"), QSize(64, 32), ip)};
    data.presets = {std::make_shared<Preset>(Preset{65535, QStringLiteral("Opening"), QByteArray("\0\xff\1", 3)})};
    auto device = std::make_shared<Device>(1);
    DeviceEditor(*device).replace(data);
    return device;
}

QByteArray jsonOf(const Device &device)
{
    return QJsonDocument(device.toJson()).toJson();
}

} // namespace

class TstDeviceModel : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        Simulation::Faults::instance()->clear();
        Simulation::Journal::instance()->clear();
    }

    void json_round_trip_keeps_everything()
    {
        const auto device = makeDevice(QStringLiteral("10.0.0.1"));
        Device copy(7);
        copy.fromJson(QJsonDocument::fromJson(jsonOf(*device)).object());
        QCOMPARE(jsonOf(copy), jsonOf(*device));
        QCOMPARE(copy.getName(), device->getName());
        QCOMPARE(copy.getId(), quint16(65535));
        QCOMPARE(copy.getCommunicationProtocolNumber(), 2.4);
        QVERIFY(copy.getMVREnabled());
        QCOMPARE(copy.getSlots().at(0)->getPos(), 8);
        QCOMPARE(copy.getSlots().at(0)->settings.value(QStringLiteral("mode")).toString(), QStringLiteral("4K"));
        QCOMPARE(copy.getScreens().at(0)->geometry, QRect(-10, 5, 1920, 1080));
        QCOMPARE(copy.getBKGs().at(0).lock()->getKeyNo(), quint8(255));
        QCOMPARE(copy.getBKGs().at(0).lock()->size(), QSize(1920, 1080));
        QCOMPARE(copy.getLogos().at(0).lock()->getName(), QStringLiteral("Badge"));
        QCOMPARE(copy.getPresets().at(0)->getNumber(), quint16(65535));
        QCOMPARE(copy.getPresets().at(0)->detail, QByteArray("\0\xff\1", 3));
    }

    void json_of_wrong_types_leaves_empty_values()
    {
        const auto device = makeDevice(QStringLiteral("10.0.0.1"));
        QJsonObject broken = device->toJson();
        for (const QString &key : broken.keys())
            broken.insert(key, QJsonArray{QJsonValue(), 1, QStringLiteral("x")});
        Device copy(7);
        copy.fromJson(broken);
        QVERIFY(copy.getName().isEmpty());
        QCOMPARE(copy.getModelID(), 0);
        QVERIFY(copy.getSlots().empty() && copy.getScreens().empty() && copy.getBKGs().empty() &&
                copy.getPresets().empty());
    }

    void json_numbers_out_of_range_become_zero()
    {
        Device device(7);
        device.fromJson({{QStringLiteral("id"), 65536},
                         {QStringLiteral("modelId"), 1e300},
                         {QStringLiteral("materials"), QJsonArray{QJsonObject{{QStringLiteral("keyNo"), -1}}}}});
        QCOMPARE(device.getId(), quint16(0));
        QCOMPARE(device.getModelID(), 0);
        QCOMPARE(device.getBKGs().at(0).lock()->getKeyNo(), quint8(0));
    }

    void json_leaves_the_online_flag()
    {
        Device device(7);
        DeviceEditor(device).setOnlineFlag(true);
        device.fromJson(QJsonObject());
        QVERIFY(device.getDeviceOnlineFlag());
    }

    void clearing_leaves_identity()
    {
        const auto device = makeDevice(QStringLiteral("10.0.0.1"));
        device->clearAll(false);
        QVERIFY(device->getSlots().empty() && device->getScreens().empty());
        QVERIFY(device->getMVREnabled());
        device->clearAll(true);
        QVERIFY(!device->getMVREnabled());
        QVERIFY(DeviceEditor(*device).data().settings.isEmpty());
        QCOMPARE(device->getBKGs().size(), size_t(1));
        device->clearMaterial();
        QVERIFY(device->getBKGs().empty() && device->getLogos().empty());
        QCOMPARE(device->getPresets().size(), size_t(1));
        device->clearPreset();
        QVERIFY(device->getPresets().empty());
        QCOMPARE(device->getIPAddress(), QStringLiteral("10.0.0.1"));
        QCOMPARE(device->getSN(), QStringLiteral("SN-1"));
    }

    void pictures_move_with_the_address()
    {
        const auto device = makeDevice(QStringLiteral("10.0.0.1"));
        QImage thumb(2, 2, QImage::Format_RGB32);
        thumb.fill(Qt::red);
        device->getLogos().at(0).lock()->setThumb(thumb);
        device->setIPAddress(QStringLiteral("10.0.0.2"));
        const auto logo = device->getLogos().at(0).lock();
        QCOMPARE(logo->deviceIp(), QStringLiteral("10.0.0.2"));
        QCOMPARE(logo->getName(), QStringLiteral("Badge"));
        QCOMPARE(logo->thumb(), thumb);
    }

    void image_keys_tell_kind_number_and_device_apart()
    {
        const QSize size(1, 1);
        QSet<QString> keys;
        for (const auto type : {Materail::Background, Materail::Logo}) {
            for (const QString &ip : {QStringLiteral("10.0.0.1"), QStringLiteral("10.0.0.11")}) {
                for (const int keyNo : {1, 11})
                    keys.insert(Materail(type, static_cast<quint8>(keyNo), QString(), size, ip).imageKey());
            }
        }
        QCOMPARE(keys.size(), 8);
    }

    void there_is_no_device_list_before_and_after_its_life()
    {
        QVERIFY(!DeviceList::instance());
        {
            DeviceList list;
            QCOMPARE(DeviceList::instance(), &list);
        }
        QVERIFY(!DeviceList::instance());
    }

    void the_device_list_announces_changes_and_finds_by_address()
    {
        DeviceList list;
        TestSupport::SignalRecorder<> changed(&list, &DeviceList::devicesChanged);
        const auto device = makeDevice(QStringLiteral("10.0.0.1"));
        list.addDevice(device);
        QCOMPARE(list.getDeviceByIPAddr(QStringLiteral("10.0.0.1")), device);
        QVERIFY(!list.getDeviceByIPAddr(QStringLiteral("10.0.0.2")));
        list.setDeviceOnline(QStringLiteral("10.0.0.1"), true);
        QVERIFY(device->getDeviceOnlineFlag());
        list.setDeviceOnline(QStringLiteral("10.0.0.1"), true);
        list.removeDevice(QStringLiteral("10.0.0.1"));
        QVERIFY(list.getDevices().empty());
        QTRY_COMPARE(changed.count(), 3);
    }

    void the_configuration_of_an_unknown_model_supports_nothing()
    {
        const auto device = makeDevice(QStringLiteral("10.0.0.1"));
        QVERIFY(!device->deviceConfig().supportProjectFile);
        s_DeviceConfig config;
        config.modelId = 1600;
        config.supportProjectFile = true;
        DeviceConfigManager::instance()->addDeviceConfig(config);
        const s_DeviceConfig &found = device->deviceConfig();
        QVERIFY(found.supportProjectFile);
        DeviceConfigManager::instance()->clear();
        QVERIFY(!DeviceConfigManager::instance()->findDeviceConfigByID(1600));
        QVERIFY(found.supportProjectFile);
    }

    void the_serialiser_writes_every_device()
    {
        QTemporaryDir directory;
        DeviceList list;
        list.addDevice(makeDevice(QStringLiteral("10.0.0.1")));
        list.addDevice(makeDevice(QStringLiteral("10.0.0.2")));
        QVERIFY(Serailizer(directory.path()).serailize());
        for (const auto &device : list.getDevices()) {
            QFile file(directory.filePath(QStringLiteral("%1/%1.json").arg(device->getIPAddress())));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray bytes = file.readAll();
            QVERIFY(bytes.contains(QStringLiteral("主屏").toUtf8()));
            QCOMPARE(QJsonDocument::fromJson(bytes).object(), device->toJson());
        }
    }

    void the_serialiser_reports_what_it_could_not_write()
    {
        QTemporaryDir directory;
        DeviceList list;
        list.addDevice(makeDevice(QStringLiteral("10.0.0.1")));
        list.addDevice(makeDevice(QStringLiteral("10.0.0.2")));
        QFile inTheWay(directory.filePath(QStringLiteral("10.0.0.1")));
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        QVERIFY(!Serailizer(directory.path()).serailize());
        QVERIFY(QFile::exists(directory.filePath(QStringLiteral("10.0.0.2/10.0.0.2.json"))));
    }

    void the_serialiser_can_be_made_to_fail()
    {
        QTemporaryDir directory;
        DeviceList list;
        Simulation::Faults::instance()->arm(Simulation::Operations::serailize, Simulation::Fault::fail());
        QVERIFY(!Serailizer(directory.path()).serailize());
        QVERIFY(Serailizer(directory.path()).serailize());
    }

    void the_bridge_announces_only_changes_of_the_active_device()
    {
        object_brige *brige = object_brige::instance();
        TestSupport::SignalRecorder<> changed(brige, &object_brige::signal_deviceChanged);
        auto device = makeDevice(QStringLiteral("10.0.0.1"));
        brige->setActiveDevice(device);
        brige->setActiveDevice(device);
        QCOMPARE(brige->activeDevice(), device);
        device.reset();
        QVERIFY(!brige->activeDevice());
        brige->setActiveDevice({});
        brige->setActiveDevice({});
        QTRY_COMPARE(changed.count(), 2);
        QCOMPARE(Simulation::Journal::instance()->count(Simulation::Operations::setActiveDevice), 4);
    }

    void the_bridge_keeps_screens()
    {
        object_brige *brige = object_brige::instance();
        const auto screen = std::make_shared<Screen>();
        brige->setActivedScreen(screen);
        brige->appendSelectedScreen(screen);
        brige->clearScreenList(false);
        QVERIFY(brige->selectedScreens().empty());
        QCOMPARE(brige->activedScreen(), screen);
        brige->clearScreenList(true);
        QVERIFY(!brige->activedScreen());
    }

    void the_image_store_hands_out_the_format_that_is_asked_for()
    {
        ImageStorager *store = ImageStorager::instance();
        QImage image(4, 4, QImage::Format_ARGB32);
        image.fill(qRgba(10, 20, 30, 128));
        store->store(QStringLiteral("key"), image);
        QCOMPARE(store->load(QStringLiteral("key"), QImage::Format_RGB32).toImage().format(), QImage::Format_RGB32);
        QCOMPARE(store->load(QStringLiteral("key"), QImage::Format_ARGB32).toImage(), image);
        QVERIFY(store->load(QStringLiteral("other"), QImage::Format_ARGB32).isNull());
        Simulation::Faults::instance()->arm(Simulation::Operations::loadImage, Simulation::Fault::fail());
        QVERIFY(store->load(QStringLiteral("key"), QImage::Format_ARGB32).isNull());
        store->remove(QStringLiteral("key"));
        QVERIFY(store->load(QStringLiteral("key"), QImage::Format_ARGB32).isNull());
    }
};

TEST_MAIN_CORE(TstDeviceModel)
#include "tst_devicemodel.moc"

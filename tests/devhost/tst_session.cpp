// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <imagestorager/imagestorager.h>
#include <model/deviceeditor.h>
#include <model/objectbrige.h>
#include <modelcontrol/devicecontroler.h>
#include <modelcontrol/materialcontrol.h>
#include <modelcontrol/operationadapter.h>
#include <modelcontrol/presetcontrol.h>
#include <simulation/faults.h>
#include <simulation/journal.h>
#include <simulation/network.h>
#include <simulation/session/session.h>

#include <support/testmain.h>

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <thread>

using namespace Simulation;
using Model::Device;
using Model::Materail;
using ModelControl::DeviceControler;

namespace {

const QString mainHall = QStringLiteral("192.168.1.11");
const QString sideStage = QStringLiteral("192.168.1.12");
const QString touringRack = QStringLiteral("192.168.1.30");

Site smallSite()
{
    QString error;
    return Site::fromFile(builtInSite(QStringLiteral("small")), error).value();
}

ControlEnum::enum_ErrorCode synchronise(const Device &device)
{
    return OperationAdapter::instance()->updateOnlineDevice(device.getIPAddress(), device.getSN(),
                                                            ControlStruct::defaultCallBack);
}

bool reset(const std::shared_ptr<Device> &device, Device::DevicResetOrder order)
{
    return DeviceControler(device).updateDeviceInfo({{Device::DeviceReset, std::any(order)}});
}

bool fetch(const std::shared_ptr<Materail> &materail)
{
    return ModelControl::MaterialControl(materail).queryMaterailData({{Materail::Picture, std::any(QImage())}});
}

/// Sends the whole model of `source` to the device of `target`, with the pictures of `pictures`.
bool apply(const std::shared_ptr<Device> &source, const std::shared_ptr<Device> &target, const HardwareState &pictures)
{
    const auto packed = std::make_shared<Device>(65535);
    packed->fromJson(source->toJson());
    packed->setIPAddress(target->getIPAddress());
    DeviceControler control(target);
    DeviceControler packedControl(packed);
    QString error;
    bool done = control.enableMVR(packed->getMVREnabled(), error) && control.copySlotDataToDevice(packed);
    for (auto it = pictures.backgrounds.begin(); it != pictures.backgrounds.end(); ++it)
        done = done && control.createMaterailFromImage(it->pixels, Materail::Background, QString(), 0, QSize(),
                                                       QStringLiteral("BKG_%1").arg(it.key()));
    for (auto it = pictures.logos.begin(); it != pictures.logos.end(); ++it)
        done = done && control.createMaterailFromImage(it->pixels, Materail::Logo, QString(), 0, QSize(),
                                                       QStringLiteral("LOGO_%1").arg(it.key()));
    done = done && packedControl.copyModelToDevice();
    if (packed->getMVREnabled())
        done = done && packedControl.copyMVRItemDataToDevice();
    return done;
}

} // namespace

class TstSession : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<Session> m_session;

    std::shared_ptr<Device> device(const QString &ip = mainHall) const { return m_session->device(ip); }
    std::shared_ptr<Hardware> hardware(const QString &ip = mainHall) const { return m_session->hardware(ip); }

private slots:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_session = std::make_unique<Session>(smallSite(), m_directory->path());
        QCOMPARE(m_session->error(), QString());
    }

    void cleanup()
    {
        m_session.reset();
        m_directory.reset();
    }

    void a_session_begins_with_models_that_match_the_hardware()
    {
        QVERIFY(Journal::instance()->entries().isEmpty());
        QCOMPARE(Model::object_brige::instance()->activeDevice(), device());
        QCOMPARE(Model::DeviceList::instance()->getDevices().size(), size_t(5));
        const HardwareState state = hardware()->state();
        QCOMPARE(device()->getName(), state.identity.name);
        QVERIFY(device()->getDeviceOnlineFlag());
        QCOMPARE(device()->getSlots().size(), size_t(state.cards.size()));
        QCOMPARE(device()->getScreens().size(), size_t(state.screens.size()));
        QCOMPARE(device()->getPresets().size(), size_t(state.presets.size()));
        QCOMPARE(device()->getBKGs().size(), size_t(state.backgrounds.size()));
        QVERIFY(device()->deviceConfig().supportProjectFile);
        QCOMPARE(device()->getTypeString(), QStringLiteral("ST-1600"));
        const auto logo = device()->getLogos().at(0).lock();
        QCOMPARE(ImageStorager::instance()->load(logo->imageKey(), QImage::Format_ARGB32).toImage(),
                 state.logos.value(logo->getKeyNo()).pixels);
        const auto background = device()->getBKGs().at(0).lock();
        QVERIFY(ImageStorager::instance()->load(background->imageKey(), QImage::Format_RGB32).isNull());
    }

    void an_offline_device_lies_complete_in_its_directory()
    {
        const HardwareState state = hardware(touringRack)->state();
        QVERIFY(!device(touringRack)->getDeviceOnlineFlag());
        const QString path = m_directory->filePath(touringRack);
        for (auto it = state.backgrounds.begin(); it != state.backgrounds.end(); ++it)
            QCOMPARE(QImage(QStringLiteral("%1/BKG/BKG_%2.png").arg(path).arg(it.key()))
                         .convertToFormat(QImage::Format_RGB32),
                     it->pixels);
        for (auto it = state.logos.begin(); it != state.logos.end(); ++it)
            QCOMPARE(QImage(QStringLiteral("%1/LOGO/LOGO_%2.png").arg(path).arg(it.key()))
                         .convertToFormat(QImage::Format_ARGB32),
                     it->pixels);
        QFile file(QStringLiteral("%1/%2.json").arg(path, touringRack));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QJsonDocument::fromJson(file.readAll()).object(), device(touringRack)->toJson());
        QVERIFY(!QFileInfo::exists(m_directory->filePath(mainHall)));
    }

    void a_session_takes_everything_down()
    {
        Faults::instance()->arm(Operations::serailize, Fault::fail());
        const auto held = device();
        m_session.reset();
        QVERIFY(!Model::DeviceList::instance());
        QVERIFY(!Model::object_brige::instance()->activeDevice());
        QVERIFY(!Network::instance()->hardware(mainHall));
        QCOMPARE(Faults::instance()->armedCount(), 0);
        QVERIFY(Journal::instance()->entries().isEmpty());
        QVERIFY(
            ImageStorager::instance()->load(held->getLogos().at(0).lock()->imageKey(), QImage::Format_ARGB32).isNull());
        m_session = std::make_unique<Session>(smallSite(), m_directory->path());
        QVERIFY(device()->getDeviceOnlineFlag());
    }

    void an_unwritable_configuration_directory_is_reported()
    {
        m_session.reset();
        QFile inTheWay(m_directory->filePath(QStringLiteral("file")));
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        m_session = std::make_unique<Session>(smallSite(), inTheWay.fileName());
        QVERIFY(m_session->error().contains(touringRack));
    }

    void a_synchronisation_copies_hardware_to_model()
    {
        hardware()->change([](HardwareState &state) {
            state.screens[0].name = QStringLiteral("New wall");
            state.presets.remove(1);
            state.logos[5].pixels.fill(qRgba(9, 8, 7, 6));
            state.backgrounds.insert(200, PictureState{QStringLiteral("Late"), QImage(3, 2, QImage::Format_RGB32)});
            state.mvrEnabled = false;
        });
        QVERIFY(device()->getScreens().at(0)->name != QStringLiteral("New wall"));
        const auto unchanged = device()->getBKGs().at(0).lock();
        QCOMPARE(synchronise(*device()), ControlEnum::ErrorNone);
        QCOMPARE(device()->getScreens().at(0)->name, QStringLiteral("New wall"));
        QCOMPARE(device()->getPresets().size(), size_t(5));
        QCOMPARE(device()->getBKGs().back().lock()->getKeyNo(), quint8(200));
        QCOMPARE(device()->getBKGs().at(0).lock(), unchanged);
        QVERIFY(!device()->getMVREnabled());
        const auto logo = device()->getLogos().back().lock();
        QCOMPARE(ImageStorager::instance()->load(logo->imageKey(), QImage::Format_ARGB32).toImage().pixel(0, 0),
                 qRgba(9, 8, 7, 6));
        QCOMPARE(Journal::instance()->entries().first().operation, Operations::updateOnlineDevice);
        QCOMPARE(Journal::instance()->entries().first().arguments.value(QStringLiteral("ip")).toString(), mainHall);
    }

    void a_synchronisation_needs_the_right_device()
    {
        QCOMPARE(OperationAdapter::instance()->updateOnlineDevice(mainHall, QStringLiteral("other"),
                                                                  ControlStruct::defaultCallBack),
                 ControlEnum::ErrorRefused);
        QCOMPARE(synchronise(*device(touringRack)), ControlEnum::ErrorDisconnected);
        QCOMPARE(OperationAdapter::instance()->updateOnlineDevice(QStringLiteral("10.9.9.9"), QString(),
                                                                  ControlStruct::defaultCallBack),
                 ControlEnum::ErrorDisconnected);
        Faults::instance()->arm(Operations::updateOnlineDevice, Fault::fail());
        QCOMPARE(synchronise(*device()), ControlEnum::ErrorRefused);
        Faults::instance()->arm(Operations::updateOnlineDevice, Fault::cancel());
        QCOMPARE(synchronise(*device()), ControlEnum::ErrorTimeout);
        QVERIFY(device()->getDeviceOnlineFlag());
    }

    void a_dropped_connection_takes_the_device_offline()
    {
        Faults::instance()->arm(Operations::queryMaterailData, Fault::disconnect(2));
        const auto first = device()->getBKGs().at(0).lock();
        QVERIFY(fetch(first));
        QVERIFY(!fetch(first));
        QVERIFY(!device()->getDeviceOnlineFlag());
        QCOMPARE(synchronise(*device()), ControlEnum::ErrorDisconnected);
        m_session->plug(mainHall);
        QVERIFY(device()->getDeviceOnlineFlag());
        QVERIFY(fetch(device()->getBKGs().at(0).lock()));
    }

    void a_query_fetches_the_pixels()
    {
        const auto background = device()->getBKGs().at(2).lock();
        QVERIFY(ModelControl::MaterialControl(background).queryMaterailData({}));
        QVERIFY(ImageStorager::instance()->load(background->imageKey(), QImage::Format_RGB32).isNull());
        QVERIFY(fetch(background));
        QCOMPARE(ImageStorager::instance()->load(background->imageKey(), QImage::Format_RGB32).toImage(),
                 hardware()->state().backgrounds.value(background->getKeyNo()).pixels);
        hardware()->change([](HardwareState &state) { state.backgrounds.clear(); });
        QVERIFY(!fetch(background));
    }

    void a_preset_gives_its_bytes()
    {
        const auto preset = device()->getPresets().at(0);
        QByteArray bytes;
        QVERIFY(ModelControl::PresetControl(preset).presetFullDetail2Binary(bytes));
        QCOMPARE(bytes, hardware()->state().presets.value(preset->getNumber()).bytes);
        Faults::instance()->arm(Operations::presetFullDetail2Binary, Fault::fail());
        QVERIFY(!ModelControl::PresetControl(preset).presetFullDetail2Binary(bytes));
    }

    void a_reset_wipes_what_it_names()
    {
        const HardwareState before = hardware()->state();
        QVERIFY(reset(device(), Device::ResetPresets));
        QVERIFY(hardware()->state().presets.isEmpty());
        QCOMPARE(hardware()->state().logos.size(), before.logos.size());
        QVERIFY(reset(device(), Device::ResetMaterials));
        QVERIFY(hardware()->state().logos.isEmpty() && hardware()->state().backgrounds.isEmpty());
        QCOMPARE(hardware()->state().screens.size(), before.screens.size());
        QVERIFY(reset(device(), Device::ResetFactory));
        QVERIFY(hardware()->state() == before.afterFactoryReset());
        QVERIFY(!device()->getScreens().empty());
    }

    void a_reset_that_fails_wipes_nothing()
    {
        const HardwareState before = hardware()->state();
        Faults::instance()->arm(Operations::updateDeviceInfo, Fault::fail());
        QVERIFY(!reset(device(), Device::ResetFactory));
        QVERIFY(!DeviceControler(device()).updateDeviceInfo({{Device::DeviceReset, std::any(3.5)}}));
        QVERIFY(hardware()->state() == before);
        QVERIFY(!reset(device(touringRack), Device::ResetFactory));
    }

    void a_device_can_be_renamed()
    {
        QVERIFY(DeviceControler(device()).updateDeviceInfo({{Device::DeviceName, std::any(QStringLiteral("Arena"))}}));
        QCOMPARE(hardware()->state().identity.name, QStringLiteral("Arena"));
    }

    void applying_a_saved_configuration_restores_the_whole_hardware()
    {
        const HardwareState before = hardware()->state();
        const auto saved = std::make_shared<Device>(0);
        saved->fromJson(device()->toJson());
        QVERIFY(reset(device(), Device::ResetFactory));
        QVERIFY(hardware()->state() != before);
        QVERIFY(apply(saved, device(), before));
        QCOMPARE(before.differencesTo(hardware()->state()), QStringList());
    }

    void applying_to_another_device_makes_the_configurations_equal()
    {
        const HardwareState source = hardware()->state();
        const HardwareState target = hardware(sideStage)->state();
        QVERIFY(reset(device(sideStage), Device::ResetFactory));
        QVERIFY(apply(device(), device(sideStage), source));
        const HardwareState after = hardware(sideStage)->state();
        QCOMPARE(after.identity.name, target.identity.name);
        QCOMPARE(source.configuration().differencesTo(after.configuration()), QStringList());
        // The cards of the two sites differ in one type; applying never changes types.
        for (int i = 0; i < target.cards.size(); ++i)
            QCOMPARE(after.cards.at(i).type, target.cards.at(i).type);
    }

    void sending_a_model_removes_presets_and_screens_that_it_does_not_have()
    {
        const HardwareState before = hardware()->state();
        hardware()->change([](HardwareState &state) {
            state.presets.insert(999, PresetState{QStringLiteral("Extra"), QByteArray("x")});
            state.screens.append(ScreenState{99, QStringLiteral("Extra"), QRect(0, 0, 1, 1)});
        });
        QVERIFY(DeviceControler(device()).copyModelToDevice());
        QCOMPARE(before.differencesTo(hardware()->state()), QStringList());
    }

    void pictures_that_were_never_sent_stay_missing()
    {
        const HardwareState before = hardware()->state();
        HardwareState onlyOne = before;
        const PictureState first = before.logos.first();
        onlyOne.backgrounds.clear();
        onlyOne.logos = {{before.logos.firstKey(), first}};
        QVERIFY(reset(device(), Device::ResetFactory));
        QVERIFY(apply(device(), device(), onlyOne));
        QVERIFY(hardware()->state().backgrounds.isEmpty());
        QCOMPARE(hardware()->state().logos.size(), 1);
        QCOMPARE(hardware()->state().logos.first().name, first.name);
    }

    void a_picture_gets_the_low_byte_of_its_number_as_key()
    {
        QImage image(2, 2, QImage::Format_ARGB32);
        image.fill(Qt::green);
        DeviceControler control(device());
        QVERIFY(
            control.createMaterailFromImage(image, Materail::Logo, QString(), 0, QSize(), QStringLiteral("LOGO_300")));
        QCOMPARE(hardware()->state().logos.value(44).name, QStringLiteral("LOGO_300"));
        QVERIFY(
            !control.createMaterailFromImage(image, Materail::Logo, QString(), 0, QSize(), QStringLiteral("BKG_3")));
        QVERIFY(
            !control.createMaterailFromImage(image, Materail::Logo, QString(), 0, QSize(), QStringLiteral("LOGO_x")));
        QVERIFY(!control.createMaterailFromImage(QImage(), Materail::Logo, QString(), 0, QSize(),
                                                 QStringLiteral("LOGO_3")));
    }

    void a_full_device_refuses_pictures()
    {
        hardware()->change([](HardwareState &state) { state.capacity = 1; });
        QImage image(2, 2, QImage::Format_ARGB32);
        image.fill(Qt::green);
        QVERIFY(!DeviceControler(device()).createMaterailFromImage(image, Materail::Logo, QString(), 0, QSize(),
                                                                   QStringLiteral("LOGO_77")));
        QVERIFY(!hardware()->state().logos.contains(77));
    }

    void capacities_can_be_set_to_the_byte()
    {
        DeviceControler control(device());
        const quint64 logos = control.calLogoMaterailCapacity({}, Materail::Logo, true);
        QCOMPARE(logos, hardware()->logoBytes());
        const auto logo = device()->getLogos().at(0).lock();
        QCOMPARE(control.calLogoMaterailCapacity(logo, Materail::Logo, true), logos - pictureBytes(logo->size()));
        hardware()->fixCounters(5, (quint64(1) << 40) + 3);
        QCOMPARE(control.calLogoMaterailCapacity({}, Materail::Logo, true) + control.usedCapacity(),
                 (quint64(1) << 40) + 8);
        QVERIFY(DeviceControler(device(touringRack)).usedCapacity() > 0);
    }

    void the_multi_viewer_is_switched_where_there_is_one()
    {
        QString error;
        QVERIFY(DeviceControler(device()).canMVEEnable());
        QVERIFY(DeviceControler(device()).enableMVR(false, error));
        QVERIFY(!hardware()->state().mvrEnabled);
        QVERIFY(!DeviceControler(device(QStringLiteral("192.168.1.20"))).canMVEEnable());
        Faults::instance()->arm(Operations::enableMVR, Fault::fail());
        QVERIFY(!DeviceControler(device()).enableMVR(true, error));
        QVERIFY(!error.isEmpty());
    }

    void the_channel_can_be_reserved()
    {
        DeviceControler(device()).setChannelExclusive(true);
        QVERIFY(hardware()->isChannelExclusive());
        DeviceControler(device()).setChannelExclusive(false);
        QVERIFY(!hardware()->isChannelExclusive());
    }

    void each_control_operation_can_fail_data()
    {
        QTest::addColumn<QString>("operation");
        for (const QLatin1String operation :
             {Operations::copySlotDataToDevice, Operations::copyMVRItemDataToDevice, Operations::copyModelToDevice,
              Operations::enableMVR, Operations::createMaterailFromImage})
            QTest::newRow(operation.data()) << operation;
    }

    void each_control_operation_can_fail()
    {
        QFETCH(QString, operation);
        const HardwareState before = hardware()->state();
        Faults::instance()->arm(operation, Fault::fail());
        QVERIFY(!apply(device(), device(), before));
        QCOMPARE(Faults::instance()->armedCount(), 0);
        QVERIFY(apply(device(), device(), before));
    }

    void cancelling_the_current_task_fails_the_operation_that_runs()
    {
        Faults::instance()->arm(Operations::copyModelToDevice,
                                Fault::run([] { DeviceControler::cancelCurrentTask(); }));
        QVERIFY(!DeviceControler(device()).copyModelToDevice());
        QVERIFY(DeviceControler(device()).copyModelToDevice());
    }

    void cancelling_a_command_fails_the_query_on_that_device()
    {
        const auto background = device()->getBKGs().at(0).lock();
        const auto cancelFrom = [this](const QString &ip, std::vector<unsigned char> command) {
            const auto canceller = device(ip);
            Faults::instance()->arm(Operations::queryMaterailData,
                                    Fault::run([=] { DeviceControler(canceller).cancelOperator(command); }));
        };
        cancelFrom(mainHall, {4, 10});
        QVERIFY(!fetch(background));
        cancelFrom(mainHall, {4, 11});
        QVERIFY(fetch(background));
        cancelFrom(sideStage, {4, 10});
        QVERIFY(fetch(background));
        QCOMPARE(Journal::instance()
                     ->entries(Operations::cancelOperator)
                     .first()
                     .arguments.value(QStringLiteral("command"))
                     .toList(),
                 QVariantList({4, 10}));
    }

    void plugging_in_makes_the_model_what_the_hardware_holds()
    {
        m_session->unplug(mainHall);
        QVERIFY(!device()->getDeviceOnlineFlag());
        QVERIFY(!hardware()->isReachable());
        QVERIFY(!DeviceControler(device()).copyModelToDevice());
        hardware()->change([](HardwareState &state) { state.identity.name = QStringLiteral("Renamed"); });
        QCOMPARE(device()->getName(), QStringLiteral("Main hall"));
        m_session->plug(mainHall);
        QVERIFY(device()->getDeviceOnlineFlag());
        QCOMPARE(device()->getName(), QStringLiteral("Renamed"));
        m_session->plug(touringRack);
        QVERIFY(DeviceControler(device(touringRack)).copyModelToDevice());
    }

    void operations_bear_many_threads()
    {
        const HardwareState before = hardware()->state();
        std::vector<std::thread> workers;
        workers.emplace_back([this] {
            for (int i = 0; i < 200; ++i)
                synchronise(*device());
        });
        workers.emplace_back([this] {
            for (int i = 0; i < 200; ++i) {
                for (const auto &reference : device()->getBKGs()) {
                    if (const auto background = reference.lock())
                        fetch(background);
                }
            }
        });
        workers.emplace_back([this] {
            for (int i = 0; i < 200; ++i)
                DeviceControler(device()).copyModelToDevice();
        });
        workers.emplace_back([this] {
            for (int i = 0; i < 200; ++i) {
                m_session->device(sideStage)->toJson();
                Model::DeviceList::instance()->setDeviceOnline(sideStage, i % 2);
            }
        });
        for (std::thread &worker : workers)
            worker.join();
        QCOMPARE(before.differencesTo(hardware()->state()), QStringList());
        QCOMPARE(synchronise(*device()), ControlEnum::ErrorNone);
    }
};

TEST_MAIN_GUI(TstSession)
#include "tst_session.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// Saving and applying against the same steps done one after another, on a simulated device.
//
//     bench_jobs [--quick] [--rows FILE] [saving] [applying] [checking]

#include "benchmark.h"

#include "encodedpictures.h"
#include "engineerdocbackup.h"
#include "engineerdocload.h"
#include "packagelayout.h"
#include "packagereader.h"
#include "zippackagehandle.h"

#include <support/customsite.h>

#include <core/icore.h>
#include <imagestorager/imagestorager.h>
#include <model/serailizer.h>
#include <modelcontrol/devicecontroler.h>
#include <modelcontrol/materialcontrol.h>
#include <modelcontrol/presetcontrol.h>
#include <simulation/journal.h>
#include <simulation/operation.h>
#include <simulation/picturegenerator.h>

#include <QDir>
#include <QGuiApplication>
#include <QImageReader>
#include <QtConcurrentMap>

#include <atomic>

using namespace Benchmark;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;
using Simulation::HardwareState;

namespace {

const QString sourceIp = QStringLiteral("10.0.0.11");
const QString targetIp = QStringLiteral("10.0.0.12");

/// A device with that many pictures of a show.
HardwareState showDevice(const QString &ip, int pictures, const QSize &size)
{
    HardwareState state = plainDevice(ip);
    const QStringList generators = Simulation::PictureGenerator::backgroundNames();
    for (int number = 0; number < pictures; ++number) {
        const QString name = generators.at(number % generators.size());
        state.backgrounds.insert(quint8(number),
                                 {name, Simulation::PictureGenerator::background(name, size, quint32(number))});
    }
    for (int number = 0; number < 100; ++number)
        state.presets.insert(quint16(number), {QStringLiteral("p"), QByteArray("preset data ").repeated(100)});
    return state;
}

QSize pictureSize(const Report &report)
{
    return report.isQuick() ? QSize(960, 540) : QSize(1920, 1080);
}

QString inWords(int pictures, const QSize &size)
{
    return QStringLiteral("%1 pictures of %2 x %3").arg(pictures).arg(size.width()).arg(size.height());
}

/// The pictures as a save stages them, one after another.
void stageOneAfterAnother(const CustomSite &site)
{
    const auto device = site->device(sourceIp);
    for (const auto &reference : device->getBKGs()) {
        const auto background = reference.lock();
        const std::map<Model::Materail::ParameterType, std::any> request{{Model::Materail::Picture, QImage()}};
        require(ModelControl::MaterialControl(background).queryMaterailData(request), "a picture is missing");
        const QImage picture = ImageStorager::instance()->load(background->imageKey(), QImage::Format_RGB32).toImage();
        require(picture.save(site.devicePath(sourceIp) + "/" + PackageLayout::backgroundEntry(background->getKeyNo()),
                             "PNG"),
                "a picture cannot be written");
    }
}

void plainSave(const CustomSite &site, const QString &package)
{
    const QString folder = site.devicePath(sourceIp);
    require(Model::Serailizer(Core::ICore::deviceConfigFilePath()).serailize(), "cannot serialise");
    for (const char *name : {"BKG", "LOGO", "Preset"}) {
        QDir(folder + "/" + name).removeRecursively();
        QDir().mkpath(folder + "/" + name);
    }
    stageOneAfterAnother(site);
    for (const auto &preset : site->device(sourceIp)->getPresets()) {
        QByteArray detail;
        require(ModelControl::PresetControl(preset).presetFullDetail2Binary(detail), "cannot pack a preset");
        QFile file(folder + "/Preset/" + QString::number(preset->getNumber()) + ".RPst");
        require(file.open(QIODevice::WriteOnly), "cannot write a preset");
        QDataStream stream(&file);
        stream << detail;
    }
    EngineerPacketInfo info;
    info.strFilePath = package;
    info.strProjectName = "Show";
    require(ZipPackageHandle::compressEngineerPacket(folder, info), "packing failed");
}

void save(const QString &folder, const QString &name, const std::shared_ptr<EncodedPictures> &encoded)
{
    EngineerDocBackup job(nullptr, sourceIp);
    job.setProjectPath(folder);
    job.setProjectInfo(name, QString());
    if (encoded)
        job.setEncodedPictures(encoded);
    job.start();
    require(job.wait() && job.resultCode() == BackupSuccess, "the save failed");
}

/// Both packages hold the same entries, byte by byte.
void compareContents(const QString &one, const QString &other)
{
    PackageReader first(one);
    PackageReader second(other);
    require(first.fileList() == second.fileList() && first.fileList().size() > 100, "other entries");
    for (const QString &name : first.fileList())
        require(first.read(name, 64 * MiB) == second.read(name, 64 * MiB), "another content of " + name);
}

void saving(Report &report)
{
    constexpr int pictures = 12;
    const QSize size = pictureSize(report);
    const CustomSite site({{showDevice(sourceIp, pictures, size), true}});
    const QString folder = site.path() + "/projects/";
    QDir().mkpath(folder);
    const auto plain = [&] { plainSave(site, folder + "plain.corvelpro"); };
    const auto check = [&] { compareContents(folder + "plain.corvelpro", folder + "ours.corvelpro"); };
    report.faster("save " + inWords(pictures, size), "one picture after another",
                  inTurn(
                      report.pairs(), plain, [&] { save(folder, "ours", nullptr); }, check),
                  1.8);
    const auto encoded = std::make_shared<EncodedPictures>();
    save(folder, "ours", encoded);
    report.faster("second save of the same pictures", "one picture after another",
                  inTurn(
                      report.pairs(), plain, [&] { save(folder, "ours", encoded); }, check),
                  5);
}

void applying(Report &report)
{
    constexpr int pictures = 24;
    const QSize size = pictureSize(report);
    const HardwareState source = showDevice(sourceIp, pictures, size);
    const CustomSite site({{plainDevice(targetIp), true}});
    const QString package = site.path() + "/show.corvelpro";
    require(packageOf(source).record("show", QString()).write(package), "cannot write the package");

    // 60 MB/s, about half of a gigabit link.
    Simulation::Pace pace;
    pace.throughput = 60e6;
    Simulation::setPace(pace);
    const auto device = [&site] { return site->device(targetIp); };
    const auto job = [&] {
        auto load = std::make_unique<EngineerDocLoad>(nullptr);
        load->setDeviceIp(targetIp);
        load->setPackagePath(package);
        require(load->checkPackageFile() && load->checkDevice(), "the package does not fit");
        return load;
    };
    // The transfer alone: pictures already decoded.
    auto packageDevice = job()->unserailizeDevice(Core::ICore::ExtractJsonPath() + "/" + sourceIp + ".json");
    require(packageDevice != nullptr, "no description");
    packageDevice->setIPAddress(targetIp);
    QVector<QPair<QString, QImage>> decoded;
    for (const QString &name : PackageReader(package).fileList().filter(".png")) {
        const QImage picture = QImage::fromData(PackageReader(package).read(name, 64 * MiB), "PNG");
        decoded.append({QFileInfo(name).completeBaseName(), picture.convertToFormat(QImage::Format_ARGB32)});
    }
    const auto transfers = [&] {
        ModelControl::DeviceControler target(device());
        QString error;
        require(target.canMVEEnable() && target.enableMVR(packageDevice->getMVREnabled(), error) &&
                    target.copySlotDataToDevice(packageDevice),
                "the device refuses");
        for (const auto &picture : decoded)
            require(target.createMaterailFromImage(picture.second, Model::Materail::Background, QString(), 0,
                                                   QSize(0, 0), picture.first),
                    "the device refuses a picture");
        ModelControl::DeviceControler controler(packageDevice);
        require(controler.copyModelToDevice() && controler.copyMVRItemDataToDevice(), "the device refuses the model");
    };
    std::unique_ptr<EngineerDocLoad> load;
    Pair times;
    for (int pair = 0; pair < report.pairs(); ++pair) {
        times.plain.milliseconds.append(settledMillisecondsOf(transfers));
        const auto expected = site->hardware(targetIp)->state().backgrounds;
        site->hardware(targetIp)->change([](HardwareState &state) { state.backgrounds.clear(); });
        load = job();
        times.ours.milliseconds.append(settledMillisecondsOf([&] {
            load->start();
            require(load->wait() && load->resultCode() == LoadSuccess, "the apply failed");
        }));
        const auto actual = site->hardware(targetIp)->state().backgrounds;
        require(actual.size() == pictures && actual.keys() == expected.keys(), "pictures are missing");
        for (quint8 number : actual.keys())
            require(actual.value(number).pixels == expected.value(number).pixels, "other pixels");
        Simulation::Journal::instance()->clear();
    }
    report.within("apply " + inWords(pictures, size) + " to a device", "the transfers alone", times, 1.1);
    Simulation::setPace(Simulation::Pace());
}

/// Everything an apply does with the package before the online device is touched.
void checking(Report &report)
{
    constexpr int pictures = 24;
    const QSize size = pictureSize(report);
    const CustomSite site({{plainDevice(targetIp), true}});
    const QString package = site.path() + "/show.corvelpro";
    require(packageOf(showDevice(sourceIp, pictures, size)).record("show", QString()).write(package),
            "cannot write the package");
    const auto plain = [&] {
        PackageReader reader(package);
        QVector<QByteArray> contents;
        for (const QString &name : reader.fileList()) {
            const QByteArray content = reader.read(name, 64 * MiB);
            if (name.endsWith(".png"))
                contents.append(content);
        }
        std::atomic<int> decoded{0};
        QtConcurrent::blockingMap(contents, [&decoded](const QByteArray &content) {
            const QImage picture = QImage::fromData(content, "PNG").convertToFormat(QImage::Format_ARGB32);
            decoded += picture.isNull() ? 0 : 1;
        });
        require(decoded == pictures, "a picture cannot be decoded");
    };
    const auto ours = [&] {
        EngineerDocLoad job(nullptr);
        job.setDeviceIp(targetIp);
        job.setPackagePath(package);
        require(job.checkPackageFile() && job.checkDevice(), "the package does not fit");
    };
    report.within("check " + inWords(pictures, size) + " before a reset", "one reading, one decoding on all cores",
                  inTurn(report.pairs(), plain, ours), 1.2);
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "*.debug=false");
    const QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(home.path()));
    QGuiApplication application(argc, argv);
    Report report(application.arguments());
    if (report.isWanted("saving"))
        saving(report);
    if (report.isWanted("applying"))
        applying(report);
    if (report.isWanted("checking"))
        checking(report);
    return report.allMet() ? 0 : 1;
}

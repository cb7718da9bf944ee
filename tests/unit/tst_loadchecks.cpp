// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "devicedescription.h"
#include "loadtesting.h"
#include "packagecopy.h"
#include "packagereader.h"

#include <core/icore.h>
#include <model/deviceconfigmanager.h>
#include <model/deviceeditor.h>

#include <QRegularExpression>

#include <cmath>

using namespace LoadTesting;
using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;
using namespace Simulation::Operations;
using Simulation::HardwareState;

Q_DECLARE_METATYPE(std::function<void(Simulation::HardwareState &)>)

/// The checks of a package and its description that precede a load.
class TstLoadChecks : public QObject, protected Loading
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // The checks before the start
    void a_job_begins_with_success();
    void an_empty_path_is_refused();
    void a_missing_package_is_refused();
    void wrong_checksum_fails_with_success_code();
    void a_right_checksum_passes();
    void an_unknown_target_is_refused();
    void without_a_package_no_device_is_checked();
    void the_folder_for_the_copy_is_made();
    void another_path_is_another_package();
    void a_failed_copy_leaves_no_package();
    void a_description_that_is_not_extracted_is_refused();
    void a_huge_description_is_refused_data();
    void a_huge_description_is_refused();
    void a_package_without_description_is_refused();
    void a_description_needs_its_extension();
    void only_the_ending_of_the_description_counts();
    void the_first_description_is_used();
    void an_unreadable_description_is_refused_data();
    void an_unreadable_description_is_refused();
    void another_model_is_refused_data();
    void another_model_is_refused();
    void different_cards_are_refused_data();
    void different_cards_are_refused();
    void cards_match_in_any_order();
    void exchange_cards_match_only_at_the_exchange_position_data();
    void exchange_cards_match_only_at_the_exchange_position();
    void a_newer_protocol_is_refused_data();
    void a_newer_protocol_is_refused();
    void an_offline_target_skips_cards_and_protocol();

    // Reading a description
    void only_json_documents_are_descriptions_data();
    void only_json_documents_are_descriptions();
    void a_missing_description_has_no_error();
    void an_unreadable_description_logs_its_path();
    void invalid_utf8_becomes_replacement_characters();
};

// ---------------------------------------------------------------------------------------------------------------------
// The checks before the start

void TstLoadChecks::a_job_begins_with_success()
{
    QCOMPARE(EngineerDocLoad(nullptr).resultCode(), int(LoadSuccess));
}

void TstLoadChecks::an_empty_path_is_refused()
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(onlineIp);
    QVERIFY(!job.checkPackageFile());
    QCOMPARE(job.resultCode(), int(LoadFileContentError));
}

void TstLoadChecks::a_missing_package_is_refused()
{
    EngineerDocLoad job(nullptr);
    job.setPackagePath(m_packages.filePath(QStringLiteral("missing.corvelpro")));
    WarningGuard::clear();
    QVERIFY(!job.checkPackageFile());
    QCOMPARE(job.resultCode(), int(LoadFileContentError));
    QCOMPARE(WarningGuard::texts(QtDebugMsg),
             QStringList{QStringLiteral("Apply of %1 failed: there is no such file")
                             .arg(m_packages.filePath(QStringLiteral("missing.corvelpro")))});
}

void TstLoadChecks::wrong_checksum_fails_with_success_code()
{
    const QString path = m_packages.filePath(QStringLiteral("wrong.corvelpro"));
    QVERIFY(packageOf(plainDevice(sourceIp))
                .recordWithChecksum(QString(32, QLatin1Char('0')), QStringLiteral("show"), QString())
                .write(path));
    EngineerDocLoad job(nullptr);
    job.setPackagePath(path);
    QVERIFY(!job.checkPackageFile());
    QCOMPARE(job.resultCode(), int(LoadSuccess));
}

void TstLoadChecks::a_right_checksum_passes()
{
    EngineerDocLoad job(nullptr);
    job.setPackagePath(write(packageOf(plainDevice(sourceIp))));
    QVERIFY(job.checkPackageFile());
    QCOMPARE(job.resultCode(), int(LoadSuccess));
}

void TstLoadChecks::an_unknown_target_is_refused()
{
    QCOMPARE(check(packageOf(plainDevice(sourceIp)), QStringLiteral("10.0.0.99")), int(LoadGetDeviceFailed));
}

void TstLoadChecks::without_a_package_no_device_is_checked()
{
    const auto checked = [](const QString &path) {
        EngineerDocLoad job(nullptr);
        job.setDeviceIp(onlineIp);
        job.setPackagePath(path);
        WarningGuard::clear();
        return job.checkDevice() ? QStringLiteral("passed")
                                 : QString::number(job.resultCode()) + ' ' + WarningGuard::texts(QtDebugMsg).join('|');
    };
    const auto failure = [](LoadResultCode code, const QString &path, const QString &cause) {
        return QStringLiteral("%1 Apply of %2 failed: %3").arg(code).arg(path, cause);
    };
    const QString missing = m_packages.filePath("missing.corvelpro");
    QCOMPARE(checked(missing),
             failure(LoadJsonFileError, missing, "cannot open " + missing + ": No such file or directory"));
    const QString renamed = write(packageOf(plainDevice(sourceIp)), "show.zip");
    QCOMPARE(checked(renamed), failure(LoadJsonFileError, renamed, "it does not have the extension of a package"));
    const QString package = write(packageOf(plainDevice(sourceIp)));
    QCOMPARE(checked(package), QString("passed"));
    QString answer;
    {
        const FullDisk disk(100);
        answer = checked(package);
    }
    QVERIFY2(answer.startsWith(failure(LoadDecompressFailed, package, "no room for a copy of " + package)),
             qPrintable(answer));
}

void TstLoadChecks::the_folder_for_the_copy_is_made()
{
    const QString package = write(packageOf(plainDevice(sourceIp)));
    QVERIFY(QDir(Core::ICore::ExtractJsonPath()).removeRecursively());
    const QByteArray temporary = qgetenv("TMPDIR");
    qputenv("TMPDIR", "/nowhere");
    EngineerDocLoad job(nullptr);
    job.setPackagePath(package);
    const bool isOpen = job.checkPackageFile();
    qputenv("TMPDIR", temporary);
    QVERIFY(isOpen);
}

void TstLoadChecks::another_path_is_another_package()
{
    const QString own = write(packageOf(plainDevice(sourceIp)), "own.corvelpro");
    const QString other = write(packageOf(plainDevice(sourceIp, otherModel)), "other.corvelpro");
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(onlineIp);
    job.setPackagePath(own);
    QVERIFY(job.checkPackageFile());
    job.setPackagePath(other);
    QVERIFY(!job.checkDevice());
    QCOMPARE(job.resultCode(), int(LoadDeviceTypeMismatch));
}

void TstLoadChecks::a_failed_copy_leaves_no_package()
{
    std::unique_ptr<PackageReader> package;
    QCOMPARE(openPackageCopy(write(packageOf(plainDevice(sourceIp))), package, nullptr), LoadSuccess);
    QVERIFY(package && package->isOpen());
    QCOMPARE(openPackageCopy(m_packages.filePath("missing.corvelpro"), package, nullptr), LoadSuccess);
    QVERIFY(!package);
}

void TstLoadChecks::a_description_that_is_not_extracted_is_refused()
{
    // It could be read, but others expect the file.
    QVERIFY(QDir().mkpath(Core::ICore::ExtractJsonPath() + "/device.json"));
    QCOMPARE(check(descriptionOnly(descriptionOf(plainDevice(sourceIp))), onlineIp), int(LoadGetDeviceFailed));
}

void TstLoadChecks::a_huge_description_is_refused_data()
{
    QTest::addColumn<QByteArray>("description");
    QTest::addColumn<int>("code");
    const QByteArray device = descriptionOf(plainDevice(sourceIp)).trimmed();
    const int longest = 16 * 1024 * 1024;
    QTest::newRow("16 MiB") << device.leftJustified(longest) << int(LoadSuccess);
    QTest::newRow("above 16 MiB") << device.leftJustified(longest + 1) << int(LoadGetDeviceFailed);

    const auto partsOf = [](QByteArray json) {
        const QRegularExpression strings(QStringLiteral("\"[^\"]*\""));
        json = QString::fromUtf8(json).remove(strings).toUtf8();
        const auto beginsPart = [](char c) { return c == ',' || c == ':' || c == '[' || c == '{'; };
        return int(std::count_if(json.begin(), json.end(), beginsPart));
    };
    const int most = 1024 * 1024;
    for (const QByteArray element : {"1", "[]", "{}", "{\"a\":1}"}) {
        const QByteArray begun = device.left(device.size() - 1) + ",\"more\":[1";
        const QByteArray many = begun + (',' + element).repeated((most - partsOf(begun)) / (1 + partsOf(element)));
        const auto withParts = [&](int count) {
            return many + QByteArray(",1").repeated(count - partsOf(many)) + "]}";
        };
        QTest::newRow(qPrintable("a million parts, " + element)) << withParts(most) << int(LoadSuccess);
        QTest::newRow(qPrintable("above a million parts, " + element))
            << withParts(most + 1) << int(LoadGetDeviceFailed);
    }
    QTest::newRow("a million commas in a text")
        << device.left(device.size() - 1) + ",\"more\":\"" + QByteArray(most + 1, ',') + "\"}" << int(LoadSuccess);
}

void TstLoadChecks::a_huge_description_is_refused()
{
    QFETCH(QByteArray, description);
    QFETCH(int, code);
    QCOMPARE(check(descriptionOnly(description), onlineIp), code);
}

void TstLoadChecks::a_package_without_description_is_refused()
{
    QCOMPARE(check(PackageBuilder().file("json.txt", "{}").file("json", "{}"), onlineIp), int(LoadJsonFileError));
}

void TstLoadChecks::a_description_needs_its_extension()
{
    EngineerDocLoad job(nullptr);
    job.setDeviceIp(onlineIp);
    job.setPackagePath(write(packageOf(plainDevice(sourceIp)), QStringLiteral("show.zip")));
    QVERIFY(job.checkPackageFile());
    QVERIFY(!job.checkDevice());
    QCOMPARE(job.resultCode(), int(LoadJsonFileError));
}

void TstLoadChecks::only_the_ending_of_the_description_counts()
{
    PackageBuilder package;
    package.file("notes/any name.JsOn", descriptionOf(plainDevice(sourceIp)));
    QCOMPARE(check(package, onlineIp), int(LoadSuccess));
}

void TstLoadChecks::the_first_description_is_used()
{
    const QByteArray right = descriptionOf(plainDevice(sourceIp));
    const QByteArray wrong = descriptionOf(plainDevice(sourceIp, otherModel));
    QCOMPARE(check(PackageBuilder().file("b.json", right).file("a.json", wrong), onlineIp), int(LoadSuccess));
    QCOMPARE(check(PackageBuilder().file("b.json", wrong).file("a.json", right), onlineIp),
             int(LoadDeviceTypeMismatch));
}

void TstLoadChecks::an_unreadable_description_is_refused_data()
{
    QTest::addColumn<QByteArray>("description");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no JSON") << QByteArray("<xml/>");
    QTest::newRow("cut off") << descriptionOf(plainDevice(sourceIp)).left(100);
}

void TstLoadChecks::an_unreadable_description_is_refused()
{
    QFETCH(QByteArray, description);
    QCOMPARE(check(descriptionOnly(description), onlineIp), int(LoadGetDeviceFailed));
    QCOMPARE(check(descriptionOnly(description), offlineIp), int(LoadGetDeviceFailed));
}

void TstLoadChecks::another_model_is_refused_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("online") << onlineIp;
    QTest::newRow("offline") << offlineIp;
}

void TstLoadChecks::another_model_is_refused()
{
    QFETCH(QString, target);
    QCOMPARE(check(packageOf(plainDevice(sourceIp, otherModel)), target), int(LoadDeviceTypeMismatch));
}

void TstLoadChecks::different_cards_are_refused_data()
{
    using Change = std::function<void(HardwareState &)>;
    QTest::addColumn<Change>("change");
    QTest::newRow("one more") << Change([](HardwareState &state) { state.cards.append({1, 9, 201, {}}); });
    QTest::newRow("one less") << Change([](HardwareState &state) { state.cards.removeLast(); });
    QTest::newRow("none") << Change([](HardwareState &state) { state.cards.clear(); });
    QTest::newRow("type") << Change([](HardwareState &state) { state.cards[0].type = 4; });
    QTest::newRow("position") << Change([](HardwareState &state) { state.cards[1].pos = 5; });
    QTest::newRow("model") << Change([](HardwareState &state) { state.cards[2].modelId = 302; });
}

void TstLoadChecks::different_cards_are_refused()
{
    QFETCH(std::function<void(HardwareState &)>, change);
    HardwareState source = plainDevice(sourceIp);
    change(source);
    QCOMPARE(check(packageOf(source), onlineIp), int(LoadCardMismatch));
}

void TstLoadChecks::cards_match_in_any_order()
{
    HardwareState source = plainDevice(sourceIp);
    std::reverse(source.cards.begin(), source.cards.end());
    source.cards[0].settings = QJsonObject{{QStringLiteral("settings"), QStringLiteral("do not count")}};
    QCOMPARE(check(packageOf(source), onlineIp), int(LoadSuccess));
}

void TstLoadChecks::exchange_cards_match_only_at_the_exchange_position_data()
{
    QTest::addColumn<int>("model");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("packageType");
    QTest::addColumn<int>("targetType");
    QTest::addColumn<int>("code");

    const int unknownModel = 4711;
    struct
    {
        const char *name;
        int model;
        int exchangePos;
    } const models[] = {
        {"configured 8", mainModel, 8}, {"configured 1", otherModel, 1}, {"unknown, so 8", unknownModel, 8}};
    for (const auto &model : models) {
        for (int position = model.exchangePos - 1; position <= model.exchangePos + 1; ++position) {
            const int exchanged = position == model.exchangePos ? 0 : 3;
            const auto row = [&](int package, int target, int code) {
                QTest::addRow("%s, %d for %d at %d", model.name, package, target, position)
                    << model.model << position << package << target << code;
            };
            row(3, 5, exchanged);
            row(5, 3, exchanged);
            row(3, 3, 0);
            row(5, 5, 0);
            row(3, 4, 3);
            row(4, 5, 3);
        }
    }
}

void TstLoadChecks::exchange_cards_match_only_at_the_exchange_position()
{
    QFETCH(int, model);
    QFETCH(int, position);
    QFETCH(int, packageType);
    QFETCH(int, targetType);
    QFETCH(int, code);

    HardwareState target = plainDevice(onlineIp, model);
    target.cards = {{targetType, position, 301, {}}};
    m_site.reset();
    m_site.emplace(QVector<CustomDevice>{{target, true}});
    HardwareState source = plainDevice(sourceIp, model);
    source.cards = {{packageType, position, 301, {}}};
    QCOMPARE(check(packageOf(source), onlineIp), code);
}

void TstLoadChecks::a_newer_protocol_is_refused_data()
{
    QTest::addColumn<double>("target");
    QTest::addColumn<double>("protocol");
    QTest::addColumn<int>("code");
    QTest::newRow("none") << 2.4 << 0.0 << int(LoadSuccess);
    QTest::newRow("older") << 2.4 << 2.3 << int(LoadSuccess);
    QTest::newRow("equal") << 2.4 << 2.4 << int(LoadSuccess);
    QTest::newRow("newer") << 2.4 << 2.5 << int(LoadProtocolVersionMismatch);
    QTest::newRow("a little newer") << 2.4 << 2.41 << int(LoadProtocolVersionMismatch);
    QTest::newRow("equal but for the last bit") << 3.3 << std::nextafter(3.3, 4) << int(LoadSuccess);
}

void TstLoadChecks::a_newer_protocol_is_refused()
{
    QFETCH(double, target);
    QFETCH(double, protocol);
    QFETCH(int, code);
    (*m_site)->device(onlineIp)->setCommunicationProtocol(target);
    HardwareState source = plainDevice(sourceIp);
    source.protocolNumber = protocol;
    QCOMPARE(check(packageOf(source), onlineIp), code);
}

void TstLoadChecks::an_offline_target_skips_cards_and_protocol()
{
    HardwareState source = plainDevice(sourceIp);
    source.cards = {{9, 9, 9, {}}};
    source.protocolNumber = 99;
    QCOMPARE(check(packageOf(source), offlineIp), int(LoadSuccess));
    QCOMPARE(check(packageOf(source), onlineIp), int(LoadCardMismatch));
}

// ---------------------------------------------------------------------------------------------------------------------
// Reading a description

void TstLoadChecks::only_json_documents_are_descriptions_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isDevice");
    QTest::newRow("missing") << QByteArray() << false;
    QTest::newRow("empty") << QByteArray("") << false;
    QTest::newRow("blank") << QByteArray(" \n") << false;
    QTest::newRow("null") << QByteArray("null") << false;
    QTest::newRow("number") << QByteArray("42") << false;
    QTest::newRow("empty object") << QByteArray("{}") << true;
    QTest::newRow("array") << QByteArray("[1]") << true;
    QTest::newRow("object") << QByteArray("{\"modelId\": 1600}") << true;
    QTest::newRow("Windows line ends") << QByteArray("{\r\n\"modelId\": 1600\r\n}\r\n") << true;
    QTest::newRow("cut off") << QByteArray("{\"modelId\": 16") << false;
}

void TstLoadChecks::only_json_documents_are_descriptions()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isDevice);
    const QString path = m_packages.filePath(QStringLiteral("description.json"));
    QFile::remove(path);
    if (!content.isNull())
        QVERIFY(writeFile(path, content));

    const std::shared_ptr<Model::Device> device = EngineerDocLoad(nullptr).unserailizeDevice(path);
    QCOMPARE(bool(device), isDevice);
    if (device)
        QCOMPARE(device->getModelID(), content.contains("modelId") ? mainModel : 0);
    QFile::remove(path);
}

void TstLoadChecks::a_missing_description_has_no_error()
{
    const QString path = m_packages.filePath("broken.json");
    QVERIFY(writeFile(path, "{"));
    QString error;
    QVERIFY(!readDeviceDescription(path, error));
    QVERIFY(!error.isEmpty());
    QVERIFY(!readDeviceDescription(m_packages.filePath("missing.json"), error));
    QCOMPARE(error, QString());
}

void TstLoadChecks::an_unreadable_description_logs_its_path()
{
    const QString path = m_packages.filePath(QStringLiteral("folder.json"));
    QVERIFY(QDir().mkpath(path));
    QVERIFY(!EngineerDocLoad(nullptr).unserailizeDevice(path));
    QCOMPARE(WarningGuard::count(QtDebugMsg, QStringLiteral("Open file [%1] failed").arg(path)), 1);
}

void TstLoadChecks::invalid_utf8_becomes_replacement_characters()
{
    const QString path = m_packages.filePath(QStringLiteral("latin1.json"));
    QVERIFY(writeFile(path, "{\"name\": \"B\xfchne\", \"modelId\": 1600}"));
    const std::shared_ptr<Model::Device> device = EngineerDocLoad(nullptr).unserailizeDevice(path);
    QVERIFY(device);
    QCOMPARE(device->getName(), QStringLiteral("B%1hne").arg(QChar(QChar::ReplacementCharacter)));
}

TEST_MAIN_GUI(TstLoadChecks)
#include "tst_loadchecks.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "stage.h"

#include <support/heldfile.h>
#include <support/testmain.h>

using namespace PanelTesting;
using namespace Races;
using namespace TestSupport;
using Simulation::HardwareState;

namespace {

const QString packageName = QStringLiteral("show");
const QString savedName = QStringLiteral("saved");

} // namespace

/// Each disturbance at each point of each operation.
///
/// DISTURB_EVERY=n takes only every n-th point, with a different first one for each disturbance.
class TstDisturbances : public QObject
{
    Q_OBJECT

private slots:
    void disturbed_operation_keeps_the_invariants_data();
    void disturbed_operation_keeps_the_invariants();
    void disturbed_pool_work_keeps_the_invariants_data();
    void disturbed_pool_work_keeps_the_invariants();

private:
    bool disturb(Operation operation, const QString &ip, Disturbance disturbance, int point);
};

/// Of work in the thread pool.
enum Moment { BeforeItBegins, InTheMiddle, OverButNotYetTold, MomentCount };

void TstDisturbances::disturbed_operation_keeps_the_invariants_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<QString>("ip");
    QTest::addColumn<int>("disturbance");
    const QVector<QPair<Operation, QString>> operations{
        {Save, richIp},   {Save, offlineIp}, {Apply, richIp},     {Apply, offlineIp}, {ApplyWithBackup, plainIp},
        {Import, richIp}, {SaveAs, richIp},  {SaveAllAs, richIp}, {Edit, richIp},     {Delete, richIp},
        {Scan, richIp}};
    for (const auto &[operation, ip] : operations) {
        for (int number = 0; number < disturbanceCount; ++number) {
            const QString device = ip == offlineIp ? QStringLiteral(" (offline)") : QString();
            QTest::addRow("%s%s, %s", qPrintable(nameOf(operation)), qPrintable(device),
                          qPrintable(nameOf(Disturbance(number))))
                << int(operation) << ip << number;
        }
    }
}

/// False if the operation ended before that point.
bool TstDisturbances::disturb(Operation operation, const QString &ip, Disturbance disturbance, int point)
{
    Stage stage;
    const HardwareState packed = richDevice(QStringLiteral("10.0.0.77"));
    stage.addPackage(packageName, packed);
    stage.addPackage(QStringLiteral("other"), plainDevice(QStringLiteral("10.0.0.76")));
    stage.openPanel();
    bool isWell = stage.comesToRest();
    stage.select(ip);
    stage.brokenTruths({packageName, QStringLiteral("other")});
    const HardwareState before = stage.site()->hardware(ip)->state();
    QMap<QString, HardwareState> others;
    for (const QString &other : {richIp, plainIp, offlineIp, foreignIp}) {
        if (other != ip)
            others.insert(other, stage.site()->hardware(other)->state());
    }

    Answers answers;
    answers.name = savedName;
    answers.comment = QStringLiteral("disturbed");
    answers.question = QMessageBox::Yes;
    answers.paths = stage.filesFor(operation, packed);
    WarningGuard::clear();
    stage.points().start();
    bool isDisturbed = false;
    stage.points().at(point, Stage::isOfTheEventLoop(disturbance), [&] {
        isDisturbed = true;
        stage.disturb(disturbance, ip, packageName);
    });
    const QString row = operation == Scan ? QStringLiteral("scanned") : packageName;
    if (!stage.press(operation, answers, row))
        qFatal("There is nothing to press");
    isWell = stage.comesToRest() && isWell;
    stage.points().forget();

    QStringList broken;
    if (!isWell)
        broken.append(QStringLiteral("it never came to rest"));
    QSet<QString> touched;
    switch (operation) {
    case Save:
    case ApplyWithBackup:
        touched = {savedName, QStringLiteral("Project1"), QString::fromUtf8("项目1")};
        break;
    case Import:
        touched = {QStringLiteral("first"), QStringLiteral("second")};
        break;
    case Edit:
        touched = {packageName, savedName};
        break;
    case Delete:
    case Scan:
        touched = {row};
        break;
    default:
        break;
    }
    // A device that cannot be synchronised is only logged.
    const bool isLogged = WarningGuard::count(
        QtWarningMsg, QStringLiteral("Import project file failed, as sync device from hardware failed."));
    const QStringList boxes = stage.boxes();
    const bool isOpen = stage.hasPanel() && disturbance != PanelReopened;
    broken += stage.brokenTruthsAfterClosing(touched);

    for (auto other = others.begin(); other != others.end(); ++other) {
        if (stage.site()->hardware(other.key())->state() != *other)
            broken.append(QStringLiteral("another device was changed: ") + other.key());
    }
    // A save leaves all or nothing.
    if (operation == Save && QFile::exists(projectFile(savedName))) {
        for (const char *entry :
             {"BKG/BKG_1.png", "BKG/BKG_7.png", "LOGO/LOGO_2.png", "Preset/1.RPst", "Preset/300.RPst"}) {
            if (!entriesOf(projectFile(savedName)).contains(QLatin1String(entry)))
                broken.append(QStringLiteral("the package lacks ") + QLatin1String(entry));
        }
    }
    // An apply is complete, not begun, or reported; changes to files are no reason to have reset the device.
    if ((operation == Apply || operation == ApplyWithBackup) && ip != offlineIp) {
        const HardwareState after = stage.site()->hardware(ip)->state();
        const bool isDone = after.configuration() == packed.configuration() ||
                            after.configuration() == replacementDevice().configuration();
        if (!isDone && after != before && boxes.isEmpty() && isOpen && !isLogged)
            broken.append(QStringLiteral("applied in part, and nobody was told: ") +
                          after.configuration().differencesTo(packed.configuration()).join(QStringLiteral("; ")));
        if (!isDone && after != before && isOfFiles(disturbance))
            broken.append(QStringLiteral("reset in vain: ") + boxes.join(QStringLiteral("; ")) +
                          after.configuration().differencesTo(packed.configuration()).join(QStringLiteral("; ")));
    }
    if (!broken.isEmpty()) {
        broken.prepend(QStringLiteral("%1 at point %2:").arg(nameOf(disturbance), QString::number(point)));
        QTest::qFail(qPrintable(broken.join(QStringLiteral("\n  "))), __FILE__, __LINE__);
    }
    return isDisturbed;
}

void TstDisturbances::disturbed_operation_keeps_the_invariants()
{
    QFETCH(int, operation);
    QFETCH(QString, ip);
    QFETCH(int, disturbance);
    const int distance = qMax(1, qEnvironmentVariableIntValue("DISTURB_EVERY"));
    int point = 1 + disturbance % distance;
    while (disturb(Operation(operation), ip, Disturbance(disturbance), point) && !QTest::currentTestFailed())
        point += distance;
}

void TstDisturbances::disturbed_pool_work_keeps_the_invariants_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<int>("moment");
    QTest::addColumn<int>("disturbance");
    const char *const moments[] = {"before it begins", "in the middle", "over but not yet told"};
    for (const Operation operation : {Import, SaveAs, SaveAllAs, Scan}) {
        for (int moment = 0; moment < MomentCount; ++moment) {
            for (int number = 0; number < disturbanceCount; ++number)
                QTest::addRow("%s, %s, %s", qPrintable(nameOf(operation)), moments[moment],
                              qPrintable(nameOf(Disturbance(number))))
                    << int(operation) << moment << number;
        }
    }
}

void TstDisturbances::disturbed_pool_work_keeps_the_invariants()
{
    QFETCH(int, operation);
    QFETCH(int, moment);
    QFETCH(int, disturbance);
    const QString otherName = QStringLiteral("other");
    const QString scannedName = QStringLiteral("scanned");
    const HardwareState packed = richDevice(QStringLiteral("10.0.0.77"));
    QThreadPool::globalInstance()->setMaxThreadCount(4);
    Stage stage;
    stage.addPackage(packageName, packed);
    stage.addPackage(otherName, plainDevice(QStringLiteral("10.0.0.76")));
    stage.openPanel();
    QVERIFY(stage.comesToRest());
    stage.brokenTruths({packageName, otherName});

    Answers answers;
    answers.paths = stage.filesFor(Operation(operation), packed);
    QSet<QString> touched;
    QString heldPath = projectFile(otherName);
    if (operation == Import) {
        touched = {QStringLiteral("first"), QStringLiteral("second")};
        heldPath = answers.paths.last();
    } else if (operation == Scan) {
        touched = {scannedName};
        heldPath = projectFile(scannedName);
    }
    std::optional<HeldThreadPool> heldPool;
    std::optional<HeldFile> heldFile;
    if (moment == BeforeItBegins)
        heldPool.emplace();
    else if (moment == InTheMiddle)
        heldFile.emplace(heldPath);

    bool isDisturbed = false;
    const auto disturbNow = [&] {
        isDisturbed = moment != InTheMiddle || heldFile->waitForReader();
        if (moment == OverButNotYetTold)
            QThreadPool::globalInstance()->waitForDone();
        stage.disturb(Disturbance(disturbance), richIp, packageName);
    };
    // The first point is the file dialog, the second the waiting dialog; the work starts after it.
    stage.points().start();
    if (operation != Scan)
        stage.points().at(2, true, disturbNow);
    QVERIFY(stage.press(Operation(operation), answers, operation == Scan ? scannedName : otherName));
    if (operation == Scan) {
        QCoreApplication::processEvents();
        disturbNow();
    }
    QTRY_VERIFY(isDisturbed);
    heldPool.reset();
    heldFile.reset();
    QVERIFY(stage.comesToRest());
    const QStringList broken = stage.brokenTruthsAfterClosing(touched);
    QVERIFY2(broken.isEmpty(), qPrintable(broken.join(QStringLiteral("\n  "))));
}

TEST_MAIN(TstDisturbances)
#include "tst_disturbances.moc"

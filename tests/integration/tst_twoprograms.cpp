// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/modemanager.h>
#include <extensionsystem/objectpool.h>
#include <extensionsystem/pluginmanager.h>
#include <settingcfg/settingcfgmodemanager.h>
#include <simulation/journal.h>
#include <support/answerbook.h>
#include <support/customsite.h>
#include <support/testmain.h>
#include <widgets/icenterwidget.h>
#include <widgets/waitingdialog.h>

#include <QLineEdit>
#include <QProcess>
#include <QSaveFile>
#include <QTableWidget>
#include <QTextStream>
#include <QThreadPool>

using namespace TestSupport;
using Corvel::Widgets::ICenterWidget;
using Corvel::Widgets::WaitingDialog;
using HX::ExtensionSystem::ObjectPool;
using HX::ExtensionSystem::PluginManager;
using Simulation::HardwareState;
using Simulation::Journal;

namespace {

/// Where the two programs meet, like a USB disk: they share nothing else.
constexpr char exchangeVariable[] = "EXCHANGE_DIRECTORY";
const QString projectName = QString::fromUtf8("Evening show 晚会");

QString inExchange(const QString &name)
{
    return QFile::decodeName(qgetenv(exchangeVariable)) + QLatin1Char('/') + name;
}

QString packagePath()
{
    return inExchange(projectName + QStringLiteral(".corvelpro"));
}

/// The device's full configuration, pictures and presets as digests.
QByteArray described(const HardwareState &state)
{
    return QJsonDocument(state.configuration().toJson()).toJson();
}

/// Complete when it appears, since another program waits for it.
bool leaveBehind(const QString &name, const QByteArray &bytes)
{
    QSaveFile file(inExchange(name));
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

QByteArray found(const QString &name)
{
    QFile file(inExchange(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// One copy of the program with its own home, site and built plugin: its operator's work.
class Program : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void saves_its_device();
    void applies_the_package();

private:
    void start(const HardwareState &device);
    HardwareState hardware() const { return (*m_site)->hardware(m_ip)->state(); }
    ICenterWidget *panel() const;
    QTableWidget *table() const { return panel()->findChild<QTableWidget *>(); }
    QWidget *row() const { return table()->cellWidget(0, 2); }

    QString m_ip;
    std::optional<CustomSite> m_site;
    std::optional<PluginManager> m_plugins;
};

#define WAIT_FOR(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, 60000)
#define WAIT_FOR_BOOK(book) QTRY_VERIFY2_WITH_TIMEOUT((book).isSatisfied(), qPrintable((book).report()), 60000)

void Program::cleanup()
{
    m_plugins.reset();
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_site.reset();
}

void Program::start(const HardwareState &device)
{
    m_ip = device.identity.ip;
    m_site.emplace(QVector<CustomDevice>{{device, true}});
    Core::HostSettings settings = Core::hostSettings();
    settings.language = QStringLiteral("en");
    settings.trPath = QStringLiteral(HOST_TRANSLATION_DIRECTORY);
    Core::applySettings(settings);
    m_plugins.emplace();
    m_plugins->setPluginDirectory(QStringLiteral(HOST_PLUGIN_DIRECTORY));
    m_plugins->loadPlugins();
    QCOMPARE(m_plugins->errors(), QStringList());
    Core::ModeManager::activateMode("SettingCfg");
    SettingCfg::SettingCfgModeManager::instance()->activateMode("ProjectFileCfg");
    WAIT_FOR(panel());
    panel()->window()->show();
    QVERIFY(table());
    QCOMPARE(table()->rowCount(), 0);
}

ICenterWidget *Program::panel() const
{
    for (ICenterWidget *widget : ObjectPool::instance()->objectsOfType<ICenterWidget>()) {
        if (widget->id() == "ProjectFileCfg.Central")
            return widget;
    }
    return nullptr;
}

void Program::saves_its_device()
{
    start(richDevice(QStringLiteral("10.0.0.11")));
    const HardwareState before = hardware();
    AnswerBook book;
    book.expectDialog(QStringLiteral("EngineerPropertySettingWidget"), [](QDialog *dialog) {
        dialog->findChild<QLineEdit *>()->setText(projectName);
        click(dialog, QStringLiteral("OK"));
    });
    click(panel(), QStringLiteral("Save Project"));
    WAIT_FOR_BOOK(book);
    WAIT_FOR(table()->rowCount() == 1 && !WaitingDialog::instance()->isVisible());

    book.expectFileDialog(QStringLiteral("choose Des Directory"), {packagePath()});
    book.expectInformation(QStringLiteral("Remind"), QStringLiteral("save as success"));
    click(row(), QStringLiteral("Save as"));
    WAIT_FOR_BOOK(book);

    QVERIFY(hardware() == before);
    QVERIFY(leaveBehind(QStringLiteral("saved.json"), described(before)));
    // Runs on while the other program applies; ends with its input.
    QTextStream(stdin).readAll();
    QVERIFY(hardware() == before);
}

void Program::applies_the_package()
{
    HardwareState device = plainDevice(QStringLiteral("192.168.7.20"));
    device.identity.name = QString::fromUtf8("Второе устройство");
    device.mvrEnabled = false;
    device.settings = QJsonObject();
    device.screens.removeLast();
    start(device);
    const HardwareState before = hardware();
    QVERIFY(described(before) != found(QStringLiteral("saved.json")));

    AnswerBook book;
    book.expectFileDialog(QStringLiteral("Project file"), {packagePath()});
    book.expectInformation(QStringLiteral("Remind"), QStringLiteral("Import as success"));
    click(panel(), QStringLiteral("Import Project"));
    WAIT_FOR_BOOK(book);
    WAIT_FOR(table()->rowCount() == 1);
    QCOMPARE(table()->item(0, 0)->text(), projectName);

    Journal::instance()->clear();
    book.expectQuestion(QStringLiteral("Remind"), QString(), QMessageBox::No);
    click(row(), QStringLiteral("Apply"));
    WAIT_FOR_BOOK(book);
    WAIT_FOR(Journal::instance()->count(Simulation::Operations::clearScreenList) == 1);
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));

    HardwareState identity;
    identity.identity = hardware().identity;
    HardwareState identityBefore;
    identityBefore.identity = before.identity;
    QCOMPARE(identity.differencesTo(identityBefore), QStringList());
    QVERIFY(leaveBehind(QStringLiteral("applied.json"), described(hardware())));
}

/// One program saves, another one applies: they share only the package.
class TstTwoPrograms : public QObject
{
    Q_OBJECT

private slots:
    void what_one_program_saved_another_applies();
};

/// This program, restarted to do one operator's work.
class Copy : public QProcess
{
public:
    Copy(const QString &work, const QString &exchange)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QLatin1String(exchangeVariable), exchange);
        setProcessEnvironment(environment);
        setProcessChannelMode(QProcess::MergedChannels);
        start(QCoreApplication::applicationFilePath(), {QStringLiteral("--program"), work});
    }
    ~Copy() override
    {
        closeWriteChannel();
        if (!waitForFinished(60000))
            kill();
    }
    bool ended() const { return state() == QProcess::NotRunning; }
    bool succeeded() const { return ended() && exitStatus() == QProcess::NormalExit && exitCode() == 0; }
};

void TstTwoPrograms::what_one_program_saved_another_applies()
{
    const QTemporaryDir exchange;
    const QString savedPath = exchange.filePath(QStringLiteral("saved.json"));
    Copy saving(QStringLiteral("saves_its_device"), exchange.path());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(savedPath) || saving.ended(), 240000);
    QVERIFY2(!saving.ended(), saving.readAll());

    Copy applying(QStringLiteral("applies_the_package"), exchange.path());
    QTRY_VERIFY_WITH_TIMEOUT(applying.ended(), 240000);
    QVERIFY2(applying.succeeded(), applying.readAll());
    QVERIFY2(!saving.ended(), saving.readAll());

    QFile saved(savedPath);
    QFile applied(exchange.filePath(QStringLiteral("applied.json")));
    QVERIFY(saved.open(QIODevice::ReadOnly) && applied.open(QIODevice::ReadOnly));
    const QByteArray expected = saved.readAll();
    QVERIFY(expected.contains("Opening"));
    QCOMPARE(applied.readAll(), expected);

    saving.closeWriteChannel();
    QTRY_VERIFY_WITH_TIMEOUT(saving.ended(), 60000);
    QVERIFY2(saving.succeeded(), saving.readAll());
}

int main(int argc, char *argv[])
{
    TestHome home;
    QApplication application(argc, argv);
    if (argc != 3 || qstrcmp(argv[1], "--program") != 0) {
        TstTwoPrograms test;
        return runTest(&test, argc, argv);
    }
    Program program;
    argv[1] = argv[0];
    return runTest(&program, argc - 1, argv + 1);
}
#include "tst_twoprograms.moc"

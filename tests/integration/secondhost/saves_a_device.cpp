// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "acme/host.h"

#include <QApplication>
#include <QDir>
#include <QPluginLoader>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

using namespace Acme;

/// saves_a_device PLUGIN TRANSLATIONS FOLDER: what an operator does in the second host, and what the host does for it.
class SavesADevice : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void the_plugin_names_what_it_needs();
    void its_sub_mode_opens_the_panel();
    void an_offline_device_is_saved();
    void shutting_down_takes_everything_out();

private:
    static Page *panel()
    {
        return PluginBase::pool().isEmpty() ? nullptr : dynamic_cast<Page *>(PluginBase::pool().last());
    }
    static QPushButton *button(QWidget *parent, const QString &text);

    QPluginLoader m_loader;
    PluginBase *m_plugin = nullptr;
};

QPushButton *SavesADevice::button(QWidget *parent, const QString &text)
{
    const QList<QPushButton *> buttons = parent->findChildren<QPushButton *>();
    for (QPushButton *button : buttons) {
        if (button->text() == text)
            return button;
    }
    return nullptr;
}

void SavesADevice::initTestCase()
{
    const QStringList arguments = QCoreApplication::arguments();
    m_loader.setFileName(arguments.at(1));
    Application::s_translations = arguments.at(2);
    Application::s_folder = arguments.at(3);
    QVERIFY(QDir().mkpath(Application::s_folder + "/devices/10.0.0.1/BKG"));
    QImage picture(16, 9, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    QVERIFY(picture.save(Application::s_folder + "/devices/10.0.0.1/BKG/BKG_3.png"));
}

void SavesADevice::the_plugin_names_what_it_needs()
{
    QCOMPARE(m_loader.metaData().value("IID").toString(), QStringLiteral("Velmora.CorvelPlugin"));
    const QJsonArray needed = m_loader.metaData().value("MetaData").toObject().value("Dependencies").toArray();
    QStringList names;
    for (const QJsonValue &dependency : needed)
        names.append(dependency.toObject().value("Name").toString());
    QCOMPARE(names, QStringList({"core", "navigationbar", "settingcfg"}));
}

void SavesADevice::its_sub_mode_opens_the_panel()
{
    m_plugin = qobject_cast<PluginBase *>(m_loader.instance());
    QVERIFY2(m_plugin, qPrintable(m_loader.errorString()));
    QString error;
    QVERIFY2(m_plugin->initialize({}, &error), qPrintable(error));
    m_plugin->extensionsInitialized();
    QCOMPARE(SubModes::instance()->modes(), QVector<Key>{"ProjectFileCfg"});

    SubModes::instance()->activateMode("ProjectFileCfg");
    QTRY_VERIFY(panel() && panel()->isVisible());
    QCOMPARE(Pages::s_shown, QVector<Key>{"ProjectFileCfg.Central"});
}

void SavesADevice::an_offline_device_is_saved()
{
    const QString package = Application::s_folder + "/Documents/Velmora/Tarvo/ProjectFiles/Project1.corvelpro";
    QTimer clicker;
    connect(&clicker, &QTimer::timeout, this, [] {
        QWidget *dialog = QApplication::activeModalWidget();
        if (dialog && dialog->inherits("EngineerPropertySettingWidget"))
            button(dialog, "OK")->click();
    });
    clicker.start(0);
    QVERIFY(button(panel(), "Save Project"));
    button(panel(), "Save Project")->click();
    clicker.stop();
    QCOMPARE(Application::s_running, Application::Saving);
    QTRY_COMPARE(Application::s_running, Application::Idle);
    QVERIFY(QFile::exists(package));
}

void SavesADevice::shutting_down_takes_everything_out()
{
    QCOMPARE(m_plugin->aboutToShutdown(), PluginBase::AtOnce);
    QVERIFY(SubModes::instance()->modes().isEmpty());
    QVERIFY(PluginBase::pool().isEmpty());
    delete m_plugin;
}

int main(int argc, char *argv[])
{
    // What Qt takes for the Documents folder.
    qputenv("HOME", argv[argc > 3 ? 3 : 0]);
    qputenv("XDG_CONFIG_HOME", QByteArray(argv[argc > 3 ? 3 : 0]) + "/config");
    QApplication app(argc, argv);
    SavesADevice test;
    return argc > 3 ? QTest::qExec(&test) : 2;
}

#include "saves_a_device.moc"

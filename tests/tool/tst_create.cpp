// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "devicefiles.h"

#include "zippackagehandle.h"

#include <QTemporaryDir>

using namespace ToolTesting;
using ProjectFileCfg::Internal::EngineerPacketInfo;
using ProjectFileCfg::Internal::ZipPackageHandle;

class TstCreate : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void file_is_what_a_save_writes();
    void name_can_differ_from_the_file();
    void existing_target_is_kept();
    void unfit_properties_are_wrong_usage_data();
    void unfit_properties_are_wrong_usage();
    void directory_must_be_packable();
    void full_disk_leaves_nothing();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }

    QScopedPointer<QTemporaryDir> m_dir;
    QString m_device;
};

void TstCreate::init()
{
    m_dir.reset(new QTemporaryDir);
    m_device = path("device");
    QVERIFY(writeDirectory(m_device, {{"10.0.0.1.json", "{}"},
                                      {"LOGO/", {}},
                                      {"Preset/1.RPst", "preset"},
                                      {"large.bin", PackageTesting::noise(300000)}}));
}

void TstCreate::file_is_what_a_save_writes()
{
    const Outcome outcome = runTool({"create", "--json", m_device, path("show.corvelpro"), "--comment", "第一天"});
    QCOMPARE(outcome.code, yes);
    EngineerPacketInfo saved{path("saved.corvelpro"), "show", "第一天", ""};
    QVERIFY(ZipPackageHandle::compressEngineerPacket(m_device, saved));
    QVERIFY(readFile(path("show.corvelpro")) == readFile(path("saved.corvelpro")));
    QCOMPARE(outcome.json(), QJsonObject({{"result", "done"},
                                          {"file", path("show.corvelpro")},
                                          {"name", "show"},
                                          {"comment", "第一天"},
                                          {"checksum", saved.strChecksum}}));
    QCOMPARE(namesIn(m_dir->path()), QStringList({"device", "saved.corvelpro", "show.corvelpro"}));
}

void TstCreate::name_can_differ_from_the_file()
{
    QCOMPARE(runTool({"create", m_device, path("x.CorvelPro"), "--name", "Show"}).code, yes);
    EngineerPacketInfo info{path("x.CorvelPro"), "", "", ""};
    QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QString("Show"));
    QCOMPARE(info.strComment, QString());
}

void TstCreate::existing_target_is_kept()
{
    QVERIFY(writeFile(path("old.corvelpro"), "old"));
    QVERIFY(QFile::link("nowhere", path("link.corvelpro")));
    QVERIFY(QDir().mkpath(path("folder.corvelpro")));
    const QStringList before = namesIn(m_dir->path());
    for (const QString &name : {QString("old"), QString("link"), QString("folder")}) {
        const Outcome outcome = runTool({"create", m_device, path(name + ".corvelpro")});
        QCOMPARE(outcome.code, no);
        QCOMPARE(outcome.messages, ("corvelpro: " + path(name) + ".corvelpro: already exists\n").toUtf8());
    }
    QCOMPARE(readFile(path("old.corvelpro")), QByteArray("old"));
    QCOMPARE(namesIn(m_dir->path()), before);
}

void TstCreate::unfit_properties_are_wrong_usage_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QStringList>("options");
    QTest::newRow("no extension") << "show.zip" << QStringList();
    QTest::newRow("a long file name") << QString(65, 'x') + ".corvelpro" << QStringList();
    QTest::newRow("a long name") << "show.corvelpro" << QStringList{"--name", QString(22, QChar(0x6F14))};
    QTest::newRow("a dot first") << "show.corvelpro" << QStringList{"--name", ".show"};
    QTest::newRow("a blank last") << "show.corvelpro" << QStringList{"--name", "show "};
    QTest::newRow("a slash") << "show.corvelpro" << QStringList{"--name", "a/b"};
    QTest::newRow("a question mark") << "show.corvelpro" << QStringList{"--name", "a?"};
    QTest::newRow("a line break") << "show.corvelpro" << QStringList{"--name", "a\nb"};
    QTest::newRow("a long comment") << "show.corvelpro" << QStringList{"--comment", QString(101, 'x')};
}

void TstCreate::unfit_properties_are_wrong_usage()
{
    QFETCH(QString, file);
    QFETCH(QStringList, options);
    const Outcome outcome = runTool(QStringList{"create", m_device, path(file)} + options);
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.messages.count('\n'), 1);
    QCOMPARE(namesIn(m_dir->path()), QStringList{"device"});
}

void TstCreate::directory_must_be_packable()
{
    QCOMPARE(runTool({"create", path("gone"), path("show.corvelpro")}).code, unknown);
    QCOMPARE(runTool({"create", m_device, path("gone/show.corvelpro")}).code, unknown);
    QCOMPARE(runTool({"create", m_device + "/large.bin", path("show.corvelpro")}).code, unknown);
    QVERIFY(QFile::link("/etc/passwd", m_device + "/link"));
    const Outcome outcome = runTool({"create", m_device, path("show.corvelpro")});
    QCOMPARE(outcome.code, unknown);
    QVERIFY2(outcome.messages.contains("/device/link"), outcome.messages);
    QCOMPARE(namesIn(m_dir->path()), QStringList{"device"});
}

void TstCreate::full_disk_leaves_nothing()
{
    const FullDisk disk(200000);
    const Outcome outcome = runTool({"create", m_device, path("show.corvelpro")});
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.messages.count('\n'), 1);
    QCOMPARE(namesIn(m_dir->path()), QStringList{"device"});
}

TEST_MAIN_CORE(TstCreate)
#include "tst_create.moc"

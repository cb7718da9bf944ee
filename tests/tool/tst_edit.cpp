// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "devicefiles.h"

#include "filesystem.h"
#include "zippackagehandle.h"

#include <QTemporaryDir>

using namespace ToolTesting;
using ProjectFileCfg::Internal::EngineerPacketInfo;
using ProjectFileCfg::Internal::ZipPackageHandle;
using ProjectFileCfg::Internal::FileSystem::FileIdentity;

class TstEdit : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void comment_changes_in_place();
    void name_renames_the_file();
    void name_can_be_that_of_the_file();
    void taken_name_changes_nothing();
    void invalid_package_is_refused();
    void unfit_properties_are_wrong_usage();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }
    static EngineerPacketInfo recordOf(const QString &path)
    {
        EngineerPacketInfo info{path, "", "", ""};
        return ZipPackageHandle::getZipFileEngineerInfo(info) ? info : EngineerPacketInfo();
    }

    QScopedPointer<QTemporaryDir> m_dir;
    QString m_package;
};

void TstEdit::init()
{
    m_dir.reset(new QTemporaryDir);
    m_package = path("a.corvelpro");
    QVERIFY(writePackage(m_package, {{"10.0.0.1.json", "{}"}}, "old"));
}

void TstEdit::comment_changes_in_place()
{
    const FileIdentity before(m_package);
    const Outcome outcome = runTool({"edit", "--json", m_package, "--comment", "第二天"});
    QCOMPARE(outcome.code, yes);
    QCOMPARE(outcome.json()["comment"].toString(), QString("第二天"));
    QCOMPARE(recordOf(m_package).strComment, QString("第二天"));
    QCOMPARE(recordOf(m_package).strProjectName, QString("a"));
    QVERIFY(before.isAt(m_package));

    QCOMPARE(runTool({"edit", m_package, "--comment", ""}).code, yes);
    QCOMPARE(recordOf(m_package).strComment, QString());
    QCOMPARE(namesIn(m_dir->path()), QStringList{"a.corvelpro"});
}

void TstEdit::name_renames_the_file()
{
    const Outcome outcome = runTool({"edit", m_package, "--name", "Show 2"});
    QCOMPARE(outcome.code, yes);
    QCOMPARE(outcome.out, (path("Show 2.corvelpro") + ": edited\n").toUtf8());
    QCOMPARE(namesIn(m_dir->path()), QStringList{"Show 2.corvelpro"});
    QCOMPARE(recordOf(path("Show 2.corvelpro")).strProjectName, QString("Show 2"));
    QCOMPARE(recordOf(path("Show 2.corvelpro")).strComment, QString("old"));
}

void TstEdit::name_can_be_that_of_the_file()
{
    QVERIFY(QFile::rename(m_package, path("b.corvelpro")));
    QCOMPARE(runTool({"edit", path("b.corvelpro"), "--name", "b"}).code, yes);
    QCOMPARE(recordOf(path("b.corvelpro")).strProjectName, QString("b"));
}

void TstEdit::taken_name_changes_nothing()
{
    QVERIFY(writeFile(path("b.corvelpro"), "another"));
    const QByteArray before = readFile(m_package);
    const Outcome outcome = runTool({"edit", m_package, "--name", "b", "--comment", "new"});
    QCOMPARE(outcome.code, no);
    QCOMPARE(outcome.messages, ("corvelpro: " + path("b.corvelpro") + ": already exists\n").toUtf8());
    QCOMPARE(readFile(m_package), before);
    QCOMPARE(readFile(path("b.corvelpro")), QByteArray("another"));
}

void TstEdit::invalid_package_is_refused()
{
    QVERIFY(packed({{"10.0.0.1.json", "{}"}}).recordWithChecksum(QString(32, '0'), "a", "").write(m_package));
    const QByteArray before = readFile(m_package);
    const Outcome outcome = runTool({"edit", m_package, "--comment", "new"});
    QCOMPARE(outcome.code, no);
    QVERIFY2(outcome.messages.contains("checksum"), outcome.messages);
    QCOMPARE(readFile(m_package), before);
}

void TstEdit::unfit_properties_are_wrong_usage()
{
    const QByteArray before = readFile(m_package);
    for (const QStringList &arguments :
         {QStringList{m_package}, QStringList{m_package, "--name", "a/b"}, QStringList{m_package, "--name", ""},
          QStringList{m_package, "--comment", QString(101, 'x')}, QStringList{path("gone"), "--comment", "x"},
          QStringList{m_dir->path(), "--comment", "x"}}) {
        const Outcome outcome = runTool(QStringList{"edit"} + arguments);
        QCOMPARE(outcome.code, unknown);
        QCOMPARE(outcome.messages.count('\n'), 1);
    }
    QCOMPARE(readFile(m_package), before);
}

TEST_MAIN_CORE(TstEdit)
#include "tst_edit.moc"

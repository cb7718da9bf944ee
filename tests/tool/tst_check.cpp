// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "toolrunner.h"

#include "zippackagehandle.h"

#include <data/hostilepackages.h>
#include <support/leaksoflibrary.h>
#include <support/packagebuilder.h>

#include <QDir>
#include <QJsonArray>
#include <QTemporaryDir>

using namespace ToolTesting;
using ProjectFileCfg::Internal::ZipPackageHandle;

class TstCheck : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void verdict_is_that_of_the_panel();
    void worst_verdict_decides();
    void what_is_no_plain_file_is_unknown();

private:
    QScopedPointer<QTemporaryDir> m_dir;
    QString m_good;
    QString m_bad;
};

void TstCheck::init()
{
    m_dir.reset(new QTemporaryDir);
    m_good = m_dir->filePath("good.corvelpro");
    m_bad = m_dir->filePath("bad.corvelpro");
    QVERIFY(TestSupport::PackageBuilder().file("a.json", "{}").record("good", "").write(m_good));
    QVERIFY(TestSupport::PackageBuilder()
                .file("a.json", "{}")
                .recordWithChecksum(QString(32, '0'), "bad", "")
                .write(m_bad));
}

void TstCheck::verdict_is_that_of_the_panel()
{
    QStringList paths;
    for (const TestData::HostilePackage &package : TestData::shareOfHostilePackages()) {
        paths.append(m_dir->filePath(package.name + ".corvelpro"));
        QFile file(paths.last());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(package.bytes());
    }
    const QJsonArray files = runTool(QStringList{"check", "--json"} + paths).json()["files"].toArray();
    QCOMPARE(files.size(), paths.size());
    // One of the records has a member twice.
    const TestSupport::LeaksOfLibrary leaks(true);
    for (int i = 0; i < paths.size(); ++i) {
        const bool isListed = ZipPackageHandle::isValidEngineerPacket(paths.at(i));
        QVERIFY2((files[i].toObject()["verdict"] == "valid") == isListed, qPrintable(paths.at(i)));
    }
}

void TstCheck::worst_verdict_decides()
{
    const Outcome two = runTool({"check", m_good, m_bad});
    QCOMPARE(two.code, no);
    QCOMPARE(two.out, (m_good + ": valid\n" + m_bad + ": not valid\n").toUtf8());

    const Outcome three = runTool({"check", "--json", m_dir->filePath("gone"), m_bad, m_good});
    QCOMPARE(three.code, unknown);
    const QJsonArray files = three.json()["files"].toArray();
    QCOMPARE(files.size(), 3);
    QCOMPARE(files[0].toObject()["verdict"].toString(), QString("unknown"));
    QCOMPARE(files[1].toObject()["verdict"].toString(), QString("not valid"));
    QVERIFY(files[1].toObject()["reason"].toString().contains("checksum"));
    QCOMPARE(files[2].toObject()["verdict"].toString(), QString("valid"));
}

void TstCheck::what_is_no_plain_file_is_unknown()
{
    const QString folder = m_dir->filePath("folder.corvelpro");
    QVERIFY(QDir().mkpath(folder));
    const Outcome outcome = runTool({"check", folder});
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.messages, ("corvelpro: " + folder + ": not a plain file\n").toUtf8());
}

TEST_MAIN_CORE(TstCheck)
#include "tst_check.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "goodpackage.h"
#include "toolrunner.h"

#include "projectpaths.h"

#include <data/ziparchive.h>
#include <support/packagebuilder.h>

#include <QDateTime>
#include <QJsonArray>

using namespace ToolTesting;
using TestSupport::PackageBuilder;

class TstList : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void projects_are_listed_newest_first();
    void a_line_has_the_columns_of_a_project();
    void pictures_and_presets_are_counted_by_their_folders();
    void damaged_directory_has_no_pictures();
    void default_is_the_folder_of_project_files();
    void missing_default_folder_has_no_projects();
    void listing_changes_nothing_in_the_folder();
    void what_is_no_folder_is_unknown();

private:
    QString write(const QString &name, const QString &comment, int secondsOld);

    QScopedPointer<QTemporaryDir> m_dir;
};

void TstList::init()
{
    m_dir.reset(new QTemporaryDir);
}

QString TstList::write(const QString &name, const QString &comment, int secondsOld)
{
    const QString path = m_dir->filePath(name);
    const bool isWritten = PackageBuilder().file("1.json", "{}").record("other name", comment).write(path);
    QFile file(path);
    const QDateTime time = QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7)).addSecs(-secondsOld);
    return isWritten && file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime)
               ? path
               : QString();
}

void TstList::projects_are_listed_newest_first()
{
    write("old.corvelpro", "", 100);
    const QString capital = write("new.CORVELPRO", "a\nb", 0);
    write("between.corvelpro", "", 50);
    write("other.zip", "", 0);
    QVERIFY(writeFile(m_dir->filePath("broken.corvelpro"), "broken"));
    const Outcome outcome = runTool({"list", "--json", m_dir->path()});
    QCOMPARE(outcome.code, yes);
    const QJsonArray projects = outcome.json()["projects"].toArray();
    QStringList names;
    for (const QJsonValue &project : projects)
        names.append(project.toObject()["name"].toString());
    QCOMPARE(names, QStringList({"new", "between", "old"}));
    const QJsonObject first = projects.first().toObject();
    QCOMPARE(first["file"].toString(), capital);
    QCOMPARE(first["comment"].toString(), QString("a\nb"));
    QCOMPARE(qint64(first["size"].toDouble()), QFileInfo(capital).size());
    QCOMPARE(QDateTime::fromString(first["modified"].toString(), Qt::ISODate),
             QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7)));
}

void TstList::a_line_has_the_columns_of_a_project()
{
    const QString one = write("one.corvelpro", "first\nsecond", 0);
    const QString other = write(QString::fromUtf8("演出.corvelpro"), QString::fromUtf8("\x1b[2J"), 100);
    const Outcome outcome = runTool({"list", m_dir->path()});
    QCOMPARE(QString::fromUtf8(outcome.out),
             QString::fromUtf8("one   2026-03-04 05:06  %1 bytes  0 pictures  0 presets  first ...\n"
                               "演出  2026-03-04 05:04  %2 bytes  0 pictures  0 presets  \\u001b[2J\n")
                 .arg(QFileInfo(one).size())
                 .arg(QFileInfo(other).size()));
}

void TstList::pictures_and_presets_are_counted_by_their_folders()
{
    QVERIFY(PackageBuilder()
                .file("1.json", "{}")
                .folder("BKG")
                .file("BKG/BKG_1.png", "")
                .file("LOGO/LOGO_1.PNG", "")
                .file("poster.png", "")
                .file("Preset/1.RPst", "")
                .file("Preset/notes.txt", "")
                .record("a", "")
                .write(m_dir->filePath("a.corvelpro")));
    const QJsonObject project =
        runTool({"list", "--json", m_dir->path()}).json()["projects"].toArray().first().toObject();
    QCOMPARE(project["pictures"].toInt(), 2);
    QCOMPARE(project["presets"].toInt(), 1);
}

void TstList::damaged_directory_has_no_pictures()
{
    TestData::ZipArchive archive(
        PackageBuilder().file("BKG/BKG_1.png", "").file("1.json", "{}").record("a", "").build());
    archive.set16(archive.lastCentral(), 0);
    QVERIFY(writeFile(m_dir->filePath("a.corvelpro"), archive.bytes));
    const QJsonArray projects = runTool({"list", "--json", m_dir->path()}).json()["projects"].toArray();
    QCOMPARE(projects.size(), 1);
    QCOMPARE(projects.first().toObject()["pictures"].toInt(), 0);
}

void TstList::default_is_the_folder_of_project_files()
{
    const QString folder = ProjectFileCfg::Internal::ProjectPaths::projectFilesPath();
    QVERIFY(QDir().mkpath(folder));
    QVERIFY(PackageBuilder().file("1.json", "{}").record("a", "").write(folder + "mine.corvelpro"));
    const QJsonObject result = runTool({"list", "--json"}).json();
    QVERIFY(QDir(folder).removeRecursively());
    QCOMPARE(result["directory"].toString(), folder);
    QCOMPARE(result["projects"].toArray().first().toObject()["name"].toString(), QString("mine"));
}

void TstList::missing_default_folder_has_no_projects()
{
    const Outcome outcome = runTool({"list"});
    QCOMPARE(outcome.code, yes);
    QCOMPARE(outcome.out + outcome.messages, QByteArray());
    QVERIFY(!QFileInfo::exists(ProjectFileCfg::Internal::ProjectPaths::projectFilesPath()));
}

void TstList::listing_changes_nothing_in_the_folder()
{
    write("a.corvelpro", "", 0);
    const QString fragment = m_dir->filePath(".00000000-0000-0000-0000-000000000000.part");
    const QString undo = m_dir->filePath(".00000000-0000-0000-0000-000000000000.undo");
    for (const QString &path : {fragment, undo}) {
        QVERIFY(writeFile(path, "left behind"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(-3), QFileDevice::FileModificationTime));
    }
    QCOMPARE(runTool({"list", m_dir->path()}).code, yes);
    QVERIFY(QFileInfo::exists(fragment));
    QVERIFY(QFileInfo::exists(undo));
}

void TstList::what_is_no_folder_is_unknown()
{
    const QString file = write("a.corvelpro", "", 0);
    const Outcome outcome = runTool({"list", file});
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.messages, ("corvelpro: " + file + ": not a folder\n").toUtf8());
    QCOMPARE(runTool({"list", m_dir->filePath("gone")}).code, unknown);
}

TEST_MAIN_CORE(TstList)
#include "tst_list.moc"

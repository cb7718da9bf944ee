// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "goodpackage.h"
#include "toolrunner.h"

#include "filesystem.h"
#include "undorecord.h"

#include <support/packagebuilder.h>

#include <QJsonArray>

#include <sys/stat.h>

using namespace ToolTesting;
using PackageTesting::makeOld;
using ProjectFileCfg::Internal::UndoRecord;
using TestSupport::PackageBuilder;
namespace FileSystem = ProjectFileCfg::Internal::FileSystem;

class TstDoctor : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void folder_of_listed_projects_is_well();
    void each_odd_file_is_explained();
    void two_rows_of_one_name_are_explained();
    void lines_say_why_and_what_to_do();
    void interrupted_extractions_are_explained();
    void nothing_in_the_folder_changes();

private:
    bool package(const QString &name);
    /// The folder's files with something to say, by name.
    QMap<QString, QJsonObject> diagnose();

    QScopedPointer<QTemporaryDir> m_dir;
};

void TstDoctor::init()
{
    m_dir.reset(new QTemporaryDir);
}

bool TstDoctor::package(const QString &name)
{
    return PackageBuilder().file("1.json", "{}").record("x", "").write(m_dir->filePath(name));
}

QMap<QString, QJsonObject> TstDoctor::diagnose()
{
    const Outcome outcome = runTool({"doctor", "--json", m_dir->path()});
    QMap<QString, QJsonObject> files;
    for (const QJsonValue &file : outcome.json()["files"].toArray())
        files.insert(QFileInfo(file.toObject()["file"].toString()).fileName(), file.toObject());
    return outcome.code == (files.isEmpty() ? yes : no) ? files : QMap<QString, QJsonObject>();
}

void TstDoctor::folder_of_listed_projects_is_well()
{
    QVERIFY(package("Project1.corvelpro"));
    QVERIFY(package("Project2.CORVELPRO"));
    QVERIFY(QDir(m_dir->path()).mkdir("elsewhere"));
    const Outcome outcome = runTool({"doctor", m_dir->path()});
    QCOMPARE(outcome.code, yes);
    QCOMPARE(outcome.out, (m_dir->path() + ": every file is listed under its name\n").toUtf8());
}

void TstDoctor::each_odd_file_is_explained()
{
    const QString fragment = ".00000000-0000-0000-0000-000000000000.part";
    const QString oldFragment = ".00000000-0000-0000-0000-000000000001.part";
    UndoRecord record;
    record.strFileName = "edited.corvelpro";
    const QString undo = UndoRecord::pathFor(m_dir->filePath("edited.corvelpro"));
    QVERIFY(record.write(undo));
    QVERIFY(package("fine.corvelpro"));
    QVERIFY(writeFile(m_dir->filePath("Project1.corvelpro"), "damaged"));
    QVERIFY(writeFile(m_dir->filePath("Project2.CORVELPRO"), "damaged"));
    QVERIFY(QDir(m_dir->path()).mkdir("Project3.corvelpro"));
    QVERIFY(package(".hidden.corvelpro"));
    QVERIFY(package("renamed.corvelpro.zip"));
    QVERIFY(package("show.v2.corvelpro"));
    QVERIFY(writeFile(m_dir->filePath("notes.txt"), "notes"));
    QVERIFY(QFile::link("gone", m_dir->filePath("link.corvelpro")));
    QCOMPARE(::mkfifo(QFile::encodeName(m_dir->filePath("pipe.corvelpro")).constData(), 0600), 0);
    QVERIFY(writeFile(m_dir->filePath(fragment), "part"));
    QVERIFY(writeFile(m_dir->filePath(oldFragment), "part"));
    QVERIFY(makeOld(m_dir->filePath(oldFragment)));

    const QMap<QString, QJsonObject> files = diagnose();
    struct Expected
    {
        QString file;
        const char *reason;
        const char *blocks;
    };
    const QVector<Expected> expected{
        {"Project1.corvelpro", "is not a zip archive, or is incomplete", "Project1"},
        {"Project2.CORVELPRO", "is not a zip archive, or is incomplete", ""},
        {"Project3.corvelpro", "not a plain file", "Project3"},
        {".hidden.corvelpro", "it is hidden", ".hidden"},
        {"renamed.corvelpro.zip", "does not end in \".corvelpro\"", ""},
        {"show.v2.corvelpro", "it is listed as \"show\" only", ""},
        {"notes.txt", "it is no project file", ""},
        {"link.corvelpro", "a link to something that is not there", ""},
        {"pipe.corvelpro", "not a plain file", "pipe"},
        {fragment, "less than a day ago", ""},
        {oldFragment, "a save or a copy was interrupted", ""},
        {QFileInfo(undo).fileName(), "the edit of \"edited.corvelpro\"", ""},
    };
    for (const Expected &one : expected) {
        const QJsonObject found = files.value(one.file);
        QVERIFY2(found["reason"].toString().contains(one.reason), QJsonDocument(found).toJson() + one.file.toUtf8());
        QCOMPARE(found["blocks"].toString(), QString(one.blocks));
        QVERIFY(!found["advice"].toString().isEmpty());
    }
    QCOMPARE(files.size(), expected.size());
}

void TstDoctor::two_rows_of_one_name_are_explained()
{
    QVERIFY(package("show.corvelpro"));
    QVERIFY(package("show.CORVELPRO"));
    const QMap<QString, QJsonObject> files = diagnose();
    QCOMPARE(files.size(), 1);
    QVERIFY(files.first()["reason"].toString().startsWith("it is listed as \"show\", and so is \"show."));
}

void TstDoctor::lines_say_why_and_what_to_do()
{
    const QString path = m_dir->filePath("Project1.corvelpro");
    QVERIFY(PackageBuilder().file("1.json", "{}").write(path));
    const Outcome outcome = runTool({"doctor", m_dir->path()});
    QCOMPARE(outcome.code, no);
    const QList<QByteArray> lines = outcome.out.split('\n');
    QCOMPARE(lines.at(0), (path + ": the archive's comment is not an info record").toUtf8());
    QCOMPARE(lines.at(1), QByteArray("  no other project can be called \"Project1\""));
    QVERIFY(lines.at(2).startsWith("  to do: copy it here again"));
}

void TstDoctor::interrupted_extractions_are_explained()
{
    const QString young = ".00000000-0000-0000-0000-000000000000.part";
    const QString old = ".00000000-0000-0000-0000-000000000001.part";
    const QString used = ".00000000-0000-0000-0000-000000000002.part";
    for (const QString &name : {young, old, used})
        QVERIFY(QDir(m_dir->path()).mkpath(name + "/BKG"));
    QVERIFY(makeOld(m_dir->filePath(old)) && makeOld(m_dir->filePath(used)));
    const FileSystem::Folder folder(m_dir->filePath(used));
    QVERIFY(folder.lock());

    const QMap<QString, QJsonObject> files = diagnose();
    QCOMPARE(files.keys(), QStringList({young, old, used}));
    QCOMPARE(files[young]["reason"].toString(), QString("an extraction was interrupted here, less than a day ago"));
    QCOMPARE(files[old]["reason"].toString(), QString("an extraction was interrupted here"));
    QCOMPARE(files[used]["reason"].toString(), QString("an extraction is running here"));
    QVERIFY(files[young]["advice"].toString().startsWith("delete the folder, unless another computer"));
    QVERIFY(files[old]["advice"].toString().startsWith("delete the folder; "));
    QVERIFY(files[used]["advice"].toString().startsWith("nothing: "));
}

void TstDoctor::nothing_in_the_folder_changes()
{
    const QString fragment = m_dir->filePath(".00000000-0000-0000-0000-000000000001.part");
    const QString folder = m_dir->filePath(".00000000-0000-0000-0000-000000000002.part");
    QVERIFY(writeFile(fragment, "part"));
    QVERIFY(writeFile(folder + "/1.json", "{}"));
    QVERIFY(makeOld(fragment) && makeOld(folder));
    QCOMPARE(diagnose().size(), 2);
    QVERIFY(QFileInfo::exists(fragment));
    QVERIFY(QFileInfo::exists(folder + "/1.json"));
}

TEST_MAIN_CORE(TstDoctor)
#include "tst_doctor.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "childprocess.h"
#include "devicefiles.h"

#include "commandline/interrupt.h"
#include "making/extraction.h"
#include "making/newdirectory.h"
#include "replacingfile.h"

#include <support/systemcalls.h>

#include <QJsonArray>
#include <QTemporaryDir>

#include <csignal>

using namespace ToolTesting;
using Corvelpro::Extraction;
using Corvelpro::Interrupt;
using Corvelpro::NewDirectory;
using PackageTesting::contents;
using PackageTesting::makeOld;
using PackageTesting::noise;
using ProjectFileCfg::Internal::ReplacingFile;

namespace {

Files sampleFiles()
{
    return {{"10.0.0.1.json", "{}"},
            {"BKG/", {}},
            {"BKG/BKG_1.png", noise(300000)},
            {"Preset/", {}},
            {"Preset/1.RPst", "preset"},
            {QByteArray("演出/é.txt"), "text"},
            {".hidden", "h"}};
}

} // namespace

class TstExtract : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { TestSupport::systemCalls() = {}; }

    void directory_holds_all_entries();
    void one_entry_keeps_its_path();
    void what_is_not_in_it_is_refused();
    void existing_target_is_kept();
    void unfit_package_leaves_nothing_data();
    void unfit_package_leaves_nothing();
    void full_disk_leaves_nothing();
    void missing_folder_is_not_made();
    void interrupt_leaves_nothing();
    void kill_at_each_step_leaves_no_directory();
    void killed_extraction_is_removed_after_a_day();
    void running_extraction_is_never_removed();
    void what_is_no_package_is_one_line();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }

    QScopedPointer<QTemporaryDir> m_dir;
    QString m_package;
};

void TstExtract::init()
{
    m_dir.reset(new QTemporaryDir);
    m_package = path("a.corvelpro");
    QVERIFY(writePackage(m_package, sampleFiles()));
}

void TstExtract::directory_holds_all_entries()
{
    const Outcome outcome = runTool({"extract", m_package, path("out/")});
    QCOMPARE(outcome.code, yes);
    QCOMPARE(outcome.out, (path("out") + ": 7 entries extracted\n").toUtf8());
    const Files files = sampleFiles();
    for (auto file = files.begin(); file != files.end(); ++file) {
        if (!file.key().endsWith('/'))
            QCOMPARE(readFile(path("out/" + file.key())), file.value());
    }
    QCOMPARE(contents(path("out")).size(), 8);
    QCOMPARE(namesIn(m_dir->path()), QStringList({"a.corvelpro", "out"}));
}

void TstExtract::one_entry_keeps_its_path()
{
    const QJsonObject json = runTool({"extract", "--json", m_package, path("out"), "--entry", "Preset/1.RPst"}).json();
    QCOMPARE(json["result"].toString(), QString("done"));
    QCOMPARE(json["directory"].toString(), path("out"));
    QCOMPARE(json["entries"].toArray(), QJsonArray{"Preset/1.RPst"});
    QCOMPARE(contents(path("out")), QStringList({"Preset", "Preset/1.RPst"}));
    QCOMPARE(readFile(path("out/Preset/1.RPst")), QByteArray("preset"));
}

void TstExtract::what_is_not_in_it_is_refused()
{
    for (const QString &entry : {QString("Preset/2.RPst"), QString("Preset/"), QString("../a.corvelpro")}) {
        const Outcome outcome = runTool({"extract", m_package, path("out"), "--entry", entry});
        QCOMPARE(outcome.code, no);
        QCOMPARE(outcome.messages,
                 QStringLiteral("corvelpro: %1: no file \"%2\" in it\n").arg(m_package, entry).toUtf8());
    }
    QCOMPARE(namesIn(m_dir->path()), QStringList{"a.corvelpro"});
}

void TstExtract::existing_target_is_kept()
{
    QVERIFY(QDir().mkpath(path("folder")));
    QVERIFY(writeFile(path("file"), "old"));
    QVERIFY(QFile::link("nowhere", path("link")));
    const QStringList before = contents(m_dir->path());
    for (const QString &name : {QString("folder"), QString("file"), QString("link")}) {
        const Outcome outcome = runTool({"extract", "--json", m_package, path(name)});
        QCOMPARE(outcome.code, no);
        QCOMPARE(outcome.json()["result"].toString(), QString("refused"));
        QCOMPARE(outcome.messages, ("corvelpro: " + path(name) + ": already exists\n").toUtf8());
    }
    QCOMPARE(contents(m_dir->path()), before);
    QCOMPARE(readFile(path("file")), QByteArray("old"));
}

void TstExtract::unfit_package_leaves_nothing_data()
{
    QTest::addColumn<QByteArray>("package");
    QTest::addColumn<int>("code");
    const auto with = [](const QByteArray &name) { return packed(sampleFiles()).file(name, "x").build(); };
    QTest::newRow("climbs out") << with("../x") << no;
    QTest::newRow("absolute") << with("/tmp/x") << no;
    QTest::newRow("blocks the pictures' folder") << packed({{"BKG", "x"}}).build() << no;
    QTest::newRow("a wrong CRC") << packed(sampleFiles()).file("x", "x").claimCrc(1).build() << unknown;
    QTest::newRow("a link") << packed(sampleFiles()).symbolicLink("x", "/etc/passwd").build() << unknown;
    QTest::newRow("a file that is a folder") << packed({{"x", "1"}, {"x/y", "2"}}).build() << unknown;
    QTest::newRow("no archive") << QByteArray("text") << unknown;
}

void TstExtract::unfit_package_leaves_nothing()
{
    QFETCH(QByteArray, package);
    QVERIFY(writeFile(m_package, package));
    const Outcome outcome = runTool({"extract", m_package, path("out")});
    QTEST(outcome.code, "code");
    QCOMPARE(outcome.out, QByteArray());
    QCOMPARE(outcome.messages.count('\n'), 1);
    QVERIFY2(outcome.messages.contains(m_package.toUtf8()), outcome.messages);
    QCOMPARE(namesIn(m_dir->path()), QStringList{"a.corvelpro"});
}

void TstExtract::full_disk_leaves_nothing()
{
    const FullDisk disk(200000);
    const Outcome outcome = runTool({"extract", m_package, path("out")});
    QCOMPARE(outcome.code, unknown);
    QVERIFY2(outcome.messages.contains("BKG/BKG_1.png"), outcome.messages);
    QCOMPARE(namesIn(m_dir->path()), QStringList{"a.corvelpro"});
}

void TstExtract::missing_folder_is_not_made()
{
    QCOMPARE(runTool({"extract", m_package, path("gone/out")}).code, unknown);
    QCOMPARE(runTool({"extract", m_package, ""}).messages, QByteArray("corvelpro: the new directory has no name\n"));
    QCOMPARE(namesIn(m_dir->path()), QStringList{"a.corvelpro"});
}

void TstExtract::interrupt_leaves_nothing()
{
    for (const int signal : {SIGINT, SIGTERM}) {
        const int end = inChild([&] {
            const Interrupt interrupt;
            // In the middle: the hidden directory is there.
            TestSupport::systemCalls().onOpen = [signal](const QByteArray &path, int) {
                if (path.contains("BKG"))
                    std::raise(signal);
                return 0;
            };
            return Extraction(m_package, path("out"), QString()).run().isDone() ? 0 : 1;
        });
        QCOMPARE(end, -signal);
        QCOMPARE(namesIn(m_dir->path()), QStringList{"a.corvelpro"});
    }
}

void TstExtract::kill_at_each_step_leaves_no_directory()
{
    int step = 0;
    int end = -SIGKILL;
    for (; end == -SIGKILL; ++step) {
        end = inChild([&] {
            int calls = 0;
            const auto count = [&] {
                if (calls++ == step)
                    std::raise(SIGKILL);
            };
            TestSupport::systemCalls().onOpen = [&](const QByteArray &, int) {
                count();
                return 0;
            };
            TestSupport::systemCalls().beforeMkdir = [&](const QByteArray &) { count(); };
            return Extraction(m_package, path("out"), QString()).run().isDone() ? 0 : 1;
        });
        for (const QString &name : namesIn(m_dir->path())) {
            if (name == "a.corvelpro" || (end == 0 && name == "out"))
                continue;
            QVERIFY2(ReplacingFile::isFragment(name), qPrintable(name));
            QVERIFY(QDir(path(name)).removeRecursively());
        }
    }
    QCOMPARE(end, 0);
    QVERIFY2(step > 10, qPrintable(QString::number(step)));
    QCOMPARE(contents(path("out")).size(), 8);
}

void TstExtract::killed_extraction_is_removed_after_a_day()
{
    const int end = inChild([&] {
        NewDirectory directory(path("killed"));
        if (directory.create(nullptr) && writeFile(directory.hiddenPath() + "/BKG/BKG_1.png", "half"))
            std::raise(SIGKILL);
        return 0;
    });
    QCOMPARE(end, -SIGKILL);
    const QStringList left = namesIn(m_dir->path()).filter(".part");
    QCOMPARE(left.size(), 1);
    // Named like it, but not made by an extraction; and a link that leads elsewhere.
    const QString link = ".00000000-0000-0000-0000-000000000000.part";
    QVERIFY(QDir().mkpath(path(".notes.part")) && QDir().mkpath(path("elsewhere")));
    QVERIFY(QFile::link("elsewhere", path(link)));
    QVERIFY(makeOld(path(".notes.part")) && makeOld(path(link)) && makeOld(path("elsewhere")));

    QCOMPARE(runTool({"extract", m_package, path("today")}).code, yes);
    QVERIFY(QFileInfo(path(left.first())).isDir());
    QVERIFY(makeOld(path(left.first())));
    QCOMPARE(runTool({"extract", m_package, path("tomorrow")}).code, yes);
    QCOMPARE(namesIn(m_dir->path()),
             QStringList({link, ".notes.part", "a.corvelpro", "elsewhere", "today", "tomorrow"}));
}

void TstExtract::running_extraction_is_never_removed()
{
    QString reason;
    NewDirectory slow(path("slow"));
    QVERIFY2(slow.create(&reason), qPrintable(reason));
    QVERIFY(writeFile(slow.hiddenPath() + "/1.json", "{}"));
    QVERIFY(makeOld(slow.hiddenPath()));
    QCOMPARE(runTool({"extract", m_package, path("quick")}).code, yes);
    QVERIFY2(slow.commit(&reason), qPrintable(reason));
    QCOMPARE(contents(path("slow")), QStringList{"1.json"});
}

void TstExtract::what_is_no_package_is_one_line()
{
    for (const QString &file : {path("gone"), m_dir->path(), QString("/dev/null")}) {
        const Outcome outcome = runTool({"extract", file, path("out")});
        QCOMPARE(outcome.code, unknown);
        QCOMPARE(outcome.messages.count('\n'), 1);
    }
}

TEST_MAIN_CORE(TstExtract)
#include "tst_extract.moc"

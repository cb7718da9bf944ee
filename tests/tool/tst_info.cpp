// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "goodpackage.h"
#include "toolrunner.h"

#include <data/hostilepackages.h>
#include <data/pngmaker.h>
#include <support/costs.h>
#include <support/packagebuilder.h>

#include <QJsonArray>

using namespace ToolTesting;
using TestData::PngMaker;
using TestSupport::PackageBuilder;

class TstInfo : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void json_has_record_and_contents();
    void text_has_a_line_for_each_entry();
    void whole_numbers_are_exact();
    void unlisted_file_is_shown_with_its_reason();
    void what_is_no_archive_is_unknown();
    void hostile_packages_end_in_time();

private:
    QScopedPointer<QTemporaryDir> m_dir;
    QString m_path;
};

void TstInfo::init()
{
    m_dir.reset(new QTemporaryDir);
    m_path = m_dir->filePath("a.corvelpro");
    QVERIFY(PackageBuilder()
                .folder("BKG")
                .file("BKG/BKG_1.png", PngMaker::blank(40, 30), PackageBuilder::Stored)
                .file("BKG/BKG_2.png", "no picture")
                .file("Preset/7.RPst", presetOf("detail"))
                .file("1.json", R"({"name": "main", "id": 7, "on": true, "none": null, "slots": [1], "net": {}})")
                .file("2.json", "{}")
                .file("BKG/./BKG_1.png", "alias")
                .file("notes.txt", "notes")
                .record("show", "first\nsecond")
                .write(m_path));
}

void TstInfo::json_has_record_and_contents()
{
    const Outcome outcome = runTool({"info", "--json", m_path});
    QCOMPARE(outcome.code, yes);
    const QJsonObject package = outcome.json();
    QCOMPARE(package["name"].toString(), QString("show"));
    QCOMPARE(package["comment"].toString(), QString("first\nsecond"));
    QCOMPARE(package["checksum"].toString().size(), 32);
    QCOMPARE(package["listed"].toBool(), true);
    QCOMPARE(package["entries"].toInt(), 8);
    const QJsonObject description = package["description"].toObject();
    QCOMPARE(description["entry"].toString(), QString("1.json"));
    QCOMPARE(description["members"].toObject(),
             QJsonObject({{"id", 7}, {"name", "main"}, {"none", QJsonValue()}, {"on", true}}));
    const QJsonArray pictures = package["pictures"].toArray();
    QCOMPARE(pictures.size(), 2);
    QCOMPARE(pictures[0].toObject()["width"].toInt(), 40);
    QCOMPARE(pictures[0].toObject()["height"].toInt(), 30);
    QCOMPARE(pictures[1].toObject()["width"].toInt(), 0);
    QCOMPARE(package["presets"].toArray().first().toObject()["entry"].toString(), QString("Preset/7.RPst"));
    QStringList leftOver;
    for (const QJsonValue &entry : package["leftOver"].toArray())
        leftOver.append(entry.toObject()["entry"].toString());
    QCOMPARE(leftOver, QStringList({"2.json", "notes.txt", "BKG/./BKG_1.png"}));
}

void TstInfo::text_has_a_line_for_each_entry()
{
    const QString out = QString::fromUtf8(runTool({"info", m_path}).out);
    for (const char *line :
         {"name: show", "comment: first", "comment: second", "listed: yes", "description: 1.json", "  name: \"main\"",
          "  none: null", "pictures: 2", "  BKG/BKG_2.png  no picture  10 bytes", "presets: 1", "left over: 3"})
        QVERIFY2(out.split('\n').contains(line), line + ('\n' + out.toUtf8()));
    QVERIFY2(out.contains("  BKG/BKG_1.png  40 x 30     "), qPrintable(out));
}

void TstInfo::whole_numbers_are_exact()
{
    // 2^53 + 1, which no double holds, the largest one, and one that is a double only.
    QVERIFY(PackageBuilder()
                .file("1.json",
                      R"({"a": 9007199254740993, "b": -9223372036854775808, "c": 18446744073709551616, "d": 0.5})")
                .record("numbers", "")
                .write(m_path));
    const QByteArrayList lines = runTool({"info", m_path}).out.split('\n');
    const QByteArray document = runTool({"info", "--json", m_path}).out;
    for (const QByteArray &number :
         {QByteArray("9007199254740993"), QByteArray("-9223372036854775808"), QByteArray("0.5")}) {
        QVERIFY2(std::any_of(lines.begin(), lines.end(),
                             [&](const QByteArray &line) { return line.endsWith(": " + number); }),
                 lines.join('\n'));
        QVERIFY2(document.contains("\": " + number), document);
    }
    QVERIFY2(document.contains("\"c\": 1844674407370955"), document);
}

void TstInfo::unlisted_file_is_shown_with_its_reason()
{
    const QString path = m_dir->filePath("b.corvelpro");
    QVERIFY(PackageBuilder().file("1.json", "{").recordWithChecksum("0", "name", "").write(path));
    const Outcome outcome = runTool({"info", "--json", path});
    QCOMPARE(outcome.code, no);
    QCOMPARE(outcome.json()["name"].toString(), QString("name"));
    QCOMPARE(outcome.json()["listed"].toBool(), false);
    QVERIFY(outcome.json()["reason"].toString().startsWith("the package's checksum is"));
    QVERIFY(outcome.json()["description"].toObject()["reason"].toString().startsWith("it is not JSON"));
}

void TstInfo::what_is_no_archive_is_unknown()
{
    const QString text = m_dir->filePath("text.corvelpro");
    QVERIFY(writeFile(text, "text"));
    for (const QString &path : {text, m_dir->path(), m_dir->filePath("gone"), QString("/dev/null")}) {
        const Outcome outcome = runTool({"info", path});
        QCOMPARE(outcome.code, unknown);
        QCOMPARE(outcome.out, QByteArray());
        QCOMPARE(outcome.messages.count('\n'), 1);
    }
}

// The ones that take most; each is a start of the program.
void TstInfo::hostile_packages_end_in_time()
{
    const QStringList names{"entries_are_65000",          "names_fill_the_memory",
                            "bomb_in_a_preset",           "description_is_nested_a_million_times",
                            "size_claims_4_gigabytes",    "description_has_five_million_empty_arrays",
                            "picture_has_no_width",       "name_is_taken_ten_thousand_times",
                            "record_has_a_wrong_checksum"};
    int found = 0;
    for (const TestData::HostilePackage &package : TestData::hostilePackages()) {
        if (!names.contains(package.name))
            continue;
        ++found;
        if (package.onlyLarger && !TestSupport::costsCount)
            continue;
        QVERIFY(writeFile(m_path, package.bytes()));
        const Outcome outcome = runTool({"info", "--json", m_path});
        QVERIFY2(outcome.code == yes || outcome.code == no, package.name);
    }
    QCOMPARE(found, names.size());
}

TEST_MAIN_CORE(TstInfo)
#include "tst_info.moc"

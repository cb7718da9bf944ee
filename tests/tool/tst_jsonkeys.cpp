// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "toolinprocess.h"
#include "workplace.h"

#include "commandline/jsontext.h"

#include <support/testmain.h>

#include <QJsonArray>
#include <QSet>

using namespace ToolTesting;
using Corvelpro::Command;
using Corvelpro::commandTable;

namespace {

using Keys = QSet<QString>;

/// The paths of all keys: "files[].findings[].text". Below "members", and on both sides of a changed one, are the
/// device's keys, not the tool's.
void collect(const QJsonValue &value, const QString &path, Keys &keys)
{
    for (const QJsonValue &element : value.toArray())
        collect(element, path + "[]", keys);
    const QJsonObject object = value.toObject();
    for (auto member = object.begin(); member != object.end(); ++member) {
        const QString below = path.isEmpty() ? member.key() : path + '.' + member.key();
        keys.insert(below);
        const bool isOfDevice =
            below == "description.members" || below.endsWith("members[].a") || below.endsWith("members[].b");
        if (!isOfDevice)
            collect(*member, below, keys);
    }
}

/// Those in the examples of the command's section in docs/corvelpro.md.
Keys documentedKeys(const QString &command)
{
    const QString page = QString::fromUtf8(readFile(TOOL_DOCUMENT));
    const QString section = page.section("\n## " + command + '\n', 1).section("\n## ", 0, 0);
    Keys keys;
    const QStringList blocks = section.split("```json\n").mid(1);
    for (const QString &block : blocks) {
        QJsonParseError error;
        const QJsonDocument example = QJsonDocument::fromJson(block.section("```", 0, 0).toUtf8(), &error);
        if (error.error != QJsonParseError::NoError)
            qWarning("An example of %s is not JSON: %s", qPrintable(command), qPrintable(error.errorString()));
        collect(example.object(), QString(), keys);
    }
    return keys;
}

QString sorted(const Keys &keys)
{
    QStringList list = keys.values();
    list.sort();
    return list.join('\n');
}

} // namespace

class TstJsonKeys : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void printed_keys_are_those_documented_data();
    void printed_keys_are_those_documented();
    void documents_are_indented_as_usual();

private:
    QScopedPointer<Workplace> m_place;
};

void TstJsonKeys::init()
{
    m_place.reset(new Workplace);
    const auto path = [this](const char *name) { return m_place->path(name); };
    QVERIFY(writeFile(path("text.corvelpro"), "text"));
    // Something for each list: left over, damaged, encrypted, not JSON, unsafe.
    QVERIFY(packed({{"1.json", "{"}, {"notes.txt", "n"}})
                .file("BKG/BKG_1.png", "x")
                .claimCrc(1)
                .file("Preset/1.RPst", "x")
                .claimFlags(1)
                .file("Preset/2.RPst", "other")
                .recordWithChecksum(QString(32, '0'), "", "")
                .write(path("damaged.corvelpro")));
    QVERIFY(writePackage(path("changed.corvelpro"), {{"10.0.0.1.json", R"({"name": "spare", "new": 1})"},
                                                     {"BKG/BKG_1.png", TestData::PngMaker::blank(40, 31)},
                                                     {"BKG/BKG_2.png", TestData::PngMaker::blank(4, 4)},
                                                     {"Preset/1.RPst", "other"}}));
    QByteArray dotted(30 * (1 + 4 * 40), '\0');
    dotted[1] = '\x7f';
    QVERIFY(packed({{"10.0.0.1.json", R"({"name": "main", "id": 7})"}, {"BKG/", {}}, {"Preset/", {}}})
                .file("BKG/BKG_1.png", TestData::PngMaker::signature() + TestData::PngMaker::header(40, 30) +
                                           TestData::PngMaker::pixels(dotted) + TestData::PngMaker::end())
                .record("dotted", "")
                .write(path("dotted.corvelpro")));
    QVERIFY(writeFile(path("folder/Project1.corvelpro"), "text"));
}

void TstJsonKeys::printed_keys_are_those_documented_data()
{
    QTest::addColumn<int>("row");
    for (int row = 0; row < commandTable().size(); ++row)
        QTest::newRow(commandTable().at(row).name) << row;
}

// Runs that succeed, are refused and fail; each prints the keys that it has something for.
void TstJsonKeys::printed_keys_are_those_documented()
{
    QFETCH(int, row);
    const Command &command = commandTable().at(row);
    const auto path = [this](const char *name) { return m_place->path(name); };
    const QString good = path("show.corvelpro");
    const QString damaged = path("damaged.corvelpro");
    QList<QStringList> runs;
    if (!qstrcmp(command.name, "diff")) {
        runs = {{good, damaged},
                {good, path("changed.corvelpro"), "--sheet", path("s.png")},
                {good, path("dotted.corvelpro")}};
    } else {
        // Twice: the second time a target is there already.
        runs = {m_place->words(command).mid(1), m_place->words(command).mid(1)};
        for (const QString &wrong : {damaged, path("text.corvelpro"), path("gone")}) {
            QStringList words = m_place->words(command).mid(1);
            words.first() = wrong;
            runs.append(words);
        }
    }
    Keys printed;
    for (const QStringList &words : qAsConst(runs))
        collect(runInProcess(QStringList{command.name, "--json"} + words).json(), QString(), printed);
    QVERIFY(!printed.isEmpty());
    QCOMPARE(sorted(printed), sorted(documentedKeys(command.name)));
}

void TstJsonKeys::documents_are_indented_as_usual()
{
    const QJsonObject object{
        {"empty", QJsonObject()},
        {"none", QJsonArray()},
        {"a \"b\"\n", QJsonArray{1, 0.5, "演出", QJsonValue(), true, QJsonArray{QJsonObject{{"x", -1}}}}}};
    QCOMPARE(Corvelpro::jsonDocument(object), QJsonDocument(object).toJson());
    QCOMPARE(Corvelpro::jsonText(object).toUtf8(), QJsonDocument(object).toJson(QJsonDocument::Compact));
    QCOMPARE(Corvelpro::jsonDocument({}), QJsonDocument(QJsonObject()).toJson());
}

TEST_MAIN_CORE(TstJsonKeys)
#include "tst_jsonkeys.moc"

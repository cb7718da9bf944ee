// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "deviceeditor.h"
#include "devicefiles.h"

#include "comparison/comparison.h"
#include "comparison/entrysource.h"
#include "comparison/packedfile.h"
#include "content/oneachcore.h"
#include "zippackagehandle.h"

#include <data/ziparchive.h>

#include <QBuffer>
#include <QImage>
#include <QJsonArray>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <algorithm>

using namespace Corvelpro;
using namespace ToolTesting;
using ProjectFileCfg::Internal::EngineerPacketInfo;
using ProjectFileCfg::Internal::ZipPackageHandle;
using TestData::ZipArchive;
using TestSupport::PackageBuilder;

Q_DECLARE_METATYPE(TestSupport::PackageBuilder::Method)
Q_DECLARE_METATYPE(std::function<void(TestData::ZipArchive &)>)

namespace {

QStringList linesOf(const EntryDifference &difference)
{
    if (difference.change != EntryDifference::Change::Changed)
        return {Line::oneSided(difference.name, difference.change == EntryDifference::Change::OnlyBefore)};
    QStringList lines;
    switch (difference.by) {
    case EntryDifference::By::Members:
        for (const MemberDifference &member : difference.members)
            lines.append(Line::member(difference.name, member.path, member.before, member.after));
        break;
    case EntryDifference::By::Pixels:
        lines.append(Line::pixels(difference.name, difference.picture.before, difference.picture.after,
                                  difference.picture.pixels, difference.picture.largest));
        break;
    case EntryDifference::By::Bytes:
        lines.append(Line::bytes(difference.name, difference.bytes.before, difference.bytes.after,
                                 difference.bytes.firstOffset, difference.bytes.count));
        break;
    }
    return lines;
}

/// The differences, sorted; "unreadable ..." for what cannot be read.
QStringList compared(const QString &a, const QString &b, const Comparison::Options &options = {})
{
    QString reason;
    const auto before = EntrySource::open(a, &reason);
    const auto after = EntrySource::open(b, &reason);
    if (!before || !after)
        return {"not open: " + reason};
    Comparison comparison(*before, *after, options);
    comparison.run();
    QStringList lines;
    for (const EntryDifference &difference : comparison.differences())
        lines += linesOf(difference);
    for (const UnreadableEntry &entry : comparison.unreadable())
        lines.append("unreadable " + entry.name + (entry.isBefore ? " of A" : " of B"));
    lines.sort();
    return lines;
}

} // namespace

class TstDiff : public QObject
{
    Q_OBJECT

private slots:
    void init();

    // Nothing
    void same_device_stored_otherwise_is_equal();
    void repack_by_another_program_is_equal_data();
    void repack_by_another_program_is_equal();
    void two_saves_of_one_directory_are_equal();
    void same_pixels_encoded_otherwise_are_equal();
    void contents_above_a_block_are_equal();
    void spare_bits_of_packed_content_do_not_count();
    void progress_adds_up_to_the_total();

    // Differences
    void known_edits_are_reported_exactly();
    void directory_can_be_either_side();
    void changes_are_printed_line_by_line();
    void undecodable_pictures_are_compared_by_bytes();
    void non_json_descriptions_are_compared_by_bytes();
    void numbers_are_compared_exactly();
    void many_changed_members_are_counted();

    // Left out
    void spare_is_equal_but_for_what_is_ignored();
    void ignored_path_covers_data();
    void ignored_path_covers();
    void what_is_no_path_is_wrong_usage();

    // The cores
    void work_on_each_core_is_done_once();

    // The sheet
    void sheet_shows_each_changed_picture();
    void sheet_replaces_no_file();
    void sheet_is_whole_or_missing();

    // What cannot be told
    void damage_is_never_equal_data();
    void damage_is_never_equal();
    void damage_is_named_on_its_side();
    void one_damaged_side_is_never_equal_data();
    void one_damaged_side_is_never_equal();
    void what_is_no_package_is_one_line();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }
    /// Whether the file is found equal in both packages without decoding it.
    bool haveEqualPackedBytes(const QString &file) const;

    QScopedPointer<QTemporaryDir> m_dir;
    QString m_a;
    QString m_b;
};

void TstDiff::init()
{
    m_dir.reset(new QTemporaryDir);
    m_a = path("a.corvelpro");
    m_b = path("b.corvelpro");
    QVERIFY(writePackage(m_a, sampleFiles()));
}

void TstDiff::same_device_stored_otherwise_is_equal()
{
    // Another order, other methods, no entries of folders, names that only lead to the same, other white space.
    const Files files = sampleFiles();
    PackageBuilder other;
    QList<QByteArray> names = files.keys();
    std::reverse(names.begin(), names.end());
    for (const QByteArray &name : qAsConst(names)) {
        if (name == descriptionName)
            other.file(name, QJsonDocument(sampleDescription()).toJson(QJsonDocument::Compact));
        else if (!name.endsWith('/'))
            other.file(name.startsWith("BKG") ? "./" + name : name, files[name], PackageBuilder::Stored);
    }
    QVERIFY(other.record("another", "comment").write(m_b));

    const Outcome outcome = runTool({"diff", m_a, m_b});
    QCOMPARE(outcome.code, yes);
    QCOMPARE(outcome.out, QByteArray("does not count: the project's name is \"a\" -> \"another\"\n"
                                     "does not count: the project's comment is \"\" -> \"comment\"\n"
                                     "equal (7 files)\n"));
    QCOMPARE(outcome.messages, QByteArray());
    QCOMPARE(compared(m_a, m_a), QStringList());
}

void TstDiff::repack_by_another_program_is_equal_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("zip") << "zip" << QStringList{"-qr", "../b.corvelpro", "."};
    QTest::newRow("zip, nothing compressed") << "zip" << QStringList{"-qr0", "../b.corvelpro", "."};
    QTest::newRow("7z") << "7z" << QStringList{"a", "-tzip", "-bd", "../b.corvelpro", "."};
}

void TstDiff::repack_by_another_program_is_equal()
{
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    Files files = sampleFiles();
    files.insert(QByteArray("演出/"), {});
    files.insert(QByteArray("演出/é.txt"), "text");
    QVERIFY(writePackage(m_a, files));
    QVERIFY(writeDirectory(path("device"), files));
    QProcess repack;
    repack.setWorkingDirectory(path("device"));
    repack.start(program, arguments);
    QVERIFY(repack.waitForFinished(TestSupport::patience));
    QVERIFY2(repack.exitCode() == 0, repack.readAllStandardError());
    QCOMPARE(compared(m_a, m_b), QStringList());
    QCOMPARE(compared(m_b, m_a), QStringList());
}

void TstDiff::two_saves_of_one_directory_are_equal()
{
    const QString device = path("device");
    QVERIFY(writeDirectory(device, sampleFiles()));
    EngineerPacketInfo first{m_a, "first", "", ""};
    EngineerPacketInfo second{m_b, "second", "later", ""};
    QVERIFY(ZipPackageHandle::compressEngineerPacket(device, first));
    QFile file(device + "/Preset/1.RPst");
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime(QDate(2001, 2, 3), QTime(4, 5)), QFileDevice::FileModificationTime));
    QVERIFY(ZipPackageHandle::compressEngineerPacket(device, second));
    QVERIFY(readFile(m_a) != readFile(m_b));
    QCOMPARE(compared(m_a, m_b), QStringList());
    QCOMPARE(compared(m_a, device), QStringList());
}

void TstDiff::same_pixels_encoded_otherwise_are_equal()
{
    Files files = sampleFiles();
    files["BKG/BKG_1.png"] = pngOf(pictureOf({16, 9}, 1), 100);
    QVERIFY(files["BKG/BKG_1.png"] != sampleFiles()["BKG/BKG_1.png"]);
    QVERIFY(writePackage(m_b, files));
    const Outcome outcome = runTool({"diff", "--json", m_a, m_b});
    QCOMPARE(outcome.code, yes);
    QCOMPARE(outcome.json()["result"].toString(), QString("equal"));
    QVERIFY(outcome.json()["notes"].toArray().contains("BKG/BKG_1.png is encoded differently, with the same pixels"));
}

bool TstDiff::haveEqualPackedBytes(const QString &file) const
{
    const auto before = EntrySource::open(m_a, nullptr);
    const auto after = EntrySource::open(m_b, nullptr);
    const auto one = before->packed(file);
    const auto other = after->packed(file);
    return one && other && areSoundAndEqual(*one, *other);
}

void TstDiff::contents_above_a_block_are_equal()
{
    Files files = sampleFiles();
    QByteArray &large = files["large.bin"];
    QRandomGenerator random(1);
    for (int i = 0; i < 3 * 1024 * 1024; ++i)
        large.append(char(random.bounded(256)));
    for (const PackageBuilder::Method method : {PackageBuilder::Stored, PackageBuilder::Deflated}) {
        const auto package = [&](const char last) {
            return packed(sampleFiles()).file("large.bin", large.chopped(1) + last, method).record("a", "");
        };
        QVERIFY(package('a').write(m_a));
        QVERIFY(package('a').write(m_b));
        QVERIFY(haveEqualPackedBytes("large.bin"));
        QCOMPARE(compared(m_a, m_b), QStringList());
        QVERIFY(package('b').write(m_b));
        QVERIFY(!haveEqualPackedBytes("large.bin"));
        QCOMPARE(compared(m_a, m_b),
                 QStringList{Line::bytes("large.bin", large.size(), large.size(), large.size() - 1, 1)});
    }
}

void TstDiff::spare_bits_of_packed_content_do_not_count()
{
    // "{}" deflated leaves bits of its last byte unused.
    ZipArchive archive(packed(sampleFiles()).file("a", "{}", PackageBuilder::Deflated).record("a", "").build());
    QVERIFY(writeFile(m_a, archive.bytes));
    const int last = archive.lastContent() + int(archive.get32(archive.lastCentral() + 20)) - 1;
    archive.bytes[last] = char(archive.bytes.at(last) ^ 0x80);
    QVERIFY(writeFile(m_b, archive.bytes));
    QCOMPARE(compared(m_a, m_b), QStringList());
    QCOMPARE(compared(m_b, m_b), QStringList());
}

void TstDiff::progress_adds_up_to_the_total()
{
    Files files = sampleFiles();
    files["BKG/BKG_1.png"] = pngOf(pictureOf({16, 9}, 9));
    QVERIFY(writePackage(m_b, files));
    const auto before = EntrySource::open(m_a, nullptr);
    const auto after = EntrySource::open(m_b, nullptr);
    qint64 passed = 0;
    Comparison::Options options;
    options.progress = [&passed](qint64 bytes) { passed += bytes; };
    Comparison comparison(*before, *after, options);
    comparison.run();
    QVERIFY(passed > 0);
    QCOMPARE(passed, comparison.totalSize());
}

void TstDiff::known_edits_are_reported_exactly()
{
    for (quint32 seed = 1; seed <= 200; ++seed) {
        DeviceEditor editor(seed);
        editor.editSomething();
        QVERIFY(writePackage(m_a, editor.before));
        QVERIFY(writePackage(m_b, editor.after, "edited"));
        const QByteArray name = "seed " + QByteArray::number(seed);
        QVERIFY2(!editor.forth.isEmpty(), name);
        QVERIFY2(compared(m_a, m_b) == editor.forth,
                 name + ": " + (compared(m_a, m_b) + QStringList{"expected"} + editor.forth).join('\n').toUtf8());
        QVERIFY2(compared(m_b, m_a) == editor.back, name + ", backwards");
        QVERIFY2(compared(m_b, m_b).isEmpty(), name);
    }
}

void TstDiff::directory_can_be_either_side()
{
    Files files = sampleFiles();
    files["Preset/1.RPst"][5] = 'x';
    files.remove("LOGO/LOGO_1.png");
    QVERIFY(writeDirectory(path("device"), files));
    const QString change = Line::bytes("Preset/1.RPst", 12, 12, 5, 1);
    QCOMPARE(compared(m_a, path("device")), QStringList({Line::oneSided("LOGO/LOGO_1.png", true), change}));
    QCOMPARE(compared(path("device"), m_a), QStringList({Line::oneSided("LOGO/LOGO_1.png", false), change}));
}

void TstDiff::changes_are_printed_line_by_line()
{
    Files files = sampleFiles();
    QJsonObject description = sampleDescription();
    description["name"] = "spare";
    description.remove("enabled");
    description["added"] = QJsonObject{{"x", 1}};
    files[descriptionName] = jsonOf(description);
    QImage picture = pictureOf({16, 9}, 1);
    picture.setPixel(3, 3, picture.pixel(3, 3) ^ 0x80);
    files["BKG/BKG_1.png"] = pngOf(picture);
    files["BKG/BKG_2.png"] = pngOf(pictureOf({4, 5}, 1));
    files["Preset/1.RPst"][5] = 'x';
    files["Preset/2.RPst"].append("ab");
    files.remove("LOGO/LOGO_1.png");
    files.insert("new.bin", "n");
    QVERIFY(writePackage(m_b, files));

    const Outcome outcome = runTool({"diff", m_a, m_b});
    QCOMPARE(outcome.code, no);
    QCOMPARE(QString(outcome.out), QString("10.0.0.1.json: added: only in B: {\"x\":1}\n"
                                           "10.0.0.1.json: enabled: only in A: true\n"
                                           "10.0.0.1.json: name: \"main\" -> \"spare\"\n"
                                           "BKG/BKG_1.png: 1 of 16 x 9 pixels differ (0.694 %), by at most 128 of 255\n"
                                           "BKG/BKG_2.png: 9 x 16 -> 4 x 5 pixels\n"
                                           "LOGO/LOGO_1.png: only in A\n"
                                           "Preset/1.RPst: 1 of 12 bytes differ, the first difference is at offset 5\n"
                                           "Preset/2.RPst: 4 -> 6 bytes, the first difference is at offset 4\n"
                                           "new.bin: only in B\n"
                                           "does not count: the project's name is \"a\" -> \"b\"\n"));

    const QJsonObject json = runTool({"diff", "--json", m_a, m_b}).json();
    QCOMPARE(json["result"].toString(), QString("different"));
    QCOMPARE(json["a"].toString(), m_a);
    const QJsonArray differences = json["differences"].toArray();
    QCOMPARE(differences.size(), 7);
    const QJsonArray members = differences[0].toObject()["members"].toArray();
    QCOMPARE(members.size(), 3);
    QCOMPARE(members[2].toObject(),
             QJsonObject({{"path", "name"}, {"change", "changed"}, {"a", "main"}, {"b", "spare"}}));
    QCOMPARE(members[1].toObject(), QJsonObject({{"path", "enabled"}, {"change", "removed"}, {"a", true}}));
    QCOMPARE(differences[1].toObject()["pixels"].toObject()["largest"].toInt(), 128);
    QCOMPARE(differences[3].toObject()["change"].toString(), QString("removed"));
    QCOMPARE(differences[4].toObject()["bytes"].toObject(),
             QJsonObject({{"firstOffset", 5}, {"differing", 1}, {"sizeA", 12}, {"sizeB", 12}}));
}

void TstDiff::undecodable_pictures_are_compared_by_bytes()
{
    Files files = sampleFiles();
    QByteArray &picture = files["BKG/BKG_1.png"];
    const int size = picture.size();
    picture.truncate(size / 2);
    QVERIFY(writePackage(m_b, files));
    QCOMPARE(compared(m_b, m_b), QStringList());
    QCOMPARE(compared(m_a, m_b), QStringList{Line::bytes("BKG/BKG_1.png", size, size / 2, size / 2, 0)});
}

void TstDiff::non_json_descriptions_are_compared_by_bytes()
{
    Files files = sampleFiles();
    const QByteArray old = files[descriptionName];
    files[descriptionName] = old + "x";
    QVERIFY(writePackage(m_b, files));
    QCOMPARE(compared(m_b, m_b), QStringList());
    QCOMPARE(compared(m_a, m_b), QStringList{Line::bytes(descriptionName, old.size(), old.size() + 1, old.size(), 0)});
}

void TstDiff::numbers_are_compared_exactly()
{
    QVERIFY(writePackage(m_a, {{descriptionName, R"({"id": 9007199254740993, "one": 1, "half": 0.5})"}}));
    QVERIFY(writePackage(m_b, {{descriptionName, R"({"id": 9007199254740992, "one": 1.0, "half": 5e-1})"}}));
    const Outcome outcome = runTool({"diff", m_a, m_b});
    QCOMPARE(outcome.code, no);
    QVERIFY2(outcome.out.startsWith("10.0.0.1.json: id: 9007199254740993 -> 9007199254740992\ndoes not"), outcome.out);
}

void TstDiff::many_changed_members_are_counted()
{
    const auto description = [](int first) {
        QJsonArray numbers;
        for (int i = 0; i < DescriptionComparison::maxKept + 5; ++i)
            numbers.append(first + i);
        return Files{{descriptionName, jsonOf({{"numbers", numbers}})}};
    };
    QVERIFY(writePackage(m_a, description(0)));
    QVERIFY(writePackage(m_b, description(1)));
    const QJsonObject json = runTool({"diff", "--json", m_a, m_b}).json();
    const QJsonObject difference = json["differences"].toArray().first().toObject();
    QCOMPARE(difference["members"].toArray().size(), int(DescriptionComparison::maxKept));
    QCOMPARE(difference["omittedMembers"].toInt(), 5);
}

void TstDiff::spare_is_equal_but_for_what_is_ignored()
{
    Files files = sampleFiles();
    QJsonObject description = sampleDescription();
    QJsonArray cards = description["slots"].toArray();
    for (int i = 0; i < cards.size(); ++i) {
        QJsonObject card = cards[i].toObject();
        card["serial"] = "B" + QString::number(i);
        cards[i] = card;
    }
    description["slots"] = cards;
    description["id"] = 8;
    description["network"] = QJsonObject{{"ip", "10.0.0.2"}};
    files.remove(descriptionName);
    files["10.0.0.2.json"] = jsonOf(description);
    QVERIFY(writePackage(m_b, files));

    QStringList arguments{"diff", m_a, m_b, "--ignore", "id", "--ignore", "network"};
    QCOMPARE(runTool(arguments).code, no);
    arguments += QStringList{"--ignore", "slots[*].serial"};
    const Outcome outcome = runTool(arguments);
    QCOMPARE(outcome.code, yes);
    QVERIFY2(outcome.out.contains("does not count: the description is called 10.0.0.1.json -> 10.0.0.2.json\n"),
             outcome.out);
}

void TstDiff::ignored_path_covers_data()
{
    QTest::addColumn<QString>("ignored");
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isCovered");
    QTest::newRow("a member") << "a"
                              << "a" << true;
    QTest::newRow("a member below") << "a"
                                    << "a.b" << false;
    QTest::newRow("a member above") << "a.b"
                                    << "a" << false;
    QTest::newRow("an element") << "a[1]"
                                << "a[1]" << true;
    QTest::newRow("another element") << "a[1]"
                                     << "a[2]" << false;
    QTest::newRow("a member that is a number") << "a[\"1\"]"
                                               << "a[1]" << false;
    QTest::newRow("each element") << "a[*].b"
                                  << "a[12].b" << true;
    QTest::newRow("each member") << "a[*]"
                                 << "a.b" << true;
    QTest::newRow("each, not below") << "a[*]"
                                     << "a.b.c" << false;
    QTest::newRow("a name in brackets") << "[\"a\"].b"
                                        << "a[\"b\"]" << true;
    QTest::newRow("dots in brackets") << "[\"a.b\"]"
                                      << "a.b" << false;
    QTest::newRow("a quote in a name") << "x[\"a\\\"]b\"]"
                                       << "x[\"a\\\"]b\"]" << true;
    QTest::newRow("Chinese") << "屏幕[0]"
                             << "屏幕[0]" << true;
    QTest::newRow("an array of arrays") << "[0][*]"
                                        << "[0][3]" << true;
    QTest::newRow("other case") << "Name"
                                << "name" << false;
}

void TstDiff::ignored_path_covers()
{
    QFETCH(QString, ignored);
    QFETCH(QString, path);
    QString reason;
    const auto pattern = DescriptionPath::parse(ignored, &reason);
    const auto value = DescriptionPath::parse(path, &reason);
    QVERIFY2(pattern && value, qPrintable(reason));
    QTEST(pattern->matches(*value), "isCovered");
    // What is printed can be given back.
    QVERIFY(DescriptionPath::parse(value->text(), &reason)->matches(*value));
}

void TstDiff::what_is_no_path_is_wrong_usage()
{
    QString reason;
    for (const char *text :
         {"", ".", ".a", "a.", "a..b", "a[", "a[]", "a[x]", "a[-1]", "a]", "[\"a]", "a b", "a.[1]", "a[1]b"})
        QVERIFY2(!DescriptionPath::parse(text, &reason), text);
    const Outcome outcome = runTool({"diff", m_a, m_a, "--ignore", "a..b"});
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.messages.count('\n'), 1);
}

void TstDiff::work_on_each_core_is_done_once()
{
    for (const int count : {0, 1, 2, 1000}) {
        std::vector<int> done(std::size_t(count), 0);
        int passed = 0;
        bool isElsewhere = false;
        onEachCore(
            count, [&done](int number) { ++done[std::size_t(number)]; },
            [&, caller = QThread::currentThread()] {
                ++passed;
                isElsewhere = isElsewhere || QThread::currentThread() != caller;
            });
        QCOMPARE(std::count(done.begin(), done.end(), 1), count);
        QVERIFY(passed > 0 && !isElsewhere);
    }
}

void TstDiff::sheet_shows_each_changed_picture()
{
    Files files = sampleFiles();
    QImage red({640, 360}, QImage::Format_ARGB32);
    red.fill(Qt::red);
    files["BKG/BKG_1.png"] = pngOf(red);
    QVERIFY(writePackage(m_a, files));
    red.setPixel(0, 0, qRgb(0, 255, 0));
    files["BKG/BKG_1.png"] = pngOf(red);
    files["BKG/BKG_2.png"] = pngOf(pictureOf({4, 5}, 1));
    QVERIFY(writePackage(m_b, files));

    const Outcome outcome = runTool({"diff", m_a, m_b, "--sheet", path("sheet.png")});
    QCOMPARE(outcome.code, no);
    QVERIFY2(outcome.out.contains("by at most 255 of 255 (row 1 of the sheet)\n"), outcome.out);
    QVERIFY2(outcome.out.contains("9 x 16 -> 4 x 5 pixels (row 2 of the sheet)\n"), outcome.out);
    const QImage sheet(path("sheet.png"));
    constexpr QPoint first(8, 8);
    constexpr int column = 328;
    QCOMPARE(sheet.size(), QSize(8 + 3 * column, 8 + 2 * 188));
    QCOMPARE(sheet.pixelColor(first + QPoint(100, 100)), QColor(Qt::red));
    QCOMPARE(sheet.pixelColor(first + QPoint(column + 100, 100)), QColor(Qt::red));
    // The one pixel of 640 x 360 that differs is seen in the third cell, which is half as wide.
    QCOMPARE(sheet.pixelColor(first + QPoint(2 * column, 0)), QColor(Qt::white));
    QCOMPARE(sheet.pixelColor(first + QPoint(2 * column + 1, 0)), QColor(Qt::black));
}

void TstDiff::sheet_replaces_no_file()
{
    const QByteArray old = readFile(m_a);
    const Outcome outcome = runTool({"diff", m_a, m_a, "--sheet", m_a});
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.messages, ("corvelpro: " + m_a + ": already exists\n").toUtf8());
    QCOMPARE(readFile(m_a), old);
}

void TstDiff::sheet_is_whole_or_missing()
{
    const Outcome none = runTool({"diff", m_a, m_a, "--sheet", path("sheet.png")});
    QCOMPARE(none.code, yes);
    QCOMPARE(none.messages, QByteArray("corvelpro: no picture has changed, so there is no sheet\n"));

    Files files = sampleFiles();
    files["BKG/BKG_1.png"] = pngOf(pictureOf({16, 9}, 9));
    QVERIFY(writePackage(m_b, files));
    const QStringList before = namesIn(m_dir->path());
    QCOMPARE(runTool({"diff", m_a, m_b, "--sheet", path("gone/sheet.png")}).code, unknown);
    {
        const FullDisk disk(100);
        QCOMPARE(runTool({"diff", m_a, m_b, "--sheet", path("sheet.png")}).code, unknown);
    }
    QCOMPARE(namesIn(m_dir->path()), before);
}

void TstDiff::damage_is_never_equal_data()
{
    QTest::addColumn<QByteArray>("package");
    const auto preset = [] { return packed(sampleFiles()).file("Preset/9.RPst", "a preset"); };
    QTest::newRow("a wrong CRC") << preset().claimCrc(1).record("a", "").build();
    QTest::newRow("a wrong size") << preset().claimSize(1).record("a", "").build();
    QTest::newRow("an unknown method") << preset().claimMethod(99).record("a", "").build();
    QTest::newRow("encrypted") << preset().claimFlags(1).record("a", "").build();
    QTest::newRow("a link")
        << packed(sampleFiles()).symbolicLink("Preset/9.RPst", "/etc/passwd").record("a", "").build();
    QTest::newRow("an unsafe name") << packed(sampleFiles()).file("../x", "x").record("a", "").build();
    QTest::newRow("no archive") << QByteArray("text");
    QTest::newRow("cut") << preset().record("a", "").build().chopped(300);
    QByteArray directory = preset().record("a", "").build();
    directory[directory.lastIndexOf("PK\x01\x02")] = 'X';
    QTest::newRow("a damaged directory") << directory;
}

void TstDiff::damage_is_never_equal()
{
    QFETCH(QByteArray, package);
    QVERIFY(writeFile(m_a, package));
    QVERIFY(writeFile(m_b, package));
    const QStringList lines = compared(m_a, m_b);
    QVERIFY2(lines == QStringList({"unreadable Preset/9.RPst of A", "unreadable Preset/9.RPst of B"}) ||
                 lines == QStringList({"unreadable ../x of A", "unreadable ../x of B"}) ||
                 lines.value(0).startsWith("not open: " + m_b),
             qPrintable(lines.join('\n')));
    const Outcome outcome = runTool({"diff", "--json", m_a, m_b});
    QCOMPARE(outcome.code, unknown);
    QVERIFY(outcome.out.isEmpty() || outcome.json()["result"] == "unknown");
    QVERIFY(!outcome.messages.isEmpty());
}

void TstDiff::damage_is_named_on_its_side()
{
    // The same bytes, but the CRC says that they are not what was packed.
    QVERIFY(packed(sampleFiles()).file("Preset/9.RPst", "a preset").record("a", "").write(m_a));
    QVERIFY(packed(sampleFiles()).file("Preset/9.RPst", "a preset").claimCrc(1).record("b", "").write(m_b));
    QCOMPARE(compared(m_a, m_b), QStringList{"unreadable Preset/9.RPst of B"});
    QCOMPARE(compared(m_b, m_a), QStringList{"unreadable Preset/9.RPst of A"});
    const Outcome outcome = runTool({"diff", m_b, m_a});
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.messages, ("corvelpro: " + m_b + ": cannot read Preset/9.RPst: its CRC is wrong\n").toUtf8());
    QVERIFY2(!outcome.out.contains("equal"), outcome.out);
}

void TstDiff::one_damaged_side_is_never_equal_data()
{
    QTest::addColumn<PackageBuilder::Method>("method");
    QTest::addColumn<std::function<void(ZipArchive &)>>("damage");
    const auto row = [](const char *name, const std::function<void(ZipArchive &)> &damage) {
        QTest::newRow(qPrintable(QString(name) + ", stored")) << PackageBuilder::Stored << damage;
        QTest::newRow(qPrintable(QString(name) + ", deflated")) << PackageBuilder::Deflated << damage;
    };
    const auto increment = [](ZipArchive &archive, int at) { archive.set32(at, archive.get32(at) + 1); };
    const auto inBothHeaders = [=](int inDirectory) {
        return [=](ZipArchive &archive) {
            increment(archive, archive.lastCentral() + inDirectory);
            increment(archive, archive.lastLocal() + inDirectory - 2);
        };
    };
    row("CRC in the directory", [=](ZipArchive &archive) { increment(archive, archive.lastCentral() + 16); });
    row("CRC", inBothHeaders(16));
    row("packed size in the directory", [=](ZipArchive &archive) { increment(archive, archive.lastCentral() + 20); });
    row("size", inBothHeaders(24));
    row("local header", [=](ZipArchive &archive) { increment(archive, archive.lastLocal()); });
    row("method", [](ZipArchive &archive) {
        const quint16 other = archive.get16(archive.lastCentral() + 10) == 0 ? 8 : 0;
        archive.set16(archive.lastCentral() + 10, other).set16(archive.lastLocal() + 8, other);
    });
    row("first byte", [=](ZipArchive &archive) { increment(archive, archive.lastContent()); });
    row("type", [](ZipArchive &archive) { archive.set16(archive.lastCentral() + 40, 0120777); });
}

void TstDiff::one_damaged_side_is_never_equal()
{
    QFETCH(PackageBuilder::Method, method);
    QFETCH(std::function<void(ZipArchive &)>, damage);
    const QByteArray content = QByteArray("a preset").repeated(100);
    ZipArchive archive(packed(sampleFiles()).file("Preset/9.RPst", content, method).record("a", "").build());
    QVERIFY(writeFile(m_a, archive.bytes));
    damage(archive);
    QVERIFY(writeFile(m_b, archive.bytes));
    QCOMPARE(compared(m_a, m_b), QStringList{"unreadable Preset/9.RPst of B"});
    QCOMPARE(compared(m_b, m_a), QStringList{"unreadable Preset/9.RPst of A"});
}

void TstDiff::what_is_no_package_is_one_line()
{
    QVERIFY(QProcess::execute("mkfifo", {path("pipe")}) == 0);
    for (const QString &other : {path("gone"), path("pipe"), QString("/dev/null"), m_a + "/x"}) {
        for (const QStringList &sides : {QStringList{m_a, other}, QStringList{other, m_a}}) {
            const Outcome outcome = runTool(QStringList{"diff"} + sides);
            QCOMPARE(outcome.code, unknown);
            QCOMPARE(outcome.out, QByteArray());
            QCOMPARE(outcome.messages.count('\n'), 1);
            QVERIFY2(outcome.messages.contains(other.toUtf8()), outcome.messages);
        }
    }
}

TEST_MAIN_CORE(TstDiff)
#include "tst_diff.moc"

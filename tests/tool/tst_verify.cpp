// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "goodpackage.h"
#include "toolrunner.h"

#include "content/scratch.h"
#include "content/verification.h"

#include <data/hostilepackages.h>
#include <data/pngmaker.h>
#include <data/ziparchive.h>
#include <support/packagebuilder.h>
#include <support/systemcalls.h>
#include <unit/cachetesting.h>

#include <QJsonArray>
#include <QScopeGuard>
#include <QStandardPaths>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace ToolTesting;
using TestData::PngMaker;
using TestData::ZipArchive;
using TestSupport::PackageBuilder;

namespace {

/// What lies where in a package.
struct Layout
{
    struct Range
    {
        int begin;
        int size;
    };
    QVector<Range> headers;
    QVector<Range> contents;
};

Layout layoutOf(const QByteArray &package)
{
    const ZipArchive archive(package);
    Layout layout;
    for (int entry = 0; entry < archive.count(); ++entry) {
        const int central = archive.central(entry);
        const int local = archive.local(entry);
        const int names = archive.get16(local + 26) + archive.get16(local + 28);
        layout.headers.append({local, 30 + names});
        layout.headers.append({central, 46 + archive.get16(central + 28) + archive.get16(central + 30)});
        const int size = int(archive.get32(central + 20));
        if (size > 0)
            layout.contents.append({local + 30 + names, size});
    }
    layout.headers.append({archive.end(), 22});
    return layout;
}

/// A byte of these ranges, each with the same chance.
int placeIn(const QVector<Layout::Range> &ranges, QRandomGenerator &random)
{
    int total = 0;
    for (const Layout::Range &range : ranges)
        total += range.size;
    int place = random.bounded(total);
    for (const Layout::Range &range : ranges) {
        if (place < range.size)
            return range.begin + place;
        place -= range.size;
    }
    return -1;
}

QByteArray withFlippedBit(QByteArray package, int at, int bit)
{
    package[at] = char(package.at(at) ^ (1 << bit));
    return package;
}

PackageBuilder small()
{
    return PackageBuilder()
        .file("1.json", "{\"name\": \"main\"}")
        .file("BKG/BKG_1.png", PngMaker::blank(4, 4), PackageBuilder::Stored);
}

QByteArray sealed(PackageBuilder builder)
{
    return builder.record("small", "").build();
}

} // namespace

class TstVerify : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void good_packages_are_sound();
    void packages_by_other_programs_are_sound();
    void every_damaged_content_is_found();
    void bits_that_nothing_unpacks_count_too();
    void nearly_every_damaged_header_is_found();
    void truncation_is_found_at_every_place();
    void each_kind_of_damage_is_named();
    void hostile_packages_end_with_a_verdict();
    void undecided_parts_are_named();
    void lines_name_file_entry_and_offset();
    void findings_beyond_the_thousandth_are_counted();
    void verdict_is_about_the_file_that_was_opened();
    void an_archive_in_the_comment_is_found();
    void large_content_goes_to_a_nameless_file();
    void libraries_print_no_lines_of_their_own();
    void what_is_no_plain_file_is_unknown();
    void progress_is_shown_on_a_terminal();
    void verified_package_leaves_the_page_cache();

private:
    QString write(const QString &name, const QByteArray &package);
    /// The results for the files, in their order.
    QVector<QJsonObject> verify(const QStringList &files, int expectedCode);
    /// How many of these variants of a package are found damaged.
    int foundOf(int count, const std::function<QByteArray(int)> &variant);

    QScopedPointer<QTemporaryDir> m_dir;
};

void TstVerify::init()
{
    m_dir.reset(new QTemporaryDir);
}

QString TstVerify::write(const QString &name, const QByteArray &package)
{
    const QString path = m_dir->filePath(name + ".corvelpro");
    return writeFile(path, package) ? path : QString();
}

QVector<QJsonObject> TstVerify::verify(const QStringList &files, int expectedCode)
{
    const Outcome outcome = runTool(QStringList{"verify", "--json"} + files);
    QVector<QJsonObject> results;
    for (const QJsonValue &result : outcome.json()["files"].toArray())
        results.append(result.toObject());
    if (outcome.code != expectedCode || results.size() != files.size()) {
        qWarning() << "code" << outcome.code << outcome.out.left(2000) << outcome.messages.left(2000);
        return QVector<QJsonObject>(files.size());
    }
    return results;
}

int TstVerify::foundOf(int count, const std::function<QByteArray(int)> &variant)
{
    QStringList files;
    for (int i = 0; i < count; ++i)
        files.append(write(QString::number(i), variant(i)));
    int found = 0;
    for (const QJsonObject &result : verify(files, no))
        found += result["verdict"] == "damaged" ? 1 : 0;
    return found;
}

void TstVerify::good_packages_are_sound()
{
    QStringList files;
    for (quint32 seed = 1; seed <= 20; ++seed)
        files.append(write(QString("good%1").arg(seed), goodPackage(seed)));
    files.append(write("honest", TestData::honestPackage()));
    files.append(write("small", sealed(PackageBuilder().file("1.json", "{\"a\": 1}"))));
    for (const QJsonObject &result : verify(files, yes)) {
        QCOMPARE(result["verdict"].toString(), QString("sound"));
        QCOMPARE(result["notKnown"].toArray(), QJsonArray());
    }
}

void TstVerify::packages_by_other_programs_are_sound()
{
    makeDevice(m_dir->filePath("device"), 7);
    const auto pack = [&](const QString &program, const QStringList &arguments) {
        QProcess process;
        process.setWorkingDirectory(m_dir->filePath("device"));
        process.start(program, arguments);
        return process.waitForFinished(TestSupport::patience) && process.exitCode() == 0;
    };
    const QVector<QPair<QString, QStringList>> programs{
        {"zip", {"-qr", "../zip.corvelpro", "."}},
        {"7z", {"a", "-tzip", "../7z.corvelpro", "."}},
        {"python3", {"-c", "import shutil; shutil.make_archive('../python', 'zip', '.')"}}};
    int packed = 0;
    for (const auto &program : programs) {
        if (!QStandardPaths::findExecutable(program.first).isEmpty())
            QVERIFY2(pack(program.first, program.second), qPrintable(program.first));
    }
    QFile::rename(m_dir->filePath("python.zip"), m_dir->filePath("python.corvelpro"));
    for (const QString &name : QDir(m_dir->path()).entryList({"*.corvelpro"})) {
        const QString path = m_dir->filePath(name);
        ProjectFileCfg::Internal::EngineerPacketInfo info;
        info.strFilePath = path;
        QVERIFY2(ProjectFileCfg::Internal::ZipPackageHandle::setEngineerInfo(info), qPrintable(path));
        const QJsonObject result = verify({path}, yes).first();
        QVERIFY2(result["verdict"] == "sound", QJsonDocument(result).toJson());
        ++packed;
    }
    if (packed == 0)
        QSKIP("no other program that packs");
}

void TstVerify::every_damaged_content_is_found()
{
    const QByteArray package = goodPackage(3);
    const Layout layout = layoutOf(package);
    QRandomGenerator random(1);
    const int flips =
        foundOf(60, [&](int) { return withFlippedBit(package, placeIn(layout.contents, random), random.bounded(8)); });
    QCOMPARE(flips, 60);
    const int zeroed = foundOf(20, [&](int i) {
        const Layout::Range &range = layout.contents.at(i % layout.contents.size());
        const int size = qMin(range.size, 1 + random.bounded(100));
        const int at = range.begin + random.bounded(range.size - size + 1);
        QByteArray damaged = package;
        damaged.replace(at, size, QByteArray(size, '\0'));
        return damaged == package ? withFlippedBit(package, at, 0) : damaged;
    });
    QCOMPARE(zeroed, 20);
}

void TstVerify::bits_that_nothing_unpacks_count_too()
{
    // Packed into stored blocks, whose headers have spare bits, as the last byte of every stream has.
    QByteArray noise(600000, '\0');
    QRandomGenerator random(3);
    for (char &byte : noise)
        byte = char(random.bounded(256));
    PackageBuilder builder = small().file("text", "some text").file("noise", noise);
    const QByteArray package = sealed(builder.file("both", QByteArray(300000, 'x') + noise + "some text"));
    QCOMPARE(verify({write("good", package)}, yes).first()["verdict"].toString(), QString("sound"));
    QVector<QPair<int, int>> bits;
    for (const Layout::Range &content : layoutOf(package).contents) {
        for (int bit = 0; bit < 8; ++bit)
            bits << qMakePair(content.begin, bit) << qMakePair(content.begin + content.size - 1, bit);
    }
    const int found =
        foundOf(bits.size(), [&](int i) { return withFlippedBit(package, bits.at(i).first, bits.at(i).second); });
    QCOMPARE(found, bits.size());
}

void TstVerify::nearly_every_damaged_header_is_found()
{
    const QByteArray package = goodPackage(3);
    const Layout layout = layoutOf(package);
    QRandomGenerator random(2);
    constexpr int count = 400;
    const int found = foundOf(
        count, [&](int) { return withFlippedBit(package, placeIn(layout.headers, random), random.bounded(8)); });
    QVERIFY2(found >= count * 95 / 100, qPrintable(QString("%1 of %2").arg(found).arg(count)));
}

void TstVerify::truncation_is_found_at_every_place()
{
    const QByteArray package = goodPackage(4);
    QRandomGenerator random(3);
    // The last byte is one of the record's.
    QCOMPARE(foundOf(40,
                     [&](int i) {
                         return package.left(package.size() - 1 - (i < 20 ? i * 20 : random.bounded(package.size())));
                     }),
             40);
}

namespace {

struct Case
{
    const char *name;
    QByteArray package;
    /// Of the finding; empty for the archive.
    QString entry;
    /// Part of its text.
    const char *text;
};

QByteArray withoutFirstEntryInDirectory()
{
    ZipArchive archive(sealed(small()));
    const int size = archive.central(1) - archive.central(0);
    archive.bytes.remove(archive.central(0), size);
    ZipArchive shorter(archive.bytes);
    const int end = shorter.end();
    return shorter.set16(end + 8, quint16(shorter.get16(end + 8) - 1))
        .set16(end + 10, quint16(shorter.get16(end + 10) - 1))
        .set32(end + 12, shorter.get32(end + 12) - quint32(size))
        .bytes;
}

/// The small package with a number changed in its last entry's header in the directory or before its content.
QByteArray withInDirectory(int field, quint16 value)
{
    ZipArchive archive(sealed(small()));
    return archive.set16(archive.lastCentral() + field, value).bytes;
}

QByteArray withInLocal(int field, quint16 value)
{
    ZipArchive archive(sealed(small()));
    return archive.set16(archive.lastLocal() + field, value).bytes;
}

/// "{}" deflated leaves bits of its last byte unused.
QByteArray withUnusedBitSet()
{
    ZipArchive archive(sealed(small().file("a", "{}", PackageBuilder::Deflated)));
    const int last = archive.lastContent() + int(archive.get32(archive.lastCentral() + 20)) - 1;
    return withFlippedBit(archive.bytes, last, 7);
}

QByteArray withFile(const QByteArray &name, const QByteArray &content)
{
    return sealed(small().file(name, content));
}

QByteArray withNumberInEnd(int field, quint16 value)
{
    ZipArchive archive(sealed(small()));
    return archive.set16(archive.end() + field, value).bytes;
}

QVector<Case> cases()
{
    const QByteArray png = PngMaker::blank(4, 4);
    const QString picture("BKG/BKG_1.png");
    const QByteArray good = sealed(small());
    const QByteArray twoKeys = R"({"Checksum": "%1", "projectName": "x", "note": "y"})";
    return {
        {"content", sealed(small().file("a", "abc").claimCrc(1)), "a", "its CRC is wrong"},
        {"length", sealed(small().file("a", "abc").claimSize(2)), "a", "it has more than 2 bytes instead of 2"},
        {"unused bit", withUnusedBitSet(), "a", "its packed content is damaged"},
        {"local flags", withInLocal(6, 2), picture, "local header has the flags 2, and the directory 2048"},
        {"local time", withInLocal(10, 77), picture, "local header has the time 77"},
        {"local name", withInLocal(30, 0x4141), picture, "local header has the name \"AAG/BKG_1.png\""},
        {"local signature", withInLocal(0, 0), picture, "there is no local header"},
        {"maker", withInDirectory(4, 0x7714), picture, "its maker 30484 is unknown"},
        {"disk", withInDirectory(34, 1), picture, "on disk 1"},
        {"internal attributes", withInDirectory(36, 8), picture, "internal attributes 8"},
        {"attributes", withInDirectory(38, 0x10), picture, "its attributes 16 are odd"},
        {"link", sealed(small().symbolicLink("a", "b")), "a", "its mode 120777"},
        {"encrypted", sealed(small().file("a", "abc").claimFlags(1)), "a", "it is encrypted"},
        {"unknown flags", sealed(small().file("a", "abc").claimFlags(0x4000)), "a", "its flags 16384 are unknown"},
        {"content of a folder", sealed(small().file("a/", "abc")), "a/", "a folder with content"},
        {"extra field", ZipArchive(good).addCentralExtra("UT\xff").bytes, picture, "extra fields of its header"},
        {"bytes of no entry", withoutFirstEntryInDirectory(), "", "bytes before BKG/BKG_1.png belong to no entry"},
        {"overlap", withInDirectory(42, 0), picture, "it overlaps the entry before it"},
        {"bytes before", QByteArray(9, 'x') + good, "", "its end record has its directory at"},
        {"bytes behind the directory", ZipArchive(good).insertBeforeEnd("x").bytes, "", "its directory"},
        {"bytes behind", good + "x", "", "bytes, and"},
        {"disks", withNumberInEnd(4, 1), "", "several disks"},
        {"fewer entries", withNumberInEnd(10, 1), "", "its directory, of 1 entries, ends at"},
        {"64 bits", withNumberInEnd(10, 0xFFFF), "", "64-bit extension"},
        {"no archive", "no archive", "", "it has no end record"},
        {"empty file", "", "", "it has no end record"},
        {"name that climbs", withFile("../a", "abc"), "../a", "could lead out of a folder"},
        {"name that blocks", withFile("bkg", "abc"), "bkg", "would block"},
        {"name that is no UTF-8", withFile("a\xff", "abc"), "a%FF", "not UTF-8"},
        {"name twice", withFile("1.json", "abc"), "1.json", "the name of an earlier entry"},
        {"name in other case", withFile("bkg/bkg_1.PNG", png), "bkg/bkg_1.PNG", "differ only in case"},
        {"alias", withFile("BKG//BKG_1.png", png), "BKG//BKG_1.png", "the same path as \"BKG/BKG_1.png\""},
        {"file and folder", sealed(small().folder("1.json")), "1.json/", "both a file and a folder"},
        {"file as a folder", withFile("1.json/a", "abc"), "1.json/a", "its folder is the file \"1.json\""},
        {"no number", withFile("BKG/a.png", png), "BKG/a.png", "no key number"},
        {"number above 8 bits", withFile("LOGO/LOGO_300.png", png), "LOGO/LOGO_300.png", "no key number"},
        {"picture that is none", withFile("LOGO/LOGO_1.png", "abc"), "LOGO/LOGO_1.png", "is not a PNG"},
        {"picture cut off", withFile("a.png", png.left(png.size() - 20)), "a.png", "cannot decode a.png"},
        {"preset without length", withFile("Preset/1.RPst", "abc"), "Preset/1.RPst", "cut off in its length"},
        {"preset cut off", withFile("Preset/1.RPst", presetOf("abc").chopped(1)), "Preset/1.RPst",
         "2 bytes instead of 3"},
        {"preset with more", withFile("Preset/1.RPst", presetOf("abc") + "d"), "Preset/1.RPst", "4 bytes instead of 3"},
        {"no description", sealed(PackageBuilder().file("a", "abc")), "", "no device description"},
        {"description cut off", sealed(PackageBuilder().file("1.json", "{\"a\": ")), "1.json", "not JSON"},
        {"description of nothing", sealed(PackageBuilder().file("1.json", "[1]")), "1.json", "no JSON object"},
        {"no record", small().build(), "", "not an info record"},
        {"wrong checksum", small().recordWithChecksum("0", "a", "b").build(), "", "checksum"},
        {"record without comment",
         small()
             .archiveComment(QByteArray(twoKeys).replace("%1", PackageBuilder::checksum(small().build(), 0)))
             .build(),
         "", "no text \"comment\""},
    };
}

bool has(const QJsonArray &findings, const QString &entry, const QString &text)
{
    return std::any_of(findings.begin(), findings.end(), [&](const QJsonValue &finding) {
        return finding.toObject()["entry"].toString() == entry && finding.toObject()["text"].toString().contains(text);
    });
}

} // namespace

// One run for all cases: each start of the program takes longer than its work.
void TstVerify::each_kind_of_damage_is_named()
{
    const QVector<Case> all = cases();
    QStringList files;
    for (const Case &one : all)
        files.append(write(QString(one.name).replace(' ', '_'), one.package));
    const QVector<QJsonObject> results = verify(files, no);
    for (int i = 0; i < all.size(); ++i) {
        const QJsonObject &result = results.at(i);
        QVERIFY2(result["verdict"] == "damaged" && has(result["findings"].toArray(), all.at(i).entry, all.at(i).text),
                 QByteArray(all.at(i).name) + '\n' + QJsonDocument(result).toJson());
    }
}

void TstVerify::hostile_packages_end_with_a_verdict()
{
    const QVector<TestData::HostilePackage> packages = TestData::shareOfHostilePackages();
    // In several runs, so that none has to be waited for longer than for any other process.
    constexpr int batch = 60;
    for (int begin = 0; begin < packages.size(); begin += batch) {
        QStringList files;
        for (const TestData::HostilePackage &package : packages.mid(begin, batch)) {
            // As much decoding as there can be, which takes seconds; and what ends a process with a leak checker.
            if (package.name != "pictures_of_21_gigapixels_together" && !package.libraryLeaks)
                files.append(write(package.name, package.bytes()));
        }
        for (const QJsonObject &result : verify(files, no)) {
            const bool isListed =
                ProjectFileCfg::Internal::ZipPackageHandle::isValidEngineerPacket(result["file"].toString());
            QVERIFY2(isListed || result["verdict"] == "damaged", QJsonDocument(result).toJson());
        }
        for (const QString &file : qAsConst(files))
            QFile::remove(file);
    }
}

void TstVerify::undecided_parts_are_named()
{
    const QString hidden = write("hidden", sealed(small().file("a", "abc").claimFlags(1)));
    const QByteArray large =
        PngMaker::signature() + PngMaker::header(60000, 60000) + PngMaker::pixels("") + PngMaker::end();
    const QString elsewhere = write("large", sealed(small().file("poster.png", large)));
    const QVector<QJsonObject> results = verify({hidden, elsewhere}, no);
    QVERIFY(has(results.at(0)["notKnown"].toArray(), "a", "its content, which cannot be read"));
    QVERIFY(has(results.at(1)["notKnown"].toArray(), "poster.png", "whether it can be decoded"));
    QCOMPARE(results.at(1)["verdict"].toString(), QString("sound"));
}

void TstVerify::lines_name_file_entry_and_offset()
{
    const QString bad = write("bad", sealed(small().file("a", "abc").claimCrc(1)));
    const QString good = write("good", sealed(small()));
    const int offset = ZipArchive(readFile(bad)).lastLocal();
    const Outcome outcome = runTool({"verify", bad, good});
    QCOMPARE(outcome.code, no);
    const QByteArray size = QByteArray::number(QFileInfo(bad).size());
    QCOMPARE(QString(outcome.out),
             QString("%1: a: at %2: its CRC is wrong\n%1: 1 finding (3 entries, 1 picture, %3 bytes)\n"
                     "%4: sound (2 entries, 1 picture, %5 bytes)\n")
                 .arg(bad, QString::number(offset), QString(size), good, QString::number(QFileInfo(good).size())));
    QCOMPARE(outcome.messages, QByteArray());
}

void TstVerify::findings_beyond_the_thousandth_are_counted()
{
    PackageBuilder builder = small();
    for (int number = 0; number < 1003; ++number)
        builder.file(QByteArray::number(number), "a").claimCrc(1);
    const QString bad = write("bad", sealed(builder));
    const QList<QByteArray> lines = runTool({"verify", bad}).out.split('\n');
    QCOMPARE(lines.size(), 1000 + 3);
    QCOMPARE(lines.at(1000), (bad + ": and 3 more").toUtf8());
    QVERIFY(lines.at(1001).startsWith((bad + ": 1003 findings (").toUtf8()));
}

void TstVerify::verdict_is_about_the_file_that_was_opened()
{
    const QString path = write("good", sealed(small()));
    const QString other = write("other", sealed(small().file("a", "abc").claimCrc(1)));
    int opened = 0;
    bool isReplaced = false;
    const auto replace = [&] {
        if (!isReplaced)
            isReplaced = std::rename(QFile::encodeName(other).constData(), QFile::encodeName(path).constData()) == 0;
        return isReplaced;
    };
    // As early as it can be seen: before the file is opened by its name once more, or at the first bytes of an entry.
    const auto reset = qScopeGuard([] { TestSupport::systemCalls().onOpen = nullptr; });
    TestSupport::systemCalls().onOpen = [&](const QByteArray &name, int) {
        if (name == QFile::encodeName(path) && ++opened == 2)
            replace();
        return 0;
    };
    Corvelpro::Verification verification(path);
    QString reason;
    QVERIFY2(verification.run([&](qint64) { replace(); }, &reason), qPrintable(reason));
    QVERIFY(isReplaced);
    QCOMPARE(verification.findings().damageCount(), 0);
    QCOMPARE(verification.entries(), 2);
    QCOMPARE(verification.pictures(), 1);
}

void TstVerify::an_archive_in_the_comment_is_found()
{
    // The control application takes the inner one, whose end is the last in the file. The names are the same.
    const QByteArray inner = sealed(PackageBuilder()
                                        .file("1.json", "{\"name\": \"other\"}")
                                        .file("BKG/BKG_1.png", PngMaker::blank(5, 5), PackageBuilder::Stored));
    const QString path = write("nested", small().archiveComment(inner + ' ').build());
    QVERIFY(ProjectFileCfg::Internal::ZipPackageHandle::isValidEngineerPacket(path));
    const QJsonObject result = verify({path}, no).first();
    QVERIFY2(has(result["findings"].toArray(), "", "another end record"), QJsonDocument(result).toJson());
}

void TstVerify::large_content_goes_to_a_nameless_file()
{
    constexpr int most = 1000;
    for (const int size : {0, most, most + 1}) {
        const auto scratch = Corvelpro::openScratch(size, most, nullptr);
        const auto *file = qobject_cast<QFile *>(scratch.get());
        QCOMPARE(file != nullptr, size > most);
        QVERIFY(!file || !QFileInfo::exists(file->fileName()));
        const QByteArray content(size, 'a');
        QVERIFY(scratch->write(content) == size && scratch->seek(0));
        QCOMPARE(scratch->readAll(), content);
    }
}

void TstVerify::libraries_print_no_lines_of_their_own()
{
    QByteArray png = PngMaker::blank(4, 4);
    const int pixels = png.indexOf("IDAT") + 4;
    png[pixels + 4] = char(png.at(pixels + 4) ^ 1);
    const QString bad = write("bad", sealed(small().file("BKG/BKG_2.png", png)));
    const Outcome outcome = runTool({"verify", bad, m_dir->filePath("gone")});
    QCOMPARE(outcome.code, unknown);
    QVERIFY2(outcome.out.contains("cannot decode BKG/BKG_2.png"), outcome.out);
    // The one line is the tool's.
    QCOMPARE(outcome.messages.count('\n'), 1);
    QVERIFY2(outcome.messages.startsWith("corvelpro: cannot open"), outcome.messages);
}

void TstVerify::what_is_no_plain_file_is_unknown()
{
    const QString pipe = m_dir->filePath("pipe.corvelpro");
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const QString good = write("good", sealed(small()));
    const Outcome outcome = runTool({"verify", m_dir->path(), pipe, "/dev/zero", m_dir->filePath("gone"), good});
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.messages.count('\n'), 4);
    QVERIFY2(outcome.messages.contains(pipe.toUtf8() + ": it is not a plain file"), outcome.messages);
    QVERIFY(outcome.out.contains("good.corvelpro: sound"));
}

void TstVerify::progress_is_shown_on_a_terminal()
{
    const QString bad = write("bad", sealed(small().file("a", QByteArray(1000, 'a')).claimCrc(1)));
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    QVERIFY(terminal >= 0 && ::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
    const auto shown = [&](const QStringList &arguments) {
        QProcess process;
        process.setStandardErrorFile(QString::fromLocal8Bit(::ptsname(terminal)), QIODevice::Append);
        process.start(QStringLiteral(CORVELPRO_PROGRAM), arguments);
        process.waitForFinished(TestSupport::patience);
        QByteArray bytes(4096, '\0');
        ::fcntl(terminal, F_SETFL, O_NONBLOCK);
        bytes.truncate(int(qMax<ssize_t>(0, ::read(terminal, bytes.data(), size_t(bytes.size())))));
        return bytes;
    };
    const QByteArray bar = shown({"verify", bad});
    QVERIFY2(bar.contains(" %") && bar.contains('['), bar);
    // It is gone before anything else appears.
    QVERIFY2(bar.endsWith("\r\x1b[K"), bar);
    QCOMPARE(shown({"verify", "--quiet", bad}), QByteArray());
    ::close(terminal);
}

void TstVerify::verified_package_leaves_the_page_cache()
{
    m_dir.reset(CacheTesting::folderOnDisk().release());
    if (!m_dir)
        QSKIP("this file system does not drop pages");
    const QString package =
        write("a", sealed(small().file("x.bin", PackageTesting::noise(1000000), PackageBuilder::Stored)));
    const auto size = QFileInfo(package).size();
    QVERIFY(CacheTesting::uncache(package));
    QCOMPARE(runTool({"verify", package}).code, yes);
    // All but the end, which is read first.
    QVERIFY(CacheTesting::cached(package) < size / 2);

    QVERIFY(CacheTesting::holdsOnce([&] {
        return readFile(package).size() == size && runTool({"verify", package}).code == yes &&
               CacheTesting::cached(package) == size;
    }));
}

TEST_MAIN_CORE(TstVerify)
#include "tst_verify.moc"

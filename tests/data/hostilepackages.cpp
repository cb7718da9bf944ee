#include "hostilepackages.h"

#include "pngmaker.h"
#include "ziparchive.h"

#include <support/customsite.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace TestData {

namespace {

using TestSupport::PackageBuilder;
using Bytes = std::function<QByteArray()>;

constexpr int MiB = 1024 * 1024;
constexpr quint32 GiB = 1024u * MiB;

// ---------------------------------------------------------------------------------------------------------------------
// What the packages are made of

/// All bytes of the literal, zero bytes too.
template<int sizeWithEnd>
QByteArray raw(const char (&bytes)[sizeWithEnd])
{
    return QByteArray(bytes, sizeWithEnd - 1);
}

QByteArray picture()
{
    return TestSupport::pngOf(TestSupport::noisePicture({16, 9}, 1));
}

Simulation::HardwareState source(int model = TestSupport::mainModel)
{
    Simulation::HardwareState state = TestSupport::plainDevice(QString::fromLatin1(sourceAddress), model);
    state.backgrounds.insert(1, {QStringLiteral("Opening"), TestSupport::noisePicture({16, 9}, 1)});
    state.logos.insert(2, {QStringLiteral("Sponsor"), TestSupport::noisePicture({8, 8}, 2, QImage::Format_ARGB32)});
    state.presets.insert(1, {QStringLiteral("Walk-in"), QByteArray("a preset")});
    return state;
}

/// A description, its pictures and its preset.
PackageBuilder honest()
{
    return TestSupport::packageOf(source());
}

QByteArray sealed(PackageBuilder package)
{
    return package.record(QStringLiteral("hostile"), QStringLiteral("a package for tests")).build();
}

/// The honest package with one entry more, which is a picture where its name says so.
Bytes withEntry(const QByteArray &name)
{
    return [name] { return sealed(honest().file(name, picture(), PackageBuilder::Stored)); };
}

Bytes withMode(const QByteArray &name, quint32 mode, const QByteArray &content)
{
    return [=] { return sealed(honest().file(name, content, PackageBuilder::Stored, mode)); };
}

/// The honest package with one entry more, changed in the finished archive.
Bytes patched(const std::function<void(ZipArchive &)> &patch, PackageBuilder::Method method = PackageBuilder::Deflated)
{
    return [=] {
        ZipArchive archive(sealed(honest().file("notes.png", picture(), method)));
        patch(archive);
        return archive.bytes;
    };
}

// ---------------------------------------------------------------------------------------------------------------------
// Descriptions and pictures

QByteArray description(const std::function<void(QJsonObject &)> &change = {})
{
    QJsonObject object = QJsonDocument::fromJson(TestSupport::descriptionOf(source())).object();
    if (change)
        change(object);
    return QJsonDocument(object).toJson();
}

Bytes withDescription(const std::function<QByteArray()> &text)
{
    return [text] { return sealed(PackageBuilder().file("device.json", text())); };
}

Bytes withChange(const std::function<void(QJsonObject &)> &change)
{
    return withDescription([change] { return description(change); });
}

/// A good description with `member` as one member more.
Bytes withMember(const std::function<QByteArray()> &member)
{
    return withDescription([member] {
        const QByteArray text = description().trimmed();
        return text.left(text.size() - 1) + ", " + member() + "}";
    });
}

/// A package whose only picture is background 1; the description says that it has that size.
Bytes withPicture(quint32 width, quint32 height, const Bytes &png)
{
    return [=] {
        const QByteArray text = description([=](QJsonObject &object) {
            object.insert(QStringLiteral("materials"),
                          QJsonArray{QJsonObject{{QStringLiteral("type"), 0},
                                                 {QStringLiteral("keyNo"), 1},
                                                 {QStringLiteral("name"), QStringLiteral("Opening")},
                                                 {QStringLiteral("width"), double(width)},
                                                 {QStringLiteral("height"), double(height)}}});
        });
        return sealed(PackageBuilder().file("device.json", text).file("BKG/BKG_1.png", png()));
    };
}

Bytes withPicture(const Bytes &png)
{
    return withPicture(16, 9, png);
}

QByteArray changed(QByteArray bytes, int at, const QByteArray &replacement)
{
    return bytes.replace(at, replacement.size(), replacement);
}

QByteArray savedAs(const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    TestSupport::noisePicture({16, 9}, 1).save(&buffer, format);
    return bytes;
}

/// A blank 16 by 9 picture with more chunks behind its header.
QByteArray pngWith(const QByteArray &chunks)
{
    QByteArray png = PngMaker::blank(16, 9);
    return png.insert(PngMaker::signature().size() + 25, chunks);
}

// ---------------------------------------------------------------------------------------------------------------------
// Records

Bytes withComment(const QByteArray &comment)
{
    return [comment] { return honest().comment(comment).build(); };
}

QByteArray rightChecksum()
{
    return PackageBuilder::checksum(honest().build(), 0);
}

/// A record of these members and the right checksum.
Bytes withRecord(const QByteArray &members)
{
    return [members] { return honest().comment("{\"Checksum\":\"" + rightChecksum() + "\"," + members + "}").build(); };
}

QByteArray recordOfSize(int size)
{
    const QByteArray begin = "{\"Checksum\":\"" + rightChecksum() + "\",\"projectName\":\"hostile\",\"comment\":\"";
    return begin + QByteArray(size - begin.size() - 2, 'x') + "\"}";
}

QByteArray zip64Records(quint64 entries, quint64 centralSize, quint64 centralStart, quint64 recordAt)
{
    const auto little = [](auto value) { return ZipArchive::little(value); };
    return raw("PK\6\6") + little(quint64(44)) + little(quint16(45)) + little(quint16(45)) + little(quint32(0)) +
           little(quint32(0)) + little(entries) + little(entries) + little(centralSize) + little(centralStart) +
           raw("PK\6\7") + little(quint32(0)) + little(recordAt) + little(quint32(1));
}

// ---------------------------------------------------------------------------------------------------------------------
// The corpus

class Corpus
{
public:
    QVector<HostilePackage> packages;

    HostilePackage &add(const QByteArray &name, const Bytes &bytes)
    {
        packages.append({name, bytes});
        return packages.last();
    }

    void addNames();
    void addLinksAndModes();
    void addSizes();
    void addTruncations();
    void addEndRecords();
    void addHeaders();
    void addMethods();
    void addPictures();
    void addRecords();
    void addDescriptions();
    void addOtherFiles();
    void addAliases();
    void addLargeNumbers();
    void addOtherWriters();
};

void Corpus::addNames()
{
    add("name_climbs_out", withEntry("../escaped.png"));
    add("name_climbs_out_far", withEntry(QByteArray("../").repeated(40) + "tmp/projectfilecfg-escaped.png"));
    add("name_climbs_out_behind_a_folder", withEntry("BKG/../../escaped.png"));
    add("name_climbs_and_comes_back", withEntry("other/../other.png"));
    add("name_ends_in_a_climb", withEntry("other/.."));
    add("name_is_a_climb", withEntry(".."));
    add("name_of_a_folder_climbs_out", [] { return sealed(honest().folder("../escaped/")); });
    add("name_climbs_with_blanks", withEntry(".. /escaped.png"));
    add("name_climbs_with_backslashes", withEntry("..\\..\\escaped.png"));
    add("name_climbs_with_backslashes_behind_a_folder", withEntry("BKG\\..\\..\\escaped.png"));
    add("name_is_absolute", withEntry(absoluteEscape));
    add("name_is_absolute_with_two_slashes", withEntry(QByteArray("/") + absoluteEscape));
    add("name_is_absolute_with_a_backslash", withEntry("\\escaped.png"));
    add("name_is_a_network_share", withEntry("\\\\server\\share\\escaped.png"));
    add("name_has_a_drive_letter", withEntry("C:\\escaped.png"));
    add("name_is_relative_to_a_drive", withEntry("c:escaped.png"));
    add("name_has_a_drive_letter_behind_a_folder", withEntry("BKG/C:/escaped.png"));
    add("name_holds_nul", withEntry(raw("other.png\0.png")));
    add("name_holds_nul_only", withEntry(raw("\0")));
    add("name_holds_newline", withEntry("other\n.png"));
    add("name_holds_control_characters", withEntry("other\r\b\x1b[2J\x7f.png"));
    add("name_holds_place_markers", withEntry("other%1%2%99.png"));
    add("name_is_empty", withEntry(""));
    add("name_is_a_slash", withEntry("/"));
    add("name_is_a_dot", withEntry("."));
    add("name_of_a_folder_is_a_dot", [] { return sealed(honest().folder("./")); });
    add("name_begins_with_a_dot", withEntry("./other.png"));
    add("name_has_doubled_slashes", withEntry("other///other.png"));
    add("name_has_255_bytes", withEntry(QByteArray(251, 'x') + ".png"));
    add("name_has_256_bytes", withEntry(QByteArray(252, 'x') + ".png"));
    add("name_has_65535_bytes", withEntry(QByteArray(65531, 'x') + ".png"));
    add("name_is_60_folders_deep", withEntry(QByteArray("d/").repeated(60) + "other.png"));
    add("name_is_2000_folders_deep", withEntry(QByteArray("d/").repeated(2000) + "other.png"));
    add("name_is_32000_folders_deep", withEntry(QByteArray("d/").repeated(32000) + "other.png"));
    add("name_is_not_utf8", withEntry("\xff\xfe\xc3.png"));
    add("name_climbs_in_overlong_utf8", withEntry("\xc0\xae\xc0\xae\xc0\xaf"
                                                  "escaped.png"));
    add("name_holds_a_surrogate_in_utf8", withEntry("\xed\xa0\x80.png"));
    add("name_climbs_in_wide_dots", withEntry(u8"．．／escaped.png"));
    add("name_reads_from_right_to_left", withEntry(u8"other\u202egnp.png"));
    add("name_is_duplicate",
        [] { return sealed(honest().file("BKG/BKG_1.png", "no picture").file("Preset/1.RPst", "no preset")); });
    add("name_is_duplicate_but_for_case",
        [] { return sealed(honest().file("bkg/bkg_1.PNG", picture()).file("PRESET/1.rpst", "other")); });
    add("name_of_the_description_is_duplicate", [] {
        const QByteArray name = QByteArray(sourceAddress) + ".json";
        return sealed(honest().file(name, "{}").file(name, "no description"));
    });
    add("name_is_file_and_folder", [] { return sealed(honest().file("x.png", picture()).folder("x.png")); });
    add("name_is_folder_and_file", [] { return sealed(honest().folder("x.png").file("x.png", picture())); });
    add("name_of_a_file_is_used_as_folder",
        [] { return sealed(honest().file("x.png", picture()).file("x.png/y.png", picture())); });
    add("name_of_a_file_is_that_of_the_folder_of_pictures",
        [] { return sealed(PackageBuilder().file("device.json", description()).file("BKG", "a file")); });
    add("name_of_a_folder_is_that_of_a_picture",
        [] { return sealed(PackageBuilder().file("device.json", description()).folder("BKG/BKG_1.png")); });
    add("name_of_a_folder_is_that_of_a_picture_elsewhere", withEntry("BKG/BKG_1.png/other.png"));
    add("name_of_a_folder_is_that_of_the_description",
        [] { return sealed(honest().folder(QByteArray(offlineAddress) + ".json")); });
    add("name_is_that_of_another_device", withEntry("10.0.0.11/escaped.png"));
    add("name_is_that_of_a_console", withEntry("CON.png"));
    add("name_is_a_stream_of_a_file", withEntry("other.txt:escaped.png"));
    add("names_of_two_thousand_files", [] {
        PackageBuilder package = honest();
        for (int number = 0; number < 2000; ++number)
            package.file("many/" + QByteArray::number(number), QByteArray());
        return sealed(package);
    });
    add("names_fill_the_memory", [] {
        PackageBuilder package = honest();
        for (int number = 0; number < 300; ++number)
            package.file(QByteArray::number(number).rightJustified(65535, 'x'), QByteArray());
        return sealed(package);
    });
    add("name_is_taken_ten_thousand_times", [] {
        // Each of them would be the first one: a picture that takes its time.
        const QByteArray text = description([](QJsonObject &object) {
            QJsonArray materials = object.value(QStringLiteral("materials")).toArray();
            materials.append(QJsonObject{{QStringLiteral("type"), 0},
                                         {QStringLiteral("keyNo"), 9},
                                         {QStringLiteral("width"), 4000},
                                         {QStringLiteral("height"), 4000}});
            object.insert(QStringLiteral("materials"), materials);
        });
        PackageBuilder package;
        package.file("device.json", text);
        package.file("BKG/BKG_9.png", PngMaker::blank(4000, 4000, 8, PngMaker::Grey));
        for (int number = 0; number < 10000; ++number)
            package.file("BKG/BKG_9.png", QByteArray());
        return sealed(package);
    });
}

void Corpus::addLinksAndModes()
{
    add("link_to_a_file", [] { return sealed(honest().symbolicLink("other.png", "../../victim/file.png")); });
    add("link_to_a_file_by_an_absolute_path", [] { return sealed(honest().symbolicLink("other.png", "/etc/passwd")); });
    add("link_to_a_folder", [] { return sealed(honest().symbolicLink("other", "../../victim")); });
    add("link_to_nothing", [] { return sealed(honest().symbolicLink("other.png", "missing")); });
    add("link_to_itself", [] { return sealed(honest().symbolicLink("other.png", "other.png")); });
    add("link_under_the_name_of_a_folder", [] {
        return sealed(honest().file("other/", "../../victim", PackageBuilder::Stored, PackageBuilder::SymbolicLink));
    });
    add("link_then_written_through",
        [] { return sealed(honest().symbolicLink("other", "../../victim").file("other/file.png", picture())); });
    add("link_then_replaced", [] {
        return sealed(honest().symbolicLink("other.png", "../../victim/file.png").file("other.png", picture()));
    });
    add("link_in_the_place_of_the_description",
        [] { return sealed(PackageBuilder().symbolicLink("device.json", "/etc/passwd")); });
    add("link_in_the_way_of_a_picture", withEntry("linked.png")).linksInTheWay = true;
    add("link_in_the_way_of_a_folder", withEntry("linked/file.png")).linksInTheWay = true;
    add("link_in_the_way_of_a_folder_behind_a_dot", withEntry("./linked/file.png")).linksInTheWay = true;
    add("link_in_the_way_of_a_folder_before_a_dot", withEntry("linked/./file.png")).linksInTheWay = true;
    add("link_in_the_way_of_a_folder_with_doubled_slashes", withEntry("linked//file.png")).linksInTheWay = true;
    add("link_in_the_way_of_a_new_folder", [] { return sealed(honest().folder("linked//new//")); }).linksInTheWay =
        true;
    add("link_in_the_way_of_the_description", [] {
        return sealed(PackageBuilder().file("linked.json", description()));
    }).linksInTheWay = true;

    add("mode_of_a_pipe", withMode("other.png", PackageBuilder::Fifo, QByteArray()));
    add("mode_of_a_character_device", withMode("other.png", 0020666, QByteArray()));
    add("mode_of_a_block_device", withMode("other.png", 0060666, QByteArray()));
    add("mode_of_a_socket", withMode("other.png", 0140666, QByteArray()));
    add("mode_of_a_folder_on_a_file", withMode("other.png", PackageBuilder::Directory, picture()));
    add("mode_that_does_not_exist", withMode("other.png", 0170644, picture()));
    add("mode_without_rights", withMode("other.png", 0100000, picture()));
    add("mode_runs_as_its_owner", withMode("other.png", 0106777, picture()));
    add("mode_of_a_link_by_another_system", patched([](ZipArchive &archive) {
            archive.set16(archive.lastCentral() + 4, 20); // made by DOS, which has no links
            archive.set32(archive.lastCentral() + 38, quint32(PackageBuilder::SymbolicLink) << 16);
        }));
    add("mode_of_dos_says_read_only_and_hidden", patched([](ZipArchive &archive) {
            archive.set16(archive.lastCentral() + 4, 20);
            archive.set32(archive.lastCentral() + 38, 7);
        }));
}

void Corpus::addSizes()
{
    const auto content = [](const QByteArray &name, const QByteArray &bytes) { return honest().file(name, bytes); };
    add("size_claims_more_than_there_is", [=] { return sealed(content("other.png", picture()).claimSize(5000)); });
    add("size_claims_less_than_there_is", [=] { return sealed(content("other.png", picture()).claimSize(50)); });
    add("size_claims_nothing", [=] { return sealed(content("other.png", picture()).claimSize(0)); });
    add("size_claims_more_than_allowed", [=] { return sealed(content("other.png", picture()).claimSize(GiB + 1)); });
    add("size_claims_4_gigabytes", [=] { return sealed(content("other.png", picture()).claimSize(0xfffffffe)); });
    add("size_claims_64_bits_without_them",
        [=] { return sealed(content("other.png", picture()).claimSize(0xffffffff)); });
    const auto with64BitSize = [](quint64 size) {
        return patched([size](ZipArchive &archive) {
            archive.set32(archive.lastCentral() + 24, 0xffffffff);
            archive.set32(archive.lastLocal() + 22, 0xffffffff);
            archive.addCentralExtra(ZipArchive::little(quint16(1)) + ZipArchive::little(quint16(8)) +
                                    ZipArchive::little(size));
        });
    };
    add("size_in_64_bits_is_above_all", with64BitSize(0xffffffffffffffff));
    add("size_in_64_bits_is_negative", with64BitSize(0x8000000000000000));
    add("size_in_64_bits_is_cut_off", patched([](ZipArchive &archive) {
            archive.set32(archive.lastCentral() + 24, 0xffffffff);
            archive.addCentralExtra(ZipArchive::little(quint16(1)) + ZipArchive::little(quint16(8)) + "123");
        }));
    add("size_of_an_extra_field_lies", patched([](ZipArchive &archive) {
            archive.addCentralExtra(ZipArchive::little(quint16(0xcafe)) + ZipArchive::little(quint16(60000)) + "123");
        }));
    add("packed_size_claims_more_than_the_file_has", patched([](ZipArchive &archive) {
            archive.set32(archive.lastCentral() + 20, 0x7fffffff);
            archive.set32(archive.lastLocal() + 18, 0x7fffffff);
        }));
    add("packed_size_claims_less_than_there_is", patched([](ZipArchive &archive) {
            archive.set32(archive.lastCentral() + 20, 20);
            archive.set32(archive.lastLocal() + 18, 20);
        }));
    add("packed_size_claims_nothing", patched([](ZipArchive &archive) {
            archive.set32(archive.lastCentral() + 20, 0);
            archive.set32(archive.lastLocal() + 18, 0);
        }));
    add("packed_sizes_reach_into_each_other", [] {
        ZipArchive archive(sealed(honest()
                                      .file("a.png", picture(), PackageBuilder::Stored)
                                      .file("b.png", picture(), PackageBuilder::Stored)));
        const int a = archive.central(archive.count() - 2);
        const quint32 size = archive.get32(a + 20) + 40;
        for (const int at :
             {a + 20, a + 24, archive.local(archive.count() - 2) + 18, archive.local(archive.count() - 2) + 22})
            archive.set32(at, size);
        return archive.bytes;
    });

    add("entries_share_their_content", [] {
        // The second entry of the directory leads to the content of the first one, which has the same name.
        ZipArchive archive(sealed(honest().file("a.png", picture()).file("b.png", picture())));
        archive.set32(archive.lastCentral() + 42, quint32(archive.local(archive.count() - 2)));
        return archive.bytes;
    });
    add("entries_share_one_bomb", [] {
        PackageBuilder package = honest();
        package.file("00.png", QByteArray(8 * MiB, '\0'));
        for (int number = 1; number < 100; ++number)
            package.file(QByteArray::number(number).rightJustified(2, '0') + ".png", QByteArray(),
                         PackageBuilder::Stored);
        ZipArchive archive(sealed(package));
        const int first = archive.central(archive.count() - 100);
        for (int number = 1; number < 100; ++number) {
            const int at = archive.central(archive.count() - 100 + number);
            archive.bytes.replace(at + 10, 18, archive.bytes.mid(first + 10, 18));
            archive.set32(at + 42, archive.get32(first + 42));
        }
        return archive.bytes;
    });
    add("entries_claim_5_gigabytes_together", [] {
        PackageBuilder package = honest();
        for (int number = 0; number < 5; ++number)
            package.file(QByteArray::number(number) + ".bin", "small").claimSize(GiB);
        return sealed(package);
    });

    add("bomb_of_80_megabytes_is_no_picture", [=] { return sealed(content("other.png", QByteArray(80 * MiB, '\0'))); });
    add("bomb_claims_to_be_small",
        [=] { return sealed(content("other.png", QByteArray(80 * MiB, '\0')).claimSize(100)); });
    add("bomb_claims_64_bits", [] {
        ZipArchive archive(sealed(honest().file("notes.png", QByteArray(80 * MiB, '\0'))));
        archive.set32(archive.lastCentral() + 24, 0xffffffff);
        archive.set32(archive.lastLocal() + 22, 0xffffffff);
        archive.addCentralExtra(ZipArchive::little(quint16(1)) + ZipArchive::little(quint16(8)) +
                                ZipArchive::little(quint64(0xffffffffffffffff)));
        return archive.bytes;
    });
    add("bomb_in_a_preset", [=] { return sealed(content("Preset/9.RPst", QByteArray(80 * MiB, '\0'))); });
    add("bomb_of_blanks_as_description", withDescription([] { return QByteArray(64 * MiB, ' '); }));
    add("bomb_above_the_limit_as_description", withDescription([] { return QByteArray(64 * MiB + 1, ' '); }));
    add("bomb_in_front_of_the_description", [] {
        return sealed(PackageBuilder().file("a.json", QByteArray(65 * MiB, ' ')).file("b.json", description()));
    });
    add("bomb_of_many_descriptions", [] {
        PackageBuilder package;
        package.file("device.json", description());
        for (int number = 0; number < 8; ++number)
            package.file(QByteArray::number(number) + ".json", QByteArray(20 * MiB, ' '));
        return sealed(package);
    });
}

void Corpus::addTruncations()
{
    const auto cut = [](const QByteArray &name, const std::function<int(const ZipArchive &)> &length) {
        return HostilePackage{name, [length] {
                                  const ZipArchive archive(sealed(honest()));
                                  return archive.bytes.left(length(archive));
                              }};
    };
    packages += cut("cut_to_nothing", [](const ZipArchive &) { return 0; });
    packages += cut("cut_to_one_byte", [](const ZipArchive &) { return 1; });
    packages += cut("cut_in_the_first_header", [](const ZipArchive &) { return 20; });
    packages += cut("cut_in_the_first_name", [](const ZipArchive &) { return 33; });
    packages += cut("cut_in_the_first_content", [](const ZipArchive &) { return 100; });
    packages += cut("cut_behind_the_first_entry", [](const ZipArchive &a) { return a.local(1); });
    packages += cut("cut_in_the_last_content", [](const ZipArchive &a) { return a.lastContent() + 10; });
    packages += cut("cut_before_the_directory", [](const ZipArchive &a) { return a.centralStart(); });
    packages += cut("cut_in_the_directory", [](const ZipArchive &a) { return a.central(1) + 20; });
    packages += cut("cut_in_a_name_of_the_directory", [](const ZipArchive &a) { return a.central(1) + 48; });
    packages += cut("cut_before_the_end_record", [](const ZipArchive &a) { return a.end(); });
    packages += cut("cut_in_the_end_record_signature", [](const ZipArchive &a) { return a.end() + 2; });
    packages += cut("cut_in_the_end_record", [](const ZipArchive &a) { return a.end() + 12; });
    packages += cut("cut_in_the_length_of_the_comment", [](const ZipArchive &a) { return a.end() + 21; });
    packages += cut("cut_before_the_comment", [](const ZipArchive &a) { return a.end() + 22; });
    packages += cut("cut_in_the_comment", [](const ZipArchive &a) { return a.end() + 60; });
    packages += cut("cut_by_the_last_byte", [](const ZipArchive &a) { return a.bytes.size() - 1; });
    packages += cut("cut_by_the_last_two_bytes", [](const ZipArchive &a) { return a.bytes.size() - 2; });

    const auto without = [](const QByteArray &name, const std::function<QPair<int, int>(const ZipArchive &)> &range) {
        return HostilePackage{name, [range] {
                                  ZipArchive archive(sealed(honest()));
                                  const QPair<int, int> hole = range(archive);
                                  return archive.bytes.remove(hole.first, hole.second);
                              }};
    };
    packages += without("hole_in_the_contents", [](const ZipArchive &a) { return qMakePair(a.local(1), 50); });
    packages += without("hole_in_the_directory", [](const ZipArchive &a) { return qMakePair(a.central(1), 10); });
    packages += without("hole_in_place_of_the_directory",
                        [](const ZipArchive &a) { return qMakePair(a.centralStart(), a.end() - a.centralStart()); });
    packages +=
        without("hole_in_place_of_all_contents", [](const ZipArchive &a) { return qMakePair(0, a.centralStart()); });
}

void Corpus::addEndRecords()
{
    add("junk_before", [] { return QByteArray(500, 'x') + sealed(honest()); });
    add("junk_before_with_its_checksum", [] {
        // As a package that unpacks itself would be.
        const QByteArray junk = raw("MZ\x90\0\3").leftJustified(500, '\0');
        const QByteArray checksum = PackageBuilder::checksum(junk, 0);
        return junk +
               honest().recordWithChecksum(QString::fromLatin1(checksum), QStringLiteral("x"), QString()).build();
    });
    add("junk_without_a_zero_before", [] {
        const QByteArray junk(3 * MiB, 'x');
        const QByteArray archive = honest().build();
        const QByteArray checksum = PackageBuilder::checksum(junk + archive, 0);
        return junk +
               honest().recordWithChecksum(QString::fromLatin1(checksum), QStringLiteral("x"), QString()).build();
    });
    add("junk_behind", [] { return sealed(honest()) + "junk"; });
    add("junk_of_100_kilobytes_behind", [] { return sealed(honest()) + QByteArray(100 * 1024, 'x'); });
    add("junk_between_directory_and_end",
        patched([](ZipArchive &archive) { archive.insertBeforeEnd(QByteArray(100, 'x')); }));
    add("end_record_twice", [] { return sealed(honest()) + raw("PK\5\6") + QByteArray(18, '\0'); });
    add("end_record_of_another_archive_behind",
        [] { return sealed(honest()) + PackageBuilder().file("other.txt", "other").comment("other").build(); });
    add("end_record_in_the_comment", [] {
        const QByteArray record =
            PackageBuilder::infoRecord(QString::fromLatin1(rightChecksum()), QStringLiteral("x"), QStringLiteral("x"));
        const QByteArray inner = raw("PK\5\6") + QByteArray(18, '\0');
        return honest().comment(record + inner).build();
    });
    add("end_record_in_the_comment_leads_to_another_directory", [] {
        const QByteArray other = PackageBuilder().file("other.txt", "other").build();
        return honest()
            .comment("{\"Checksum\":\"" + rightChecksum() + "\",\"projectName\":\"x\",\"comment\":\"x\"}" + other)
            .build();
    });
    add("end_record_alone", [] { return sealed(PackageBuilder()); });
    add("end_record_alone_without_record", [] { return PackageBuilder().build(); });

    const auto withEnd = [](const std::function<void(ZipArchive &)> &patch) {
        return [patch] {
            ZipArchive archive(sealed(honest()));
            patch(archive);
            return archive.bytes;
        };
    };
    add("comment_claims_to_be_shorter",
        withEnd([](ZipArchive &a) { a.set16(a.end() + 20, quint16(a.get16(a.end() + 20) - 10)); }));
    add("comment_claims_to_be_longer",
        withEnd([](ZipArchive &a) { a.set16(a.end() + 20, quint16(a.get16(a.end() + 20) + 10)); }));
    add("comment_claims_65535_bytes", withEnd([](ZipArchive &a) { a.set16(a.end() + 20, 0xffff); }));
    add("comment_claims_nothing", withEnd([](ZipArchive &a) { a.set16(a.end() + 20, 0); }));
    for (const int size : {65512, 65513, 65514, 65515, 65516, 65534, 65535})
        add("comment_of_" + QByteArray::number(size) + "_bytes",
            [size] { return honest().comment(recordOfSize(size)).build(); });

    add("count_of_entries_is_too_small",
        withEnd([](ZipArchive &a) { a.set16(a.end() + 8, 1).set16(a.end() + 10, 1); }));
    add("count_of_entries_is_too_large",
        withEnd([](ZipArchive &a) { a.set16(a.end() + 8, 99).set16(a.end() + 10, 99); }));
    add("count_of_entries_is_zero", withEnd([](ZipArchive &a) { a.set16(a.end() + 8, 0).set16(a.end() + 10, 0); }));
    add("count_of_entries_is_65535",
        withEnd([](ZipArchive &a) { a.set16(a.end() + 8, 0xffff).set16(a.end() + 10, 0xffff); }));
    add("count_of_entries_disagrees_with_itself", withEnd([](ZipArchive &a) { a.set16(a.end() + 8, 1); }));
    add("disk_is_not_the_first", withEnd([](ZipArchive &a) { a.set16(a.end() + 4, 1); }));
    add("disk_of_the_directory_is_not_the_first", withEnd([](ZipArchive &a) { a.set16(a.end() + 6, 1); }));
    add("directory_starts_too_early",
        withEnd([](ZipArchive &a) { a.set32(a.end() + 16, quint32(a.centralStart() - 50)); }));
    add("directory_starts_too_late",
        withEnd([](ZipArchive &a) { a.set32(a.end() + 16, quint32(a.centralStart() + 50)); }));
    add("directory_starts_behind_the_file", withEnd([](ZipArchive &a) { a.set32(a.end() + 16, 0x7ffffff0); }));
    add("directory_starts_in_64_bits", withEnd([](ZipArchive &a) { a.set32(a.end() + 16, 0xffffffff); }));
    add("directory_is_too_small", withEnd([](ZipArchive &a) { a.set32(a.end() + 12, a.get32(a.end() + 12) - 30); }));
    add("directory_is_larger_than_the_file", withEnd([](ZipArchive &a) { a.set32(a.end() + 12, 0x7ffffff0); }));

    const auto withZip64 = [](quint64 entries, quint64 sizeMore, quint64 startMore, quint64 recordMore) {
        return [=] {
            ZipArchive archive(sealed(honest()));
            const quint64 size = archive.get32(archive.end() + 12);
            const quint64 start = archive.get32(archive.end() + 16);
            const quint64 recordAt = quint64(archive.end()) + recordMore;
            archive.insertBeforeEnd(zip64Records(entries ? entries : quint64(archive.count()), size + sizeMore,
                                                 start + startMore, recordAt));
            return archive.bytes;
        };
    };
    add("zip64_end_record", withZip64(0, 0, 0, 0));
    add("zip64_end_record_claims_all_entries_there_could_be", withZip64(0xffffffffffffffff, 0, 0, 0));
    add("zip64_end_record_claims_a_huge_directory", withZip64(0, 0x7fffffff00000000, 0, 0));
    add("zip64_end_record_leads_behind_the_file", withZip64(0, 0, 0x7fffffff00000000, 0));
    add("zip64_locator_leads_behind_the_file", withZip64(0, 0, 0, 0x7fffffff00000000));
    add("zip64_locator_leads_elsewhere", withZip64(0, 0, 0, 7));
}

void Corpus::addHeaders()
{
    add("header_names_another_file", patched([](ZipArchive &a) { a.bytes.replace(a.lastLocal() + 30, 5, "other"); }));
    add("header_names_a_way_out", patched([](ZipArchive &a) { a.bytes.replace(a.lastLocal() + 30, 9, "../ab.png"); }));
    add("header_has_a_longer_name", patched([](ZipArchive &a) { a.set16(a.lastLocal() + 26, 20); }));
    add("header_has_another_method", patched([](ZipArchive &a) { a.set16(a.lastLocal() + 8, 0); }));
    add("header_has_another_checksum", patched([](ZipArchive &a) { a.set32(a.lastLocal() + 14, 1); }));
    add("header_has_another_size", patched([](ZipArchive &a) { a.set32(a.lastLocal() + 22, 1); }));
    add("header_has_another_packed_size", patched([](ZipArchive &a) { a.set32(a.lastLocal() + 18, 1); }));
    add("header_alone_is_encrypted", patched([](ZipArchive &a) { a.set16(a.lastLocal() + 6, 1); }));
    add("header_has_no_signature", patched([](ZipArchive &a) { a.set32(a.lastLocal(), 0); }));
    add("header_has_an_endless_extra_field", patched([](ZipArchive &a) { a.set16(a.lastLocal() + 28, 0xffff); }));
    add("header_needs_a_newer_version",
        patched([](ZipArchive &a) { a.set16(a.lastLocal() + 4, 99).set16(a.lastCentral() + 6, 99); }));
    add("header_promises_sizes_behind_the_content", patched([](ZipArchive &a) {
            // As a stream is packed: the flag is set and the fields are empty; the directory has the sizes.
            a.set16(a.lastLocal() + 6, 8).set16(a.lastCentral() + 8, 8);
            a.set32(a.lastLocal() + 14, 0).set32(a.lastLocal() + 18, 0).set32(a.lastLocal() + 22, 0);
        }));
    add("directory_entry_has_no_signature", patched([](ZipArchive &a) { a.set32(a.lastCentral(), 0); }));
    add("directory_entry_has_an_endless_name", patched([](ZipArchive &a) { a.set16(a.lastCentral() + 28, 0xffff); }));
    add("directory_entry_has_an_endless_extra_field",
        patched([](ZipArchive &a) { a.set16(a.lastCentral() + 30, 0xffff); }));
    add("directory_entry_has_an_endless_comment",
        patched([](ZipArchive &a) { a.set16(a.lastCentral() + 32, 0xffff); }));
    add("directory_entry_leads_into_a_content", patched([](ZipArchive &a) { a.set32(a.lastCentral() + 42, 200); }));
    add("directory_entry_leads_to_itself",
        patched([](ZipArchive &a) { a.set32(a.lastCentral() + 42, quint32(a.lastCentral())); }));
    add("directory_entry_leads_behind_the_file",
        patched([](ZipArchive &a) { a.set32(a.lastCentral() + 42, 0x7ffffff0); }));
    add("directory_entry_is_on_another_disk", patched([](ZipArchive &a) { a.set16(a.lastCentral() + 34, 7); }));

    add("content_has_a_wrong_checksum", [] { return sealed(honest().file("other.png", picture()).claimCrc(1)); });
    add("content_of_a_preset_has_a_wrong_checksum",
        [] { return sealed(honest().file("Preset/9.RPst", "a preset").claimCrc(1)); });
    add("content_of_the_description_has_a_wrong_checksum",
        [] { return sealed(PackageBuilder().file("device.json", description()).claimCrc(1)); });
    add("content_is_no_deflate_stream",
        patched([](ZipArchive &a) { a.bytes.replace(a.lastContent(), 20, QByteArray(20, '\xff')); }));
    add("content_refers_to_what_was_never_there", patched([](ZipArchive &a) {
            // A fixed block that begins with a match.
            a.bytes.replace(a.lastContent(), 4, raw("\x4b\x04\x02\x00"));
        }));
    add("content_is_encrypted",
        patched([](ZipArchive &a) { a.set16(a.lastLocal() + 6, 1).set16(a.lastCentral() + 8, 1); }));
    add("content_is_strongly_encrypted",
        patched([](ZipArchive &a) { a.set16(a.lastLocal() + 6, 0x41).set16(a.lastCentral() + 8, 0x41); }));
    add("content_hides_its_header", patched([](ZipArchive &a) { a.set16(a.lastCentral() + 8, 0x2000); }));
    add("content_is_patch_data",
        patched([](ZipArchive &a) { a.set16(a.lastLocal() + 6, 0x20).set16(a.lastCentral() + 8, 0x20); }));
}

void Corpus::addMethods()
{
    for (const int method : {1, 2, 3, 4, 5, 6, 7, 9, 10, 11, 14, 16, 18, 19, 20, 93, 94, 95, 96, 97, 98, 99, 65535})
        add("method_" + QByteArray::number(method),
            [method] { return sealed(honest().file("other.png", picture()).claimMethod(quint16(method))); });
    add("method_is_stored_and_is_not",
        [] { return sealed(honest().file("other.png", picture()).claimMethod(PackageBuilder::Stored)); });
    add("method_is_deflate_and_is_not", [] {
        return sealed(
            honest().file("other.png", picture(), PackageBuilder::Stored).claimMethod(PackageBuilder::Deflated));
    });
    // "plain text, ten times over" and a newline, ten times over.
    const QByteArray packed = QByteArray::fromHex("425a6839314159265359598c795a00005ed180001040042227dd4020005422a8c460"
                                                  "f54d02a54320f44d18465164511ea291b2348ca372291a"
                                                  "44048241209d82704a0af04a09f8bb9229c28482cc63cad0");
    const auto bzip2 = [packed](quint32 size) {
        PackageBuilder package = honest();
        package.file("notes.txt", packed, PackageBuilder::Stored).claimMethod(12).claimSize(size).claimCrc(0xe151ba16);
        return sealed(package);
    };
    add("method_12", [bzip2] { return bzip2(270); });
    add("method_12_with_a_lying_size", [bzip2] { return bzip2(GiB); });
}

void Corpus::addPictures()
{
    using Png = PngMaker;
    const int headerAt = Png::signature().size();
    const int contentAt = headerAt + 25;

    add("picture_is_empty", withPicture([] { return QByteArray(); }));
    add("picture_is_a_signature", withPicture([] { return Png::signature(); }));
    add("picture_is_cut_in_its_header", withPicture([=] { return picture().left(headerAt + 10); }));
    add("picture_is_cut_behind_its_header", withPicture([=] { return picture().left(contentAt); }));
    add("picture_is_cut_in_its_content", withPicture([] { return picture().left(picture().size() / 2); }));
    add("picture_is_cut_before_its_end", withPicture([] { return picture().chopped(12); }));
    add("picture_has_a_broken_header_checksum", withPicture([=] { return changed(picture(), headerAt + 21, "abcd"); }));
    add("picture_has_a_broken_content_checksum", withPicture([] {
            const QByteArray png = Png::blank(16, 9);
            return changed(png, png.size() - 16, "abcd");
        }));
    add("picture_has_no_width", withPicture(0, 9, [] { return Png::blank(0, 9); }));
    add("picture_has_no_height", withPicture(16, 0, [] { return Png::blank(16, 0); }));
    add("picture_has_a_negative_width", withPicture(16, 9, [] {
            return Png::signature() + Png::header(0xfffffff0, 9) + Png::pixels("x") + Png::end();
        }));
    add("picture_has_the_largest_size", withPicture(0x7fffffff, 0x7fffffff, [] {
            return Png::signature() + Png::header(0x7fffffff, 0x7fffffff) + Png::pixels("x") + Png::end();
        }));
    add("picture_claims_60000_by_60000", withPicture(60000, 60000, [] {
            return Png::signature() + Png::header(60000, 60000) + Png::pixels(QByteArray(100, '\0')) + Png::end();
        }));
    add("picture_claims_60000_by_60000_where_nobody_asks", [] {
        return sealed(honest().file("other.png", Png::signature() + Png::header(60000, 60000) +
                                                     Png::pixels(QByteArray(100, '\0')) + Png::end()));
    });
    add("picture_of_20000_by_20000_in_black_and_white",
        withPicture(20000, 20000, [] { return Png::blank(20000, 20000, 1, Png::Grey); }));
    add("picture_of_4200_by_4200_in_16_bits",
        withPicture(4200, 4200, [] { return Png::blank(4200, 4200, 16, Png::Rgba); }));
    add("picture_of_one_by_a_million", withPicture(1, 1000000, [] { return Png::blank(1, 1000000); }));
    add("picture_of_a_million_by_one", withPicture(1000000, 1, [] { return Png::blank(1000000, 1); }));
    add("picture_of_5_by_20000", withPicture(5, 20000, [] { return Png::blank(5, 20000); }));
    add("picture_has_another_size_than_promised", withPicture(17, 9, [] { return picture(); }));
    add("picture_was_not_promised", [] { return sealed(honest().file("BKG/BKG_77.png", picture())); });
    add("picture_has_no_number", [] { return sealed(honest().file("BKG/BKG_.png", picture())); });
    add("picture_has_a_number_above_16_bits", [] { return sealed(honest().file("BKG/BKG_65537.png", picture())); });
    add("picture_has_a_number_above_8_bits", [] { return sealed(honest().file("BKG/BKG_257.png", picture())); });
    add("picture_is_interlaced", withPicture(16, 9, [] {
            // Seven passes over 16 by 9 pixels, each row with its filter byte.
            int size = 0;
            for (const auto &pass : {QPair<int, int>{2, 2}, {2, 2}, {4, 1}, {4, 3}, {8, 2}, {8, 5}, {16, 4}})
                size += (1 + 4 * pass.first) * pass.second;
            return Png::signature() + Png::header(16, 9, 8, Png::Rgba, 1) + Png::pixels(QByteArray(size, '\0')) +
                   Png::end();
        }));
    add("picture_needs_a_palette_and_has_none", withPicture([] { return Png::blank(16, 9, 8, Png::Palette); }));
    add("picture_has_a_colour_type_that_does_not_exist", withPicture([] {
            return Png::signature() + Png::header(16, 9, 8, Png::ColourType(5)) + Png::pixels("x") + Png::end();
        }));
    add("picture_has_a_depth_that_does_not_exist",
        withPicture([] { return Png::signature() + Png::header(16, 9, 7) + Png::pixels("x") + Png::end(); }));
    add("picture_has_no_content", withPicture([] { return Png::signature() + Png::header(16, 9) + Png::end(); }));
    add("picture_has_a_filter_that_does_not_exist", withPicture([] {
            return Png::signature() + Png::header(16, 9) + Png::pixels(QByteArray(9 * 65, '\7')) + Png::end();
        }));
    add("picture_has_a_content_that_is_no_stream", withPicture([] {
            return Png::signature() + Png::header(16, 9) + Png::chunk("IDAT", "no stream at all") + Png::end();
        }));
    add("picture_has_much_more_content_than_pixels", withPicture([] {
            return Png::signature() + Png::header(16, 9) + Png::pixels(QByteArray(50 * MiB, '\0')) + Png::end();
        }));
    add("picture_has_a_chunk_without_end",
        withPicture([] { return Png::signature() + Png::header(16, 9) + Png::big32(0x7fffffff) + "tEXt" + "Title"; }));
    add("picture_has_an_unknown_critical_chunk", withPicture([] { return pngWith(Png::chunk("ABCD", "x")); }));
    add("picture_has_a_broken_profile",
        withPicture([] { return pngWith(Png::chunk("iCCP", raw("x\0\0") + Png::deflated(QByteArray(128, 'x')))); }));
    add("picture_has_a_bomb_for_a_text", withPicture([] {
            return pngWith(Png::chunk("zTXt", raw("Title\0\0") + Png::deflated(QByteArray(7900000, 'x'))));
        }));
    add("picture_has_bombs_for_texts", withPicture([] {
            const QByteArray bomb = Png::deflated(QByteArray(7900000, 'x'));
            QByteArray texts;
            for (int number = 0; number < 100; ++number)
                texts += Png::chunk("zTXt", "Title" + QByteArray::number(number) + raw("\0\0") + bomb);
            return pngWith(texts);
        }));
    add("picture_has_bombs_for_texts_at_its_end", withPicture([] {
            const QByteArray bomb = Png::deflated(QByteArray(7900000, 'x'));
            QByteArray texts;
            for (int number = 0; number < 100; ++number)
                texts += Png::chunk("iTXt", "Title" + QByteArray::number(number) + raw("\0\1\0\0\0") + bomb);
            const QByteArray png = Png::blank(16, 9);
            return png.chopped(12) + texts + Png::end();
        }));
    add("picture_has_40_megabytes_of_text",
        withPicture([] { return pngWith(Png::chunk("tEXt", raw("Title\0") + QByteArray(7900000, 'x')).repeated(5)); }));
    add("picture_has_a_million_chunks",
        withPicture([] { return pngWith(Png::chunk("abCd", QByteArray()).repeated(1000000)); }));
    add("picture_has_junk_behind", withPicture([] { return picture() + QByteArray(1000, 'x'); }));
    add("picture_is_a_jpeg", withPicture([] { return savedAs("JPG"); }));
    add("picture_is_a_bitmap", withPicture([] { return savedAs("BMP"); }));
    add("picture_is_a_pixmap_text", withPicture([] { return savedAs("XPM"); }));
    add("picture_is_a_gif", withPicture([] {
            return raw("GIF89a\x10\0\x09\0\x80\0\0\xff\xff\xff\0\0\0,"
                       "\0\0\0\0\x10\0\x09\0\0\2\x0b\x84\x8f\xa9\xcb\xed\x0f\xa3\x9c\x12\0;");
        }));
    add("picture_is_a_gif_of_65535_by_65535", withPicture(65535, 65535, [] {
            return raw("GIF89a\xff\xff\xff\xff\x80\0\0\xff\xff\xff\0\0\0,\0\0\0\0\xff\xff\xff\xff\0\2\2\x4c\1\0;");
        }));
    add("picture_is_a_drawing", withPicture([] {
            return QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"16\" height=\"9\"><rect width=\"9\" "
                              "height=\"9\"/></svg>");
        }));
    add("picture_is_an_icon", withPicture([] {
            const QByteArray png = picture();
            return raw("\0\0\1\0\1\0\x10\x09\0\0\1\0\x20\0") + ZipArchive::little(quint32(png.size())) +
                   ZipArchive::little(quint32(22)) + png;
        }));
    add("picture_is_a_page", withPicture([] { return QByteArray("<html><body>no picture</body></html>"); }));
    add("picture_is_a_package", withPicture([] { return sealed(honest()); }));
    add("pictures_are_all_the_same_one", [] {
        // Ten thousand backgrounds in the description, all with the number of one large picture.
        const QByteArray text = description([](QJsonObject &object) {
            QJsonArray materials;
            for (int number = 0; number < 10000; ++number)
                materials.append(QJsonObject{{QStringLiteral("type"), 0},
                                             {QStringLiteral("keyNo"), 1},
                                             {QStringLiteral("width"), 4000},
                                             {QStringLiteral("height"), 4000}});
            object.insert(QStringLiteral("materials"), materials);
        });
        return sealed(
            PackageBuilder().file("device.json", text).file("BKG/BKG_1.png", Png::blank(4000, 4000, 8, Png::Grey)));
    });
}

void Corpus::addRecords()
{
    const QByteArray checksum = "{\"Checksum\":\"" + rightChecksum() + "\",";

    add("record_is_missing", [] { return honest().build(); });
    add("record_is_no_json", withComment("just a comment"));
    add("record_is_an_array", withComment("[" + checksum + "\"projectName\":\"x\",\"comment\":\"x\"}]"));
    add("record_is_a_number", withComment("42"));
    add("record_is_a_text", withComment("\"text\""));
    add("record_is_null", withComment("null"));
    add("record_is_an_empty_object", withComment("{}"));
    add("record_is_cut_off", withComment(checksum + "\"projectName\":\"x\",\"comment\":"));
    add("record_has_junk_behind", withComment(checksum + "\"projectName\":\"x\",\"comment\":\"x\"} junk"));
    add("record_has_a_zero_byte_behind",
        withComment(checksum + "\"projectName\":\"x\",\"comment\":\"x\"}" + raw("\0junk")));
    const QByteArray withZero = checksum + raw("\"projectName\":\"x\",\"comment\":\"a\0b\"}");
    add("record_has_a_zero_byte_in_a_text", withComment(withZero));
    add("record_has_a_zero_byte_in_a_text_and_the_directory_no_signature", [=] {
        ZipArchive archive(honest().comment(withZero).build());
        return archive.set32(archive.central(0), 0).bytes;
    });
    add("record_has_two_members", withComment(checksum + "\"projectName\":\"x\"}"));
    add("record_has_the_same_member_three_times", withComment(checksum + "\"comment\":\"x\",\"comment\":\"y\"}"));
    add("record_has_the_same_object_twice", withRecord("\"projectName\":\"x\",\"a\":[1],\"a\":[2]")).libraryLeaks =
        true;
    add("record_has_no_checksum", withComment("{\"projectName\":\"x\",\"comment\":\"x\",\"other\":\"x\"}"));
    add("record_has_an_empty_checksum", withComment("{\"Checksum\":\"\",\"projectName\":\"x\",\"comment\":\"x\"}"));
    add("record_has_a_wrong_checksum", [] {
        return honest().recordWithChecksum(QString(32, QLatin1Char('0')), QStringLiteral("x"), QString()).build();
    });
    add("record_has_its_checksum_in_capitals", [] {
        return honest()
            .recordWithChecksum(QString::fromLatin1(rightChecksum().toUpper()), QStringLiteral("x"), QString())
            .build();
    });
    add("record_has_a_number_for_a_checksum", withComment("{\"Checksum\":1,\"projectName\":\"x\",\"comment\":\"x\"}"));
    add("record_has_numbers_for_texts", withRecord("\"projectName\":1e999,\"comment\":-1"));
    add("record_has_objects_for_texts", withRecord("\"projectName\":{\"a\":1},\"comment\":[[[]]]"));
    add("record_has_nulls_for_texts", withRecord("\"projectName\":null,\"comment\":null"));
    add("record_has_other_members_only", withRecord("\"a\":1,\"b\":2"));
    add("record_has_members_in_other_case", withRecord("\"PROJECTNAME\":\"x\",\"Comment\":\"x\""));
    add("record_has_lone_surrogates", withRecord("\"projectName\":\"\\ud800\",\"comment\":\"a\\udc00b\\ud83d\""));
    add("record_has_zero_bytes_in_texts", withRecord("\"projectName\":\"a\\u0000b\",\"comment\":\"\\u0000\""));
    add("record_has_markup_in_texts",
        withRecord("\"projectName\":\"<img src='file:///etc/passwd'>\",\"comment\":\"<h1>big</h1><a href='x'>x</a>\""));
    add("record_has_a_thousand_lines",
        withRecord("\"projectName\":\"x\",\"comment\":\"" + QByteArray("line\\n").repeated(1000) + "\""));
    add("record_has_a_way_out_for_a_name", withRecord("\"projectName\":\"../../escaped\",\"comment\":\"%1%2\""));
    add("record_reads_from_right_to_left", withRecord(u8"\"projectName\":\"\u202eorp\",\"comment\":\"\u202e\u2066\""));
    add("record_is_not_utf8", withRecord("\"projectName\":\"\xff\xfe\",\"comment\":\"\xc3\""));
    add("record_is_utf16", [checksum] {
        const QString text = QString::fromUtf8(checksum + "\"projectName\":\"x\",\"comment\":\"x\"}");
        return honest().comment(QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2)).build();
    });
    add("record_has_a_byte_order_mark",
        withComment("\xef\xbb\xbf" + checksum + "\"projectName\":\"x\",\"comment\":\"x\"}"));
    add("record_is_nested_500_times",
        withRecord("\"a\":" + QByteArray("[").repeated(500) + QByteArray("]").repeated(500) + ",\"comment\":\"x\""));
    add("record_is_nested_30000_times", withRecord("\"a\":" + QByteArray("[").repeated(30000) +
                                                   QByteArray("]").repeated(30000) + ",\"comment\":\"x\""));
    add("record_has_5000_members", withRecord([] {
            QByteArray members = "\"comment\":\"x\"";
            for (int number = 0; number < 5000; ++number)
                members += ",\"" + QByteArray::number(number) + "\":0";
            return members;
        }()));
    add("record_has_a_text_of_60000_bytes",
        withRecord("\"projectName\":\"x\",\"comment\":\"" + QByteArray("x").repeated(60000) + "\""));
}

void Corpus::addDescriptions()
{
    add("description_is_missing", [] { return sealed(PackageBuilder().file("BKG/BKG_1.png", picture())); });
    add("description_is_empty", withDescription([] { return QByteArray(); }));
    add("description_is_no_json", withDescription([] { return QByteArray("<device/>"); }));
    add("description_is_cut_off", withDescription([] { return description().left(200); }));
    add("description_is_an_array", withDescription([] { return QByteArray("[") + description() + "]"; }));
    add("description_is_a_number", withDescription([] { return QByteArray("42"); }));
    add("description_is_an_empty_object", withDescription([] { return QByteArray("{}"); }));
    add("description_is_binary_json", withDescription([] { return raw("qbjs\1\0\0\0\x10\0\0\0\1\0\0\0\0\0\0\0"); }));
    add("description_is_not_utf8", withDescription([] { return description().replace("Device", "D\xff\xfe"); }));
    add("description_has_zero_bytes", withDescription([] { return description() + QByteArray(10, '\0'); }));
    add("description_has_lone_surrogates", withMember([] { return QByteArray("\"a\\ud800\":\"\\udfff\""); }));
    add("description_has_the_same_member_twice", withMember([] { return QByteArray("\"modelId\":1"); }));
    add("description_has_the_same_object_twice", withMember([] { return "\"x\":{\"a\":[]},\"x\":{\"b\":[]}"; }))
        .libraryLeaks = true;
    add("description_is_nested_1000_times",
        withMember([] { return "\"x\":" + QByteArray("[").repeated(1000) + QByteArray("]").repeated(1000); }));
    add("settings_are_nested_1000_times", withDescription([] {
            const QByteArray text =
                description([](QJsonObject &object) { object.remove(QStringLiteral("settings")); }).trimmed();
            return text.chopped(1) + ",\"settings\":{\"a\":" + QByteArray("[").repeated(1000) +
                   QByteArray("]").repeated(1000) + "}}";
        }));
    add("description_is_nested_a_million_times",
        withDescription([] { return QByteArray("[").repeated(1000000) + QByteArray("]").repeated(1000000); }));
    add("description_opens_and_never_closes", withDescription([] { return QByteArray("{\"a\":").repeated(1000000); }));
    add("description_has_a_million_members", withMember([] {
            QByteArray members = "\"x\":{\"\":0";
            for (int number = 0; number < 1000000; ++number)
                members += ",\"" + QByteArray::number(number) + "\":0";
            return members + "}";
        }));
    add("description_has_one_member_a_million_times",
        withMember([] { return "\"x\":{\"\":0" + QByteArray(",\"a\":0").repeated(1000000) + "}"; }));
    add("description_has_five_million_empty_arrays",
        withMember([] { return "\"x\":[0" + QByteArray(",[]").repeated(5000000) + "]"; }));
    add("description_has_a_text_of_10_megabytes",
        withMember([] { return "\"x\":\"" + QByteArray(10 * MiB, 'x') + "\""; }));
    add("description_has_a_text_of_20_megabytes",
        withMember([] { return "\"x\":\"" + QByteArray(20 * MiB, 'x') + "\""; }));
    add("description_has_wrong_types_everywhere", withDescription([] {
            QJsonObject object = QJsonDocument::fromJson(description()).object();
            for (const QString &key : object.keys()) {
                if (key != QStringLiteral("modelId"))
                    object.insert(key,
                                  object.value(key).isString() ? QJsonValue(1) : QJsonValue(QStringLiteral("text")));
            }
            return QJsonDocument(object).toJson();
        }));
    add("description_has_numbers_beyond_all_limits", withChange([](QJsonObject &object) {
            object.insert(QStringLiteral("id"), -1e300);
            object.insert(QStringLiteral("protocolNumber"), -1e308);
            object.insert(QStringLiteral("presets"), QJsonArray{QJsonObject{{QStringLiteral("number"), 70000}},
                                                                QJsonObject{{QStringLiteral("number"), -1}}});
            object.insert(QStringLiteral("screens"), QJsonArray{QJsonObject{{QStringLiteral("width"), 1e10},
                                                                            {QStringLiteral("x"), -2147483648.0}}});
            object.insert(QStringLiteral("materials"),
                          QJsonArray{QJsonObject{{QStringLiteral("keyNo"), 1e99}, {QStringLiteral("width"), -5}}});
        }));
    add("description_asks_for_the_newest_protocol",
        withChange([](QJsonObject &object) { object.insert(QStringLiteral("protocolNumber"), 1e308); }));
    add("description_is_of_another_model",
        [] { return sealed(TestSupport::packageOf(source(TestSupport::otherModel))); });
    add("description_has_other_cards",
        withChange([](QJsonObject &object) { object.insert(QStringLiteral("slots"), QJsonArray()); }));
    add("description_has_100000_cards", withChange([](QJsonObject &object) {
            QJsonArray cards;
            for (int number = 0; number < 100000; ++number)
                cards.append(QJsonObject{{QStringLiteral("pos"), number}});
            object.insert(QStringLiteral("slots"), cards);
        }));
    add("description_has_a_way_out_for_an_address",
        withChange([](QJsonObject &object) { object.insert(QStringLiteral("ip"), QStringLiteral("../../victim")); }));
    add("description_promises_pictures_that_are_not_there", withChange([](QJsonObject &object) {
            object.insert(QStringLiteral("materials"),
                          QJsonArray{QJsonObject{{QStringLiteral("type"), 1}, {QStringLiteral("keyNo"), 200}},
                                     QJsonObject{{QStringLiteral("type"), 99}, {QStringLiteral("keyNo"), 201}}});
        }));
    add("description_lies_in_a_deep_folder",
        [] { return sealed(PackageBuilder().file(QByteArray("d/").repeated(40) + "x.JsOn", description())); });
    add("description_climbs_out", [] { return sealed(PackageBuilder().file("../escaped.json", description())); });
    add("description_climbs_out_and_another_does_not", [] {
        return sealed(PackageBuilder().file("../escaped.json", description()).file("device.json", description()));
    });
    add("description_is_a_folder", [] { return sealed(PackageBuilder().folder("device.json")); });
    add("descriptions_are_10000", [] {
        PackageBuilder package;
        for (int number = 0; number < 10000; ++number)
            package.file(QByteArray::number(number) + ".json", number ? QByteArray("{}") : description());
        return sealed(package);
    });
}

void Corpus::addOtherFiles()
{
    add("file_is_a_text", [] { return QByteArray("This is no package.\n").repeated(100); });
    add("file_is_zeros", [] { return QByteArray(MiB, '\0'); });
    add("file_is_a_picture", [] { return picture(); });
    add("file_is_a_7z_archive", [] { return raw("7z\xbc\xaf\x27\x1c\0\4") + QByteArray(100, '\0'); });
    add("file_is_a_gzip_stream", [] { return raw("\x1f\x8b\x08\0") + QByteArray(100, 'x'); });
    add("file_is_signatures_only", [] { return raw("PK\3\4PK\1\2PK\5\6PK\6\6PK\6\7").repeated(2000); });
    add("file_has_60_megabytes_without_a_zero", [] {
        const QByteArray junk(60 * MiB, 'x');
        return junk + sealed(honest());
    });
}

void Corpus::addAliases()
{
    // The first is the good one, whatever it is called.
    const auto twice = [](const QByteArray &first, const QByteArray &second) {
        return [=] {
            return sealed(PackageBuilder()
                              .file("device.json", description())
                              .file(first, picture(), PackageBuilder::Stored)
                              .file(second, "no picture")
                              .file("LOGO/LOGO_2.png", TestSupport::pngOf(source().logos.value(2).pixels))
                              .file("Preset/1.RPst", raw("\0\0\0\10a preset")));
        };
    };
    add("alias_with_a_dot_behind", twice("BKG/BKG_1.png", "BKG/./BKG_1.png"));
    add("alias_with_a_dot_before", twice("BKG/./BKG_1.png", "BKG/BKG_1.png"));
    add("alias_with_doubled_slashes_behind", twice("BKG/BKG_1.png", "BKG//BKG_1.png"));
    add("alias_with_doubled_slashes_before", twice("BKG//BKG_1.png", "BKG/BKG_1.png"));
    add("alias_that_begins_with_a_dot", twice("BKG/BKG_1.png", "./BKG/BKG_1.png"));
    add("alias_of_a_folder", [] { return sealed(honest().folder("BKG").folder("BKG/.").folder("BKG//")); });
    add("alias_of_the_description", [] {
        return sealed(PackageBuilder().file("device.json", description()).file("./device.json", "no description"));
    });
    add("names_that_are_no_utf8_decode_alike", [] {
        return sealed(
            honest().file("Preset/\xfe.RPst", "one").file("Preset/\xff.RPst", "two").file("Preset/\xc3.RPst", "three"));
    });
    add("folder_has_content", withMode("other/", PackageBuilder::Directory, "a folder's content"));
    add("folder_of_pictures_has_content", [] {
        return sealed(PackageBuilder()
                          .file("device.json", description())
                          .file("BKG/", "a folder's content", PackageBuilder::Stored, PackageBuilder::Directory)
                          .file("BKG/BKG_1.png", picture()));
    });
    add("description_has_markup_in_texts", withChange([](QJsonObject &object) {
            const QString markup = QStringLiteral("<img src='file:///dev/zero'><h1>big</h1><a href='x'>%1</a>&amp;");
            const std::function<QJsonValue(const QJsonValue &)> marked = [&](const QJsonValue &value) -> QJsonValue {
                if (value.isString())
                    return markup;
                if (value.isArray()) {
                    QJsonArray array;
                    for (const QJsonValue &element : value.toArray())
                        array.append(marked(element));
                    return array;
                }
                QJsonObject changed = value.toObject();
                for (const QString &key : changed.keys()) {
                    if (!changed.value(key).isDouble() && !changed.value(key).isBool())
                        changed.insert(key, marked(changed.value(key)));
                }
                return value.isObject() ? QJsonValue(changed) : value;
            };
            const QJsonValue ip = object.value(QStringLiteral("ip"));
            object = marked(object).toObject();
            object.insert(QStringLiteral("ip"), ip);
        }));
}

void Corpus::addLargeNumbers()
{
    const auto materials = [](int count, int width, int height) {
        return description([=](QJsonObject &object) {
            QJsonArray array;
            for (int number = 1; number <= count; ++number)
                array.append(QJsonObject{{QStringLiteral("type"), 0},
                                         {QStringLiteral("keyNo"), number},
                                         {QStringLiteral("width"), width},
                                         {QStringLiteral("height"), height}});
            object.insert(QStringLiteral("materials"), array);
        });
    };
    // 42 million pixels each, so each alone is allowed.
    const auto pictures = [materials](int count) {
        return [=] {
            PackageBuilder package;
            package.file("device.json", materials(count, 7000, 6000));
            const QByteArray png = PngMaker::blank(7000, 6000, 1, PngMaker::Grey);
            for (int number = 1; number <= count; ++number)
                package.file("BKG/BKG_" + QByteArray::number(number) + ".png", png, PackageBuilder::Stored);
            return sealed(package);
        };
    };
    add("pictures_of_21_gigapixels_together", pictures(512));
    const auto files = [](int count, const QByteArray &folder) {
        return [=] {
            PackageBuilder package = honest();
            for (int number = 0; number < count; ++number)
                package.file(folder + QByteArray::number(number), QByteArray(), PackageBuilder::Stored);
            return package;
        };
    };
    add("entries_are_33000", [=] { return sealed(files(33000, "many/")()); });
    add("other_entries_are_33000", [=] { return sealed(files(33000, "others/")()); });
    add("entries_are_65000", [=] { return sealed(files(65000, "many/")()); });
    add("entries_are_70000_in_zip64", [=] {
        ZipArchive archive(sealed(files(70000, "many/")()));
        const quint64 size = archive.get32(archive.end() + 12);
        const quint64 start = archive.get32(archive.end() + 16);
        archive.insertBeforeEnd(zip64Records(70000 + 4, size, start, quint64(archive.end())));
        return archive.set16(archive.end() + 8, 0xffff).set16(archive.end() + 10, 0xffff).bytes;
    });
}

void Corpus::addOtherWriters()
{
    // As a package that unpacks itself would be, with the program in front taken into account everywhere.
    add("program_before_with_adjusted_offsets", [] {
        const QByteArray program = raw("MZ\x90\0\3").leftJustified(500, '\0');
        const QByteArray checksum = PackageBuilder::checksum(program, 0);
        ZipArchive archive(
            honest().recordWithChecksum(QString::fromLatin1(checksum), QStringLiteral("x"), QString()).build());
        for (int entry = 0; entry < archive.count(); ++entry)
            archive.set32(archive.central(entry) + 42, quint32(archive.local(entry) + program.size()));
        archive.set32(archive.end() + 16, quint32(archive.centralStart() + program.size()));
        return program + archive.bytes;
    });
}

} // namespace

QVector<HostilePackage> hostilePackages()
{
    Corpus corpus;
    corpus.addNames();
    corpus.addLinksAndModes();
    corpus.addSizes();
    corpus.addTruncations();
    corpus.addEndRecords();
    corpus.addHeaders();
    corpus.addMethods();
    corpus.addPictures();
    corpus.addRecords();
    corpus.addDescriptions();
    corpus.addOtherFiles();
    corpus.addAliases();
    corpus.addLargeNumbers();
    corpus.addOtherWriters();
    return corpus.packages;
}

QByteArray honestPackage()
{
    return sealed(honest());
}

} // namespace TestData

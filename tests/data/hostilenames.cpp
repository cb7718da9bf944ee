// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "ingredients.h"

// Packages whose defect is an entry's name or file type.

namespace TestData {

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
        // Each would be taken for the first picture, which is slow to decode.
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

void Corpus::addAliases()
{
    // The first one is valid, whatever its name.
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

} // namespace TestData

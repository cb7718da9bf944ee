// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "ingredients.h"

// Packages whose defect is in their contents: pictures, info records, descriptions.

namespace TestData {

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
            // Seven Adam7 passes over 16 by 9 pixels, each row with its filter byte.
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
        ZipArchive archive(honest().archiveComment(withZero).build());
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
        return honest()
            .archiveComment(QByteArray(reinterpret_cast<const char *>(text.utf16()), text.size() * 2))
            .build();
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

} // namespace TestData

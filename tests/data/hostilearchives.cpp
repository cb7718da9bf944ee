// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "ingredients.h"

// Packages whose defect is in the archive: its records, headers, sizes and methods.

namespace TestData {

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
    add("size_in_64_bits_is_negative_above_two_gigabytes", with64BitSize(0x800000007ffffffe));
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
        // The second directory entry points to the content of the first, which has the same name.
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
        // Like a self-extracting package.
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
        [] { return sealed(honest()) + PackageBuilder().file("other.txt", "other").archiveComment("other").build(); });
    add("end_record_in_the_comment", [] {
        const QByteArray record =
            PackageBuilder::infoRecord(QString::fromLatin1(rightChecksum()), QStringLiteral("x"), QStringLiteral("x"));
        const QByteArray inner = raw("PK\5\6") + QByteArray(18, '\0');
        return honest().archiveComment(record + inner).build();
    });
    add("end_record_in_the_comment_leads_to_another_directory", [] {
        const QByteArray other = PackageBuilder().file("other.txt", "other").build();
        return honest()
            .archiveComment("{\"Checksum\":\"" + rightChecksum() + "\",\"projectName\":\"x\",\"comment\":\"x\"}" +
                            other)
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
            [size] { return honest().archiveComment(recordOfSize(size)).build(); });

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
            // As a streaming writer leaves it: the flag is set and the fields are zero; the directory has the sizes.
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
            // A fixed block that starts with a back reference.
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
    // 42 million pixels each, so each is allowed on its own.
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
    add("pictures_of_21_gigapixels_together", pictures(512)).onlyLarger = true;
    const auto files = [](int count, const QByteArray &folder) {
        return [=] {
            PackageBuilder package = honest();
            for (int number = 0; number < count; ++number)
                package.file(folder + QByteArray::number(number), QByteArray(), PackageBuilder::Stored);
            return package;
        };
    };
    const auto addEntries = [&](const QByteArray &name, int count, const QByteArray &folder) {
        add(name, [=] { return sealed(files(count, folder)()); }).onlyLarger = true;
    };
    addEntries("entries_are_33000", 33000, "many/");
    addEntries("other_entries_are_33000", 33000, "others/");
    addEntries("entries_are_65000", 65000, "many/");
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
    // Like a self-extracting package whose offsets all include the program in front.
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

} // namespace TestData

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagelayout.h"

#include <support/testmain.h>

#include <QRandomGenerator>
#include <QSet>
#include <QtTest>

using namespace ProjectFileCfg::Internal;

class TstPackageLayout : public QObject
{
    Q_OBJECT

private slots:
    void entries_carry_their_number_without_padding();
    void extensions_ignore_case_but_folders_do_not();
    void only_the_package_extension_is_taken_off();
    void formed_entry_name_yields_its_number();
    void path_has_one_normal_form_data();
    void path_has_one_normal_form();
    void names_that_lead_out_are_not_safe_data();
    void names_that_lead_out_are_not_safe();
    void names_that_block_later_packages_are_known_data();
    void names_that_block_later_packages_are_known();
    void names_in_utf8_stay_as_they_are();
    void invalid_utf8_bytes_are_percent_escaped_data();
    void invalid_utf8_bytes_are_percent_escaped();
    void two_names_never_become_one();
    void oversized_names_yield_no_entries();
};

void TstPackageLayout::entries_carry_their_number_without_padding()
{
    QCOMPARE(PackageLayout::backgroundEntry(0), QStringLiteral("BKG/BKG_0.png"));
    QCOMPARE(PackageLayout::logoEntry(255), QStringLiteral("LOGO/LOGO_255.png"));
    QCOMPARE(PackageLayout::presetEntry(65535), QStringLiteral("Preset/65535.RPst"));
}

void TstPackageLayout::extensions_ignore_case_but_folders_do_not()
{
    using namespace PackageLayout;
    QVERIFY(isDescription("A/B.Json") && isPicture("x.PNG") && isPreset("Preset/1.rpst"));
    QVERIFY(!isDescription("a.json/") && !isPicture("png") && !isPreset("1.RPst.txt"));
    QVERIFY(isLogo("LOGO/x") && !isLogo("logo/x") && !isLogo("BKG/x") && !isLogo("LOGO"));
    QVERIFY(isInGallery("BKG/x") && isInGallery("LOGO/x") && !isInGallery("bkg/x") && !isInGallery("Preset/x"));
    QVERIFY(isGalleryPicture("BKG/x.Png") && !isGalleryPicture("BKG/x.txt") && !isGalleryPicture("x.png"));
    QVERIFY(isFolder("BKG/") && !isFolder("BKG"));
}

void TstPackageLayout::only_the_package_extension_is_taken_off()
{
    using namespace PackageLayout;
    QCOMPARE(withoutPackageExtension("show 1.5.corvelpro"), QString("show 1.5"));
    QCOMPARE(withoutPackageExtension("show.CORVELPRO"), QString("show"));
    QCOMPARE(withoutPackageExtension("show.corvelpro.zip"), QString("show.corvelpro.zip"));
    QCOMPARE(withoutPackageExtension(".corvelpro"), QString());
}

void TstPackageLayout::formed_entry_name_yields_its_number()
{
    using namespace PackageLayout;
    for (int number = 0; number < 256; ++number) {
        QCOMPARE(int(galleryNumber(backgroundEntry(number))), number);
        QCOMPARE(int(galleryNumber(logoEntry(number).toLower().replace("logo", "LOGO"))), number);
    }
    QCOMPARE(galleryFolder(logoEntry(1)), QStringLiteral("LOGO"));
    QCOMPARE(galleryFolder(backgroundEntry(1)), QStringLiteral("BKG"));
    QCOMPARE(int(galleryNumber("BKG/other.png")), 0);
}

void TstPackageLayout::path_has_one_normal_form_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("plain");
    QTest::newRow("plain") << "BKG/x"
                           << "BKG/x";
    QTest::newRow("doubled separator") << "BKG//x"
                                       << "BKG/x";
    QTest::newRow("dot") << "BKG/./x"
                         << "BKG/x";
    QTest::newRow("dot in front") << "./BKG/x"
                                  << "BKG/x";
    QTest::newRow("folder") << "BKG//./"
                            << "BKG/";
    QTest::newRow("dots in a name") << "BKG/..x/."
                                    << "BKG/..x";
    QTest::newRow("backslash") << "BKG\\x"
                               << "BKG\\x";
}

void TstPackageLayout::path_has_one_normal_form()
{
    QFETCH(QString, name);
    QFETCH(QString, plain);
    QCOMPARE(PackageLayout::plainName(name), plain);
}

void TstPackageLayout::names_that_lead_out_are_not_safe_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isSafe");
    const auto row = [](const QString &name, bool isSafe) {
        QTest::newRow(qPrintable(QString(name).replace(QChar(0), "NUL"))) << name << isSafe;
    };
    for (const char *name : {"a", "a/", "a/b.png", "..a", "a..", "a/..b/c", "...", "a/./b", "ab:c", "1:", "a/1:/b"})
        row(name, true);
    for (const char *name : {"..", "../a", "a/../b", "a/..", " .. ", "a/.. /b", "\\..\\a", "a\\..\\b", "/a", "\\a",
                             "C:", "C:a", "a:b", "a/c:b", "a\\c:", ".", "a/.", "a\\."})
        row(name, false);
    row(QString("a") + QChar(0), false);
    QTest::newRow("nothing") << QString() << false;
    QTest::newRow("64 levels") << QString("d/").repeated(63) + 'x' << true;
    QTest::newRow("65 levels") << QString("d/").repeated(64) + 'x' << false;
}

void TstPackageLayout::names_that_lead_out_are_not_safe()
{
    QFETCH(QString, name);
    QFETCH(bool, isSafe);
    QCOMPARE(PackageLayout::isSafeName(name), isSafe);
}

void TstPackageLayout::names_that_block_later_packages_are_known_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("blocks");
    // A file where the next package has a folder.
    for (const QString &name : QStringList{"BKG", "LOGO", "Preset", "bkg", "./Logo", "PRESET"}) {
        QTest::newRow(qPrintable(name)) << name << true;
        QTest::newRow(qPrintable(name + '/')) << name + '/' << false;
        QTest::newRow(qPrintable(name + "/x")) << name + "/x" << false;
        QTest::newRow(qPrintable("x/" + name)) << "x/" + name << false;
    }
    // A folder where the next package has a file.
    for (const QString &name : QStringList{"a.json", "x/a.PNG", "1.RPst"}) {
        QTest::newRow(qPrintable(name)) << name << false;
        QTest::newRow(qPrintable(name + '/')) << name + '/' << true;
        QTest::newRow(qPrintable(name + "/x")) << name + "/x" << true;
        QTest::newRow(qPrintable(name + ".x/y")) << name + ".x/y" << false;
    }
}

void TstPackageLayout::names_that_block_later_packages_are_known()
{
    QFETCH(QString, name);
    QFETCH(bool, blocks);
    QCOMPARE(PackageLayout::blocksLaterPackages(name), blocks);
}

void TstPackageLayout::names_in_utf8_stay_as_they_are()
{
    const QByteArrayList names{"x",      "%FF",   "100%", "\u56fe\u7247.png", "\U0001F3AC", "a/b", QByteArray("\0", 1),
                               "\uFFFD", "\uFFFF"};
    const QStringList texts = PackageLayout::namesOf(names);
    QCOMPARE(texts.size(), names.size());
    for (int index = 0; index < names.size(); ++index)
        QCOMPARE(texts.at(index).toUtf8(), names.at(index));
    QCOMPARE(PackageLayout::namesOf({}), QStringList());
}

void TstPackageLayout::invalid_utf8_bytes_are_percent_escaped_data()
{
    QTest::addColumn<QByteArrayList>("names");
    QTest::addColumn<QStringList>("texts");
    using Names = QByteArrayList;
    QTest::newRow("three presets") << Names{"Preset/\xFF.RPst", "Preset/\xFE.RPst", "Preset/\xC3.RPst"}
                                   << QStringList{"Preset/%FF.RPst", "Preset/%FE.RPst", "Preset/%C3.RPst"};
    QTest::newRow("characters among them")
        << Names{"\xC3\xA4\xC3\xE5\x9B\xBE"} << QStringList{QString::fromUtf8("\xC3\xA4%C3\xE5\x9B\xBE")};
    QTest::newRow("behind characters of every size")
        << Names{"\xDF\xBF\xFF", "\xE0\xA4\x85\xFF", "\xEF\xBF\xBD\xFF", "\xF0\x9F\x8E\xAC\xFF"}
        << QStringList{QString::fromUtf8("\xDF\xBF%FF"), QString::fromUtf8("\xE0\xA4\x85%FF"),
                       QString::fromUtf8("\xEF\xBF\xBD%FF"), QString::fromUtf8("\xF0\x9F\x8E\xAC%FF")};
    QTest::newRow("before the last character")
        << Names{"\xFF\xC3\xA4"} << QStringList{QString::fromUtf8("%FF\xC3\xA4")};
    QTest::newRow("behind the last ASCII character") << Names{"\x7F\xFF"} << QStringList{"\x7F%FF"};
    QTest::newRow("beside one that looks like it") << Names{"%FF", "\xFF", "%"} << QStringList{"%FF", "%%FF", "%"};
    QTest::newRow("percent sign in front") << Names{"%\xFF", "\xFF%"} << QStringList{"%%%FF", "%%FF%"};
    QTest::newRow("separator written too long") << Names{"..\xC0\xAFx"} << QStringList{"..%C0%AFx"};
    QTest::newRow("half a pair") << Names{"\xED\xA0\x80"} << QStringList{"%ED%A0%80"};
    QTest::newRow("beyond the last character") << Names{"\xF4\x90\x80\x80"} << QStringList{"%F4%90%80%80"};
    QTest::newRow("byte order mark") << Names{"\xEF\xBB\xBFx", "a/\xEF\xBB\xBFx", "x"}
                                     << QStringList{"%EF%BB%BFx", "a/%EF%BB%BFx", "x"};
    QTest::newRow("zero byte") << Names{QByteArray("\xFF\0x", 3)} << QStringList{QString("%FF") + QChar(0) + "x"};
}

void TstPackageLayout::invalid_utf8_bytes_are_percent_escaped()
{
    QFETCH(QByteArrayList, names);
    QFETCH(QStringList, texts);
    QCOMPARE(PackageLayout::namesOf(names), texts);
}

void TstPackageLayout::two_names_never_become_one()
{
    // The characters of escapes, characters to be escaped, and characters to keep.
    const QByteArrayList pieces{"%",        "F",    "0",        "E",    "EF", "\xFF", "\xFE", "\xC3",
                                "\xC3\xA4", "\xA4", "\xEF\xBB", "\xBF", "/",  "%FF",  "%%",   "a"};
    QRandomGenerator random(8);
    for (int round = 0; round < 5000; ++round) {
        QSet<QByteArray> names;
        for (int count = random.bounded(1, 12); count > 0; --count) {
            QByteArray name;
            for (int length = random.bounded(1, 6); length > 0; --length)
                name += pieces.at(random.bounded(pieces.size()));
            names.insert(name);
        }
        const QByteArrayList given(names.begin(), names.end());
        const QStringList texts = PackageLayout::namesOf(given);
        QCOMPARE(texts.size(), given.size());
        for (int index = 0; index < given.size(); ++index) {
            // On the way to the disk none is changed again.
            QCOMPARE(QString::fromUtf8(texts.at(index).toUtf8()), texts.at(index));
            const bool isPlain = QString::fromUtf8(given.at(index)).toUtf8() == given.at(index) &&
                                 !given.at(index).contains("\xEF\xBB\xBF");
            QCOMPARE(texts.at(index).toUtf8() == given.at(index), isPlain);
        }
        QCOMPARE(QSet<QString>(texts.begin(), texts.end()).size(), given.size());
    }
}

void TstPackageLayout::oversized_names_yield_no_entries()
{
    QCOMPARE(PackageLayout::namesOf({QByteArray(15, '%'), "\xFF"}).value(1), QString(16, '%') + "FF");
    QCOMPARE(PackageLayout::namesOf({QByteArray(16, '%'), "\xFF"}), QStringList());
    QCOMPARE(PackageLayout::namesOf({QByteArray(60000, '%'), "x"}).size(), 2);
    const QByteArray name(65535, '\xFF');
    QCOMPARE(PackageLayout::namesOf(QVector<QByteArray>(85, name).toList()).size(), 85);
    QCOMPARE(PackageLayout::namesOf(QVector<QByteArray>(86, name).toList()).size(), 0);
    const QByteArrayList nearlyAll = QVector<QByteArray>(85, name).toList();
    const int left = 16 * 1024 * 1024 - 85 * 3 * name.size();
    QCOMPARE(PackageLayout::namesOf(nearlyAll + QByteArrayList{QByteArray(left, 'x')}).size(), 86);
    QCOMPARE(PackageLayout::namesOf(nearlyAll + QByteArrayList{QByteArray(left + 1, 'x')}).size(), 0);
}

TEST_MAIN_CORE(TstPackageLayout)
#include "tst_packagelayout.moc"

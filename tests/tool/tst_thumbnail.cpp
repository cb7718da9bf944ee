// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "devicefiles.h"
#include "toolrunner.h"

#include <data/pngmaker.h>
#include <support/customsite.h>

#include <QTemporaryDir>

#include <sys/stat.h>

using namespace ToolTesting;
using TestData::PngMaker;
using TestSupport::PackageBuilder;
using TestSupport::pngOf;

namespace {

QByteArray picture(const QSize &size, Qt::GlobalColor colour)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return pngOf(image);
}

} // namespace

/// What a file manager gets for a project file.
class TstThumbnail : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_dir.reset(new QTemporaryDir); }

    void picture_fits_into_the_square_data();
    void picture_fits_into_the_square();
    void lowest_background_is_shown_data();
    void lowest_background_is_shown();
    void result_says_what_was_drawn();
    void existing_picture_is_replaced_data();
    void existing_picture_is_replaced();
    void other_file_is_kept_data();
    void other_file_is_kept();
    void no_picture_leaves_no_file_data();
    void no_picture_leaves_no_file();
    void failure_keeps_the_previous_picture();
    void size_out_of_range_is_refused_data();
    void size_out_of_range_is_refused();
    void unwritable_target_is_named();
    void full_disk_leaves_no_file();
    void memory_stays_bounded_for_8k();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }
    Outcome draw(const QStringList &options = {}) const
    {
        return runTool(QStringList{"thumbnail", path("show.corvelpro"), path("out.png")} + options);
    }

    QScopedPointer<QTemporaryDir> m_dir;
};

void TstThumbnail::picture_fits_into_the_square_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("wide") << QSize(1920, 1080) << QStringList{"--size", "128"} << QSize(128, 72);
    QTest::newRow("high") << QSize(1080, 1920) << QStringList{"--size", "128"} << QSize(72, 128);
    QTest::newRow("by default") << QSize(1920, 1080) << QStringList() << QSize(256, 144);
    QTest::newRow("never larger than it is") << QSize(40, 30) << QStringList{"--size", "128"} << QSize(40, 30);
    QTest::newRow("as large as the square") << QSize(128, 128) << QStringList{"--size", "128"} << QSize(128, 128);
    QTest::newRow("a thin line") << QSize(2000, 1) << QStringList{"--size", "128"} << QSize(128, 1);
    QTest::newRow("a dot") << QSize(20, 10) << QStringList{"--size", "1"} << QSize(1, 1);
}

void TstThumbnail::picture_fits_into_the_square()
{
    QFETCH(QSize, size);
    QFETCH(QStringList, options);
    QFETCH(QSize, expected);
    QVERIFY(writePackage(path("show.corvelpro"), {{"1.json", "{}"}, {"BKG/BKG_1.png", picture(size, Qt::green)}}));
    const Outcome outcome = draw(options);
    QVERIFY2(outcome.code == yes, outcome.messages);
    const QByteArray bytes = readFile(path("out.png"));
    QVERIFY(bytes.startsWith(PngMaker::signature()));
    const QImage image = QImage::fromData(bytes);
    QCOMPARE(image.size(), expected);
    QCOMPARE(image.pixelColor(expected.width() / 2, expected.height() / 2), QColor(Qt::green));
}

void TstThumbnail::lowest_background_is_shown_data()
{
    QTest::addColumn<Files>("files");
    const QByteArray shown = picture({16, 9}, Qt::red);
    const QByteArray other = picture({16, 9}, Qt::blue);
    QTest::newRow("by number, not by name")
        << Files{{"BKG/BKG_10.png", other}, {"BKG/BKG_2.png", shown}, {"BKG/BKG_255.png", other}};
    QTest::newRow("0") << Files{{"BKG/BKG_0.png", shown}, {"BKG/BKG_1.png", other}};
    QTest::newRow("no logo") << Files{{"BKG/BKG_9.png", shown}, {"LOGO/LOGO_1.png", other}};
    QTest::newRow("extension in capitals") << Files{{"BKG/BKG_1.PNG", shown}, {"BKG/BKG_2.png", other}};
    QTest::newRow("no number") << Files{
        {"BKG/BKG_3.png", shown}, {"BKG/cover.png", other}, {"BKG/old/BKG_1.png", other}, {"a.png", other}};
    QTest::newRow("beside damaged ones") << Files{{"BKG/BKG_1.png", shown}, {"BKG/BKG_2.png", "no picture"}};
    QTest::newRow("path with a dot") << Files{{"BKG/./BKG_1.png", shown}, {"BKG/BKG_2.png", other}};
}

void TstThumbnail::lowest_background_is_shown()
{
    QFETCH(Files, files);
    QVERIFY(writePackage(path("show.corvelpro"), files));
    const Outcome outcome = draw();
    QVERIFY2(outcome.code == yes, outcome.messages);
    QCOMPARE(QImage(path("out.png")).pixelColor(8, 4), QColor(Qt::red));
}

void TstThumbnail::result_says_what_was_drawn()
{
    QVERIFY(writePackage(path("show.corvelpro"), {{"BKG/BKG_7.png", picture({1920, 1080}, Qt::green)}}));
    QCOMPARE(draw({"--size", "64"}).out, (path("out.png") + ": BKG/BKG_7.png, 64 x 36\n").toUtf8());
    QCOMPARE(draw({"--size", "64", "--json"}).json(), QJsonObject({{"result", "done"},
                                                                   {"file", path("show.corvelpro")},
                                                                   {"thumbnail", path("out.png")},
                                                                   {"entry", "BKG/BKG_7.png"},
                                                                   {"width", 64},
                                                                   {"height", 36}}));
    QCOMPARE(draw({"--quiet"}).out, QByteArray());
    QCOMPARE(namesIn(m_dir->path()), QStringList({"out.png", "show.corvelpro"}));
}

void TstThumbnail::existing_picture_is_replaced_data()
{
    QTest::addColumn<QByteArray>("previous");
    QTest::newRow("an empty file, as file managers make it beforehand") << QByteArray();
    QTest::newRow("a picture") << picture({16, 9}, Qt::blue);
}

void TstThumbnail::existing_picture_is_replaced()
{
    QFETCH(QByteArray, previous);
    QVERIFY(writePackage(path("show.corvelpro"), {{"BKG/BKG_1.png", picture({16, 9}, Qt::red)}}));
    QVERIFY(writeFile(path("out.png"), previous));
    const Outcome outcome = draw();
    QVERIFY2(outcome.code == yes, outcome.messages);
    QCOMPARE(QImage(path("out.png")).pixelColor(8, 4), QColor(Qt::red));
}

void TstThumbnail::other_file_is_kept_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("the package itself") << "show.corvelpro";
    QTest::newRow("another package") << "other.corvelpro";
    QTest::newRow("a text") << "notes.txt";
    QTest::newRow("a directory") << "folder";
    QTest::newRow("a pipe") << "pipe";
    QTest::newRow("a broken link") << "link";
}

void TstThumbnail::other_file_is_kept()
{
    QFETCH(QString, target);
    const Files files{{"BKG/BKG_1.png", picture({16, 9}, Qt::red)}};
    QVERIFY(writePackage(path("show.corvelpro"), files));
    QVERIFY(writePackage(path("other.corvelpro"), files));
    QVERIFY(writeFile(path("notes.txt"), "notes"));
    QVERIFY(QDir(m_dir->path()).mkpath("folder"));
    QCOMPARE(mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    QVERIFY(QFile::link(path("nowhere"), path("link")));
    const QStringList before = namesIn(m_dir->path());
    const QByteArray content = QFileInfo(path(target)).isFile() ? readFile(path(target)) : QByteArray();

    const Outcome outcome = runTool({"thumbnail", path("show.corvelpro"), path(target)});
    QCOMPARE(outcome.code, no);
    QCOMPARE(outcome.messages.count('\n'), 1);
    QVERIFY2(outcome.messages.contains(target.toUtf8()), outcome.messages);
    QCOMPARE(namesIn(m_dir->path()), before);
    if (QFileInfo(path(target)).isFile())
        QCOMPARE(readFile(path(target)), content);
}

void TstThumbnail::no_picture_leaves_no_file_data()
{
    QTest::addColumn<QByteArray>("package");
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("reason");
    const QByteArray png = picture({64, 36}, Qt::red);
    const auto package = [](const QByteArray &content, PackageBuilder::Method method = PackageBuilder::Stored) {
        return PackageBuilder().file("BKG/BKG_1.png", content, method);
    };
    const auto built = [](PackageBuilder builder) { return builder.record("show", "").build(); };
    QTest::newRow("no background") << built(PackageBuilder().file("LOGO/LOGO_1.png", png)) << no
                                   << QByteArray("no background");
    QTest::newRow("no record") << package(png).build() << no << QByteArray("not a valid project file");
    QTest::newRow("no archive") << QByteArray("text") << unknown << QByteArray("not a zip archive");
    QTest::newRow("empty file") << QByteArray() << unknown << QByteArray("not a zip archive");
    QTest::newRow("wrong CRC") << built(package(png).claimCrc(1)) << unknown << QByteArray("BKG/BKG_1.png");
    QTest::newRow("no PNG") << built(package("no picture")) << unknown << QByteArray("BKG/BKG_1.png");
    QTest::newRow("cut PNG") << built(package(png.left(png.size() - 40))) << unknown << QByteArray("BKG/BKG_1.png");
    QTest::newRow("damaged PNG") << built(package(QByteArray(png).replace(60, 8, "--------"))) << unknown
                                 << QByteArray("BKG/BKG_1.png");
    QTest::newRow("another format") << built(package("GIF89a" + png)) << unknown << QByteArray("BKG/BKG_1.png");
    QTest::newRow("beyond the limits") << built(package(PngMaker::signature() + PngMaker::header(60000, 60000) +
                                                        PngMaker::end()))
                                       << unknown << QByteArray("BKG/BKG_1.png");
    QTest::newRow("a link") << built(PackageBuilder().symbolicLink("BKG/BKG_1.png", "/etc/passwd")) << unknown
                            << QByteArray("BKG/BKG_1.png");
    QTest::newRow("encrypted") << built(package(png).claimFlags(1)) << unknown << QByteArray("BKG/BKG_1.png");
}

void TstThumbnail::no_picture_leaves_no_file()
{
    QFETCH(QByteArray, package);
    QFETCH(int, code);
    QFETCH(QByteArray, reason);
    QVERIFY(writeFile(path("show.corvelpro"), package));
    const Outcome outcome = draw();
    QCOMPARE(outcome.code, code);
    // The PNG library may have printed a line of its own.
    QCOMPARE(('\n' + outcome.messages).count("\ncorvelpro: "), 1);
    QVERIFY(outcome.messages.count('\n') <= 2);
    QVERIFY2(outcome.messages.contains(reason), outcome.messages);
    QVERIFY2(outcome.messages.contains("show.corvelpro"), outcome.messages);
    QCOMPARE(namesIn(m_dir->path()), QStringList{"show.corvelpro"});
}

void TstThumbnail::failure_keeps_the_previous_picture()
{
    const QByteArray previous = picture({16, 9}, Qt::blue);
    QVERIFY(writePackage(path("show.corvelpro"), {{"BKG/BKG_1.png", "no picture"}}));
    QVERIFY(writeFile(path("out.png"), previous));
    QCOMPARE(draw().code, unknown);
    QCOMPARE(readFile(path("out.png")), previous);
}

void TstThumbnail::size_out_of_range_is_refused_data()
{
    QTest::addColumn<QString>("size");
    QTest::addColumn<bool>("isTaken");
    for (const char *size : {"0", "1025", "-1", "x", "1e2", "99999999999999999999", ""})
        QTest::newRow(size) << size << false;
    for (const char *size : {"1", "1024"})
        QTest::newRow(size) << size << true;
}

void TstThumbnail::size_out_of_range_is_refused()
{
    QFETCH(QString, size);
    QFETCH(bool, isTaken);
    QVERIFY(writePackage(path("show.corvelpro"), {{"BKG/BKG_1.png", picture({16, 9}, Qt::red)}}));
    const Outcome outcome = draw({"--size=" + size});
    QCOMPARE(outcome.code, isTaken ? yes : unknown);
    QCOMPARE(QFile::exists(path("out.png")), isTaken);
    if (!isTaken)
        QVERIFY2(outcome.messages.contains("--size"), outcome.messages);
}

void TstThumbnail::unwritable_target_is_named()
{
    QVERIFY(writePackage(path("show.corvelpro"), {{"BKG/BKG_1.png", picture({16, 9}, Qt::red)}}));
    const Outcome outcome = runTool({"thumbnail", path("show.corvelpro"), path("gone/out.png")});
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.messages.count('\n'), 1);
    QVERIFY2(outcome.messages.contains(path("gone").toUtf8()), outcome.messages);
    QCOMPARE(namesIn(m_dir->path()), QStringList{"show.corvelpro"});
}

void TstThumbnail::full_disk_leaves_no_file()
{
    QVERIFY(writePackage(path("show.corvelpro"), {{"BKG/BKG_1.png", pngOf(TestSupport::noisePicture({200, 200}, 1))}}));
    // More than the picture that the tool keeps aside, less than what it writes: noise grows when it is scaled.
    const qint64 room = QFileInfo(path("show.corvelpro")).size();
    const FullDisk disk(room / 8);
    const Outcome outcome = draw({"--size", "200"});
    QCOMPARE(outcome.code, unknown);
    QCOMPARE(outcome.messages.count('\n'), 1);
    QCOMPARE(namesIn(m_dir->path()), QStringList{"show.corvelpro"});
}

void TstThumbnail::memory_stays_bounded_for_8k()
{
    QVERIFY(PackageBuilder()
                .file("BKG/BKG_1.png", PngMaker::blank(7680, 4320, 8, PngMaker::Rgb), PackageBuilder::Stored)
                .record("show", "")
                .write(path("show.corvelpro")));
    // In KiB. The pixels alone take 126 MiB when they are all read.
    QString limit = "100000";
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    // A sanitizer reserves more for itself.
    limit = "unlimited";
#endif
    const PackageTesting::Run run = PackageTesting::run("bash", {"-c", "ulimit -d " + limit + "; exec \"$@\"", "bash",
                                                                 QStringLiteral(CORVELPRO_PROGRAM), "thumbnail",
                                                                 path("show.corvelpro"), path("out.png")});
    QVERIFY2(run.exitCode == yes, run.errors);
    QCOMPARE(QImage(path("out.png")).size(), QSize(256, 144));
}

TEST_MAIN_CORE(TstThumbnail)
#include "tst_thumbnail.moc"

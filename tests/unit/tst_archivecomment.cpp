// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "archivecomment.h"
#include "packedpackage.h"

#include <support/packagebuilder.h>
#include <support/testmain.h>

#include <QScopeGuard>
#include <QThread>

#include <sys/mount.h>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using TestSupport::PackageBuilder;

/// The archive comment and the info record in it: read, replaced, refused.
class TstArchiveComment : public QObject, protected PackedPackage
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    // Reading
    void the_comment_of_a_missing_file_is_empty();
    void comments_are_read_whatever_the_file_name();
    void text_file_is_no_package();
    void special_file_is_no_package_data();
    void special_file_is_no_package();
    void a_missing_file_is_logged();

    // Replacing
    void a_new_comment_leaves_entries_and_checksum_alone();
    void no_tail_of_an_older_comment_stays();
    void a_null_comment_removes_the_old_one();
    void comments_are_accepted_up_to_the_limit();
    void a_comment_needs_an_archive();
    void a_comment_on_a_full_disk_changes_nothing();
    void a_new_comment_keeps_the_permissions();
    void a_new_comment_goes_through_a_link();
    void readers_see_the_old_or_new_comment();

    // In the archive's bytes
    void only_classic_archives_have_a_tail_data();
    void only_classic_archives_have_a_tail();
    void without_an_end_record_nothing_is_consistent();
    void a_new_comment_changes_only_the_tail();
    void unreadable_comments_are_known_data();
    void unreadable_comments_are_known();

    // Records
    void records_are_read_leniently_data();
    void records_are_read_leniently();
    void fields_of_a_record_pass_through_utf8();
    void a_refused_record_leaves_the_fields_alone();
    void a_checksum_with_a_tail_prevents_loading();
    void a_wrong_checksum_is_invalid_but_readable();
    void a_record_with_too_few_keys_is_invalid();
    void a_record_without_checksum_is_invalid();
};

// ---------------------------------------------------------------------------------------------------------------------
// Reading

void TstArchiveComment::the_comment_of_a_missing_file_is_empty()
{
    QCOMPARE(ZipPackageHandle::getZipComment(m_folder + "/missing.corvelpro"), QString());
    QCOMPARE(ZipPackageHandle::getZipComment(m_folder + "/missing.zip"), QString());
    QVERIFY(!ZipPackageHandle::setZipComment(m_folder + "/missing.corvelpro", "x"));
    QVERIFY(!ZipPackageHandle::setZipComment(m_folder + "/missing.zip", "x"));
    QVERIFY(!ZipPackageHandle::isValidEngineerPacket(m_folder + "/missing.corvelpro"));
    QVERIFY(!ZipPackageHandle::isValidEngineerPacket(m_folder + "/missing.zip"));
    QVERIFY(!ZipPackageHandle::checkPacketChecksum(m_folder + "/missing.corvelpro"));
    QCOMPARE(ZipPackageHandle::getFileList(m_folder + "/missing.corvelpro"), QStringList());
    QCOMPARE(contents(m_folder), QStringList());
}

void TstArchiveComment::comments_are_read_whatever_the_file_name()
{
    packed();
    const QString other = m_folder + "/renamed.txt";
    QVERIFY(QFile::rename(m_package, other));
    QVERIFY(!ZipPackageHandle::getZipComment(other).isEmpty());
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(other));
    QVERIFY(ZipPackageHandle::checkPacketChecksum(other));
    QVERIFY(ZipPackageHandle::setZipComment(other, "new"));
    QCOMPARE(ZipPackageHandle::getZipComment(other), QString("new"));
}

void TstArchiveComment::text_file_is_no_package()
{
    QVERIFY(writeFile(m_package, "only a text"));
    QCOMPARE(ZipPackageHandle::getZipComment(m_package), QString());
    QVERIFY(!ZipPackageHandle::isValidEngineerPacket(m_package));
}

void TstArchiveComment::special_file_is_no_package_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("text");
    QTest::newRow("zeros") << QByteArray(100000, '\0');
    const QByteArray good = PackageBuilder().file("a.json", "{}").record("n", "c").build();
    QTest::newRow("truncated in the record") << good.left(good.size() - 1);
    QTest::newRow("truncated in the entries") << good.left(20);
    QTest::newRow("end record only") << good.right(good.size() - good.indexOf("PK\x05\x06"));
    QTest::newRow("no comment") << PackageBuilder().file("a.json", "{}").build();
    QTest::newRow("comment that is no JSON") << PackageBuilder().file("a.json", "{}").archiveComment("{]").build();
    QTest::newRow("list as comment") << PackageBuilder().file("a.json", "{}").archiveComment("[1,2,3]").build();
}

void TstArchiveComment::special_file_is_no_package()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(writeFile(m_package, bytes));
    EngineerPacketInfo info;
    info.strFilePath = m_package;
    QVERIFY(!ZipPackageHandle::isValidEngineerPacket(m_package));
    QVERIFY(!ZipPackageHandle::checkPacketChecksum(m_package));
    QVERIFY(!ZipPackageHandle::getZipFileEngineerInfo(info));
    QVERIFY(readFile(m_package) == bytes);
}

void TstArchiveComment::a_missing_file_is_logged()
{
    static QString logged;
    logged.clear();
    const QtMessageHandler old =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &context, const QString &text) {
            logged += QString::number(type) + '|' + text + '|' + context.file + '|' + context.function;
        });
    EngineerPacketInfo info;
    info.strFilePath = m_package;
    const bool found = ZipPackageHandle::getZipFileEngineerInfo(info);
    qInstallMessageHandler(old);
    QVERIFY(!found);
    QVERIFY2(logged.startsWith("0|File is not exist|src/plugins/projectfilecfg/zippackagehandle.cpp|"),
             qPrintable(logged));
    QVERIFY2(logged.contains("getZipFileEngineerInfo("), qPrintable(logged));
}

// ---------------------------------------------------------------------------------------------------------------------
// Replacing

void TstArchiveComment::a_new_comment_leaves_entries_and_checksum_alone()
{
    const EngineerPacketInfo info = packed();
    const QByteArray old = readFile(m_package);
    const qint64 archiveSize = old.size() - rawComment(m_package).size();
    const QString record =
        jsonRecord({{"Checksum", info.strChecksum}, {"projectName", "other"}, {"comment", "another comment"}});
    QVERIFY(ZipPackageHandle::setZipComment(m_package, record));

    const QByteArray edited = readFile(m_package);
    // Everything except the comment's length, which ends the archive.
    QVERIFY(edited.left(int(archiveSize) - 2) == old.left(int(archiveSize) - 2));
    QCOMPARE(edited.size() - archiveSize, qint64(record.toUtf8().size()));
    QCOMPARE(QString::fromUtf8(rawComment(m_package)), record);
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(m_package));
    QCOMPARE(complaints(m_package), QString());
    verifyNoFragment();
}

void TstArchiveComment::no_tail_of_an_older_comment_stays()
{
    packed();
    const qint64 archiveSize = QFileInfo(m_package).size() - rawComment(m_package).size();
    QRandomGenerator random(7);
    QVector<int> lengths{60000, 1, 60000, 0};
    for (int edit = 0; edit < 20; ++edit)
        lengths.append(random.bounded(65513));
    for (int length : lengths) {
        const QString comment(length, 'c');
        QVERIFY(ZipPackageHandle::setZipComment(m_package, comment));
        QCOMPARE(QFileInfo(m_package).size(), archiveSize + length);
        QCOMPARE(ZipPackageHandle::getZipComment(m_package), comment);
    }
    QCOMPARE(complaints(m_package), QString());
}

void TstArchiveComment::a_null_comment_removes_the_old_one()
{
    packed();
    QVERIFY(ZipPackageHandle::setZipComment(m_package, QString()));
    QCOMPARE(rawComment(m_package), QByteArray());
    QCOMPARE(ZipPackageHandle::getZipComment(m_package), QString());
}

void TstArchiveComment::comments_are_accepted_up_to_the_limit()
{
    packed();
    const QString longest = QString(65510, 'c') + QString::fromUtf8("长");
    QVERIFY(ZipPackageHandle::setZipComment(m_package, longest));
    QCOMPARE(ZipPackageHandle::getZipComment(m_package), longest);
    const QByteArray old = readFile(m_package);
    QVERIFY(!ZipPackageHandle::setZipComment(m_package, longest + 'c'));
    QVERIFY(!ZipPackageHandle::setZipComment(m_package, QString(100000, 'c')));
    QVERIFY(readFile(m_package) == old);
    verifyNoFragment();
}

void TstArchiveComment::a_comment_needs_an_archive()
{
    for (const QByteArray &bytes : {QByteArray(), QByteArray("text"), QByteArray(70000, '\0')}) {
        QVERIFY(writeFile(m_package, bytes));
        QVERIFY(!ZipPackageHandle::setZipComment(m_package, "x"));
        QVERIFY(readFile(m_package) == bytes);
        verifyNoFragment();
    }
}

void TstArchiveComment::a_comment_on_a_full_disk_changes_nothing()
{
    packed();
    const QByteArray old = readFile(m_package);
    const int archiveSize = old.size() - rawComment(m_package).size();
    // In the copy, in the directory, in the comment, at the last byte.
    for (int limit : {0, 100, archiveSize - 10, archiveSize, archiveSize + 499}) {
        {
            const FullDisk disk(limit);
            QVERIFY2(!ZipPackageHandle::setZipComment(m_package, QString(500, 'c')),
                     qPrintable(QString::number(limit)));
        }
        QVERIFY(readFile(m_package) == old);
        verifyNoFragment();
    }
    const FullDisk disk(archiveSize + 500);
    QVERIFY(ZipPackageHandle::setZipComment(m_package, QString(500, 'c')));
}

void TstArchiveComment::a_new_comment_keeps_the_permissions()
{
    packed();
    const auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    QVERIFY(QFile::setPermissions(m_package, permissions));
    QVERIFY(ZipPackageHandle::setZipComment(m_package, "x"));
    struct stat status;
    QCOMPARE(stat(QFile::encodeName(m_package).constData(), &status), 0);
    QCOMPARE(int(status.st_mode & 0777), 0640);
}

void TstArchiveComment::a_new_comment_goes_through_a_link()
{
    packed();
    const QString link = m_temp->path() + "/link.corvelpro";
    QVERIFY(QFile::link(m_package, link));
    QVERIFY(ZipPackageHandle::setZipComment(link, "x"));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(ZipPackageHandle::getZipComment(m_package), QString("x"));
}

void TstArchiveComment::readers_see_the_old_or_new_comment()
{
    const QString first(60000, 'a');
    const QString second(10, 'b');
    packed();
    QVERIFY(ZipPackageHandle::setZipComment(m_package, first));
    bool written = true;
    QScopedPointer<QThread> writer(QThread::create([&] {
        for (int edit = 0; edit < 40; ++edit)
            written = ZipPackageHandle::setZipComment(m_package, edit % 2 ? first : second) && written;
    }));
    writer->start();
    bool whole = true;
    do {
        const QString met = ZipPackageHandle::getZipComment(m_package);
        whole = whole && (met == first || met == second);
    } while (!writer->isFinished());
    QVERIFY(writer->wait());
    QVERIFY(written);
    QVERIFY(whole);
}

// ---------------------------------------------------------------------------------------------------------------------
// In the archive's bytes

namespace {

/// An archive's last bytes; a field of its end record may be changed.
QByteArray endWith(const QByteArray &comment, int position = 0, const QByteArray &field = QByteArray("PK\x05\x06"))
{
    QByteArray record =
        QByteArray("PK\x05\x06") + QByteArray(16, '\0') + char(comment.size() & 0xFF) + char(comment.size() >> 8);
    return record.replace(position, field.size(), field) + comment;
}

} // namespace

void TstArchiveComment::only_classic_archives_have_a_tail_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("offset");
    const QByteArray entries(100, 'e');
    const QByteArray locator = QByteArray("PK\x06\x07") + QByteArray(16, 'l');
    const QByteArray ones(4, '\xFF');
    const auto with = [&](int position, const QByteArray &field) { return entries + endWith("c", position, field); };
    QTest::newRow("without a comment") << entries + endWith(QByteArray()) << 120;
    QTest::newRow("with one") << entries + endWith("c") << 120;
    QTest::newRow("nothing but the end record") << endWith(QByteArray()) << 20;
    QTest::newRow("the longest comment") << entries + endWith(QByteArray(65513, 'c')) << 120;
    QTest::newRow("a longer one") << entries + endWith(QByteArray(65514, 'c')) << -1;
    QTest::newRow("the longest possible one") << entries + endWith(QByteArray(65535, 'c')) << -1;
    QTest::newRow("less than it says") << (entries + endWith("comment")).chopped(1) << -1;
    QTest::newRow("more than it says") << entries + endWith("comment") + 'x' << -1;
    QTest::newRow("cut in the end record") << (entries + endWith(QByteArray())).chopped(1) << -1;
    QTest::newRow("no end record") << entries << -1;
    QTest::newRow("empty") << QByteArray() << -1;
    QTest::newRow("64-bit extension") << entries + locator + endWith("c") << -1;
    QTest::newRow("its mark elsewhere") << entries + locator + 'e' + endWith("c") << 141;
    QTest::newRow("another disk") << with(4, QByteArray("\1\0", 2)) << -1;
    QTest::newRow("another disk, the upper byte") << with(5, QByteArray("\1")) << -1;
    QTest::newRow("directory on another disk") << with(6, QByteArray("\1")) << -1;
    QTest::newRow("directory on another disk, the upper byte") << with(7, QByteArray("\1")) << -1;
    QTest::newRow("most entries") << with(8, QByteArray("\xFE\xFF\xFE\xFF")) << 120;
    QTest::newRow("too many entries") << with(10, QByteArray("\xFF\xFF")) << -1;
    QTest::newRow("most entries of this disk") << with(8, QByteArray("\xFF\xFF")) << 120;
    QTest::newRow("directory too large") << with(12, ones) << -1;
    QTest::newRow("directory just not too large") << with(12, QByteArray("\xFE\xFF\xFF\xFF")) << 120;
    QTest::newRow("directory too far behind") << with(16, ones) << -1;
    QTest::newRow("that before a comment of 255 bytes")
        << entries + endWith(QByteArray(255, 'c'), 16, QByteArray("\xFE\xFF\xFF\xFF")) << 120;
    QTest::newRow("directory just not too far") << with(16, QByteArray("\xFE\xFF\xFF\xFF")) << 120;
}

void TstArchiveComment::only_classic_archives_have_a_tail()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, offset);
    QVERIFY(writeFile(m_package, bytes));
    QFile file(m_package);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const ArchiveComment comment(file);
    QCOMPARE(comment.isFound(), offset >= 0);
    QCOMPARE(comment.offset(), qint64(offset));
    if (offset >= 0)
        QCOMPARE(comment.bytes(), bytes.mid(offset + 2));
}

void TstArchiveComment::without_an_end_record_nothing_is_consistent()
{
    QVERIFY(ArchiveComment::isConsistent(endWith("comment")));
    QVERIFY(!ArchiveComment::isConsistent(QByteArray()));
    // Bytes that would be the right length of what follows, were there a record before them.
    QVERIFY(!ArchiveComment::isConsistent(QByteArray(20, 'e') + '\5' + "comme"));
    QVERIFY(!ArchiveComment::isConsistent(QByteArray(20, 'e') + QByteArray("\5\0comme", 7)));
}

void TstArchiveComment::a_new_comment_changes_only_the_tail()
{
    const QByteArray entries(100, 'e');
    QVERIFY(writeFile(m_package, entries + endWith("old", 12, "12345678")));
    QFile file(m_package);
    QVERIFY(file.open(QIODevice::ReadOnly));
    for (const QByteArray &text : {QByteArray("the new one"), QByteArray(), QByteArray(65513, 'n')}) {
        const ArchiveComment comment(file);
        QCOMPARE(comment.endRecordWith(text), endWith(text, 12, "12345678").left(22));
        QCOMPARE(ArchiveComment::tailWith(text), endWith(text).mid(20));
    }
}

void TstArchiveComment::unreadable_comments_are_known_data()
{
    QTest::addColumn<QByteArray>("comment");
    QTest::addColumn<bool>("isReadable");
    QTest::newRow("none") << QByteArray() << true;
    QTest::newRow("the longest") << QByteArray(65513, 'c') << true;
    QTest::newRow("too long") << QByteArray(65514, 'c') << false;
    QTest::newRow("zero byte") << QByteArray("a\0b", 3) << false;
    QTest::newRow("end of an archive") << QByteArray("aPK\x05\x06") << false;
    QTest::newRow("mark of the 64-bit extension") << QByteArray("aPK\x06\x07") << false;
    QTest::newRow("other marks") << QByteArray("PK\x01\x02PK\x03\x04") << true;
}

void TstArchiveComment::unreadable_comments_are_known()
{
    QFETCH(QByteArray, comment);
    QFETCH(bool, isReadable);
    QCOMPARE(ArchiveComment::isReadable(comment), isReadable);
}

// ---------------------------------------------------------------------------------------------------------------------
// Records

void TstArchiveComment::records_are_read_leniently_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QStringList>("fields");
    QTest::newRow("three keys") << R"({"Checksum":"1","projectName":"2","comment":"3"})" << true
                                << QStringList{"1", "2", "3"};
    QTest::newRow("four keys") << R"({"Checksum":"1","projectName":"2","comment":"3","x":"4"})" << true
                               << QStringList{"1", "2", "3"};
    QTest::newRow("two keys") << R"({"Checksum":"1","projectName":"2"})" << false << QStringList();
    QTest::newRow("no checksum") << R"({"projectName":"2","comment":"3","x":"4"})" << true << QStringList{"", "2", "3"};
    QTest::newRow("three other keys") << R"({"a":"1","b":"2","c":"3"})" << true << QStringList{"", "", ""};
    QTest::newRow("wrong types") << R"({"Checksum":1,"projectName":null,"comment":["3"]})" << true
                                 << QStringList{"", "", ""};
    QTest::newRow("list") << "[1,2,3]" << false << QStringList();
    QTest::newRow("empty") << "" << false << QStringList();
    QTest::newRow("no JSON") << "hello" << false << QStringList();
    QTest::newRow("cut off") << R"({"Checksum":"1","projectName":"2","comment":"3")" << false << QStringList();
    QTest::newRow("Chinese") << QString::fromUtf8(R"({"Checksum":"1","projectName":"项目","comment":"🎬"})") << true
                             << QStringList{"1", QString::fromUtf8("项目"), QString::fromUtf8("🎬")};
}

void TstArchiveComment::records_are_read_leniently()
{
    QFETCH(QString, json);
    QFETCH(bool, accepted);
    QFETCH(QStringList, fields);
    EngineerPacketInfo info;
    info.strFilePath = "kept";
    QCOMPARE(ZipPackageHandle::parseEngineerInfo(info, json), accepted);
    QCOMPARE(info.strFilePath, QString("kept"));
    if (accepted)
        QCOMPARE((QStringList{info.strChecksum, info.strProjectName, info.strComment}), fields);
}

void TstArchiveComment::fields_of_a_record_pass_through_utf8()
{
    // Unpaired surrogates, zeros, byte order marks, noncharacters, and valid characters.
    const QVector<QString> parts{QString(QChar(0xD83C)), QString(QChar(0xDFAC)),  QString(QChar(0)),
                                 QString(QChar(0xFEFF)), QString(QChar(0xFFFE)),  QString(QChar(0x7F)),
                                 QStringLiteral("a"),    QString::fromUtf8("项"), QString::fromUtf8("🎬"),
                                 QStringLiteral("\"")};
    QRandomGenerator random(2026);
    const auto field = [&] {
        QString text;
        for (int left = random.bounded(6); left > 0; --left)
            text += parts.at(random.bounded(parts.size()));
        return text;
    };
    // JSON escapes express what UTF-8 cannot.
    const auto escaped = [](const QString &text) {
        QString json;
        for (const QChar unit : text)
            json += QStringLiteral("\\u%1").arg(unit.unicode(), 4, 16, QLatin1Char('0'));
        return json;
    };
    int changed = 0;
    for (int i = 0; i < 3000; ++i) {
        const QStringList fields{field(), field(), field()};
        EngineerPacketInfo info;
        QVERIFY(ZipPackageHandle::parseEngineerInfo(
            info, QStringLiteral(R"({"Checksum":"%1","projectName":"%2","comment":"%3"})")
                      .arg(escaped(fields.at(0)), escaped(fields.at(1)), escaped(fields.at(2)))));
        QStringList expected;
        for (const QString &text : fields)
            expected.append(QString::fromUtf8(text.toUtf8()));
        QCOMPARE((QStringList{info.strChecksum, info.strProjectName, info.strComment}), expected);
        changed += expected != fields ? 1 : 0;
    }
    QVERIFY(changed > 1000);
}

void TstArchiveComment::a_refused_record_leaves_the_fields_alone()
{
    EngineerPacketInfo info;
    info.strChecksum = "old";
    QVERIFY(!ZipPackageHandle::parseEngineerInfo(info, R"({"Checksum":"1","projectName":"2"})"));
    QCOMPARE(info.strChecksum, QString("old"));
}

void TstArchiveComment::a_checksum_with_a_tail_prevents_loading()
{
    // Reading the record ends a field at its first zero; the check before a load takes the whole checksum.
    const EngineerPacketInfo written = packed();
    QVERIFY(ZipPackageHandle::setZipComment(
        m_package, QStringLiteral(R"({"Checksum":"%1\u0000tail","projectName":"name","comment":"text"})")
                       .arg(written.strChecksum)));
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(m_package));
    QVERIFY(!ZipPackageHandle::checkPacketChecksum(m_package));
}

void TstArchiveComment::a_wrong_checksum_is_invalid_but_readable()
{
    const EngineerPacketInfo written = packed();
    QVERIFY(ZipPackageHandle::setZipComment(
        m_package,
        jsonRecord({{"Checksum", written.strChecksum.toUpper()}, {"projectName", "name"}, {"comment", "text"}})));
    EngineerPacketInfo info;
    info.strFilePath = m_package;
    QVERIFY(!ZipPackageHandle::getZipFileEngineerInfo(info));
    QCOMPARE(info.strProjectName, QString("name"));
    QCOMPARE(info.strComment, QString("text"));
    QCOMPARE(info.strChecksum, written.strChecksum.toUpper());
    QVERIFY(!ZipPackageHandle::isValidEngineerPacket(m_package));
    QVERIFY(!ZipPackageHandle::checkPacketChecksum(m_package));
}

void TstArchiveComment::a_record_with_too_few_keys_is_invalid()
{
    const EngineerPacketInfo written = packed();
    QVERIFY(ZipPackageHandle::setZipComment(m_package,
                                            jsonRecord({{"Checksum", written.strChecksum}, {"projectName", "n"}})));
    QVERIFY(!ZipPackageHandle::isValidEngineerPacket(m_package));
    QVERIFY(!ZipPackageHandle::checkPacketChecksum(m_package));
    QVERIFY(ZipPackageHandle::setZipComment(
        m_package,
        jsonRecord({{"Checksum", written.strChecksum}, {"projectName", "n"}, {"comment", "c"}, {"more", 1}})));
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(m_package));
    QVERIFY(ZipPackageHandle::checkPacketChecksum(m_package));
}

void TstArchiveComment::a_record_without_checksum_is_invalid()
{
    packed();
    QVERIFY(
        ZipPackageHandle::setZipComment(m_package, jsonRecord({{"a", "1"}, {"projectName", "n"}, {"comment", "c"}})));
    QVERIFY(!ZipPackageHandle::isValidEngineerPacket(m_package));
    QVERIFY(!ZipPackageHandle::checkPacketChecksum(m_package));
}

TEST_MAIN_CORE(TstArchiveComment)
#include "tst_archivecomment.moc"

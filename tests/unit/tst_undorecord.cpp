// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagetesting.h"
#include "undorecord.h"

#include <support/testmain.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QTemporaryDir>
#include <QtTest>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;

/// The record of a change as it lies on the disk, and what it says of a file. Its use is the subject of TstInPlaceFile.
class TstUndoRecord : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void stored_format_never_changes();
    void only_this_format_is_read_data();
    void only_this_format_is_read();
    void the_longest_record_has_256_kib();
    void record_never_leads_out_of_its_folder_data();
    void record_never_leads_out_of_its_folder();
    void non_file_is_unreadable();
    void writing_to_an_unwritable_folder_fails();
    void record_name_is_derived_from_the_file_name();
    void a_record_is_stale_after_a_day();

    void the_mark_covers_4_kib_before_the_change_data();
    void the_mark_covers_4_kib_before_the_change();
    void a_record_fits_only_its_own_file();
    void only_a_mixture_of_both_tails_is_torn_data();
    void only_a_mixture_of_both_tails_is_torn();

private:
    QString path(const QString &name) const { return m_temp->filePath(name); }
    UndoRecord::Reading readingOf(const QByteArray &bytes) const;

    QScopedPointer<QTemporaryDir> m_temp;
};

namespace {

UndoRecord sample()
{
    UndoRecord record;
    record.strFileName = "ab";
    record.nOffset = 258;
    record.mark = "mark";
    record.before = "old";
    record.after = "n";
    record.nModified = 772;
    return record;
}

QByteArray withDigest(const QByteArray &content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256) + content;
}

/// What sample() is on the disk, behind its digest.
QByteArray contentOfSample(const QByteArray &magic = "UNDO", const QByteArray &version = QByteArray("\0\0\0\x01", 4))
{
    return magic + version + QByteArray("\0\0\0\x04\0a\0b", 8) + QByteArray("\0\0\0\0\0\0\x01\x02", 8) +
           QByteArray("\0\0\0\x04mark", 8) + QByteArray("\0\0\0\x03old", 7) + QByteArray("\0\0\0\x01n", 5) +
           QByteArray("\0\0\0\0\0\0\x03\x04", 8);
}

} // namespace

void TstUndoRecord::init()
{
    m_temp.reset(new QTemporaryDir);
    QVERIFY(m_temp->isValid());
}

UndoRecord::Reading TstUndoRecord::readingOf(const QByteArray &bytes) const
{
    if (!writeFile(path("record"), bytes))
        qFatal("No record");
    return UndoRecord().read(path("record"));
}

void TstUndoRecord::stored_format_never_changes()
{
    // The next version must finish what this one was killed in.
    QVERIFY(sample().write(path("record")));
    QCOMPARE(readFile(path("record")).toHex(), withDigest(contentOfSample()).toHex());
}

void TstUndoRecord::only_this_format_is_read_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isWhole");
    QTest::newRow("its own") << contentOfSample() << true;
    QTest::newRow("another kind") << contentOfSample("UNDP") << false;
    QTest::newRow("version 0") << contentOfSample("UNDO", QByteArray(4, '\0')) << false;
    QTest::newRow("version 2") << contentOfSample("UNDO", QByteArray("\0\0\0\x02", 4)) << false;
    QTest::newRow("the end is missing") << contentOfSample().chopped(1) << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void TstUndoRecord::only_this_format_is_read()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isWhole);
    QCOMPARE(readingOf(withDigest(content)), isWhole ? UndoRecord::Reading::Whole : UndoRecord::Reading::Broken);
    QByteArray wrongDigest = withDigest(content);
    wrongDigest[0] = char(wrongDigest.at(0) ^ 1);
    QCOMPARE(readingOf(wrongDigest), UndoRecord::Reading::Broken);
}

void TstUndoRecord::the_longest_record_has_256_kib()
{
    const int longest = 256 * 1024;
    UndoRecord record = sample();
    QVERIFY(record.write(path("record")));
    record.before += QByteArray(longest - int(QFileInfo(path("record")).size()), 'x');
    QVERIFY(record.write(path("record")));
    QCOMPARE(QFileInfo(path("record")).size(), qint64(longest));
    QCOMPARE(UndoRecord().read(path("record")), UndoRecord::Reading::Whole);
    record.before += 'x';
    QVERIFY(record.write(path("record")));
    QCOMPARE(UndoRecord().read(path("record")), UndoRecord::Reading::Broken);
}

void TstUndoRecord::record_never_leads_out_of_its_folder_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<qint64>("offset");
    QTest::addColumn<bool>("isWhole");
    QTest::newRow("plain") << "file" << qint64(0) << true;
    QTest::newRow("in a folder") << "folder/file" << qint64(0) << false;
    QTest::newRow("above") << "../file" << qint64(0) << false;
    QTest::newRow("in front of the file") << "file" << qint64(-1) << false;
}

void TstUndoRecord::record_never_leads_out_of_its_folder()
{
    QFETCH(QString, fileName);
    QFETCH(qint64, offset);
    QFETCH(bool, isWhole);
    UndoRecord record = sample();
    record.strFileName = fileName;
    record.nOffset = offset;
    QVERIFY(record.write(path("record")));
    QCOMPARE(UndoRecord().read(path("record")), isWhole ? UndoRecord::Reading::Whole : UndoRecord::Reading::Broken);
}

void TstUndoRecord::non_file_is_unreadable()
{
    QCOMPARE(UndoRecord().read(path("missing")), UndoRecord::Reading::Unreadable);
    QCOMPARE(UndoRecord().read(m_temp->path()), UndoRecord::Reading::Unreadable);
}

void TstUndoRecord::writing_to_an_unwritable_folder_fails()
{
    QVERIFY(!sample().write(path("missing/record")));
    QVERIFY(QDir().mkdir(path("folder")));
    QVERIFY(!sample().write(path("folder")));
    const FullDisk disk(withDigest(contentOfSample()).size() - 1);
    QVERIFY(!sample().write(path("record")));
}

void TstUndoRecord::record_name_is_derived_from_the_file_name()
{
    QCOMPARE(UndoRecord::pathFor("/projects/show.corvelpro"),
             QString("/projects/.ff4ee175-6959-55ad-a7fb-a2df0494c0a2.undo"));
    QVERIFY(UndoRecord::isUndoRecord(".01234567-89ab-cdef-0123-456789abcdef.undo"));
    for (const QString &name :
         QStringList{"01234567-89ab-cdef-0123-456789abcdef.undo", ".01234567-89ab-cdef-0123-456789abcdef.undo~",
                     "x.01234567-89ab-cdef-0123-456789abcdef.undo", ".01234567-89ab-cdef-0123-456789abcdeg.undo",
                     ".01234567-89ab-cdef-456789abcdef.undo", ".undo"})
        QVERIFY2(!UndoRecord::isUndoRecord(name), qPrintable(name));
}

void TstUndoRecord::a_record_is_stale_after_a_day()
{
    QVERIFY(sample().write(path("record")));
    QFile file(path("record"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    const QDateTime yesterday = QDateTime::currentDateTime().addDays(-1);
    QVERIFY(file.setFileTime(yesterday.addSecs(3600), QFileDevice::FileModificationTime));
    QVERIFY(!UndoRecord::isStale(path("record")));
    QVERIFY(file.setFileTime(yesterday.addSecs(-3600), QFileDevice::FileModificationTime));
    QVERIFY(UndoRecord::isStale(path("record")));
}

void TstUndoRecord::the_mark_covers_4_kib_before_the_change_data()
{
    QTest::addColumn<int>("changed");
    QTest::addColumn<bool>("isMarked");
    QTest::newRow("before the last 4 KiB") << 5000 - 4096 - 1 << false;
    QTest::newRow("the first") << 5000 - 4096 << true;
    QTest::newRow("the last") << 5000 - 1 << true;
    QTest::newRow("behind the offset") << 5000 << false;
}

void TstUndoRecord::the_mark_covers_4_kib_before_the_change()
{
    QFETCH(int, changed);
    QFETCH(bool, isMarked);
    QByteArray bytes = noise(6000);
    QVERIFY(writeFile(path("one"), bytes));
    bytes[changed] = char(bytes.at(changed) ^ 1);
    QVERIFY(writeFile(path("other"), bytes));
    QFile one(path("one"));
    QFile other(path("other"));
    QVERIFY(one.open(QIODevice::ReadOnly) && other.open(QIODevice::ReadOnly));
    QCOMPARE(UndoRecord::markOf(one, 5000) != UndoRecord::markOf(other, 5000), isMarked);
}

void TstUndoRecord::a_record_fits_only_its_own_file()
{
    const QByteArray bytes = noise(6000);
    QVERIFY(writeFile(path("file"), bytes));
    QFile file(path("file"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    UndoRecord record = sample();
    record.nOffset = 5000;
    QVERIFY(!record.fits(file));
    record.mark = UndoRecord::markOf(file, record.nOffset);
    QVERIFY(record.fits(file));
    // Cut where the change begins, and before that.
    QVERIFY(file.resize(5000));
    QVERIFY(record.fits(file));
    QVERIFY(file.resize(4999));
    QVERIFY(!record.fits(file));
    // What cannot be marked has no mark, and is not known by it.
    QCOMPARE(UndoRecord::markOf(file, 10000), QByteArray());
    record.mark = QByteArray();
    QVERIFY(!record.fits(file));
    record.nOffset = 10000;
    QVERIFY(!record.fits(file));
    // Nothing stands before it.
    record.nOffset = 0;
    record.mark = UndoRecord::markOf(file, 0);
    QVERIFY(record.fits(file));
}

void TstUndoRecord::only_a_mixture_of_both_tails_is_torn_data()
{
    QTest::addColumn<QByteArray>("tail");
    QTest::addColumn<bool>("isTorn");
    QTest::newRow("old") << QByteArray("abcdef") << false;
    QTest::newRow("new") << QByteArray("xyz") << false;
    QTest::newRow("new over old") << QByteArray("xyzdef") << true;
    QTest::newRow("old over new") << QByteArray("abz") << true;
    QTest::newRow("cut by one") << QByteArray("xyzde") << true;
    QTest::newRow("too short") << QByteArray("ab") << false;
    QTest::newRow("too long") << QByteArray("xyzdef\0", 7) << false;
    QTest::newRow("zeros") << QByteArray(6, '\0') << true;
    QTest::newRow("another first byte") << QByteArray("1bcdef") << false;
    QTest::newRow("another last byte") << QByteArray("abcde1") << false;
    QTest::newRow("byte of the wrong place") << QByteArray("xyzxef") << false;
}

void TstUndoRecord::only_a_mixture_of_both_tails_is_torn()
{
    QFETCH(QByteArray, tail);
    QFETCH(bool, isTorn);
    UndoRecord record = sample();
    record.before = "abcdef";
    record.after = "xyz";
    QCOMPARE(record.isTorn(tail), isTorn);
    std::swap(record.before, record.after);
    QCOMPARE(record.isTorn(tail), isTorn);
}

TEST_MAIN_CORE(TstUndoRecord)
#include "tst_undorecord.moc"

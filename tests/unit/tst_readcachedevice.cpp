// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "filesystem.h"
#include "packagetesting.h"
#include "projectlist.h"
#include "readcachedevice.h"
#include "refusedreader.h"
#include "zippackagehandle.h"

#include <support/libraryhook.h>
#include <support/packagebuilder.h>
#include <support/systemcalls.h>
#include <support/testmain.h>

#include <QTemporaryDir>

#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;

namespace {

/// How often each package and each fragment was opened for reading. On the test's thread only.
QHash<QByteArray, int> s_opened;

/// The number of reads, and whether seeking fails. On the test's thread only.
int s_reads = 0;
bool s_seekFails = false;

} // namespace

extern "C" Q_DECL_EXPORT ssize_t read(int handle, void *bytes, size_t count)
{
    static const auto original = TestSupport::original<ssize_t(int, void *, size_t)>("read");
    ++s_reads;
    return original(handle, bytes, count);
}

namespace {

// The same function: the headers select one.
off64_t seekUnlessItFails(int handle, off64_t offset, int whence)
{
    static const auto original = TestSupport::original<off64_t(int, off64_t, int)>("lseek64");
    if (!s_seekFails)
        return original(handle, offset, whence);
    errno = EIO;
    return -1;
}

} // namespace

extern "C" Q_DECL_EXPORT off_t lseek(int handle, off_t offset, int whence) noexcept
{
    return seekUnlessItFails(handle, offset, whence);
}

extern "C" Q_DECL_EXPORT off64_t lseek64(int handle, off64_t offset, int whence) noexcept
{
    return seekUnlessItFails(handle, offset, whence);
}

using Damage = std::function<void(QByteArray &package)>;
Q_DECLARE_METATYPE(Damage)

/// Exposes writeData(), which QIODevice::write() never reaches on a read-only device.
class WritablePackageFile : public ReadCacheDevice
{
public:
    using ReadCacheDevice::ReadCacheDevice;
    using ReadCacheDevice::writeData;
};

class TstReadCacheDevice : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void every_part_reads_as_it_is_data();
    void every_part_reads_as_it_is();
    void reading_past_the_end_returns_nothing();
    void the_last_65577_bytes_are_read_once();
    void a_failing_seek_is_a_failed_read();
    void an_open_package_can_be_edited();
    void torn_end_is_read_again();
    void unopened_file_has_no_size();
    void nothing_can_be_written();
    void unreadable_file_is_not_opened();
    void a_scan_opens_each_package_once();
    void packing_opens_the_archive_once_to_verify_it();
    void package_that_reads_back_differently_is_refused_data();
    void package_that_reads_back_differently_is_refused();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }

    QScopedPointer<QTemporaryDir> m_dir;
};

void TstReadCacheDevice::init()
{
    m_dir.reset(new QTemporaryDir);
    s_opened.clear();
    systemCalls().onOpen = [](const QByteArray &path, int flags) {
        const bool isReader = (flags & (O_ACCMODE | O_PATH)) == O_RDONLY;
        if (isReader && (path.endsWith(".corvelpro") || path.endsWith(".part")))
            ++s_opened[path];
        return 0;
    };
}

void TstReadCacheDevice::every_part_reads_as_it_is_data()
{
    QTest::addColumn<int>("size");
    // The last 65,577 bytes are kept in memory.
    for (int size : {0, 1, 100, 65576, 65577, 65578, 70000, 300000})
        QTest::addRow("%d bytes", size) << size;
}

void TstReadCacheDevice::every_part_reads_as_it_is()
{
    QFETCH(int, size);
    const QByteArray bytes = noise(size + 4).left(size);
    QVERIFY(writeFile(path("bytes"), bytes));
    ReadCacheDevice file(path("bytes"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.size(), qint64(size));
    QVERIFY(!file.isSequential());
    QCOMPARE(file.readAll(), bytes);
    const int end = qMax(0, size - 65577);
    for (int start : {0, 1, end - 20000, end - 1, end, end + 1, size - 1}) {
        for (int count : {1, 46, 5000, 70000}) {
            if (start < 0 || start >= size)
                continue;
            QVERIFY(file.seek(start));
            QCOMPARE(file.read(count), bytes.mid(start, count));
            QCOMPARE(file.pos(), qint64(qMin(start + count, size)));
        }
    }
}

void TstReadCacheDevice::reading_past_the_end_returns_nothing()
{
    QVERIFY(writeFile(path("bytes"), "bytes"));
    ReadCacheDevice file(path("bytes"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    for (const qint64 position : {5, 100}) {
        file.seek(position);
        char byte = 0;
        QCOMPARE(file.read(&byte, 1), qint64(0));
        QCOMPARE(file.read(&byte, 1), qint64(0));
    }
}

void TstReadCacheDevice::the_last_65577_bytes_are_read_once()
{
    const QByteArray bytes = noise(70000);
    QVERIFY(writeFile(path("bytes"), bytes));
    ReadCacheDevice file(path("bytes"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    s_reads = 0;
    for (const int start : {70000 - 65577, 70000 - 100, 70000 - 65577 + 1}) {
        QVERIFY(file.seek(start));
        QCOMPARE(file.read(4), bytes.mid(start, 4));
    }
    QCOMPARE(s_reads, 0);
    QVERIFY(file.seek(70000 - 65578));
    QCOMPARE(file.read(1), bytes.mid(70000 - 65578, 1));
    QVERIFY(s_reads > 0);
}

void TstReadCacheDevice::a_failing_seek_is_a_failed_read()
{
    QVERIFY(writeFile(path("bytes"), noise(300000)));
    ReadCacheDevice file(path("bytes"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.seek(100000));
    const ExpectMessage complaint(QtWarningMsg, QRegularExpression(QStringLiteral("Cannot set file position")));
    char byte = 0;
    s_seekFails = true;
    const qint64 count = file.read(&byte, 1);
    s_seekFails = false;
    QCOMPARE(count, qint64(-1));

    ReadCacheDevice another(path("bytes"));
    const ExpectMessage anotherComplaint(QtWarningMsg, QRegularExpression(QStringLiteral("Cannot set file position")));
    s_seekFails = true;
    const bool isOpen = another.open(QIODevice::ReadOnly);
    s_seekFails = false;
    QVERIFY(!isOpen);
    QCOMPARE(another.errorString(), QStringLiteral("cannot read %1: Input/output error").arg(path("bytes")));
}

void TstReadCacheDevice::an_open_package_can_be_edited()
{
    QVERIFY(writeFile(path("bytes"), "bytes"));
    ReadCacheDevice file(path("bytes"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QFile editor(path("bytes"));
    QVERIFY(editor.open(QIODevice::ReadWrite));
    QVERIFY(FileSystem::lock(editor.handle()));
}

void TstReadCacheDevice::torn_end_is_read_again()
{
    const QByteArray whole = PackageBuilder().file("a.json", "{}").record("show", "a comment").build();
    QVERIFY(writeFile(path("bytes"), whole.chopped(1)));
    QFile writer(path("bytes"));
    QVERIFY(writer.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    QVERIFY(FileSystem::lock(writer.handle()));
    // Still locked when it is whole, as between an edit's write and its flush.
    int refused = 0;
    RefusedReader::s_onRefusal = [&] {
        if (++refused == 3)
            QVERIFY(writer.seek(0) && writer.write(whole) == whole.size());
    };
    ReadCacheDevice file(path("bytes"));
    const bool isOpen = file.open(QIODevice::ReadOnly);
    RefusedReader::s_onRefusal = nullptr;
    QVERIFY(isOpen);
    QCOMPARE(refused, 3);
    QCOMPARE(file.readAll(), whole);
}

void TstReadCacheDevice::unopened_file_has_no_size()
{
    QVERIFY(writeFile(path("bytes"), "bytes"));
    QCOMPARE(ReadCacheDevice(path("bytes")).size(), qint64(0));
}

void TstReadCacheDevice::nothing_can_be_written()
{
    QCOMPARE(WritablePackageFile(path("bytes")).writeData("x", 1), qint64(-1));
    QVERIFY(writeFile(path("bytes"), "bytes"));
    ReadCacheDevice file(path("bytes"));
    QVERIFY(!file.open(QIODevice::ReadWrite));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const ExpectMessage complaint(QtWarningMsg, QRegularExpression(QStringLiteral("ReadOnly device")));
    QCOMPARE(file.write("x"), qint64(-1));
    QCOMPARE(readFile(path("bytes")), QByteArray("bytes"));
}

void TstReadCacheDevice::unreadable_file_is_not_opened()
{
    const uint openHandles = QDir("/proc/self/fd").count();
    QVERIFY(!ReadCacheDevice(path("missing")).open(QIODevice::ReadOnly));
    QVERIFY(!ReadCacheDevice(m_dir->path()).open(QIODevice::ReadOnly));
    QCOMPARE(::mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    // It has no writer: opening it would block.
    QVERIFY(!ReadCacheDevice(path("pipe")).open(QIODevice::ReadOnly));
    QCOMPARE(QDir("/proc/self/fd").count(), openHandles);
}

void TstReadCacheDevice::a_scan_opens_each_package_once()
{
    QStringList expected;
    for (int number = 0; number < 5; ++number) {
        const QString package = path(QStringLiteral("%1.corvelpro").arg(number));
        QVERIFY(PackageBuilder().file("a.json", "{}").record("show", QString()).write(package));
        expected.append(package);
    }
    s_opened.clear();
    ProjectList list;
    list.scanProjectFiles(m_dir->path(), list.beginScan());
    QCOMPARE(list.listProjects.size(), 5);
    for (const QString &package : expected)
        QCOMPARE(s_opened.value(QFile::encodeName(package)), 1);

    // Not even the beginning of a known file is read.
    s_opened.clear();
    list.scanProjectFiles(m_dir->path(), list.beginScan());
    QCOMPARE(list.listProjects.size(), 5);
    QVERIFY(s_opened.isEmpty());
}

void TstReadCacheDevice::packing_opens_the_archive_once_to_verify_it()
{
    QVERIFY(makeDeviceTree(path("device")));
    EngineerPacketInfo info;
    info.strFilePath = path("show.corvelpro");
    const FileSystem::FileIdentity previous(info.strFilePath);
    s_opened.clear();
    QString reason;
    QVERIFY2(
        ZipPackageHandle::compressEngineerPacket(path("device"), info, {{{"BKG/BKG_0.png", 5000}}, previous}, &reason),
        qPrintable(reason));
    QCOMPARE(s_opened.size(), 1);
    QCOMPARE(s_opened.begin().value(), 1);
    QVERIFY(s_opened.begin().key().endsWith(".part"));
}

void TstReadCacheDevice::package_that_reads_back_differently_is_refused_data()
{
    QTest::addColumn<Damage>("damage");
    QTest::addColumn<QString>("cause");
    QTest::newRow("cut") << Damage([](QByteArray &bytes) { bytes.truncate(bytes.size() / 2); })
                         << "is not a zip archive, or is incomplete";
    QTest::newRow("another record") << Damage([](QByteArray &bytes) {
        bytes.replace(bytes.lastIndexOf("evening"), 7, "morning");
    }) << "its record differs";
    QTest::newRow("another entry") << Damage([](QByteArray &bytes) {
        bytes.replace(bytes.lastIndexOf("BKG_0.png"), 9, "BKG_1.png");
    }) << "its entries differ";
    QTest::newRow("another byte") << Damage([](QByteArray &bytes) { bytes[4] = char(bytes.at(4) ^ 1); })
                                  << "its record says";
}

void TstReadCacheDevice::package_that_reads_back_differently_is_refused()
{
    QFETCH(Damage, damage);
    QFETCH(QString, cause);
    QVERIFY(makeDeviceTree(path("device")));
    EngineerPacketInfo info;
    info.strFilePath = path("show.corvelpro");
    info.strProjectName = "evening";
    const FileSystem::FileIdentity previous(info.strFilePath);
    // A disk that does not keep what was written.
    bool isDamaged = false;
    systemCalls().onOpen = [&](const QByteArray &name, int flags) {
        if (!isDamaged && name.endsWith(".part") && (flags & (O_ACCMODE | O_PATH)) == O_RDONLY) {
            isDamaged = true;
            QByteArray bytes = readFile(QFile::decodeName(name));
            damage(bytes);
            writeFile(QFile::decodeName(name), bytes);
        }
        return 0;
    };
    QString reason;
    const bool isPacked =
        ZipPackageHandle::compressEngineerPacket(path("device"), info, {QHash<QString, qint64>(), previous}, &reason);
    systemCalls().onOpen = nullptr;
    QVERIFY(!isPacked);
    QVERIFY2(reason.startsWith(info.strFilePath + " does not read back as written: "), qPrintable(reason));
    QVERIFY2(cause.endsWith("says") ? reason.contains(cause) : reason.endsWith(cause), qPrintable(reason));
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

TEST_MAIN_CORE(TstReadCacheDevice)
#include "tst_readcachedevice.moc"

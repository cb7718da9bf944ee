#include "packagefile.h"
#include "packagetesting.h"
#include "projectlist.h"

#include <support/packagebuilder.h>
#include <support/testmain.h>

#include <QTemporaryDir>

#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;
using namespace TestSupport;

/// How often each package was opened. On the thread that tests alone.
static QHash<QByteArray, int> s_opened;

// Stands before the C library's, through which packages are opened.
extern "C" Q_DECL_EXPORT int open(const char *path, int flags, ...)
{
    using Function = int (*)(const char *, int, mode_t);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "open"));
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (QByteArray(path).endsWith(".corvelpro"))
        ++s_opened[path];
    return original(path, flags, mode);
}
// The product's own opening.
extern "C" Q_DECL_EXPORT int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return open64(path, flags, mode);
}

class TstPackageFile : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void every_part_reads_as_it_is_in_the_file_data();
    void every_part_reads_as_it_is_in_the_file();
    void behind_the_end_there_is_nothing();
    void nothing_can_be_written();
    void what_cannot_be_read_anywhere_is_not_opened();
    void a_scan_opens_each_package_once();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }

    QScopedPointer<QTemporaryDir> m_dir;
};

void TstPackageFile::init()
{
    m_dir.reset(new QTemporaryDir);
    s_opened.clear();
}

void TstPackageFile::every_part_reads_as_it_is_in_the_file_data()
{
    QTest::addColumn<int>("size");
    // The last 65,577 bytes are kept in memory.
    for (int size : {0, 1, 100, 65576, 65577, 65578, 70000, 300000})
        QTest::addRow("%d bytes", size) << size;
}

void TstPackageFile::every_part_reads_as_it_is_in_the_file()
{
    QFETCH(int, size);
    const QByteArray bytes = noise(size + 4).left(size);
    QVERIFY(writeFile(path("bytes"), bytes));
    PackageFile file(path("bytes"));
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

void TstPackageFile::behind_the_end_there_is_nothing()
{
    QVERIFY(writeFile(path("bytes"), "bytes"));
    PackageFile file(path("bytes"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    for (const qint64 position : {5, 100}) {
        file.seek(position);
        char byte = 0;
        QCOMPARE(file.read(&byte, 1), qint64(0));
        QCOMPARE(file.read(&byte, 1), qint64(0));
    }
}

void TstPackageFile::nothing_can_be_written()
{
    QVERIFY(writeFile(path("bytes"), "bytes"));
    PackageFile file(path("bytes"));
    QVERIFY(!file.open(QIODevice::ReadWrite));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const ExpectMessage complaint(QtWarningMsg, QRegularExpression(QStringLiteral("ReadOnly device")));
    QCOMPARE(file.write("x"), qint64(-1));
    QCOMPARE(readFile(path("bytes")), QByteArray("bytes"));
}

void TstPackageFile::what_cannot_be_read_anywhere_is_not_opened()
{
    QVERIFY(!PackageFile(path("missing")).open(QIODevice::ReadOnly));
    QVERIFY(!PackageFile(m_dir->path()).open(QIODevice::ReadOnly));
    QCOMPARE(::mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    // Nobody writes to it: opening it would not return.
    QVERIFY(!PackageFile(path("pipe")).open(QIODevice::ReadOnly));
}

void TstPackageFile::a_scan_opens_each_package_once()
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
    QCOMPARE(list.projects.size(), 5);
    for (const QString &package : expected)
        QCOMPARE(s_opened.value(QFile::encodeName(package)), 1);

    // Of what is known already, not even the beginning is looked at.
    s_opened.clear();
    list.scanProjectFiles(m_dir->path(), list.beginScan());
    QCOMPARE(list.projects.size(), 5);
    QVERIFY(s_opened.isEmpty());
}

TEST_MAIN_CORE(TstPackageFile)
#include "tst_packagefile.moc"

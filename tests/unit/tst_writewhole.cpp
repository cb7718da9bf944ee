// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "packagetesting.h"
#include "writewhole.h"

#include <support/libraryhook.h>
#include <support/testmain.h>

#include <QFile>
#include <QTemporaryDir>

#include <unistd.h>

using namespace PackageTesting;
using namespace ProjectFileCfg::Internal;

namespace {

bool s_closeFails = false;

} // namespace

// Hooks the C library's function with which Qt closes files. As on Linux, the file is closed even on failure.
extern "C" Q_DECL_EXPORT int close(int handle)
{
    static const auto original = TestSupport::original<int(int)>("close");
    const int result = original(handle);
    if (!s_closeFails)
        return result;
    errno = EIO;
    return -1;
}

/// Which staged files count as written.
class TstWriteWhole : public QObject
{
    Q_OBJECT

private slots:
    void it_holds_the_content_and_is_closed();
    void a_failed_closing_is_a_failure();
    void a_full_disk_is_a_failure();

private:
    QTemporaryDir m_dir;
};

void TstWriteWhole::it_holds_the_content_and_is_closed()
{
    QFile file(m_dir.filePath("staged"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(writeWhole(file, "content"));
    QVERIFY(!file.isOpen());
    QCOMPARE(readFile(file.fileName()), QByteArray("content"));
}

void TstWriteWhole::a_failed_closing_is_a_failure()
{
    QFile file(m_dir.filePath("staged"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    s_closeFails = true;
    const bool isWritten = writeWhole(file, "content");
    s_closeFails = false;
    QVERIFY(!isWritten);
}

void TstWriteWhole::a_full_disk_is_a_failure()
{
    QFile file(QStringLiteral("/dev/full"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QString reason;
    QVERIFY(!writeWhole(file, "content", &reason));
    QCOMPARE(reason, QString("cannot write /dev/full: No space left on device"));
    file.close();
}

TEST_MAIN_CORE(TstWriteWhole)
#include "tst_writewhole.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "devicefiles.h"

#include "comparison/comparison.h"
#include "comparison/entrysource.h"
#include "copying/verifiedcopy.h"
#include "making/extraction.h"
#include "making/packagemaking.h"
#include "making/projectthumbnail.h"
#include "zippackagehandle.h"

#include <data/hostilepackages.h>

#include <QImage>
#include <QTemporaryDir>

using namespace ToolTesting;
using Corvelpro::Comparison;
using Corvelpro::EntrySource;
using Corvelpro::Extraction;
using Corvelpro::ProjectThumbnail;
using Corvelpro::VerifiedCopy;
using ProjectFileCfg::Internal::EngineerPacketInfo;
using ProjectFileCfg::Internal::ZipPackageHandle;
using TestSupport::ExpectMessage;

/// Each odd and hostile package goes through the classes behind the commands that compare, extract, edit and copy.
class TstHostileFiles : public QObject
{
    Q_OBJECT

private slots:
    void packages_do_no_harm();

private:
    void compareWithItself();
    void extract();
    void drawThumbnail();
    void copyAndEdit();

    QScopedPointer<QTemporaryDir> m_dir;
    QString m_package;
};

void TstHostileFiles::packages_do_no_harm()
{
    const ExpectMessage libraryNoise(QtWarningMsg, QRegularExpression("^libpng |^QFile::at: Cannot set file position"),
                                     ExpectMessage::AnyNumber);
    m_dir.reset(new QTemporaryDir);
    m_package = m_dir->filePath("a.corvelpro");
    for (const TestData::HostilePackage &package : TestData::hostilePackages()) {
        if (package.libraryLeaks)
            continue;
        QVERIFY(writeFile(m_package, package.bytes()));
        for (const auto step : {&TstHostileFiles::compareWithItself, &TstHostileFiles::extract,
                                &TstHostileFiles::drawThumbnail, &TstHostileFiles::copyAndEdit}) {
            (this->*step)();
            if (QTest::currentTestFailed())
                QFAIL(package.name);
        }
        // Nothing was written outside, or left behind.
        QCOMPARE(namesIn(m_dir->path()), QStringList{"a.corvelpro"});
        QVERIFY2(!QFile::exists(TestData::absoluteEscape), package.name);
    }
}

void TstHostileFiles::compareWithItself()
{
    QString reason;
    const auto before = EntrySource::open(m_package, &reason);
    const auto after = EntrySource::open(m_package, &reason);
    QCOMPARE(bool(before), bool(after));
    if (!before)
        return;
    Comparison comparison(*before, *after, {});
    comparison.run();
    QVERIFY(comparison.differences().isEmpty());
    QCOMPARE(comparison.unreadable().size() % 2, 0);
}

void TstHostileFiles::extract()
{
    const QString target = m_dir->filePath("out");
    const bool isExtracted = Extraction(m_package, target, QString()).run().isDone();
    QCOMPARE(QFileInfo::exists(target), isExtracted);
    QVERIFY(!isExtracted || QDir(target).removeRecursively());
}

void TstHostileFiles::drawThumbnail()
{
    const int side = 64;
    const QString target = m_dir->filePath("a.png");
    ProjectThumbnail thumbnail(m_package, target);
    const bool isDone = thumbnail.draw(side).isDone();
    QCOMPARE(QFile::exists(target), isDone);
    if (isDone) {
        const QSize size = QImage(target).size();
        QVERIFY(!size.isEmpty() && size.width() <= side && size.height() <= side);
        QVERIFY(QFile::remove(target));
    }
}

void TstHostileFiles::copyAndEdit()
{
    const QString target = m_dir->filePath("copy.corvelpro");
    const bool isValid = ZipPackageHandle::isValidEngineerPacket(m_package);
    QCOMPARE(VerifiedCopy(m_package, target, [](qint64) { return true; }).run().isDone(), isValid);
    QCOMPARE(QFileInfo::exists(target), isValid);
    if (!isValid)
        return;
    QVERIFY(readFile(target) == readFile(m_package));
    EngineerPacketInfo record{target, "", "", ""};
    Corvelpro::PackageMaking::edit(record, std::nullopt, QString("edited"));
    QVERIFY(ZipPackageHandle::isValidEngineerPacket(target));
    QVERIFY(QFile::remove(target));
}

TEST_MAIN_CORE(TstHostileFiles)
#include "tst_hostilefiles.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <support/panelfixture.h>
#include <support/paneltexts.h>
#include <support/testmain.h>
#include <unit/packagetesting.h>
#include <zippackagehandle.h>

using namespace PackageTesting;
using namespace PanelTesting;
using namespace PanelTexts;
using namespace TestSupport;
using ProjectFileCfg::Internal::EngineerPacketInfo;
using ProjectFileCfg::Internal::ZipPackageHandle;

namespace {

constexpr int longest = 64; // bytes of UTF-8 that the name field takes

/// As many whole repetitions as the name field takes.
QString asLongAsPossible(const char *utf8)
{
    const QString part = QString::fromUtf8(utf8);
    return part.repeated(longest / part.toUtf8().size());
}

} // namespace

/// Names as long as the field takes them, in many scripts, from the save to the deletion.
class TstNamesInEveryScript : public QObject, protected PanelOnSite<TestSite>
{
    Q_OBJECT

private slots:
    void init() { setUp(); }
    void cleanup() { tearDown(); }

    void a_name_survives_every_operation_data();
    void a_name_survives_every_operation();

private:
    /// Waits until the list shows that name and that comment alone, and compares them with the package's record.
    void verifyListed(const QString &name, const QString &comment)
    {
        settle();
        QCOMPARE(m_panel->names(), QStringList{name});
        QCOMPARE(m_panel->comments(), QStringList{comment});
        QCOMPARE(contents(projectFilesPath()), QStringList{name + QStringLiteral(".corvelpro")});
        EngineerPacketInfo info;
        info.strFilePath = projectFile(name);
        QVERIFY(ZipPackageHandle::getZipFileEngineerInfo(info));
        QCOMPARE(info.strProjectName, name);
        QCOMPARE(info.strComment, comment);
        // A screen reader gets the name as it is.
        const QToolButton *apply = m_panel->rowButtons(0).value(1);
        QCOMPARE(apply->accessibleName(), QStringLiteral("Apply, ") + name);
    }
};

void TstNamesInEveryScript::a_name_survives_every_operation_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("Latin") << asLongAsPossible("Show");
    QTest::newRow("accents") << asLongAsPossible("é");
    QTest::newRow("combining marks") << asLongAsPossible("e\u0301\u0323");
    QTest::newRow("Greek") << asLongAsPossible("Ω");
    QTest::newRow("Cyrillic") << asLongAsPossible("Ж");
    QTest::newRow("Arabic") << asLongAsPossible("عرض");
    QTest::newRow("Hebrew") << asLongAsPossible("מופע");
    QTest::newRow("both directions") << asLongAsPossible("عرض 1 Show ");
    QTest::newRow("marks of direction") << asLongAsPossible("a\u202E\u200F");
    QTest::newRow("Hindi") << asLongAsPossible("कि");
    QTest::newRow("Thai") << asLongAsPossible("กำ");
    QTest::newRow("Chinese") << asLongAsPossible("晚");
    QTest::newRow("Korean") << asLongAsPossible("쇼");
    QTest::newRow("emoji") << asLongAsPossible("🎬");
    QTest::newRow("emoji of many") << asLongAsPossible("👩‍🚀");
    QTest::newRow("flags") << asLongAsPossible("🇨🇳");
}

void TstNamesInEveryScript::a_name_survives_every_operation()
{
    QFETCH(QString, name);
    // A blank at the end is no part of a name.
    name = name.trimmed();
    QVERIFY(name.toUtf8().size() > longest - 16);
    QVERIFY(name.toUtf8().size() <= longest);

    QVERIFY(pressSave(name, name));
    QTRY_VERIFY(hasJobEnded());
    verifyListed(name, name);

    const QString copy = elsewhere(name + QStringLiteral(".corvelpro"));
    m_book->expectFileDialog(saveTitle, {elsewhere(name)});
    m_book->expectInformation(remind, saveSucceeded);
    clickRow(name, QStringLiteral("Save as"));
    waitForAnswers();
    QCOMPARE(readFile(copy), readFile(projectFile(name)));

    // The dialog proposes the whole name.
    m_book->expectDialog(propertyDialog, [&](QDialog *dialog) {
        const Properties proposed = propertiesIn(dialog);
        answerProperties(dialog, proposed.name, QStringLiteral("edited ") + proposed.comment.left(60));
    });
    clickRow(name, QStringLiteral("Edit"));
    VERIFY_BOOK();
    verifyListed(name, QStringLiteral("edited ") + name.left(60));

    expectProperties(QStringLiteral("Show"), name);
    clickRow(name, QStringLiteral("Edit"));
    VERIFY_BOOK();
    verifyListed(QStringLiteral("Show"), name);
    expectProperties(name, QString());
    clickRow(QStringLiteral("Show"), QStringLiteral("Edit"));
    VERIFY_BOOK();
    verifyListed(name, QString());

    m_book->expectFileDialog(chooserTitle, {copy});
    m_book->expectWarning(warning, QStringLiteral("Import project file [%1] failed").arg(name));
    click(m_panel->importProject());
    waitForAnswers();

    m_book->expectQuestion(remind, deleteQuestion, QMessageBox::Yes);
    clickRow(name, QStringLiteral("Delete"));
    VERIFY_BOOK();
    settle();
    QVERIFY(contents(projectFilesPath()).isEmpty());
    QVERIFY(m_panel->names().isEmpty());
}

TEST_MAIN(TstNamesInEveryScript)
#include "tst_namesineveryscript.moc"

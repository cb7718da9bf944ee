// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <program.h>

#include <settingcfg/settingcfgmodemanager.h>

#include <simulation/site.h>
#include <support/answerbook.h>
#include <support/packagebuilder.h>
#include <support/paneltexts.h>
#include <support/testmain.h>
#include <unit/packagetesting.h>

#include <QTableWidget>

using namespace PanelTexts;
using namespace TestSupport;
using PackageTesting::readFile;
using PackageTesting::writeFile;

/// The program as a double click on a project file starts it.
class TstOpeningFiles : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void opened_files_are_imported();
    void listed_file_is_not_imported_again();
    void file_waits_for_the_page_that_takes_it();
    void other_file_is_refused_data();
    void other_file_is_refused();

private:
    Program::Options optionsFor(const QStringList &files) const;
    QString package(const QString &path) const;
    QStringList listed() const;

    QScopedPointer<QTemporaryDir> m_dir;
    QDir m_projects;
};

void TstOpeningFiles::init()
{
    m_dir.reset(new QTemporaryDir);
    m_projects.setPath(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
                       "/Velmora/Tarvo/ProjectFiles");
}

void TstOpeningFiles::cleanup()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(patience));
    QVERIFY(m_projects.removeRecursively());
}

Program::Options TstOpeningFiles::optionsFor(const QStringList &files) const
{
    Program::Options options = Program::defaultOptions();
    options.siteFile = Simulation::builtInSite("small");
    options.workDirectory = m_dir->filePath("work");
    options.files = files;
    return options;
}

QString TstOpeningFiles::package(const QString &path) const
{
    return PackageBuilder().file("10.0.0.1.json", "{}").record("show", "").write(path) ? path : QString();
}

QStringList TstOpeningFiles::listed() const
{
    QStringList names;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *window : windows) {
        for (const QTableWidget *table : window->findChildren<QTableWidget *>()) {
            for (int row = 0; table->isVisible() && row < table->rowCount(); ++row)
                names.append(table->item(row, 0) ? table->item(row, 0)->text() : QString());
        }
    }
    names.sort();
    return names;
}

void TstOpeningFiles::opened_files_are_imported()
{
    AnswerBook book;
    const QString one = package(m_dir->filePath("evening 'show'.corvelpro"));
    const QString other = package(m_dir->filePath(QString::fromUtf8("演出.CORVELPRO")));
    book.expectInformation(remind, importSucceeded);
    Program program(optionsFor({one, other}));
    QVERIFY2(program.start(), qPrintable(program.error()));
    QTRY_VERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QTRY_COMPARE(listed(), QStringList({"evening 'show'", QString::fromUtf8("演出.CORVELPRO")}));
    for (const QString &file : {one, other})
        QCOMPARE(readFile(m_projects.filePath(QFileInfo(file).fileName())), readFile(file));
}

void TstOpeningFiles::listed_file_is_not_imported_again()
{
    AnswerBook book;
    QVERIFY(m_projects.mkpath("."));
    book.expectInformation(remind, importSucceeded);
    const QString listedFile = package(m_projects.filePath("there.corvelpro"));
    Program program(optionsFor({listedFile, package(m_dir->filePath("here.corvelpro"))}));
    QVERIFY2(program.start(), qPrintable(program.error()));
    QTRY_COMPARE(listed(), QStringList({"here", "there"}));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
}

void TstOpeningFiles::file_waits_for_the_page_that_takes_it()
{
    AnswerBook book;
    book.expectInformation(remind, importSucceeded);
    Program::Options options = optionsFor({package(m_dir->filePath("show.corvelpro"))});
    options.firstSubMode = "General";
    Program program(options);
    QVERIFY2(program.start(), qPrintable(program.error()));
    QCoreApplication::processEvents();
    QVERIFY(!m_projects.exists("show.corvelpro"));
    SettingCfg::SettingCfgModeManager::instance()->activateMode("ProjectFileCfg");
    QTRY_COMPARE(listed(), QStringList{"show"});
}

void TstOpeningFiles::other_file_is_refused_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("another extension") << "notes.txt";
    QTest::newRow("no file") << "gone.corvelpro";
    QTest::newRow("a folder") << "folder.corvelpro";
}

void TstOpeningFiles::other_file_is_refused()
{
    QFETCH(QString, name);
    QVERIFY(writeFile(m_dir->filePath("notes.txt"), "notes"));
    QVERIFY(QDir(m_dir->path()).mkpath("folder.corvelpro"));
    Program program(optionsFor({package(m_dir->filePath("show.corvelpro")), m_dir->filePath(name)}));
    QVERIFY(!program.start());
    QCOMPARE(program.error(), m_dir->filePath(name) + " is not a project file.");
}

TEST_MAIN(TstOpeningFiles)
#include "tst_openingfiles.moc"

// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "toolinprocess.h"
#include "workplace.h"

#include <support/systemcalls.h>
#include <support/testmain.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace ToolTesting;

/// Another program takes the name of what the tool is making.
class TstMeetings : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { TestSupport::systemCalls() = {}; }

    void what_appears_meanwhile_is_kept_data();
    void what_appears_meanwhile_is_kept();
};

void TstMeetings::what_appears_meanwhile_is_kept_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("isFolder");
    QTest::newRow("create") << QStringList{"create", "device", "new.corvelpro"} << "new.corvelpro" << false;
    QTest::newRow("copy") << QStringList{"copy", "show.corvelpro", "stick"} << "stick/show.corvelpro" << false;
    QTest::newRow("edit") << QStringList{"edit", "show.corvelpro", "--name", "new"} << "new.corvelpro" << false;
    QTest::newRow("extract, a file") << QStringList{"extract", "show.corvelpro", "new"} << "new" << false;
    QTest::newRow("extract, a folder") << QStringList{"extract", "show.corvelpro", "new"} << "new" << true;
    QTest::newRow("diff") << QStringList{"diff", "show.corvelpro", "other.corvelpro", "--sheet", "new.png"} << "new.png"
                          << false;
}

// At each call that opens a file: before the first check, between a check and what relies on it, right before the
// renaming.
void TstMeetings::what_appears_meanwhile_is_kept()
{
    QFETCH(QStringList, words);
    QFETCH(QString, target);
    QFETCH(bool, isFolder);
    int kept = 0;
    for (int step = 1;; ++step) {
        const Workplace place;
        QVERIFY(writePackage(place.path("other.corvelpro"),
                             {{"10.0.0.1.json", "{}"}, {"BKG/BKG_1.png", TestData::PngMaker::blank(8, 8)}}));
        QStringList arguments = words;
        for (int i = 1; i < arguments.size(); ++i) {
            if (!arguments.at(i).startsWith("--") && arguments.at(i - 1) != "--name")
                arguments[i] = place.path(arguments.at(i));
        }
        const QString path = place.path(target);
        const QByteArray name = QFile::encodeName(path);
        const QByteArray root = QFile::encodeName(place.root());
        int opened = 0;
        bool isThere = false;
        TestSupport::systemCalls().onOpen = [&](const QByteArray &file, int) {
            if (!file.startsWith(root) || ++opened != step)
                return 0;
            if (isFolder) {
                isThere = mkdir(name.constData(), 0755) == 0;
            } else {
                const int handle = open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
                isThere = handle >= 0 && write(handle, "another", 7) == 7;
                close(handle);
            }
            return 0;
        };
        const Outcome outcome = runInProcess(arguments);
        TestSupport::systemCalls() = {};
        if (!isThere) {
            QVERIFY(opened < step || QFileInfo::exists(path));
            break;
        }
        ++kept;
        const QByteArray at = "at step " + QByteArray::number(step) + ": " + outcome.messages;
        QVERIFY2(isFolder ? namesIn(path).isEmpty() && QFileInfo(path).isDir() : readFile(path) == "another", at);
        QVERIFY2(outcome.code == no || outcome.code == unknown, at);
        QVERIFY2(outcome.messages.contains(name), at);
        QCOMPARE(namesIn(place.root()).filter(".part"), QStringList());
        QCOMPARE(namesIn(place.path("stick")).filter(".part"), QStringList());
    }
    QVERIFY2(kept >= 3, qPrintable(QString::number(kept)));
}

TEST_MAIN_CORE(TstMeetings)
#include "tst_meetings.moc"

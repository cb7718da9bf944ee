// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QtGlobal>

class QObject;

namespace TestSupport {

/// Reads Qt's log, from every thread, and fails the running test function for each warning or critical message that it
/// did not expect.
///
/// Active while a test program of testmain.h runs; there is nothing to install. Use this class and ExpectMessage
/// instead of QTest::ignoreMessage, which the guard cannot see.
class WarningGuard
{
public:
    struct Message
    {
        QtMsgType type = QtDebugMsg;
        QString text;
        /// The origin: base name of the source file, signature of the function.
        QString file;
        int line = 0;
        QString function;
    };

    /// All messages since clear(), in order, of every level. Any thread.
    static QVector<Message> messages();
    /// The texts of that level.
    static QStringList texts(QtMsgType type);
    /// The number of messages of that level with exactly this text.
    static int count(QtMsgType type, const QString &text);
    /// Clears the messages; tests that read them call it in init().
    static void clear();
};

/// During its lifetime messages of that level whose text matches are expected. Its destructor fails the running test
/// function if there was none, or not exactly `times` of them. Main thread.
class ExpectMessage
{
public:
    enum { AtLeastOne = -1, AnyNumber = -2 };

    ExpectMessage(QtMsgType type, const QRegularExpression &pattern, int times = AtLeastOne);
    /// Matches the text exactly.
    ExpectMessage(QtMsgType type, const QString &text, int times = AtLeastOne);
    ~ExpectMessage();
    Q_DISABLE_COPY(ExpectMessage)

    /// The number of matches so far.
    int count() const;

private:
    const int m_id;
    const int m_times;
    const QString m_description;
};

/// Runs the test functions of `test` under the guard; returns main's exit code. Called by the macros of testmain.h.
int runTest(QObject *test, int argc, char *argv[]);

} // namespace TestSupport

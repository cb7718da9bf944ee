#pragma once

#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QtGlobal>

class QObject;

namespace TestSupport {

/// Reads along with Qt's message logger, from every thread, and fails the running test function for
/// each warning or critical message that the function did not expect.
///
/// It is in force while a test program of testmain.h runs; there is nothing to install. Use this class
/// and ExpectMessage in place of QTest::ignoreMessage, which the guard cannot see.
class WarningGuard
{
public:
    struct Message
    {
        QtMsgType type = QtDebugMsg;
        QString text;
        /// Where it was logged: base name of the source file, signature of the function.
        QString file;
        int line = 0;
        QString function;
    };

    /// Every message since clear(), in order, of every level. Any thread.
    static QVector<Message> messages();
    /// The texts of those of one level.
    static QStringList texts(QtMsgType type);
    /// How many of one level have exactly this text.
    static int count(QtMsgType type, const QString &text);
    /// Forgets the messages so far; a test that reads them does so in init().
    static void clear();
};

/// While it lives, messages of that level whose text matches are expected. At its end the running test
/// function fails when none came, or not exactly `times` of them. Main thread.
class ExpectMessage
{
public:
    enum { AtLeastOne = -1, AnyNumber = -2 };

    ExpectMessage(QtMsgType type, const QRegularExpression &pattern, int times = AtLeastOne);
    /// The text exactly.
    ExpectMessage(QtMsgType type, const QString &text, int times = AtLeastOne);
    ~ExpectMessage();
    Q_DISABLE_COPY(ExpectMessage)

    /// How many came so far.
    int count() const;

private:
    const int m_id;
    const int m_times;
    const QString m_description;
};

/// Runs the test functions of `test` under the guard; what main returns. Called by the macros of testmain.h.
int runTest(QObject *test, int argc, char *argv[]);

} // namespace TestSupport
